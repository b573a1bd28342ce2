// What a save tells before it writes: for every finding a movie that has it and one that does not.
#include "saving/saves.h"
#include "vexqt/atoms/metadata/VexQTdataAtom.h"
#include "vexqt/atoms/metadata/VexQTkeysAtom.h"
#include "vexqt/atoms/structure/VexQTftypAtom.h"
#include "vexqt/platform/MemoryFileSystem.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

/// Sets a property of the atom that is found by these types below the movie.
Editing set(std::vector<OSType> path, Value value, std::string_view property) {
    return [=](VexQTAsset& asset) {
        VexQTAtom* atom = asset.moovAtom();
        for (const OSType type : path) atom = atom->childWithType(type);
        atom->setValueForKey(value, property);
    };
}
Editing addTo(OSType type, std::function<std::unique_ptr<VexQTAtom>()> child) {
    return [=](VexQTAsset& asset) { asset.moovAtom()->childWithType(type)->addChild(child()); };
}
std::unique_ptr<VexQTAtom> filler() {
    return VexQTAtom::initWithData(atom("skip"_os, {zeros(8)}), nullptr, 0);
}

/// A value of a kind that nothing says how to write, with something to be written or without.
Editing addMetadataValue(bool isEmpty) {
    return [=](VexQTAsset& asset) {
        auto value = std::make_unique<VexQTdataAtom>();
        value->setDataTypeString(std::string(VexQTDataAtomType_QTMetadata));
        if (!isEmpty) value->addChild(filler());
        asset.moovAtom()->addChild(std::move(value));
    };
}

const Bytes kPlain = join({kFileType, kMedia, movie(8)});
const Bytes kMovieFirst = join({kFileType, movie(8), kMedia});
const Bytes kFragment = atom("moof"_os, {atom("mfhd"_os, {u32(1), u32(1)})});
const Bytes kCutMedia = atomClaiming(500, "mdat"_os, {zeros(100)});
const Bytes kCutMovie = atomClaiming(500, "moov"_os, {header(), atom("wide"_os, {u32(1)})});

Bytes lastMovieOf(std::initializer_list<ByteView> children) {
    return join({kFileType, kMedia, atom("moov"_os, children)});
}
Bytes movieWithExtendedSize() {
    const Bytes inner = join({header(), atom("wide"_os, {u32(1)})});
    return extendedAtomClaiming(16 + inner.size(), "moov"_os, {inner});
}
/// Keyed metadata whose only key is that text in that many bytes.
Bytes movieWithKey(std::string_view key, std::size_t padding) {
    const Bytes entry = join({u32(static_cast<std::uint32_t>(8 + key.size() + padding)),
                              text("mdta"), text(key), zeros(padding)});
    return lastMovieOf({header(), atom("meta"_os, {atom("keys"_os, {u32(0), u32(1), entry})})});
}
Editing setNameSpaceOfKey() {
    return [](VexQTAsset& asset) {
        VexQTAtom& keys = *asset.moovAtom()->childWithType("meta"_os)->childWithType("keys"_os);
        dynamic_cast<VexQTkeysAtom&>(keys).keys()[0].setNameSpace("abcd"_os);
    };
}
/// User data with one text, whose language is English.
Bytes movieWithText(std::string_view words) {
    return lastMovieOf(
        {header(), atom("udta"_os, {atom(0xA96E616D, {u16(static_cast<std::uint16_t>(words.size())),
                                                      u16(0), text(words)})})});
}
Editing setText(std::string words) {
    return set({"udta"_os, 0xA96E616D}, std::move(words), "text");
}
/// A video track without anything but a sample description, with an extension atom in that.
Bytes movieWithVideo(std::uint16_t colorTable) {
    const Bytes entry = join({text("avc1"), zeros(6), u16(1), zeros(32 - 16), u16(320), u16(240),
                              u32(72 << 16), u32(72 << 16), u32(0), u16(1), zeros(32), u16(24),
                              u16(colorTable), atom("pasp"_os, {u32(1), u32(1)})});
    const Bytes description =
        atom("stsd"_os, {u32(0), u32(1), u32(static_cast<std::uint32_t>(entry.size() + 4)), entry});
    const Bytes handler = atom("hdlr"_os, {u32(0), text("mhlr"), text("vide"), zeros(12), u8(0)});
    return lastMovieOf(
        {header(),
         atom("trak"_os,
              {atom("mdia"_os, {handler, atom("minf"_os, {atom("stbl"_os, {description})})})})});
}
Editing setOfVideo(Value value, std::string_view property) {
    return set({"trak"_os, "mdia"_os, "minf"_os, "stbl"_os, "stsd"_os, "vide"_os}, std::move(value),
               property);
}

