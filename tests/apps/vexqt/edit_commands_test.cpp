// The commands that change a movie: what they write, and what they refuse.
#include <nlohmann/json.hpp>

#include "tests/apps/vexqt/calling.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms

/// A movie behind media data, with one table of each kind.
Bytes movieWithTables() {
    return join(
        {atom("ftyp"_os, {text("qt  "), u32(0x20050300), text("qt  ")}),
         atom("mdat"_os, {text("DATA")}),
         atom("moov"_os,
              {movieHeader(),
               atom("trak"_os,
                    {trackHeader(1),
                     atom("mdia"_os,
                          {handler("vide"_os, "Handler"),
                           atom("minf"_os,
                                {atom("stbl"_os,
                                      {atom("stts"_os,
                                            {u32(0), u32(2), u32(10), u32(100), u32(20), u32(200)}),
                                       atom("stco"_os, {u32(0), u32(2), u32(28), u32(30)})})})})}),
               atom("udta"_os, {atom("abcd"_os, {u8(1)}), zeros(4)})})});
}
constexpr std::string_view kTable = "moov.trak.mdia.minf.stbl.stts.sampleDurations";
constexpr std::string_view kNumbers = "moov.trak.mdia.minf.stbl.stco.chunkOffsets";

class EditCommands : public CommandTest {
protected:
    EditCommands() { writeFile(tables_, movieWithTables()); }

    /// Runs a command with -o, and says what a key has in the copy.
    std::string changed(std::vector<std::string> arguments, const std::string& key) {
        arguments.insert(arguments.end(), {"-o", copy_});
        const Called called = call(arguments);
        EXPECT_EQ(called.status, 0);
        EXPECT_EQ(called.errors, "");
        EXPECT_EQ(called.output, "");
        return get(copy_, key);
    }
    static std::string get(const std::string& file, const std::string& key) {
        const Called called = call({"get", file, key});
        EXPECT_EQ(called.status, 0) << called.errors;
        return called.output.substr(0, called.output.size() - 1);
    }
    /// Runs a command that fails, and says its message; neither file is touched.
    std::string refused(std::vector<std::string> arguments, int status) {
        const Bytes before = readFile(arguments[1]);
        arguments.push_back("--in-place");
        const Called called = call(arguments);
        EXPECT_EQ(called.status, status);
        EXPECT_EQ(called.output, "");
        EXPECT_EQ(readFile(arguments[1]), before);
        const std::string prefix = "vexqt: " + arguments[1] + ": ";
        EXPECT_TRUE(called.errors.starts_with(prefix)) << called.errors;
        return called.errors.substr(prefix.size(), called.errors.size() - prefix.size() - 1);
    }
    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(folder_.path()), {}));
    }

    const std::string tables_ = path("tables.mov");
    const std::string copy_ = path("copy.mov");
};

// MARK: set

TEST_F(EditCommands, SetChangesValuesOfEveryKind) {
    const struct {
        std::string key, value, after;
    } cases[] = {
        {"moov.mvhd.timeScale", "0x258", "600"},
        {"moov.mvhd.duration", "4294967295", "4294967295"},
        {"moov.mvhd.preferredRate", "1.5", "1.5"},
        {"moov.mvhd.creationDateTime", "2024-05-01 12:00:00", "2024-05-01T12:00:00Z"},
        {"moov.mvhd.matrix", "1 0 0 0 1 0 64 32 1", "[1, 0, 0, 0, 1, 0, 64, 32, 1]"},
        {"moov.mvhd.flags2", "7", "7"},
        {"moov.trak[soun].tkhd.layer", "9", "9"},
        {"moov.trak[1].mdia.hdlr.componentSubType", "text", "text"},
        {"moov.trak[1].mdia.hdlr.componentSubType", "0x00000020", std::string("\0\0\0 ", 4)},
        {"moov.trak[1].mdia.hdlr.componentName", "a = b", "a = b"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.key + "=" + each.value);
        EXPECT_EQ(changed({"set", movie_, each.key + "=" + each.value}, each.key), each.after);
    }
}

TEST_F(EditCommands, SetChangesSeveralValuesAtOnce) {
    EXPECT_EQ(changed({"set", movie_, "moov.mvhd.timeScale=25", "moov.mvhd.duration=50",
                       "moov.trak[vide].tkhd.duration=50"},
                      "moov.mvhd.timeScale"),
              "25");
    EXPECT_EQ(get(copy_, "moov.mvhd.duration"), "50");
    EXPECT_EQ(get(copy_, "moov.trak.tkhd.duration"), "50");
    EXPECT_EQ(get(copy_, "moov.trak[1].tkhd.duration"), "1200");
}

