// The command line, and the commands that only read.
#include <nlohmann/json.hpp>

#include "tests/apps/vexqt/calling.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms

// MARK: The command line

TEST(CommandLine, HelpBeginsWithExamples) {
    const Called overview = call({"--help"});
    EXPECT_EQ(overview.status, 0);
    EXPECT_EQ(overview.errors, "");
    EXPECT_LT(overview.output.find("Examples:"), overview.output.find("Usage:"));

    for (const std::string command : {"outline", "json", "show", "get", "set", "remove", "insert",
                                      "insert-rows", "remove-rows", "data", "save"}) {
        SCOPED_TRACE(command);
        EXPECT_NE(overview.output.find("\n  " + command + " "), std::string::npos);
        const Called help = call({command, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_LT(help.output.find("Examples:\n  "), help.output.find("Usage: vexqt " + command));
        for (const std::string option : {"--memory", "--strict", "--color", "--help", "--version"})
            EXPECT_NE(help.output.find(option), std::string::npos) << option;
        EXPECT_EQ(call({command, "-h"}).output, help.output);
        EXPECT_EQ(call({command, "--version"}).output, call({"--version"}).output);
    }
}

TEST(CommandLine, HelpIsPrintedWithoutTheRestOfTheCommandLine) {
    EXPECT_EQ(call({"set", "--help"}).status, 0);
    EXPECT_EQ(call({"set", "clip.mov", "--help"}).output, call({"set", "--help"}).output);
}

TEST(CommandLine, TheVersionIsTheProjects) {
    EXPECT_EQ(call({"--version"}).output, "vexqt 1.0.0\n");
}

TEST(CommandLine, MistakesAreOneLineAndStatusTwo) {
    const struct {
        std::vector<std::string> arguments;
        std::string_view message;
    } cases[] = {
        {{"outlin", "a.mov"},
         "no command 'outlin'; did you mean outline? (vexqt --help tells more)"},
        {{"--lines"}, "A subcommand is required (vexqt --help tells more)"},
        {{"outline"}, "outline: FILE is missing (vexqt outline --help tells more)"},
        {{"get", "a.mov"}, "get: PATH.KEY is missing (vexqt get --help tells more)"},
        {{"show", "a.mov", "moov", "mvhd"},
         "show: 'mvhd' is one argument too many (vexqt show --help tells more)"},
        {{"json", "a.mov", "--line"},
         "json: The following argument was not expected: --line; did you mean --lines? (vexqt json "
         "--help tells more)"},
        {{"set", "a.mov", "--in-place"},
         "set: PATH.KEY=VALUE… is missing (vexqt set --help tells more)"},
        {{"set", "a.mov", "moov.mvhd.timeScale=1"},
         "set: either --in-place or -o OUT is needed (vexqt set --help tells more)"},
        {{"remove", "a.mov", "moov.udta", "--in-place", "-o", "b.mov"},
         "remove: either --in-place or -o OUT is needed (vexqt remove --help tells more)"},
        {{"insert", "a.mov", "moov", "--in-place"},
         "insert: PATH ATOMFILE is missing (vexqt insert --help tells more)"},
        {{"set", "-", "moov.mvhd.timeScale=1", "--in-place"},
         "set: standard input cannot be changed in place (vexqt set --help tells more)"},
        {{"set", "a.mov", "moov.mvhd.timeScale=1", "-o", "-"},
         "set: a copy is a file, and not for standard output (vexqt set --help tells more)"},
        {{"set", "a.mov", "moov.mvhd.timeScale=1", "-o", ""},
         "set: OUT is empty (vexqt set --help tells more)"},
        {{"save", ""}, "save: FILE is empty (vexqt save --help tells more)"},
        {{"save", "-"},
         "save: standard input cannot be changed in place (vexqt save --help tells more)"},
        {{"json", "-", "-"},
         "json: standard input can be read only once (vexqt json --help tells more)"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.message);
        const Called called = call(each.arguments);
        EXPECT_EQ(called.status, 2);
        EXPECT_EQ(called.output, "");
        EXPECT_EQ(called.errors, "vexqt: " + std::string(each.message) + "\n");
    }
}

TEST(CommandLine, NothingAtAllIsAnsweredWithTheOverview) {
    const Called called = call({});
    EXPECT_EQ(called.status, 2);
    EXPECT_EQ(called.output, "");
    EXPECT_EQ(called.errors, call({"--help"}).output);
}

TEST(CommandLine, OtherColorsThanThoseThreeAreMistakes) {
    EXPECT_EQ(call({"show", "a.mov", "--color", "often"}).status, 2);
}

using Commands = CommandTest;

TEST_F(Commands, AFileMayHaveTheNameOfACommandOrOption) {
    std::filesystem::current_path(folder_.path());
    for (const std::string name : {"json", "data", "set", "[a]", "[a,b]", "--strict"}) {
        SCOPED_TRACE(name);
        write(name, smallMovie());
        EXPECT_EQ(call({"get", "--", name, "moov.mvhd.timeScale"}).output, "600\n");
        if (name.starts_with('-')) continue;
        EXPECT_EQ(call({"get", name, "moov.mvhd.timeScale"}).output, "600\n");
        EXPECT_EQ(call({"outline", name, name}).status, 0);
    }
    std::filesystem::current_path("/");
}

// MARK: outline

TEST_F(Commands, OutlineHasALineForEveryAtom) {
    const Called called = call({"outline", movie_});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.errors, "");
    EXPECT_EQ(called.output,
              " 'ftyp' (24)\n"
              " 'mdat' (12)\n"
              " 'moov' (496)\n"
              "   'mvhd' (108)\n"
              "   'trak' (180)\n"
              "     'tkhd' (92)\n"
              "     'mdia' (80)\n"
              "       'mdhd' (32)\n"
              "       'hdlr' (40)\n"
              "   'trak' (180)\n"
              "     'tkhd' (92)\n"
              "     'mdia' (80)\n"
              "       'mdhd' (32)\n"
              "       'hdlr' (40)\n"
              "   'a.b]' (8)\n"
              "   '\u00A9nam' (12)\n");
}

TEST_F(Commands, OutlineGoesOnBehindAFileThatFails) {
    const Called called = call({"outline", path("none.mov"), movie_});
    EXPECT_EQ(called.status, 1);
    EXPECT_EQ(called.errors, said(path("none.mov"), "No such file or directory"));
    EXPECT_EQ(called.output, call({"outline", movie_}).output);
}

class TerminalOutput final : public Output {
public:
    bool isTerminal() const override { return true; }
    std::string text;

private:
    void send(std::string_view bytes) override { text += bytes; }
};

std::string onTerminal(const std::vector<std::string>& arguments) {
    TerminalOutput out;
    TextOutput errors;
    run(arguments, out, errors, -1);
    return out.text;
}

TEST_F(Commands, ATerminalIsNotSentControlCharactersOfCodes) {
    const std::string odd = write("odd.mov", join({atom("\x1B[2J"_os), atom("wide"_os)}));
    EXPECT_EQ(onTerminal({"outline", odd}), " '\\x1B[2J' (8)\n 'wide' (8)\n");
    EXPECT_EQ(call({"outline", odd}).output, " '\x1B[2J' (8)\n 'wide' (8)\n");
    EXPECT_EQ(onTerminal({"show", odd}).find("\x1B[2J"), std::string::npos);
    EXPECT_EQ(onTerminal({"json", odd}).find('\x1B'), std::string::npos);
}

TEST_F(Commands, ATerminalIsToldWhichOutlineIsOfWhichFile) {
    const std::string outline = call({"outline", movie_}).output;
    EXPECT_EQ(onTerminal({"outline", movie_}), outline);
    EXPECT_EQ(onTerminal({"outline", movie_, movie_}),
              movie_ + ":\n" + outline + movie_ + ":\n" + outline);
    EXPECT_EQ(call({"outline", movie_, movie_}).output, outline + outline);
}

// MARK: json

TEST_F(Commands, JsonIsADocumentAFile) {
    const Called called = call({"json", movie_});
    EXPECT_EQ(called.status, 0);
    const auto document = nlohmann::json::parse(called.output);
    EXPECT_EQ(document["file"], movie_);
    EXPECT_EQ(document["isValid"], true);
    EXPECT_EQ(document["rootAtoms"][2]["children"][1]["children"][1]["properties"]["mediaType"],
              "vide");
    EXPECT_TRUE(called.output.starts_with("{\n  \"file\": "));
    EXPECT_TRUE(called.output.ends_with("\n}\n"));
}

TEST_F(Commands, JsonLinesHasALineForEveryFileThatCouldBeRead) {
    const std::string other = write("other.mov", join({atom("wide"_os), zeros(1)}));
    const Called called = call({"json", "--lines", movie_, path("none.mov"), other});
    EXPECT_EQ(called.status, 1);
    EXPECT_EQ(called.errors, said(path("none.mov"), "No such file or directory"));
    std::istringstream lines(called.output);
    std::vector<nlohmann::json> documents;
    for (std::string line; std::getline(lines, line);)
        documents.push_back(nlohmann::json::parse(line));
    ASSERT_EQ(documents.size(), 2U);
    EXPECT_EQ(documents[0], nlohmann::json::parse(call({"json", movie_}).output));
    EXPECT_EQ(documents[1]["file"], other);
    EXPECT_EQ(documents[1]["isValid"], false);
}

TEST_F(Commands, AnEmptyFileHasNoAtoms) {
    const Called called = call({"json", "--lines", write("empty.mov", {})});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(nlohmann::json::parse(called.output)["rootAtoms"], nlohmann::json::array());
    EXPECT_EQ(call({"outline", path("empty.mov")}).output, "");
}

TEST_F(Commands, AFolderIsNoMovie) {
    const Called called = call({"json", folder_.path().string()});
    EXPECT_EQ(called.status, 1);
    EXPECT_EQ(called.output, "");
    EXPECT_EQ(called.errors, said(folder_.path().string(), "is a folder, not a movie"));
}

// MARK: Tolerant and strict

/// A movie whose header is too short for its class, in a file of an odd brand.
Bytes damagedMovie() {
    return join({atom("ftyp"_os, {text("XAVC"), u32(0)}),
                 atom("moov"_os, {atom("mvhd"_os, {zeros(4)}), track(1, "vide"_os)})});
}
constexpr std::string_view kBrands =
    "'M4A ' 'M4P ' 'M4V ' 'iso5' 'iso6' 'isom' 'mmp4' 'mp41' 'mp42' 'qt  '";

TEST_F(Commands, ProblemsAreALineEachAndNoFailure) {
    const std::string damaged = write("damaged.mov", damagedMovie());
    const Called called = call({"outline", damaged});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.errors,
              said(damaged, "File is NOT a valid QuickTime movie file") +
                  said(damaged, "ftyp at 0: major brand 'XAVC' is not accepted, only " +
                                    std::string(kBrands)) +
                  said(damaged,
                       "moov.mvhd at 24: Atom 'mvhd' declined by VexQTmvhdAtom (12 "
                       "bytes) - kept as raw data"));
    EXPECT_NE(called.output.find("'mvhd' (12)"), std::string::npos);
}