/// A header that a tolerant reading keeps as it is and a strict one fails at.
void addDamagedHeader(VexQTAsset& asset) {
    const Bytes damaged = lastMovieOf({atom("mvhd"_os, {Bytes(112, 0x64)})});
    const auto other = VexQTAsset::initWithData(damaged, {.tolerant = true});
    asset.moovAtom()->addChild(std::move(other->moovAtom()->children()[0]));
    other->moovAtom()->children().clear();
}

/// The first of two movies no longer fits where it lies; the second does.
void growBothMovies(VexQTAsset& asset) {
    grow(40)(asset);
    asset.rootAtoms()[2]->childWithType("mvhd"_os)->setValueForKey(1234, "timeScale");
}

struct FindingCase {
    std::string_view id;
    SaveForm form;
    Severity severity;
    std::string_view what;
    Bytes with;
    Editing editWith;
    Bytes without;
    Editing editWithout;
};

constexpr auto kNote = Severity::Note;
constexpr auto kChanges = Severity::Changes;
constexpr auto kDestroys = Severity::Destroys;

std::vector<FindingCase> surgicalCases() {
    constexpr auto kForm = SaveForm::Surgical;
    const Bytes twoMovies = join({kFileType, movie(8), movie(9), kMedia});
    return {
        {"atom-changes", kForm, kNote, "an edit", kPlain, setTimeScale, kPlain, leaveAlone},
        {"atom-changes", kForm, kNote, "a child that was added", kPlain, grow(16), kPlain,
         leaveAlone},
        {"atom-changes", kForm, kNote, "a root atom that was removed",
         join({kPlain, atom("uuid"_os)}), [](VexQTAsset& asset) { asset.rootAtoms().pop_back(); },
         kPlain, leaveAlone},
        {"atom-changes", kForm, kChanges, "an edit that takes the padding of a key with it",
         movieWithKey("title", 3), setNameSpaceOfKey(), movieWithKey("title", 0),
         setNameSpaceOfKey()},
        {"atom-refuses", kForm, kDestroys, "a value that has no form", kPlain,
         addMetadataValue(false), kPlain, addMetadataValue(true)},
        {"size-disagrees", kForm, kNote, "a size field that grows by what was added",
         lastMovieOf({header(), atomClaiming(99, "trak"_os, {atom("wide"_os)})}),
         addTo("trak"_os, filler), lastMovieOf({header(), atom("trak"_os, {atom("wide"_os)})}),
         addTo("trak"_os, filler)},
        {"unreadable-after", kForm, kDestroys, "a text too short for its class",
         movieWithText("words"), setText("abc"), movieWithText("words"), setText("abcd")},
        {"unreadable-after", kForm, kDestroys, "a colour table where extension atoms stand",
         movieWithVideo(0xFFFF), setOfVideo(0, "colorTableID"), movieWithVideo(0xFFFF),
         setOfVideo(8, "colorTableID")},
        {"unreadable-after", kForm, kDestroys, "a damaged atom of another movie", kPlain,
         addDamagedHeader, kPlain, grow(40)},
        {"unreadable-after", kForm, kDestroys, "a new movie with a damaged atom",
         join({kFileType, kMedia}),
         [](VexQTAsset& asset) {
             asset.rootAtoms().push_back(std::make_unique<VexQTmoovAtom>());
             addDamagedHeader(asset);
         },
         join({kFileType, kMedia}),
         [](VexQTAsset& asset) { asset.rootAtoms().push_back(std::make_unique<VexQTmoovAtom>()); }},
        {"overwrites-atom", kForm, kChanges, "bytes behind the last atom",
         join({kMovieFirst, text("junk!")}), grow(40), kMovieFirst, grow(40)},
        {"media-past-end", kForm, kChanges, "a movie that moves behind media cut short",
         join({kFileType, movie(8), kCutMedia}), grow(40), join({kFileType, movie(8), kCutMedia}),
         setTimeScale},
        {"movie-cut-short", kForm, kNote, "a movie that the file ends in",
         join({kFileType, kMedia, kCutMovie}), setTimeScale, kPlain, setTimeScale},
        {"several-movies", kForm, kNote, "two movies", twoMovies, setTimeScale, kMovieFirst,
         setTimeScale},
        {"several-movies", kForm, kChanges, "the first movie moves behind the second", twoMovies,
         grow(40), kMovieFirst, grow(40)},
        {"several-movies", kForm, kDestroys, "the first of two edited movies moves", twoMovies,
         growBothMovies, twoMovies, grow(40)},
        {"behind-fragments", kForm, kDestroys, "a fragmented movie that moves",
         join({kFileType, movie(8), kFragment, kMedia}), grow(40),
         join({kFileType, movie(8), kFragment, kMedia}), setTimeScale},
        {"behind-fragments", kForm, kDestroys, "a movie that moves behind its index",
         join({kFileType, movie(8), atom("sidx"_os, {zeros(24)}), kMedia}), grow(40), kMovieFirst,
         grow(40)},
        {"movie-no-longer-first", kForm, kChanges, "a movie that moves", kMovieFirst, grow(40),
         kMovieFirst, setTimeScale},
        {"damaged", kForm, kNote, "a child that reaches past the movie",
         lastMovieOf({header(), atomClaiming(99, "wide"_os, {u32(1)})}), leaveAlone, kPlain,
         leaveAlone},
        {"no-room", kForm, kDestroys, "a file type that grows", kMovieFirst,
         [](VexQTAsset& asset) {
             auto& fileType = dynamic_cast<VexQTftypAtom&>(*asset.rootAtoms()[0]);
             fileType.compatibleBrands().push_back(7);
         },
         kMovieFirst, setTimeScale},
        {"no-room", kForm, kDestroys, "a fragment that grows",
         join({kFileType, movie(8), kFragment, kMedia}),
         [](VexQTAsset& asset) { asset.rootAtoms()[2]->addChild(filler()); },
         join({kFileType, movie(8), kFragment, kMedia}), setTimeScale},
    };
}

