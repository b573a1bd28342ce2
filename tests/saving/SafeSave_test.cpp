// Saving real files: which bytes change, and what is told beforehand.
#include "vexqt/saving/SafeSave.h"

#include <gtest/gtest.h>

#include <random>

#include "testing/bytes.h"
#include "testing/files.h"
#include "vexqt/atoms/headers/VexQTmvhdAtom.h"
#include "vexqt/atoms/structure/VexQTftypAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

const Bytes kFileType = atom("ftyp"_os, {text("qt  "), u32(7), text("qt  ")});
const Bytes kMedia = atom("mdat"_os, {Bytes(100, 0xDA)});

Bytes header() {
    VexQTmvhdAtom mvhd;
    mvhd.setTimeScale(600);
    return mvhd.atomData();
}
/// A movie with a header and a filler of that payload.
Bytes movie(std::size_t filler) {
    return atom("moov"_os, {header(), atom("wide"_os, {Bytes(filler, 0x11)})});
}

using Editing = std::function<void(VexQTAsset&)>;

void setTimeScale(VexQTAsset& asset) {
    asset.moovAtom()->childWithType("mvhd"_os)->setValueForKey(90000, "timeScale");
}
void shrink(VexQTAsset& asset) { asset.moovAtom()->removeChildrenWithType("wide"_os); }
Editing grow(std::size_t by) {
    return [by](VexQTAsset& asset) {
        asset.moovAtom()->addChild(
            VexQTAtom::initWithData(atom("skip"_os, {Bytes(by - 8, 0x22)}), nullptr, 0));
    };
}
void leaveAlone(VexQTAsset&) {}

struct Saved {
    SaveResult result;
    Bytes before, after;
    std::string report;  ///< The findings' identifiers.

    bool has(std::string_view id) const {
        return std::ranges::count(result.plan.findings(), id, &Finding::id) > 0;
    }
};

Saved saved(ByteView bytes, const Editing& edit, SaveOptions options = {}) {
    const TemporaryFolder folder;
    const auto path = folder / "movie.mov";
    writeFile(path, bytes);
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(path, error, {.tolerant = true});
    edit(*asset);
    Saved all;
    all.before = Bytes(bytes.begin(), bytes.end());
    all.result = saveInPlace(*asset, options);
    all.after = readFile(path);
    for (const Finding& finding : all.result.plan.findings())
        all.report += std::string(finding.id) + ": " + finding.message + "\n";
    const auto entries = std::distance(std::filesystem::directory_iterator(folder.path()), {});
    EXPECT_EQ(entries, 1) << "nothing is left beside the movie";
    return all;
}

Bytes part(const Bytes& bytes, std::size_t from, std::size_t length) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(from + length)};
}

// MARK: The ways of saving

TEST(SafeSave, WithoutAnEditTouchesNothing) {
    const Saved all = saved(join({kFileType, movie(8), kMedia}), leaveAlone);
    EXPECT_EQ(all.result.outcome, SaveResult::Outcome::NothingToDo);
    EXPECT_EQ(all.result.plan.way(), SavePlan::Way::Nothing);
    EXPECT_EQ(all.after, all.before);
}

TEST(SafeSave, PatchesTheBytesOfAnEditWhereTheyLie) {
    const Bytes bytes = join({kFileType, movie(8), kMedia});
    const Saved all = saved(bytes, setTimeScale);
    EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved);
    EXPECT_EQ(all.result.plan.way(), SavePlan::Way::Patch);
    Bytes expected = bytes;
    std::ranges::copy(u32(90000), expected.begin() + 20 + 8 + 20);
    EXPECT_EQ(all.after, expected);
    // 600 is 00 00 02 58, 90000 is 00 01 5F 90: one run of three bytes.
    ASSERT_EQ(all.result.plan.change().writes.size(), 1u);
    EXPECT_EQ(all.result.plan.change().writes[0].range(), (FileRange{49, 3}));
}