TEST_F(Commands, ProblemsAreInTheJsonToo) {
    const std::string damaged = write("damaged.mov", damagedMovie());
    const auto document = nlohmann::json::parse(call({"json", damaged}).output);
    EXPECT_EQ(document["isValid"], false);
    ASSERT_EQ(document["problems"].size(), 2U);
    EXPECT_EQ(document["problems"][1]["path"], "moov.mvhd");
    EXPECT_EQ(document["problems"][1]["offset"], 24);
}

TEST_F(Commands, StrictEndsAtTheFirstErrorWithNothingOnStandardOutput) {
    const std::string damaged =
        write("damaged.mov", join({atom("ftyp"_os, {text("qt  "), u32(0)}),
                                   atom("moov"_os, {atom("mvhd"_os, {zeros(4)}), zeros(8)})}));
    for (const std::string command : {"outline", "json", "show"}) {
        SCOPED_TRACE(command);
        const Called called = call({command, "--strict", damaged});
        EXPECT_EQ(called.status, 1);
        EXPECT_EQ(called.output, "");
        EXPECT_EQ(called.errors, said(damaged, "moov.mvhd at 24: VexQTmvhdAtom declines 12 bytes"));
    }
    const Called several = call({"outline", "--strict", damaged, movie_});
    EXPECT_EQ(several.status, 1);
    EXPECT_EQ(several.output, "");
}