std::vector<FindingCase> exactCases() {
    constexpr auto kForm = SaveForm::Exact;
    Bytes reserved = header();
    reserved[40] = 0xEE;
    const auto metadataValue = [](std::uint32_t kind) {
        const Bytes value =
            atom("data"_os, {u32(kind), u32(0), atom("meta"_os, {atom("wide"_os, {u32(1)})})});
        return lastMovieOf(
            {header(), atom("meta"_os, {atom("ilst"_os, {atom("abcd"_os, {value})})})});
    };
    const Bytes behindMedia = join({kFileType, movie(8), kMedia, atom("uuid"_os, {zeros(300)})});
    return {
        {"atom-changes", kForm, kNote, "an edit", kPlain, setTimeScale, kPlain, leaveAlone},
        {"atom-changes", kForm, kChanges, "reserved bytes", lastMovieOf({reserved}), leaveAlone,
         kPlain, leaveAlone},
        {"atom-dropped", kForm, kChanges, "a profile",
         lastMovieOf({atom("trak"_os, {atom("prfl"_os, {u32(9)}), atom("abcd"_os, {u32(1)})})}),
         leaveAlone, kPlain, leaveAlone},
        {"atom-refuses", kForm, kDestroys, "a value that is metadata", metadataValue(28),
         leaveAlone, metadataValue(1), leaveAlone},
        {"size-disagrees", kForm, kChanges, "a size of 0",
         lastMovieOf({header(), atomClaiming(0, "wide"_os, {u32(1)})}), leaveAlone, kPlain,
         leaveAlone},
        {"unreadable-after", kForm, kDestroys, "a header that no strict reading takes",
         lastMovieOf({atom("mvhd"_os, {zeros(112)})}), leaveAlone, lastMovieOf({header()}),
         leaveAlone},
        {"unreadable-after", kForm, kDestroys, "a text too short for its class",
         movieWithText("words"), setText("abc"), movieWithText("words"), setText("abcd")},
        {"unreadable-after", kForm, kDestroys, "a colour table where extension atoms stand",
         movieWithVideo(0xFFFF), setOfVideo(0, "colorTableID"), movieWithVideo(0xFFFF),
         setOfVideo(8, "colorTableID")},
        {"movie-not-written", kForm, kDestroys, "no media", join({kFileType, movie(8)}), leaveAlone,
         kPlain, leaveAlone},
        {"movie-not-written", kForm, kDestroys, "only media at offset 0", join({kMedia, movie(8)}),
         leaveAlone, kPlain, leaveAlone},
        {"movie-header-64bit", kForm, kDestroys, "an extended size",
         join({kFileType, movieWithExtendedSize(), kMedia}), leaveAlone, kPlain, leaveAlone},
        {"overwrites-atom", kForm, kDestroys, "an atom behind the media", behindMedia, leaveAlone,
         kPlain, leaveAlone},
        {"overwrites-atom", kForm, kChanges, "bytes behind the last atom",
         join({kMovieFirst, text("junk!")}), leaveAlone, kMovieFirst, leaveAlone},
        {"overwrites-atom", kForm, kDestroys, "an atom behind the media and no free space",
         behindMedia, leaveAlone,
         join({kFileType, movie(8), kMedia, atom("free"_os, {zeros(300)})}), leaveAlone},
        {"overwrites-atom", kForm, kChanges, "bytes behind a movie that does not shrink",
         join({kPlain, text("junk!")}), grow(16), join({kPlain, text("junk!")}), shrink},
        {"stale-bytes", kForm, kChanges, "a longer atom behind the media", behindMedia, leaveAlone,
         kPlain, leaveAlone},
        {"stale-bytes", kForm, kChanges, "a movie that shrinks", kPlain, shrink, kPlain,
         setTimeScale},
        {"stale-bytes", kForm, kChanges, "many bytes behind the last atom",
         join({kMovieFirst, u32(7), Bytes(300, 0x77)}), leaveAlone, kMovieFirst, leaveAlone},
        {"media-past-end", kForm, kChanges, "media cut short",
         join({kFileType, movie(8), kCutMedia}), leaveAlone, kPlain, leaveAlone},
        {"media-past-end", kForm, kDestroys, "media that reaches to the end of the file",
         join({kFileType, movie(8), atomClaiming(0, "mdat"_os, {Bytes(40, 0xDA)})}), leaveAlone,
         kPlain, leaveAlone},
        {"movie-cut-short", kForm, kDestroys, "a movie that the file ends in",
         join({kFileType, kMedia, kCutMovie}), leaveAlone, kPlain, leaveAlone},
        {"several-movies", kForm, kDestroys, "two movies",
         join({kFileType, movie(8), movie(8), kMedia}), leaveAlone, kPlain, leaveAlone},
        {"old-size-too-large", kForm, kDestroys, "a movie that claims five gigabytes",
         join({kFileType, kMedia,
               extendedAtomClaiming(std::uint64_t{5} << 30, "moov"_os, {header()})}),
         leaveAlone, kPlain, leaveAlone},
        {"behind-fragments", kForm, kDestroys, "a fragmented movie",
         join({kFileType, movie(8), kFragment, kMedia}), leaveAlone, kPlain, leaveAlone},
        {"behind-fragments", kForm, kDestroys, "a movie with an index",
         join({kFileType, movie(8), atom("sidx"_os, {zeros(24)}), kMedia}), leaveAlone, kPlain,
         leaveAlone},
        {"movie-no-longer-first", kForm, kChanges, "the movie first", kMovieFirst, leaveAlone,
         kPlain, leaveAlone},
        {"damaged", kForm, kChanges, "a child that reaches past the movie",
         lastMovieOf({header(), atomClaiming(99, "wide"_os, {u32(1)})}), leaveAlone, kPlain,
         leaveAlone},
    };
}

