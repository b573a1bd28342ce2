// Saving real files: which bytes change, and what is told beforehand.
#include "vexqt/saving/SafeSave.h"

#include <gtest/gtest.h>

#include <random>

#include "saving/saves.h"
#include "vexqt/atoms/structure/VexQTftypAtom.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/whole_files.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

// MARK: The ways of saving

TEST(SafeSave, HasANameForEachOfItsWays) {
    using Way = SavePlan::Way;
    EXPECT_EQ(textOf(Way::Nothing), "nothing");
    EXPECT_EQ(textOf(Way::Patch), "patch");
    EXPECT_EQ(textOf(Way::InOldPlace), "in the old place");
    EXPECT_EQ(textOf(Way::Move), "move");
}

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

/// What a move leaves that was killed before it counted: players take the first movie they meet.
TEST(SafeSave, AMovieThatMovesMakesFreeSpaceOfOtherMovies) {
    const Bytes other = movie(9);
    for (const bool isCut : {false, true}) {
        SCOPED_TRACE(isCut);
        Bytes before = join({kFileType, movie(8), kMedia, other});
        if (isCut) before.resize(before.size() - 3);
        const Saved all = saved(before, grow(40));
        EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
        EXPECT_EQ(all.result.plan.way(), SavePlan::Way::Move);
        EXPECT_TRUE(all.has("several-movies"));

        const auto asset = VexQTAsset::initWithData(all.after);
        ASSERT_EQ(asset->rootAtoms().size(), 5U);
        EXPECT_EQ(asset->rootAtoms()[1]->atomType(), "free"_os);
        EXPECT_EQ(asset->rootAtoms()[3]->atomType(), "free"_os);
        EXPECT_EQ(asset->moovAtom(), asset->rootAtoms()[4].get());
        EXPECT_EQ(asset->moovAtom()->childWithType("wide"_os)->extent().length, 16U);
        EXPECT_NE(asset->moovAtom()->childWithType("skip"_os), nullptr);

        // Of the other movie nothing but its type is another one, and the size that claimed too
        // much.
        const std::size_t start = before.size() - other.size() + (isCut ? 3 : 0);
        EXPECT_EQ(part(all.after, start + 8, before.size() - start - 8),
                  part(before, start + 8, before.size() - start - 8));
    }
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

TEST(SafeSave, OtherRootAtomsWithAnExtendedSizeStayAsTheyAre) {
    const Bytes user = extendedAtomClaiming(28, "uuid"_os, {text("some payload")});
    const Bytes bytes = join({kFileType, user, kMedia, movie(8)});
    EXPECT_EQ(saved(bytes, leaveAlone).result.outcome, SaveResult::Outcome::NothingToDo);
    const Saved grown = saved(bytes, grow(40));
    EXPECT_EQ(part(grown.after, 20, 28), user);
    EXPECT_EQ(grown.result.plan.newAtoms().size(), 1u);

    // Such an atom is not known by the type that the file has. Whoever sets one changes that, and
    // is told that it will not be seen.
    const auto rename = [](VexQTAsset& asset) { asset.rootAtoms()[1]->setAtomType("abcd"_os); };
    EXPECT_EQ(saved(bytes, rename).result.outcome, SaveResult::Outcome::Refused);
    Bytes expected = bytes;
    std::ranges::copy(text("abcd"), expected.begin() + 24);
    EXPECT_EQ(saved(bytes, rename, {.force = true}).after, expected);
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

TEST(SafeSave, OfAMovieThatWasNotReadFromAFileFails) {
    const TemporaryFolder folder;
    const auto asset = VexQTAsset::initWithData(join({kFileType, movie(8), kMedia}));
    setTimeScale(*asset);
    for (const SaveResult& result : {saveInPlace(*asset), saveCopy(*asset, folder / "b.mov")}) {
        EXPECT_EQ(result.outcome, SaveResult::Outcome::Failed);
        ASSERT_TRUE(result.failure);
        EXPECT_EQ(result.failure->what, "the movie was not read from a file");
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

// MARK: Root atoms that were not in the file

Editing add(std::function<std::unique_ptr<VexQTAtom>()> root) {
    return [=](VexQTAsset& asset) { asset.rootAtoms().push_back(root()); };
}
std::unique_ptr<VexQTAtom> newMovie() {
    auto made = std::make_unique<VexQTmoovAtom>();
    auto inside = std::make_unique<VexQTmvhdAtom>();
    inside->setTimeScale(77);
    made->addChild(std::move(inside));
    return made;
}

TEST(SafeSave, ANewRootAtomIsWrittenBehindTheLastAtom) {
    const Bytes made = newMovie()->atomData();
    const Bytes fileType = VexQTftypAtom().atomData();
    const auto newFileType = [] { return std::make_unique<VexQTftypAtom>(); };
    const Bytes cut = atomClaiming(500, "mdat"_os, {zeros(100)});
    const Bytes plain = join({kFileType, movie(8), kMedia});
    const struct {
        std::string_view what;
        Bytes before;
        Editing edit;
        Bytes after;
    } kCases[] = {
        {"behind media", join({kFileType, kMedia}), add(newMovie), join({kFileType, kMedia, made})},
        {"behind nothing", {}, add(newMovie), made},
        {"behind media cut short", cut, add(newMovie), join({atom("mdat"_os, {zeros(100)}), made})},
        {"a file type", join({kMedia, movie(8)}), add(newFileType),
         join({kMedia, movie(8), fileType})},
        {"another movie", plain, add(newMovie), join({plain, made})},
    };
    for (const auto& test : kCases) {
        SCOPED_TRACE(test.what);
        const Saved all = saved(test.before, test.edit);
        EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
        EXPECT_FALSE(all.has("movie-cut-short"));
        EXPECT_FALSE(all.has("movie-no-longer-first"));
        EXPECT_EQ(all.after, test.after);
    }
}

TEST(SafeSave, ARootAtomMadeFromBytesIsNew) {
    // Where it says that it lies, another atom does.
    const Bytes made = atom("abcd"_os, {Bytes(13, 0x33)});
    const Bytes before = join({kFileType, movie(8), kMedia});
    for (const std::uint64_t offset : {std::uint64_t{0}, std::uint64_t{5}}) {
        const Saved all =
            saved(before, add([&] { return VexQTAtom::initWithData(made, nullptr, offset); }));
        EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
        EXPECT_EQ(all.after, join({before, made}));

        const Bytes media = join({kFileType, kMedia});
        const Saved first = saved(
            media, add([&] { return VexQTmoovAtom::initWithData(movie(8), nullptr, offset); }));
        EXPECT_EQ(first.result.outcome, SaveResult::Outcome::Saved) << first.report;
        EXPECT_EQ(first.after, join({media, movie(8)}));
    }
}

TEST(SafeSave, BytesThatWereNotReadStayWhereTheyAre) {
    constexpr std::size_t kTooLong = (std::size_t{64} << 20) + 1;
    const Bytes unread = atom("abcd"_os, {Bytes(kTooLong, 0x44)});
    const std::size_t start = kFileType.size() + movie(8).size();
    const Bytes before = join({kFileType, movie(8), unread, kMedia});
    // A failure should not print 64 MiB.
    const auto isOnly = [&](const Saved& all, const Bytes& after) {
        return all.result.outcome == SaveResult::Outcome::Saved && all.after == after;
    };
    const Saved patched = saved(before, setTimeScale);
    Bytes expected = before;
    std::ranges::copy(u32(90000),
                      expected.begin() + static_cast<std::ptrdiff_t>(kFileType.size() + 8 + 20));
    EXPECT_TRUE(isOnly(patched, expected)) << patched.report;

    const Saved moved = saved(before, grow(40));
    EXPECT_EQ(moved.result.plan.way(), SavePlan::Way::Move);
    EXPECT_TRUE(part(moved.after, start, unread.size()) == unread);
    EXPECT_EQ(VexQTAsset::initWithData(moved.after)->moovAtom()->extent().start, before.size());

    const Saved renamed =
        saved(before, [](VexQTAsset& asset) { asset.rootAtoms()[2]->setAtomType("efgh"_os); });
    expected = before;
    std::ranges::copy(text("efgh"), expected.begin() + static_cast<std::ptrdiff_t>(start + 4));
    EXPECT_TRUE(isOnly(renamed, expected)) << renamed.report;
    EXPECT_TRUE(renamed.has("atom-changes"));

    const Saved removed = saved(
        before, [](VexQTAsset& asset) { asset.rootAtoms().erase(asset.rootAtoms().begin() + 2); });
    std::ranges::copy(text("free"), expected.begin() + static_cast<std::ptrdiff_t>(start + 4));
    EXPECT_TRUE(isOnly(removed, expected)) << removed.report;
}

TEST(SafeSave, BytesThatWereNotReadMustBeWhereTheyWere) {
    constexpr std::size_t kTooLong = std::size_t{64} << 20;
    const auto movieWith = [](const Bytes& media, std::uint32_t unread) {
        return join(
            {kFileType, movie(8), media, atomClaiming(unread, "abcd"_os, {zeros(kTooLong)})});
    };
    const Bytes before = movieWith(kMedia, kTooLong + 8);
    const auto asset = VexQTAsset::initWithData(before, {.tolerant = true});
    ASSERT_TRUE(asset->rootAtoms()[3]->isLeftInFile());
    setTimeScale(*asset);
    const auto report = [&](const Bytes& now) {
        MemoryFileSystem files;
        files.put("/movie.mov", now);
        std::error_code error;
        const auto file = files.openForReading("/movie.mov", error);
        const SavePlan plan = SavePlan::of(*asset, *file, SaveForm::Surgical);
        std::string ids;
        for (const Finding& finding : plan.findings()) ids += std::string(finding.id) + " ";
        return ids;
    };
    EXPECT_EQ(report(before), "atom-changes ");
    EXPECT_EQ(report(movieWith(kMedia, kTooLong)), "atom-changes file-changed ") << "it is shorter";
    EXPECT_EQ(report(movieWith(atomClaiming(116, "mdat"_os, {Bytes(100, 0xDA)}), kTooLong + 8)),
              "atom-changes file-changed ")
        << "another atom has swallowed its header";
}

TEST(SafeSave, ANewMovieStaysBehindTheFirstOneThatMoves) {
    const Bytes before = join({kFileType, movie(8), kMedia});
    const Saved all = saved(before, [](VexQTAsset& asset) {
        grow(40)(asset);
        add(newMovie)(asset);
    });
    EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
    const auto again = VexQTAsset::initWithData(all.after);
    ASSERT_EQ(again->rootAtoms().size(), 5U);
    EXPECT_EQ(again->rootAtoms()[1]->atomType(), "free"_os);
    EXPECT_EQ(again->valueForKeyPath("moov.mvhd.timeScale"), Value(600));
    EXPECT_EQ(again->rootAtoms()[4]->atomData(), newMovie()->atomData());
}

TEST(SafeSave, TwoMoviesThatMoveAreBothFreedWhereTheyLay) {
    const Bytes before = join({kFileType, movie(8), movie(9), kMedia});
    const auto growBoth = [](VexQTAsset& asset) {
        for (const std::size_t root : {1, 2})
            asset.rootAtoms()[root]->addChild(
                VexQTAtom::initWithData(atom("skip"_os, {Bytes(400, 0x22)}), nullptr, 0));
    };
    EXPECT_EQ(saved(before, growBoth).result.outcome, SaveResult::Outcome::Refused);
    const Saved all = saved(before, growBoth, {.force = true});
    EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
    const auto again = VexQTAsset::initWithData(all.after);
    ASSERT_EQ(again->rootAtoms().size(), 6U);
    EXPECT_EQ(again->rootAtoms()[1]->atomType(), "free"_os);
    EXPECT_EQ(again->rootAtoms()[2]->atomType(), "free"_os);
    EXPECT_EQ(again->rootAtoms()[4]->childWithType("wide"_os)->extent().length, 16U);
    EXPECT_EQ(again->rootAtoms()[5]->childWithType("wide"_os)->extent().length, 17U);
}

TEST(SafeSave, TheTypeOfAShortRootAtomIsPatched) {
    const Bytes before = join({kFileType, atom("abcd"_os, {u32(1)}), kMedia, movie(8)});
    const Saved all =
        saved(before, [](VexQTAsset& asset) { asset.rootAtoms()[1]->setAtomType("efgh"_os); });
    EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
    EXPECT_EQ(all.after, join({kFileType, atom("efgh"_os, {u32(1)}), kMedia, movie(8)}));
}

// MARK: Exact saving and its findings

TEST(ExactSave, WithoutAMovieHasNothingToDo) {
    const SaveOptions exact = {.form = SaveForm::Exact};
    const Saved none = saved(join({kFileType, kMedia}), leaveAlone, exact);
    EXPECT_EQ(none.result.outcome, SaveResult::Outcome::NothingToDo) << none.report;
    EXPECT_EQ(none.result.plan.way(), SavePlan::Way::Nothing);
    const Saved renamed = saved(
        join({kFileType, kMedia, movie(8)}),
        [](VexQTAsset& asset) { asset.rootAtoms()[2]->setAtomType("abcd"_os); }, exact);
    EXPECT_EQ(renamed.result.outcome, SaveResult::Outcome::NothingToDo) << renamed.report;
    EXPECT_EQ(renamed.after, renamed.before);
}

TEST(ExactSave, LeavesTheBytesOfWritingInPlace) {
    const Bytes layouts[] = {
        join({kFileType, movie(8), kMedia}),
        join({kFileType, kMedia, movie(8)}),
        join({kFileType, kMedia, movie(8), atom("uuid"_os, {zeros(300)})}),
        join({kFileType, atom("free"_os, {zeros(9)}), movie(8), kMedia, kMedia}),
        join({kFileType, movie(8)}),
        join({kFileType, movie(8), movie(20), kMedia}),
        join({kFileType, movie(8), atomClaiming(5000, "mdat"_os, {Bytes(100, 0xDA)})}),
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

        writeFile(folder / "a.mov", layout);
        const auto again = VexQTAsset::initWithURL(folder / "a.mov", error);
        setTimeScale(*again);
        const SaveOptions options = {.form = SaveForm::Exact, .force = true};
        EXPECT_EQ(saveCopy(*again, folder / "b.mov", options).outcome, SaveResult::Outcome::Saved);
        EXPECT_EQ(readFile(folder / "b.mov"), all.after);
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

TEST(SaveCopy, WithoutAnEditIsTheMovie) {
    const TemporaryFolder folder;
    const Bytes bytes = join({kFileType, movie(8), kMedia});
    writeFile(folder / "a.mov", bytes);
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(folder / "a.mov", error);
    EXPECT_EQ(saveCopy(*asset, folder / "b.mov").outcome, SaveResult::Outcome::Saved);
    EXPECT_EQ(readFile(folder / "b.mov"), bytes);
    const auto made = VexQTAsset::initWithData(bytes);
    EXPECT_EQ(saveCopy(*made, bytes, folder / "c.mov").outcome, SaveResult::Outcome::Saved);
    EXPECT_EQ(readFile(folder / "c.mov"), bytes);
}

TEST(SaveCopy, OfOtherBytesThanWereReadIsRefused) {
    const TemporaryFolder folder;
    const Bytes bytes = join({kFileType, kMedia, movie(8)});
    const auto asset = VexQTAsset::initWithData(bytes);
    setTimeScale(*asset);
    for (const std::size_t length : {bytes.size() - 1, std::size_t{30}, std::size_t{0}}) {
        const SaveResult result =
            saveCopy(*asset, ByteView(bytes).first(length), folder / "b.mov", {.force = true});
        EXPECT_EQ(result.outcome, SaveResult::Outcome::Refused);
        EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    }
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