TEST(SafeSave, AMovieThatShrinksLeavesFreeSpaceInItsPlace) {
    const Saved all = saved(join({kFileType, movie(32), kMedia}), shrink);
    EXPECT_EQ(all.result.plan.way(), SavePlan::Way::InOldPlace);
    EXPECT_EQ(part(all.after, 20, 116), atom("moov"_os, {header()}));
    EXPECT_EQ(part(all.after, 136, 8), join({u32(40), text("free")}));
    EXPECT_EQ(part(all.after, 176, 108), kMedia);
    EXPECT_EQ(all.after.size(), all.before.size());
}

TEST(SafeSave, AMovieThatGrowsUsesTheFreeSpaceBehindIt) {
    const Bytes space = atom("free"_os, {zeros(100)});
    const Saved all = saved(join({kFileType, movie(8), space, kMedia}), grow(40));
    EXPECT_EQ(all.result.plan.way(), SavePlan::Way::InOldPlace);
    EXPECT_EQ(part(all.after, 20 + 132 + 40, 8), join({u32(68), text("free")}));
    EXPECT_EQ(part(all.after, 20 + 132 + 108, 108), kMedia);
}

TEST(SafeSave, AMovieMayFillTheFreeSpaceBehindItToTheLastByte) {
    const Bytes space = atom("free"_os, {zeros(32)});
    const Saved all = saved(join({kFileType, movie(8), space, kMedia}), grow(40));
    EXPECT_EQ(all.result.plan.way(), SavePlan::Way::InOldPlace);
    EXPECT_EQ(all.after.size(), all.before.size());
    EXPECT_EQ(part(all.after, 20 + 132 + 40, 108), kMedia);
}

TEST(SafeSave, AMovieThatGrowsUsesTheFreeSpaceInFrontOfIt) {
    const Bytes space = atom("free"_os, {zeros(92)});
    const Saved all = saved(join({kFileType, space, movie(8), kMedia}), grow(40));
    EXPECT_EQ(all.result.plan.way(), SavePlan::Way::InOldPlace);
    EXPECT_EQ(part(all.after, 20, 8), join({u32(172), text("moov")}));
    EXPECT_EQ(part(all.after, 20 + 172, 8), join({u32(60), text("free")}));
}

TEST(SafeSave, ALastMovieGrowsAndShrinksWithTheFile) {
    const Bytes bytes = join({kFileType, kMedia, movie(32)});
    const Saved grown = saved(bytes, grow(40));
    EXPECT_EQ(grown.result.plan.way(), SavePlan::Way::InOldPlace);
    EXPECT_EQ(grown.after.size(), bytes.size() + 40);
    const Saved shrunk = saved(bytes, shrink);
    EXPECT_EQ(shrunk.after, join({kFileType, kMedia, atom("moov"_os, {header()})}));
}

TEST(SafeSave, AMovieWithoutRoomMovesBehindTheMediaAndSaysSo) {
    const Saved all = saved(join({kFileType, movie(8), kMedia}), grow(40));
    EXPECT_EQ(all.result.plan.way(), SavePlan::Way::Move);
    EXPECT_TRUE(all.has("movie-no-longer-first")) << all.report;
    EXPECT_TRUE(all.result.plan.change().flip);
    EXPECT_EQ(part(all.after, 20, 8), join({u32(132), text("free")}));
    EXPECT_EQ(part(all.after, 20 + 8, 124), part(all.before, 20 + 8, 124));
    EXPECT_EQ(part(all.after, 20 + 132 + 108, 8), join({u32(172), text("moov")}));
    EXPECT_EQ(all.after.size(), all.before.size() + 172);
}

TEST(SafeSave, OpenEndedMediaGetsItsSizeBeforeAMovieIsWrittenBehindIt) {
    const Bytes open = atomClaiming(0, "mdat"_os, {Bytes(100, 0xDA)});
    const Saved all = saved(join({kFileType, movie(8), open}), grow(40));
    EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
    EXPECT_EQ(part(all.after, 152, 108), kMedia);
    EXPECT_EQ(part(all.after, 260, 8), join({u32(172), text("moov")}));
}