void check(const FindingCase& test) {
    SCOPED_TRACE(std::string(test.id) + ", " + std::string(textOf(test.severity)) + ": " +
                 std::string(test.what));
    const auto hasIt = [&](const Saved& all) {
        return std::ranges::any_of(all.result.plan.findings(), [&](const Finding& finding) {
            return finding.id == test.id && finding.severity == test.severity;
        });
    };
    const Saved with = saved(test.with, test.editWith, {.form = test.form});
    EXPECT_TRUE(hasIt(with)) << with.report;
    EXPECT_FALSE(with.result.failure) << with.result.failure->what;
    for (const Finding& finding : with.result.plan.findings())
        EXPECT_FALSE(finding.message.empty());
    if (test.severity == Severity::Destroys) {
        EXPECT_EQ(with.result.outcome, SaveResult::Outcome::Refused);
        EXPECT_EQ(with.after, with.before);
    }
    const Saved without = saved(test.without, test.editWithout, {.form = test.form});
    EXPECT_FALSE(hasIt(without)) << without.report;
    EXPECT_FALSE(without.result.failure) << without.result.failure->what;
}

TEST(Findings, OfASurgicalSaveAreToldBeforehand) {
    for (const FindingCase& test : surgicalCases()) check(test);
}

TEST(Findings, OfAnExactSaveAreToldBeforehand) {
    for (const FindingCase& test : exactCases()) check(test);
}