TEST_F(Commands, StrictReadingEndsAtTheBrandAndSaysWhich) {
    const Called called = call({"outline", "--strict", write("odd.mov", damagedMovie())});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.output, " 'ftyp' (16)\n");
    EXPECT_EQ(called.errors,
              said(path("odd.mov"), "File is NOT a valid QuickTime movie file") +
                  said(path("odd.mov"), "ftyp at 0: major brand 'XAVC' is not accepted, only " +
                                            std::string(kBrands) +
                                            "; reading ended here, as --strict asks"));
}

TEST_F(Commands, StrictChangesNothingForAFileThatIsWhole) {
    EXPECT_EQ(call({"json", "--strict", movie_}).output, call({"json", movie_}).output);
    EXPECT_EQ(call({"json", "--strict", movie_}).errors, "");
}

TEST_F(Commands, AMessageStaysOnItsLineWhateverTheFileSays) {
    const std::string odd =
        write("odd.mov", join({atom("ftyp"_os, {text("a\nb\x1B"), u32(0)}), zeros(8)}));
    const std::string errors = call({"outline", "--strict", odd}).errors;
    EXPECT_EQ(errors.find('\x1B'), std::string::npos);
    EXPECT_EQ(std::ranges::count(errors, '\n'), 2);
}

// MARK: The two readers