TEST(SafeSave, EditsOfTheFileTypeAreSavedToo) {
    const Bytes bytes = join({kFileType, movie(8), kMedia});
    const Saved all = saved(bytes, [](VexQTAsset& asset) {
        dynamic_cast<VexQTftypAtom&>(*asset.rootAtoms()[0]).setMajorBrand("mp42"_os);
    });
    Bytes expected = bytes;
    std::ranges::copy(text("mp42"), expected.begin() + 8);
    EXPECT_EQ(all.after, expected);
}

TEST(SafeSave, AFileTypeThatDoesNotFitIsRefused) {
    const Saved all = saved(join({kFileType, movie(8), kMedia}), [](VexQTAsset& asset) {
        dynamic_cast<VexQTftypAtom&>(*asset.rootAtoms()[0]).compatibleBrands().push_back("isom"_os);
    });
    EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Refused);
    EXPECT_TRUE(all.has("no-room"));
    EXPECT_EQ(all.after, all.before);
}

TEST(SafeSave, ARemovedRootAtomBecomesFreeSpace) {
    const Bytes user = atom("uuid"_os, {Bytes(20, 0x33)});
    const Saved all = saved(join({kFileType, user, movie(8), kMedia}), [](VexQTAsset& asset) {
        asset.rootAtoms().erase(asset.rootAtoms().begin() + 1);
    });
    Bytes expected = all.before;
    std::ranges::copy(text("free"), expected.begin() + 24);
    EXPECT_EQ(all.after, expected);
}

TEST(SafeSave, AMovieWithAnExtendedSizeKeepsItWhenPatchedAndWhenMoved) {
    const Bytes inner = join({header(), atom("wide"_os, {u32(1)})});
    const Bytes extended = extendedAtomClaiming(16 + inner.size(), "moov"_os, {inner});
    const Saved patched = saved(join({kFileType, extended, kMedia}), setTimeScale);
    EXPECT_EQ(patched.result.plan.way(), SavePlan::Way::Patch);
    Bytes expected = patched.before;
    std::ranges::copy(u32(90000), expected.begin() + 20 + 16 + 20);
    EXPECT_EQ(patched.after, expected);

    const Saved moved = saved(join({kFileType, extended, kMedia}), grow(40));
    EXPECT_EQ(moved.result.outcome, SaveResult::Outcome::Saved) << moved.report;
    EXPECT_EQ(part(moved.after, 24, 4), text("free"));
    EXPECT_EQ(part(moved.after, 20 + extended.size() + 108, 16),
              join({u32(1), text("moov"), u64(extended.size() + 40)}));
}

TEST(SafeSave, AFragmentedMovieIsNotMovedBehindItsFragments) {
    const Bytes segment = atom("moof"_os, {atom("mfhd"_os, {u32(1), u32(1)})});
    const Bytes bytes = join({kFileType, movie(8), segment, kMedia});
    const Saved refused = saved(bytes, grow(40));
    EXPECT_EQ(refused.result.outcome, SaveResult::Outcome::Refused);
    EXPECT_TRUE(refused.has("behind-fragments"));
    EXPECT_EQ(refused.after, bytes);
    const Saved forced = saved(bytes, grow(40), {.force = true});
    EXPECT_EQ(forced.result.outcome, SaveResult::Outcome::Saved);
    const Saved patched = saved(bytes, setTimeScale);
    EXPECT_EQ(patched.result.outcome, SaveResult::Outcome::Saved);
    EXPECT_FALSE(patched.has("behind-fragments"));
}