/// What an exact save of a movie would destroy or change is no matter to a surgical one, except for
/// what the movie itself does not allow.
TEST(Findings, OfAnExactSaveDoNotKeepAnEditFromBeingSavedSurgically) {
    for (const FindingCase& test : exactCases()) {
        SCOPED_TRACE(test.what);
        const auto asset = VexQTAsset::initWithData(test.with, {.tolerant = true});
        if (!asset->moovAtom() || !asset->moovAtom()->childWithType("mvhd"_os)) continue;
        if (asset->moovAtom()->childWithType("mvhd"_os)->declinedClass()) continue;
        const Saved all = saved(test.with, setTimeScale);
        EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
        EXPECT_EQ(all.result.plan.way(), SavePlan::Way::Patch);
        EXPECT_FALSE(all.result.plan.has(Severity::Changes)) << all.report;
        EXPECT_FALSE(all.result.plan.has(Severity::Destroys)) << all.report;
        ASSERT_EQ(all.after.size(), all.before.size());
        int differing = 0;
        for (std::size_t i = 0; i < all.after.size(); ++i)
            differing += all.after[i] != all.before[i] ? 1 : 0;
        EXPECT_EQ(differing, 3) << "600 is 00 00 02 58, 90000 is 00 01 5F 90";
    }
}

// MARK: What the file has become since it was read

class ChangedFile : public ::testing::TestWithParam<SaveForm> {
protected:
    ChangedFile() { writeFile(path, kMovieFirst); }