TEST_F(Commands, MemoryTakesTheInMemoryReader) {
    // It gives free space another offset, and does not look at an atom at the very end.
    const std::string file =
        write("free.mov", join({smallMovie(), atom("free"_os, {zeros(4)}), atom("free"_os)}));
    EXPECT_EQ(call({"get", file, "free.offsetInFile"}).output, "540\n");
    EXPECT_EQ(call({"get", "--memory", file, "free.offsetInFile"}).output, "532\n");
    EXPECT_EQ(call({"get", file, "free[1].size"}).output, "8\n");
    EXPECT_EQ(call({"get", "--memory", file, "free[1].size"}).status, 1);
}

TEST_F(Commands, ADashIsStandardInputReadIntoMemory) {
    TextOutput out, errors;
    const int input = ::open(movie_.c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(run({"get", "-", "moov.mvhd.duration"}, out, errors, input), 0);
    ::close(input);
    EXPECT_EQ(out.text(), "1200\n");
    EXPECT_EQ(errors.text(), "");
}

TEST(StandardInput, IsNamedInMessages) {
    const Called called = call({"get", "-", "moov.mvhd.duration"});
    EXPECT_EQ(called.status, 1);
    EXPECT_EQ(called.errors,
              "vexqt: standard input: the file at 0: too short for an atom: 0 bytes\n"
              "vexqt: standard input: moov: no 'moov' in the movie, only \n");
}

TEST_F(Commands, APipeIsReadIntoMemory) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    // Both ends in one process, which is no trouble while the movie fits into the pipe.
    const int writer = ::open(path("pipe").c_str(), O_RDWR | O_CLOEXEC);
    const int reader = ::open(path("pipe").c_str(), O_RDONLY | O_CLOEXEC);
    const Bytes movie = smallMovie();
    ASSERT_EQ(::write(writer, movie.data(), movie.size()), static_cast<ssize_t>(movie.size()));
    ::close(writer);
    TextOutput out, errors;
    EXPECT_EQ(run({"get", "-", "moov.mvhd.duration"}, out, errors, reader), 0);
    ::close(reader);
    EXPECT_EQ(out.text(), "1200\n");
}

// MARK: get

TEST_F(Commands, GetPrintsAValueBare) {
    const struct {
        std::string key, value;
    } cases[] = {
        {"isValid", "true"},
        {"ftyp.majorBrand", "qt  "},
        {"ftyp.compatibleBrands", R"(["qt  ", "mp42"])"},
        {"ftyp.compatibleBrands[1]", "mp42"},
        {"moov.mvhd.creationDateTime", "2001-01-01T00:00:00Z"},
        {"moov.mvhd.timeScale", "600"},
        {"moov.mvhd.preferredRate", "1.5"},
        {"moov.mvhd.matrix", "[1, 2, 0, 3, 4, 0, 5, 6, 1]"},
        {"moov.mvhd.matrixYValue", "6"},
        {"moov.mvhd.version", "0"},
        {"moov.mvhd.flags2", "3"},
        {"moov.mvhd.type", "mvhd"},
        {"moov.mvhd.atomName", "Movie Header"},
        {"moov.mvhd.unknownData", "null"},
        {"moov.\u00A9nam.unknownData", "6e616d65"},
        {"moov.trak[soun].tkhd.trackID", "2"},
        {"moov.trak.mdia.mediaType", "vide"},
        {"moov.trak[1].mdia.hdlr.componentName", "Handler"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.key);
        const Called called = call({"get", movie_, each.key});
        EXPECT_EQ(called.status, 0);
        EXPECT_EQ(called.errors, "");
        EXPECT_EQ(called.output, each.value + "\n");
    }
}