TEST(SafeSave, AFileThatChangedSinceIsLeftAlone) {
    const TemporaryFolder folder;
    const auto path = folder / "movie.mov";
    writeFile(path, join({kFileType, movie(8), kMedia}));
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(path, error);
    setTimeScale(*asset);
    const Bytes other = join({kFileType, movie(9), kMedia});
    writeFile(path, other);
    const SaveResult result = saveInPlace(*asset);
    EXPECT_EQ(result.outcome, SaveResult::Outcome::Failed);
    ASSERT_TRUE(result.failure);
    EXPECT_EQ(result.failure->reason, SaveFailure::Reason::Changed);
    EXPECT_EQ(readFile(path), other);
}

TEST(SafeSave, SavingTwiceNeedsReadingInBetween) {
    const TemporaryFolder folder;
    const auto path = folder / "movie.mov";
    writeFile(path, join({kFileType, movie(8), kMedia}));
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(path, error);
    setTimeScale(*asset);
    ASSERT_EQ(saveInPlace(*asset).outcome, SaveResult::Outcome::Saved);
    EXPECT_EQ(saveInPlace(*asset).outcome, SaveResult::Outcome::Failed);
    const auto again = VexQTAsset::initWithURL(path, error);
    EXPECT_EQ(again->valueForKeyPath("moov.mvhd.timeScale"), Value(90000));
    EXPECT_EQ(saveInPlace(*again).outcome, SaveResult::Outcome::NothingToDo);
}

// MARK: Exact saving and its findings

TEST(ExactSave, LeavesTheBytesOfWritingInPlace) {
    const Bytes layouts[] = {
        join({kFileType, movie(8), kMedia}),
        join({kFileType, kMedia, movie(8)}),
        join({kFileType, kMedia, movie(8), atom("uuid"_os, {zeros(300)})}),
        join({kFileType, atom("free"_os, {zeros(9)}), movie(8), kMedia, kMedia}),
        join({kFileType, movie(8)}),
        join({kFileType, movie(8), movie(20), kMedia}),
    };
    for (const Bytes& layout : layouts) {
        SCOPED_TRACE(&layout - layouts);
        const TemporaryFolder folder;
        writeFile(folder / "a.mov", layout);
        std::error_code error;
        const auto asset = VexQTAsset::initWithURL(folder / "a.mov", error);
        setTimeScale(*asset);
        ASSERT_TRUE(asset->writeInPlaceWithError(error));
        const Saved all = saved(layout, setTimeScale, {.form = SaveForm::Exact, .force = true});
        EXPECT_EQ(all.after, readFile(folder / "a.mov"));
        EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
    }
}

struct FindingCase {
    std::string id;
    Severity severity;
    Bytes with, without;
};

std::vector<FindingCase> findingCases() {
    const Bytes plain = join({kFileType, kMedia, movie(8)});
    const Bytes profile = atom("trak"_os, {atom("prfl"_os, {u32(9)}), atom("abcd"_os, {u32(1)})});
    Bytes reserved = header();
    reserved[40] = 0xEE;
    const Bytes inner = join({header(), atom("wide"_os, {u32(1)})});
    return {
        {"movie-not-written", Severity::Destroys, join({kFileType, movie(8)}), plain},
        {"movie-header-64bit", Severity::Destroys,
         join({kFileType, extendedAtomClaiming(16 + inner.size(), "moov"_os, {inner}), kMedia}),
         plain},
        {"overwrites-atom", Severity::Destroys,
         join({kFileType, movie(8), kMedia, atom("uuid"_os, {zeros(300)})}), plain},
        {"stale-bytes", Severity::Changes,
         join({kFileType, movie(8), kMedia, atom("uuid"_os, {zeros(300)})}), plain},
        {"media-past-end", Severity::Changes,
         join({kFileType, movie(8), atomClaiming(500, "mdat"_os, {zeros(100)})}), plain},
        {"movie-cut-short", Severity::Destroys,
         join({kFileType, kMedia, atomClaiming(500, "moov"_os, {header()})}), plain},
        {"several-movies", Severity::Destroys, join({kFileType, movie(8), movie(8), kMedia}),
         plain},
        {"behind-fragments", Severity::Destroys,
         join({kFileType, movie(8), atom("moof"_os, {atom("mfhd"_os, {u32(1)})}), kMedia}), plain},
        {"movie-no-longer-first", Severity::Changes, join({kFileType, movie(8), kMedia}), plain},
        {"damaged", Severity::Changes,
         join({kFileType, kMedia,
               atom("moov"_os, {header(), atomClaiming(99, "wide"_os, {u32(1)})})}),
         plain},
        {"atom-changes", Severity::Changes, join({kFileType, kMedia, atom("moov"_os, {reserved})}),
         plain},
        {"atom-dropped", Severity::Changes, join({kFileType, kMedia, atom("moov"_os, {profile})}),
         plain},
        {"size-disagrees", Severity::Changes,
         join({kFileType, kMedia, atom("moov"_os, {atomClaiming(0, "wide"_os, {u32(1)})})}), plain},
    };
}