TEST_F(EditCommands, SetChangesCellsOfTables) {
    EXPECT_EQ(changed({"set", tables_, std::string(kTable) + "[1].sampleCount=5",
                       std::string(kNumbers) + "[0]=40"},
                      std::string(kTable)),
              "[\n  {\"sampleCount\": 10, \"sampleDuration\": 100},\n"
              "  {\"sampleCount\": 5, \"sampleDuration\": 200}\n]");
    EXPECT_EQ(get(copy_, std::string(kNumbers)), "[40, 30]");
}

TEST_F(EditCommands, SetTellsWhatReadsAsAnotherValue) {
    // Fixed-point numbers below zero are not read as they are written.
    const struct {
        std::string assignment, told;
    } cases[] = {
        {"moov.mvhd.preferredRate=-1.5",
         "moov.mvhd.preferredRate was set to -1.5 and reads as 0.5"},
        {"moov.mvhd.matrix=-1 0 0 0 1 0 0 0 1",
         "moov.mvhd.matrix was set to [-1, 0, 0, 0, 1, 0, 0, 0, 1] and reads as [-2, 0, 0, 0, 1, "
         "0, "
         "0, 0, 1]"},
        {"moov.trak[soun].mdia.mediaType=text",
         "moov.trak[soun].mdia.mediaType was set to 'text' and reads as 'soun'"},
        // What a field has no room for is no other value.
        {"moov.mvhd.preferredRate=1.1", ""},
        {"moov.mvhd.preferredVolume=0.3", ""},
        {"moov.trak.tkhd.trackWidth=1920.1", ""},
        // The value by which a path finds its atom may be the one that is set.
        {"moov.trak[soun].mdia.hdlr.componentSubType=vide", ""},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.assignment);
        const Called called = call({"set", movie_, each.assignment, "-o", copy_});
        EXPECT_EQ(called.status, 0);
        EXPECT_EQ(called.errors, each.told.empty() ? "" : said(copy_, each.told));
    }
    const Called inPlace = call({"set", movie_, "moov.mvhd.preferredRate=-1", "--in-place"});
    EXPECT_EQ(inPlace.status, 0);
    EXPECT_EQ(inPlace.errors,
              said(movie_, "moov.mvhd.preferredRate was set to -1 and reads as -2"));
}

TEST_F(EditCommands, SetMakesValuesAbsent) {
    // What is absent of a date is written as the start of 2001.
    const std::string key = "moov.mvhd.modificationDateTime";
    const std::vector<std::string> commands[] = {{"set", movie_, "--absent", key, "-o", copy_},
                                                 {"set", movie_, key + "=null", "-o", copy_}};
    for (const auto& command : commands) {
        const Called called = call(command);
        EXPECT_EQ(called.status, 0);
        EXPECT_EQ(called.errors,
                  said(copy_, key + " was set to absent and reads as 2001-01-01 00:00:00 UTC"));
        EXPECT_EQ(get(copy_, key), "2001-01-01T00:00:00Z");
    }
    EXPECT_EQ(refused({"set", movie_, "--absent", "moov.mvhd.timeScale"}, 2),
              "moov.mvhd.timeScale: this cannot be absent");
}

TEST_F(EditCommands, SetInPlaceWritesTheNewMovieBehindTheMediaData) {
    const Called called = call({"set", movie_, "moov.mvhd.timeScale=25", "--in-place"});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.errors, "");
    Bytes expected = smallMovie();
    // The time scale is the fourth byte of 32 bits behind the movie's and its header's own.
    const std::size_t at = 36 + 8 + 8 + 12;
    expected[at + 2] = 0;
    expected[at + 3] = 25;
    EXPECT_EQ(readFile(movie_), expected);
}

TEST_F(EditCommands, ACopyLeavesTheFileAsItIs) {
    EXPECT_EQ(changed({"set", movie_, "moov.mvhd.timeScale=25"}, "moov.mvhd.timeScale"), "25");
    EXPECT_EQ(readFile(movie_), smallMovie());
    EXPECT_EQ(filesInFolder(), 3U);
}