    std::unique_ptr<VexQTAsset> read() {
        std::error_code error;
        auto asset = VexQTAsset::initWithURL(path, error, {.tolerant = true});
        setTimeScale(*asset);
        return asset;
    }
    /// The finding that the file as it is now is no longer the one that was read.
    std::string finding(VexQTAsset& asset) {
        std::error_code error;
        const auto file = systemFiles().openForReading(path, error);
        const SavePlan plan = SavePlan::of(asset, *file, GetParam());
        for (const Finding& finding : plan.findings()) {
            if (finding.id != "file-changed" && finding.id != "read-again-first") continue;
            EXPECT_EQ(finding.severity, Severity::Destroys);
            EXPECT_FALSE(plan.canBeForced());
            return std::string(finding.id);
        }
        EXPECT_TRUE(plan.canBeForced());
        return "none";
    }

    TemporaryFolder folder;
    const std::filesystem::path path = folder / "movie.mov";
};
std::string nameOfForm(const ::testing::TestParamInfo<SaveForm>& test) {
    return test.param == SaveForm::Exact ? "Exact" : "Surgical";
}
INSTANTIATE_TEST_SUITE_P(Findings, ChangedFile,
                         ::testing::Values(SaveForm::Surgical, SaveForm::Exact), nameOfForm);

TEST_P(ChangedFile, IsToldFromOneThatIsAsItWasRead) {
    const auto asset = read();
    EXPECT_EQ(finding(*asset), "none");
    Bytes changed = kMovieFirst;
    changed[60] ^= 1;
    writeFile(path, changed);
    EXPECT_EQ(finding(*asset), "file-changed");
    writeFile(path, ByteView(kMovieFirst).first(100));
    EXPECT_EQ(finding(*asset), "file-changed");
    writeFile(path, kMovieFirst);
    EXPECT_EQ(finding(*asset), "none");
}

TEST_P(ChangedFile, IsToldWhateverItHasBecome) {
    const auto asset = read();
    const Bytes space = atom("free"_os, {zeros(124)});
    const struct {
        std::string_view what;
        Bytes bytes;
        std::string_view finding;
    } kCases[] = {
        {"nothing", {}, "file-changed"},
        {"no atoms", zeros(300), "file-changed"},
        {"a file without a movie", join({kFileType, kMedia}), "file-changed"},
        {"free space of another length", join({kFileType, atom("free"_os, {zeros(90)}), kMedia}),
         "file-changed"},
        {"free space of the same length", join({kFileType, space, kMedia}), "read-again-first"},
    };
    for (const auto& test : kCases) {
        SCOPED_TRACE(test.what);
        writeFile(path, test.bytes);
        EXPECT_EQ(finding(*asset), test.finding);
    }
    // The movie is edited to a length that fits nowhere any more.
    grow(400)(*asset);
    writeFile(path, join({kFileType, kMedia}));
    EXPECT_EQ(finding(*asset), "file-changed");
    writeFile(path, Bytes());
    EXPECT_EQ(finding(*asset), "file-changed");
}

TEST_P(ChangedFile, ThatTheAssetWasSavedIntoIsToBeReadAgain) {
    const auto asset = read();
    std::error_code error;
    ASSERT_TRUE(asset->writeInPlaceWithError(error));
    EXPECT_EQ(finding(*asset), "read-again-first");
    EXPECT_EQ(finding(*read()), "none");
}

// MARK: What force does and what it cannot do