TEST(ExactSave, TellsWhatItWouldDoBeforehand) {
    for (const FindingCase& test : findingCases()) {
        SCOPED_TRACE(test.id);
        const Saved with = saved(test.with, leaveAlone, {.form = SaveForm::Exact});
        EXPECT_TRUE(with.has(test.id)) << with.report;
        for (const Finding& finding : with.result.plan.findings()) {
            if (finding.id == test.id) {
                EXPECT_EQ(finding.severity, test.severity);
            }
        }
        if (test.severity == Severity::Destroys) {
            EXPECT_EQ(with.result.outcome, SaveResult::Outcome::Refused);
            EXPECT_EQ(with.after, with.before);
        }
        const Saved without = saved(test.without, leaveAlone, {.form = SaveForm::Exact});
        EXPECT_FALSE(without.has(test.id)) << without.report;
    }
}

TEST(ExactSave, TellsEditsFromChangesByThemselves) {
    const Saved all =
        saved(join({kFileType, kMedia, movie(8)}), setTimeScale, {.form = SaveForm::Exact});
    ASSERT_EQ(all.result.plan.findings().size(), 1u) << all.report;
    EXPECT_EQ(all.result.plan.findings()[0].severity, Severity::Note);
    EXPECT_EQ(all.result.plan.findings()[0].path, "moov.mvhd");
    EXPECT_EQ(all.result.plan.findings()[0].message,
              "'timeScale' was edited, from 00 02 58 to 01 5F 90");
}

// MARK: Copies

TEST(SaveCopy, HoldsTheEditAndLeavesTheMovieAlone) {
    const TemporaryFolder folder;
    const Bytes bytes = join({kFileType, movie(8), kMedia});
    writeFile(folder / "a.mov", bytes);
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(folder / "a.mov", error);
    setTimeScale(*asset);
    EXPECT_EQ(saveCopy(*asset, folder / "b.mov").outcome, SaveResult::Outcome::Saved);
    EXPECT_EQ(readFile(folder / "a.mov"), bytes);
    Bytes expected = bytes;
    std::ranges::copy(u32(90000), expected.begin() + 48);
    EXPECT_EQ(readFile(folder / "b.mov"), expected);
}

TEST(SaveCopy, RefusesTheMovieItselfUnderAnyName) {
    const TemporaryFolder folder;
    const Bytes bytes = join({kFileType, movie(8), kMedia});
    writeFile(folder / "a.mov", bytes);
    std::filesystem::create_hard_link(folder / "a.mov", folder / "hard.mov");
    std::filesystem::create_symlink("a.mov", folder / "soft.mov");
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(folder / "a.mov", error);
    setTimeScale(*asset);
    for (const char* name : {"a.mov", "hard.mov", "soft.mov", "./a.mov"})
        EXPECT_EQ(saveCopy(*asset, folder / name).outcome, SaveResult::Outcome::Failed) << name;
    EXPECT_EQ(readFile(folder / "a.mov"), bytes);
}