TEST_F(EditCommands, ACopyReplacesWhatHasItsName) {
    write("copy.mov", zeros(100'000));
    EXPECT_EQ(changed({"set", movie_, "moov.mvhd.timeScale=25"}, "moov.mvhd.timeScale"), "25");
    EXPECT_EQ(readFile(copy_).size(), smallMovie().size());
}

TEST_F(EditCommands, ACopyDoesNotReplaceTheMovieUnderAnyName) {
    std::filesystem::create_hard_link(movie_, path("other.mov"));
    for (const std::string& name : {movie_, path("other.mov"), path("./clip.mov")}) {
        const Called called = call({"set", movie_, "moov.mvhd.timeScale=25", "-o", name});
        EXPECT_EQ(called.status, 1);
        EXPECT_EQ(called.errors,
                  said(name, name == movie_ ? "is the movie itself"
                                            : "is the movie itself under another name"));
    }
    EXPECT_EQ(get(movie_, "moov.mvhd.timeScale"), "600");
}

TEST_F(EditCommands, ACopyThroughALinkLeavesTheLink) {
    std::filesystem::create_symlink(path("target.mov"), copy_);
    write("target.mov", zeros(10));
    EXPECT_EQ(changed({"set", movie_, "moov.mvhd.timeScale=25"}, "moov.mvhd.timeScale"), "25");
    EXPECT_TRUE(std::filesystem::is_symlink(copy_));
    EXPECT_EQ(get(path("target.mov"), "moov.mvhd.timeScale"), "25");
}

TEST_F(EditCommands, ACopyTakesTheNameOfNoDeviceOrFolder) {
    const std::string folder = folder_.path().string();
    for (const auto& [name, kind] :
         {std::pair(std::string("/dev/null"), "a device"), std::pair(folder, "a folder")}) {
        SCOPED_TRACE(name);
        const Called called = call({"set", movie_, "moov.mvhd.timeScale=25", "-o", name});
        EXPECT_EQ(called.status, 1);
        EXPECT_EQ(called.errors,
                  said(name, "is " + std::string(kind) + ", which is not replaced by a file"));
    }
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(EditCommands, ACommandThatFailsLeavesNoCopy) {
    EXPECT_EQ(call({"set", movie_, "moov.mvhd.timeScale=x", "-o", copy_}).status, 2);
    EXPECT_EQ(call({"set", movie_, "moov.mvhd.timescale=1", "-o", copy_}).status, 1);
    EXPECT_EQ(call({"set", path("none.mov"), "moov.mvhd.timeScale=1", "-o", copy_}).status, 1);
    EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(EditCommands, StandardInputIsChangedIntoACopy) {
    TextOutput out, errors;
    const int input = ::open(movie_.c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(run({"set", "-", "moov.mvhd.timeScale=25", "-o", copy_}, out, errors, input), 0);
    ::close(input);
    EXPECT_EQ(errors.text(), "");
    EXPECT_EQ(get(copy_, "moov.mvhd.timeScale"), "25");
}

TEST_F(EditCommands, WhatIsReadIntoMemoryIsSavedAllTheSame) {
    EXPECT_EQ(changed({"set", "--memory", movie_, "moov.mvhd.timeScale=25"}, "moov.mvhd.timeScale"),
              "25");
    EXPECT_EQ(call({"set", "--memory", movie_, "moov.mvhd.timeScale=26", "--in-place"}).status, 0);
    EXPECT_EQ(get(movie_, "moov.mvhd.timeScale"), "26");
}

TEST_F(EditCommands, AValueThatDoesNotFitIsStatusTwo) {
    const struct {
        std::string assignment, message;
    } cases[] = {
        {"moov.mvhd.timeScale=4294967296",
         "moov.mvhd.timeScale: a whole number from 0 to 4294967295 expected, not '4294967296'"},
        {"moov.mvhd.timeScale=",
         "moov.mvhd.timeScale: a whole number from 0 to 4294967295 "
         "expected, not ''"},
        {"moov.trak.mdia.mdhd.language=65536",
         "moov.trak.mdia.mdhd.language: a whole number from 0 to 65535 expected, not '65536'"},
        {"moov.mvhd.version=256",
         "moov.mvhd.version: a whole number from 0 to 255 expected, not '256'"},
        {"moov.mvhd.preferredRate=32768",
         "moov.mvhd.preferredRate: a number from -32768 to less than 32768 expected, not '32768'"},
        {"moov.mvhd.preferredRate=-32768.5",
         "moov.mvhd.preferredRate: a number from -32768 to less than 32768 expected, not "
         "'-32768.5'"},
        {"moov.mvhd.preferredVolume=256",
         "moov.mvhd.preferredVolume: a number from 0 to less than 256 expected, not '256'"},
        {"moov.trak.tkhd.trackWidth=-1",
         "moov.trak.tkhd.trackWidth: a number from 0 to less than 65536 expected, not '-1'"},
        {"moov.mvhd.matrix=1 0 0 0 1 0 40000 0 1",
         "moov.mvhd.matrix: a matrix with numbers from -32768 to less than 32768 in its first two "
         "columns expected, not '1 0 0 0 1 0 40000 0 1'"},
        {"moov.mvhd.matrix=1 0 0 0 1 0 0 0 2",
         "moov.mvhd.matrix: a matrix with numbers from -2 to less than 2 in its third column "
         "expected, not '1 0 0 0 1 0 0 0 2'"},
        {"moov.mvhd.matrixWValue=2",
         "moov.mvhd.matrixWValue: a number from -2 to less than 2 expected, not '2'"},
        {"moov.mvhd.size=1", "moov.mvhd.size: this cannot be set"},
        {"moov.mvhd.timeScale", "'moov.mvhd.timeScale' is no assignment: KEY=VALUE"},
        {"moov..mvhd=1", "'moov..mvhd' is no path: a name is missing at 6"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.assignment);
        EXPECT_EQ(refused({"set", movie_, each.assignment}, 2), each.message);
    }
    EXPECT_EQ(refused({"set", tables_, std::string(kTable) + "=1"}, 2),
              std::string(kTable) + ": this is a table, whose cells are set one by one");
}

TEST_F(EditCommands, AWrongValueBehindARightOneChangesNothing) {
    refused({"set", movie_, "moov.mvhd.timeScale=1", "moov.mvhd.duration=-1"}, 2);
}

TEST_F(EditCommands, APathThatNamesNothingIsStatusOne) {
    EXPECT_EQ(refused({"set", movie_, "moov.trak[2].tkhd.layer=1"}, 1),
              "moov.trak[2]: there are 2 'trak' in moov, and the first is [0]");
}

TEST_F(EditCommands, ExactlyOnlyWhatIsInTheMovieAtomIsChanged) {
    EXPECT_EQ(refused({"set", movie_, "ftyp.minorVersion=1", "--exact"}, 1),
              "ftyp.minorVersion: with --exact only what is in the movie atom is saved");
    EXPECT_EQ(refused({"remove", movie_, "mdat", "--exact"}, 1),
              "mdat: with --exact only what is in the movie atom is saved");
}

TEST_F(EditCommands, ExactlyOnlyTheLastOfSeveralMoviesIsChanged) {
    const std::string two =
        write("two.mov", join({smallMovie(), atom("moov"_os, {movieHeader(), zeros(1)})}));
    EXPECT_EQ(refused({"set", two, "moov.mvhd.timeScale=1", "--exact"}, 1),
              "moov.mvhd.timeScale: with --exact only what is in the movie atom is saved, in the "
              "last one of several");
}

TEST_F(EditCommands, WhatIsOutsideOfTheMovieAtomIsSavedToo) {
    EXPECT_EQ(changed({"set", movie_, "ftyp.minorVersion=77"}, "ftyp.minorVersion"), "77");
    Bytes expected = readFile(movie_);
    std::ranges::copy(u32(77), expected.begin() + 12);
    EXPECT_EQ(readFile(copy_), expected);
}

TEST_F(EditCommands, AnAtomRemovedFromTheTopBecomesFreeSpace) {
    const std::string file = write("uuid.mov", join({atom("uuid"_os, {zeros(12)}), smallMovie()}));
    ASSERT_EQ(call({"remove", file, "uuid", "--in-place"}).status, 0);
    Bytes expected = join({atom("free"_os, {zeros(12)}), smallMovie()});
    EXPECT_EQ(readFile(file), expected);
}

TEST_F(EditCommands, SetChangesTheBytesOfTheFieldAndNoOther) {
    Bytes expected = readFile(movie_);
    ASSERT_EQ(call({"set", movie_, "moov.mvhd.nextTrackID=305419896", "--in-place"}).status, 0);
    const Bytes after = readFile(movie_);
    const Bytes number = u32(305419896);
    const auto at = std::search(after.begin(), after.end(), number.begin(), number.end());
    ASSERT_NE(at, after.end());
    std::ranges::copy(number, expected.begin() + (at - after.begin()));
    EXPECT_EQ(after, expected);
}

TEST_F(EditCommands, UndoTakesSavesBackOneByOne) {
    const Bytes before = readFile(movie_);
    ASSERT_EQ(call({"set", movie_, "moov.mvhd.timeScale=90000", "--in-place"}).status, 0);
    const Bytes once = readFile(movie_);
    ASSERT_EQ(call({"remove", movie_, "moov.trak[1]", "--in-place"}).status, 0);
    EXPECT_EQ(call({"undo", movie_}).status, 0);
    EXPECT_EQ(readFile(movie_), once);
    EXPECT_EQ(call({"undo", movie_}).status, 0);
    EXPECT_EQ(readFile(movie_), before);
    EXPECT_EQ(call({"undo", movie_}).status, 1);
    EXPECT_EQ(readFile(movie_), before);
}

TEST_F(EditCommands, WithoutUndoRecordsThereIsNothingToTakeBack) {
    ASSERT_EQ(call({"set", movie_, "moov.mvhd.timeScale=90000", "--in-place", "--no-undo"}).status,
              0);
    EXPECT_EQ(call({"undo", movie_}).status, 1);
}

TEST_F(EditCommands, ASaveThatWouldDestroySomethingIsRefusedWithoutForce) {
    const std::string file = write(
        "fragments.mov",
        join({atom("moov"_os, {movieHeader(), atom("free"_os, {zeros(1)})}),
              atom("moof"_os, {atom("mfhd"_os, {u32(1), u32(1)})}), atom("mdat"_os, {zeros(9)})}));
    const Bytes before = readFile(file);
    const std::string more = write("atom.bin", atom("abcd"_os, {zeros(90)}));
    const Called called = call({"insert", file, "moov", more, "--in-place"});
    EXPECT_EQ(called.status, 3);
    EXPECT_NE(called.errors.find("[behind-fragments]"), std::string::npos) << called.errors;
    EXPECT_EQ(readFile(file), before);
    EXPECT_EQ(call({"insert", file, "moov", more, "--in-place", "--force"}).status, 0);
    EXPECT_EQ(call({"get", file, "moov.abcd.size"}).output, "98\n");
}

TEST_F(EditCommands, RecoverSaysThatThereIsNothingToDo) {
    EXPECT_EQ(call({"recover", movie_}).status, 0);
}

TEST_F(EditCommands, AJournalBesideAMovieIsToldOfAndRecoveredFrom) {
    write(".clip.mov.vexqt-journal", text("cut short"));
    EXPECT_NE(call({"outline", movie_}).errors.find("vexqt recover"), std::string::npos);
    const Bytes before = readFile(movie_);
    EXPECT_EQ(call({"set", movie_, "moov.mvhd.timeScale=25", "--in-place"}).status, 1);
    EXPECT_EQ(call({"recover", movie_}).status, 0);
    EXPECT_EQ(readFile(movie_), before);
    EXPECT_EQ(call({"outline", movie_}).errors, "");
}

TEST_F(EditCommands, AMovieBesideAJournalIsNotCopied) {
    write(".clip.mov.vexqt-journal", text("cut short"));
    const Called called = call({"set", movie_, "moov.mvhd.timeScale=25", "-o", copy_});
    EXPECT_EQ(called.status, 1);
    EXPECT_EQ(
        called.errors,
        said(movie_, "a save of this movie goes on, or was interrupted: vexqt recover " + movie_ +
                         " puts back what it was before (--force copies what is there)"));
    EXPECT_FALSE(std::filesystem::exists(copy_));
    EXPECT_EQ(call({"set", movie_, "moov.mvhd.timeScale=25", "-o", copy_, "--force"}).status, 0);
    EXPECT_EQ(get(copy_, "moov.mvhd.timeScale"), "25");
}

TEST_F(EditCommands, SetKeyAddsAndChangesAndRemoveKeyRemoves) {
    ASSERT_EQ(call({"set-key", movie_, "moov.meta", "com.example.title=One", "com.example.reel=A3",
                    "--in-place"})
                  .status,
              0);
    EXPECT_EQ(call({"get", movie_, "moov.meta.ilst[com.example.title].data.text"}).output, "One\n");
    ASSERT_EQ(call({"set-key", movie_, "moov.meta", "com.example.title=Two", "--in-place"}).status,
              0);
    EXPECT_EQ(call({"get", movie_, "moov.meta.ilst[com.example.title].data.text"}).output, "Two\n");
    ASSERT_EQ(call({"remove-key", movie_, "moov.meta", "com.example.title", "--in-place"}).status,
              0);
    EXPECT_EQ(call({"get", movie_, "moov.meta.ilst[com.example.reel].data.text"}).output, "A3\n");
    EXPECT_EQ(call({"get", movie_, "moov.meta.ilst[com.example.title].data.text"}).status, 1);
    EXPECT_EQ(call({"remove-key", movie_, "moov.meta", "no.such", "--in-place"}).status, 1);
    // Of the last key nothing stays but two headers.
    EXPECT_EQ(call({"remove-key", movie_, "moov.meta", "com.example.reel", "--in-place"}).status,
              0);
    EXPECT_EQ(call({"get", movie_, "moov.meta.ilst[com.example.reel].data.text"}).status, 1);
}

// MARK: check

TEST_F(EditCommands, CheckOfAMovieThatComesBackAsItIsIsStatusZero) {
    const std::string plain = write(
        "plain.mov", join({atom("ftyp"_os, {text("qt  "), u32(0)}), atom("mdat"_os, {zeros(9)}),
                           atom("moov"_os, {atom("wide"_os, {zeros(4)})})}));
    const Called called = call({"check", plain});
    EXPECT_EQ(called.status, 0) << called.output;
    EXPECT_EQ(called.output,
              plain +
                  "\n  a save writes the bytes of what was edited and nothing else\n"
                  "  with --exact too, all that is not edited comes back as it is\n");
}

TEST_F(EditCommands, CheckNamesWhatAnExactSaveWouldChange) {
    const std::string first =
        write("first.mov",
              join({atom("moov"_os, {atom("wide"_os, {zeros(4)})}), atom("mdat"_os, {zeros(9)})}));
    const Called called = call({"check", "--json", first});
    EXPECT_EQ(called.status, 3);
    const auto document = nlohmann::json::parse(called.output);
    EXPECT_EQ(document["file"], first);
    EXPECT_EQ(document["surgical"]["way"], "nothing");
    EXPECT_TRUE(document["surgical"]["findings"].empty());
    ASSERT_EQ(document["exact"]["findings"].size(), 1u);
    EXPECT_EQ(document["exact"]["findings"][0]["id"], "movie-no-longer-first");
    EXPECT_EQ(document["exact"]["findings"][0]["severity"], "changes");
}

// MARK: remove

TEST_F(EditCommands, RemoveTakesAtomsOutByTheirPlacesInTheFile) {
    EXPECT_EQ(
        changed({"remove", movie_, "moov.trak[0]", "moov.trak[1].mdia"}, "moov.trak.tkhd.trackID"),
        "2");
    EXPECT_EQ(call({"outline", copy_}).output,
              " 'ftyp' (24)\n"
              " 'mdat' (12)\n"
              " 'moov' (236)\n"
              "   'mvhd' (108)\n"
              "   'trak' (100)\n"
              "     'tkhd' (92)\n"
              "   'a.b]' (8)\n"
              "   '\u00A9nam' (12)\n");
}

TEST_F(EditCommands, RemoveTakesAnAtomWithinAnotherAndOneNamedTwice) {
    EXPECT_EQ(changed({"remove", movie_, "moov.trak", "moov.trak.mdia", "moov.trak"},
                      "moov.trak.tkhd.trackID"),
              "2");
    EXPECT_EQ(call({"get", copy_, "moov.trak[1].size"}).status, 1);
}

TEST_F(EditCommands, RemoveLeavesTheMovieAtomItself) {
    EXPECT_EQ(refused({"remove", movie_, "moov"}, 1),
              "moov: the movie atom itself is not removed, only what is in it");
}

TEST_F(EditCommands, RemoveNeedsEveryPath) {
    EXPECT_EQ(refused({"remove", movie_, "moov.trak", "moov.udta"}, 1),
              "moov.udta: no 'udta' in moov, only mvhd, trak, 0x612E625D, 0xA96E616D");
}

// MARK: insert

TEST_F(EditCommands, InsertAddsAnAtomAtTheEnd) {
    const std::string file = write("atom.bin", atom("abcd"_os, {text("xyz")}));
    EXPECT_EQ(changed({"insert", movie_, "moov", file}, "moov.abcd.unknownData"), "78797a");
    EXPECT_TRUE(call({"outline", copy_}).output.ends_with("'\u00A9nam' (12)\n   'abcd' (11)\n"));
}

TEST_F(EditCommands, InsertAddsAnAtomBehindTheFirstOfAType) {
    const std::string file = write("atom.bin", atom("abcd"_os, {u32(1)}));
    changed({"insert", movie_, "moov", file, "--after", "trak"}, "moov.abcd.size");
    EXPECT_EQ(call({"outline", copy_}).output.find("   'abcd' (12)\n   'trak' (180)"),
              call({"outline", copy_}).output.find("   'abcd'"));
    EXPECT_EQ(changed({"insert", movie_, "moov", file, "--after", "0xA96E616D"},
                      "moov.abcd.offsetInFile"),
              "532");
    // As the library does where there is no such atom.
    changed({"insert", movie_, "moov", file, "--after", "none"}, "moov.abcd.size");
    EXPECT_TRUE(call({"outline", copy_}).output.ends_with("   'abcd' (12)\n"));
}

TEST_F(EditCommands, InsertKeepsTheAtomByteForByte) {
    // Read by its class it would lose the flags and the last bytes.
    const Bytes odd = atom("stts"_os, {u32(0x00FFFFFF), u32(1), u32(7), u32(8), text("more")});
    const std::string file = write("atom.bin", odd);
    changed({"insert", movie_, "moov.trak[1]", file}, "moov.trak[1].size");
    const Bytes copy = readFile(copy_);
    EXPECT_NE(std::search(copy.begin(), copy.end(), odd.begin(), odd.end()), copy.end());
}

TEST_F(EditCommands, InsertTakesWhatDataGave) {
    const std::string file = path("tkhd.bin");
    ASSERT_EQ(call({"data", movie_, "moov.trak[1].tkhd", "-o", file}).status, 0);
    EXPECT_EQ(changed({"insert", movie_, "moov.trak", file, "--after", "tkhd"},
                      "moov.trak.tkhd[1].trackID"),
              "2");
}

TEST_F(EditCommands, InsertTakesOneWholeAtom) {
    const struct {
        Bytes bytes;
        std::string message;
    } cases[] = {
        {{}, " holds no atom: 0 bytes"},
        {zeros(7), " holds no atom: 7 bytes"},
        {join({u32(1), text("abcd"), u32(0)}), " ends inside of the atom's header"},
        {atomClaiming(20, "abcd"_os),
         " is not one atom: its size field says 20, the file has 8 "
         "bytes"},
        {join({atom("abcd"_os), atom("efgh"_os)}),
         " is not one atom: its size field says 8, the file has 16 bytes"},
        {atomClaiming(0, "abcd"_os),
         " is not one atom: its size field says 0, the file has 8 "
         "bytes"},
    };
    const std::string file = path("atom.bin");
    for (const auto& each : cases) {
        SCOPED_TRACE(each.message);
        write("atom.bin", each.bytes);
        EXPECT_EQ(refused({"insert", movie_, "moov", file}, 1), file + each.message);
    }
    EXPECT_EQ(refused({"insert", movie_, "moov", path("none")}, 1),
              path("none") + ": No such file or directory");
}

TEST_F(EditCommands, InsertNeedsAContainer) {
    const std::string file = write("atom.bin", atom("abcd"_os));
    EXPECT_EQ(refused({"insert", movie_, "moov.mvhd", file}, 1),
              "moov.mvhd: this atom holds no other atoms");
    EXPECT_EQ(refused({"insert", movie_, "moov.\u00A9nam", file}, 1),
              "moov.\u00A9nam: this atom holds no other atoms");
    EXPECT_EQ(refused({"insert", movie_, "moov", file, "--after", "abc"}, 2),
              "--after: a code of four characters, or 0x and eight hexadecimal digits, expected, "
              "not 'abc'");
}

// MARK: Rows

TEST_F(EditCommands, InsertRowsAddsRowsInFrontOfOne) {
    EXPECT_EQ(changed({"insert-rows", tables_, std::string(kTable) + "[1]", "2", "sampleCount=3",
                       "sampleDuration=4"},
                      std::string(kTable)),
              "[\n  {\"sampleCount\": 10, \"sampleDuration\": 100},\n"
              "  {\"sampleCount\": 3, \"sampleDuration\": 4},\n"
              "  {\"sampleCount\": 3, \"sampleDuration\": 4},\n"
              "  {\"sampleCount\": 20, \"sampleDuration\": 200}\n]");
}

TEST_F(EditCommands, InsertRowsAddsOneRowAtTheEnd) {
    EXPECT_EQ(changed({"insert-rows", tables_, std::string(kNumbers), "=7"}, std::string(kNumbers)),
              "[28, 30, 7]");
    EXPECT_EQ(
        changed({"insert-rows", tables_, std::string(kNumbers) + "[2]"}, std::string(kNumbers)),
        "[28, 30, 0]");
}

TEST_F(EditCommands, RemoveRowsTakesRowsOut) {
    EXPECT_EQ(
        changed({"remove-rows", tables_, std::string(kNumbers) + "[0]"}, std::string(kNumbers)),
        "[30]");
    EXPECT_EQ(changed({"remove-rows", tables_, std::string(kNumbers) + "[0]", "2"},
                      std::string(kNumbers)),
              "[]");
}

TEST_F(EditCommands, RowsOfWhatIsNoTableAreRefused) {
    EXPECT_EQ(refused({"insert-rows", tables_, "moov.mvhd.timeScale"}, 2),
              "moov.mvhd.timeScale: this is no table and no row of one");
    EXPECT_EQ(refused({"remove-rows", tables_, std::string(kTable) + "[0].sampleCount"}, 2),
              std::string(kTable) + "[0].sampleCount: this is no table and no row of one");
    EXPECT_EQ(refused({"remove-rows", tables_, std::string(kTable)}, 2),
              "remove-rows takes PATH.LIST[ROW] and a number of rows");
    EXPECT_EQ(refused({"remove-rows", tables_, std::string(kTable) + "[0]", "x"}, 2),
              "remove-rows takes PATH.LIST[ROW] and a number of rows");
}

TEST_F(EditCommands, RowsThatAreNotThereAreRefused) {
    EXPECT_EQ(refused({"insert-rows", tables_, std::string(kNumbers) + "[4]"}, 1),
              std::string(kNumbers) + "[4]: the rows are [0] to [1]");
    EXPECT_EQ(refused({"remove-rows", tables_, std::string(kNumbers) + "[2]"}, 1),
              std::string(kNumbers) + "[2]: the rows are [0] to [1]");
    EXPECT_EQ(refused({"remove-rows", tables_, std::string(kNumbers) + "[1]", "2"}, 1),
              std::string(kNumbers) + "[1]: there are 2 rows, so only 1 from here on");
}

TEST_F(EditCommands, NewRowsThatDoNotFitAreRefused) {
    EXPECT_EQ(refused({"insert-rows", tables_, std::string(kTable), "4294967295"}, 2),
              std::string(kTable) + ": a table has at most 4294967295 rows");
    EXPECT_EQ(refused({"insert-rows", tables_, std::string(kTable), "count=1"}, 2),
              "'count' is no column of sampleDurations");
    EXPECT_EQ(refused({"insert-rows", tables_, std::string(kTable), "sampleCount=-1"}, 2),
              "sampleCount: a whole number from 0 to 4294967295 expected, not '-1'");
    EXPECT_EQ(refused({"insert-rows", tables_, std::string(kTable), "x"}, 2),
              "'x' is no assignment: KEY=VALUE");
}

// MARK: save

TEST_F(EditCommands, SaveRewritesTheMovieInPlace) {
    // The movie lies in front of its media data, so it moves behind it and leaves free space.
    const Bytes fileType = atom("ftyp"_os, {text("qt  "), u32(0)});
    const Bytes movie = atom("moov"_os, {movieHeader(), track(1, "vide"_os)});
    const Bytes media = atom("mdat"_os, {text("DATA")});
    const std::string file = write("first.mov", join({fileType, movie, media}));
    const Called called = call({"save", file});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.output, "");
    EXPECT_EQ(called.errors, "");
    Bytes freed = movie;
    std::ranges::copy(text("free"), freed.begin() + 4);
    EXPECT_EQ(readFile(file), join({fileType, freed, media, movie}));
}

TEST_F(EditCommands, SaveNeedsAFileThatCanBeWritten) {
    EXPECT_EQ(call({"save", path("none.mov")}).status, 1);
}

}  // namespace
}  // namespace vexqt::cli