TEST(Force, SavesWhatDestroysButNothingThatIsNotRightToWrite) {
    for (const auto& cases : {surgicalCases(), exactCases()}) {
        for (const FindingCase& test : cases) {
            if (test.severity != Severity::Destroys) continue;
            SCOPED_TRACE(std::string(test.id) + ": " + std::string(test.what));
            const Saved all = saved(test.with, test.editWith, {.form = test.form, .force = true});
            const bool isImpossible = test.id == "no-room" || test.id == "atom-refuses";
            EXPECT_EQ(all.result.plan.canBeForced(), !isImpossible);
            EXPECT_EQ(all.result.outcome,
                      isImpossible ? SaveResult::Outcome::Refused : SaveResult::Outcome::Saved)
                << all.report << (all.result.failure ? all.result.failure->what : "");
            if (isImpossible) {
                EXPECT_EQ(all.after, all.before);
            }
        }
    }
}

TEST(Force, IsNoReasonToWriteWhereNothingDestroys) {
    const Saved all = saved(kPlain, leaveAlone, {.force = true});
    EXPECT_EQ(all.result.outcome, SaveResult::Outcome::NothingToDo);
}

// MARK: What a surgical save does about what it finds

TEST(SurgicalSave, GivesMediaCutShortTheSizeThatIsThereBeforeAMovieIsWrittenBehindIt) {
    const Saved all = saved(join({kFileType, movie(8), kCutMedia}), grow(40));
    ASSERT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
    EXPECT_EQ(part(all.after, 152, 108), atom("mdat"_os, {zeros(100)}));
    EXPECT_EQ(part(all.after, 260, 8), join({u32(172), text("moov")}));
    const auto again = VexQTAsset::initWithData(all.after);
    ASSERT_TRUE(again->moovAtom());
    EXPECT_EQ(again->moovAtom()->children().size(), 3u);

    const Bytes extended = extendedAtomClaiming(5000, "mdat"_os, {zeros(100)});
    const Saved longHeader = saved(join({kFileType, movie(8), extended}), grow(40));
    EXPECT_EQ(part(longHeader.after, 152, 116), extendedAtomClaiming(116, "mdat"_os, {zeros(100)}));
}

TEST(SurgicalSave, LeavesNoBytesBehindTheLastAtomWhereItWritesThere) {
    const struct {
        std::string_view what;
        std::size_t junk;
        std::size_t end;  ///< What follows the movie, up to the end of the file.
    } kCases[] = {
        {"fewer than the movie", 100, 0},
        {"as many as the movie", 172, 0},
        {"too few more for a header", 179, 0},
        {"just a header more", 180, 8},
        {"many more", 400, 228},
    };
    for (const auto& test : kCases) {
        SCOPED_TRACE(test.what);
        // A size of 7 is no header.
        const Bytes junk = join({u32(7), Bytes(test.junk - 4, 0x77)});
        const Saved all = saved(join({kMovieFirst, junk}), grow(40));
        ASSERT_EQ(all.result.outcome, SaveResult::Outcome::Saved) << all.report;
        const std::size_t movieEnd = kMovieFirst.size() + 172;
        EXPECT_EQ(part(all.after, movieEnd - 172, 8), join({u32(172), text("moov")}));
        ASSERT_EQ(all.after.size(), movieEnd + test.end);
        if (test.end == 0) continue;
        EXPECT_EQ(part(all.after, movieEnd, 8),
                  join({u32(static_cast<std::uint32_t>(test.end)), text("free")}));
    }
}

TEST(SurgicalSave, OfAMovieThatIsCutShortKeepsWhatIsThere) {
    const Bytes bytes = join({kFileType, kMedia, kCutMovie});
    const Saved all = saved(bytes, setTimeScale);
    Bytes expected = bytes;
    std::ranges::copy(u32(90000), expected.begin() + 128 + 8 + 20);
    EXPECT_EQ(all.after, expected);
}

TEST(SurgicalSave, WritesAShortTextWhenItIsForced) {
    const Saved all = saved(movieWithText("words"), setText("abc"), {.force = true});
    EXPECT_EQ(all.result.outcome, SaveResult::Outcome::Saved);
    EXPECT_EQ(all.after, movieWithText("abc"));
}

}  // namespace
}  // namespace vexqt