TEST(SaveCopy, LeavesNothingBehindWhenItIsRefused) {
    const TemporaryFolder folder;
    writeFile(folder / "a.mov",
              join({kFileType, movie(8), atom("moof"_os, {atom("mfhd"_os, {u32(1)})}), kMedia}));
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(folder / "a.mov", error);
    grow(40)(*asset);
    EXPECT_EQ(saveCopy(*asset, folder / "b.mov").outcome, SaveResult::Outcome::Refused);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

// MARK: Many layouts

/// Any sequence of root atoms with a movie among them, and any edit.
class Layouts {
public:
    explicit Layouts(unsigned seed) : random_(seed) {}

    Bytes next() {
        std::vector<Bytes> roots = {movie(number(40))};
        for (std::size_t i = number(6); i > 0; --i) {
            const OSType types[] = {"mdat"_os, "free"_os, "skip"_os, "uuid"_os, "wide"_os};
            const Bytes root =
                atom(types[number(4)], {Bytes(number(60), static_cast<std::uint8_t>(i))});
            roots.insert(roots.begin() + static_cast<std::ptrdiff_t>(number(roots.size())), root);
        }
        if (number(3) > 0) roots.insert(roots.begin(), kFileType);
        Bytes all;
        for (const Bytes& root : roots) all.insert(all.end(), root.begin(), root.end());
        if (number(9) == 0) all.insert(all.end(), number(7), 0x99);
        return all;
    }
    Editing nextEdit() {
        switch (number(4)) {
            case 0:
                return setTimeScale;
            case 1:
                return shrink;
            case 2:
                return leaveAlone;
            default:
                return grow(9 + number(80));
        }
    }

private:
    std::size_t number(std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random_);
    }

    std::mt19937 random_;
};

TEST(SafeSave, DoesAsItWasPlannedInTwoThousandLayouts) {
    constexpr unsigned kLayouts = 2000;
    std::array<int, 4> ways{};
    for (unsigned seed = 0; seed < kLayouts; ++seed) {
        SCOPED_TRACE(seed);
        Layouts layouts(seed);
        const Bytes bytes = layouts.next();
        const Editing edit = layouts.nextEdit();
        const Saved all = saved(bytes, edit);
        const SavePlan& plan = all.result.plan;
        ASSERT_TRUE(all.result.outcome == SaveResult::Outcome::Saved ||
                    all.result.outcome == SaveResult::Outcome::NothingToDo)
            << all.report << (all.result.failure ? all.result.failure->what : "");
        ++ways[static_cast<std::size_t>(plan.way())];

        // Just the planned ranges differ, and the media is where it was.
        ASSERT_EQ(all.after.size(), plan.change().newLength);
        Bytes expected = all.before;
        expected.resize(all.after.size());
        for (const FileWrite& write : plan.change().writes)
            std::ranges::copy(write.bytes.view(),
                              expected.begin() + static_cast<std::ptrdiff_t>(write.offset));
        if (const auto& flip = plan.change().flip)
            std::ranges::copy(flip->bytes.view(),
                              expected.begin() + static_cast<std::ptrdiff_t>(flip->offset));
        ASSERT_EQ(all.after, expected);
        for (const RootExtent& root : plan.layout().atoms) {
            if (root.type != "mdat"_os && root.type != "uuid"_os) continue;
            ASSERT_EQ(part(all.after, root.start, root.length),
                      part(all.before, root.start, root.length));
        }

        // What is read again is what was meant.
        const auto meant = VexQTAsset::initWithData(bytes, {.tolerant = true});
        if (meant->moovAtom() == nullptr) continue;  // The memory reader's last bare header.
        edit(*meant);
        const auto again = VexQTAsset::initWithData(all.after, {.tolerant = true});
        ASSERT_NE(again->moovAtom(), nullptr);
        ASSERT_EQ(again->moovAtom()->atomData(), meant->moovAtom()->atomData());
    }
    std::cout << "nothing " << ways[0] << ", patch " << ways[1] << ", in the old place " << ways[2]
              << ", move " << ways[3] << '\n';
}

}  // namespace
}  // namespace vexqt