TEST_F(Commands, APathThatNamesNothingIsStatusOne) {
    const Called called = call({"get", movie_, "moov.mvhd.timescale"});
    EXPECT_EQ(called.status, 1);
    EXPECT_EQ(called.output, "");
    EXPECT_NE(called.errors.find("did you mean timeScale?"), std::string::npos);
    EXPECT_EQ(call({"show", movie_, "moov.trak[7]"}).status, 1);
    EXPECT_EQ(call({"data", movie_, "moov.trak[7]"}).status, 1);
}

TEST_F(Commands, WhatIsNoPathIsStatusTwo) {
    for (const std::string command : {"get", "show", "data"}) {
        SCOPED_TRACE(command);
        const Called called = call({command, movie_, "moov..mvhd"});
        EXPECT_EQ(called.status, 2);
        EXPECT_EQ(called.output, "");
        EXPECT_EQ(called.errors, said(movie_, "'moov..mvhd' is no path: a name is missing at 6"));
    }
}

// MARK: data

std::string characters(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

TEST_F(Commands, DataWritesTheBytesOfAnAtom) {
    const Called called = call({"data", movie_, "moov.mvhd"});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.errors, "");
    EXPECT_EQ(called.output, characters(movieHeader()));
}

TEST_F(Commands, DataWithoutAPathWritesAllButMediaDataAndFreeSpace) {
    const Bytes movie = smallMovie();
    const Called called = call({"data", movie_});
    const auto bytes = std::span(movie);
    EXPECT_EQ(called.output, characters(join({bytes.first(24), bytes.subspan(36)})));
}

TEST_F(Commands, DataGoesToAFileWhole) {
    const std::string out = write("out.bin", zeros(5000));
    const Called called = call({"data", movie_, "moov.mvhd", "-o", out});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.output, "");
    EXPECT_EQ(readFile(out), movieHeader());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 2)
        << "nothing else is left in the folder";
}

TEST_F(Commands, DataIsNotWrittenWhereAFolderIsMissing) {
    const std::string out = path("none/out.bin");
    const Called called = call({"data", movie_, "-o", out});
    EXPECT_EQ(called.status, 1);
    EXPECT_EQ(called.errors, said(out, "there is no folder " + path("none")));
}

TEST_F(Commands, DataOfMediaDataIsEmptyAndSaysSo) {
    const Called called = call({"data", movie_, "mdat"});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.output, "");
    EXPECT_EQ(called.errors, said(movie_, "mdat: free space and media data have no bytes here"));
}

TEST_F(Commands, DataIsNotWrittenToATerminalUnasked) {
    TerminalOutput out;
    TextOutput errors;
    EXPECT_EQ(run({"data", movie_}, out, errors, -1), 2);
    EXPECT_EQ(out.text, "");
    EXPECT_NE(onTerminal({"data", movie_, "-o", "-"}), "");
}

// MARK: Mistyped names

TEST(MistypedNames, AreTold) {
    const struct {
        std::vector<std::string> words;
        std::string errors;
    } kCases[] = {
        {{"shwo", "clip.mov"},
         "vexqt: no command 'shwo'; did you mean show? (vexqt --help tells more)\n"},
        {{"transcode"}, "vexqt: no command 'transcode' (vexqt --help tells more)\n"},
        {{"set", "clip.mov", "a=1", "--inplace"},
         "vexqt: set: The following argument was not expected: --inplace; did you mean --in-place? "
         "(vexqt set --help tells more)\n"},
        {{"json", "clip.mov", "--frobnicate"},
         "vexqt: json: The following argument was not expected: --frobnicate (vexqt json --help "
         "tells more)\n"},
    };
    for (const auto& [words, errors] : kCases) {
        const Called called = call(words);
        EXPECT_EQ(called.status, 2);
        EXPECT_EQ(called.errors, errors);
        EXPECT_EQ(called.output, "");
    }
}

}  // namespace
}  // namespace vexqt::cli
