// The program as others run it: its streams, its exit status, and movies that ffmpeg made.
#include <sys/stat.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/apps/vexqt/calling.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms

const std::string kProgram = VEXQT_PROGRAM;

Outcome vexqt(std::vector<std::string> arguments, std::string_view input = {}) {
    arguments.insert(arguments.begin(), kProgram);
    return testing::run(arguments, input);
}

/// A line of the shell, with the program as $V and the folder as $D.
Outcome shell(const TemporaryFolder& folder, const std::string& line) {
    return testing::run({"env", "V=" + kProgram, "D=" + folder.path().string(), "bash", "-c",
                         "set -o pipefail; " + line});
}

std::string characters(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

using Program = CommandTest;

TEST_F(Program, PrintsOnStandardOutputAndComplainsOnStandardError) {
    const Outcome outcome = vexqt({"outline", movie_, path("none.mov")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.starts_with(" 'ftyp' (24)\n 'mdat' (12)\n"));
    EXPECT_EQ(outcome.errors, said(path("none.mov"), "No such file or directory"));
}

TEST_F(Program, HasAStatusForEveryOutcome) {
    EXPECT_EQ(vexqt({"get", movie_, "moov.mvhd.timeScale"}).status, 0);
    EXPECT_EQ(vexqt({"get", path("none.mov"), "moov.mvhd.timeScale"}).status, 1);
    EXPECT_EQ(vexqt({"get", movie_}).status, 2);
    EXPECT_EQ(vexqt({}).status, 2);
    EXPECT_EQ(vexqt({"--help"}).status, 0);
}

TEST_F(Program, ReadsStandardInput) {
    const Outcome outcome = vexqt({"json", "--lines", "-"}, characters(smallMovie()));
    EXPECT_EQ(outcome.status, 0);
    const auto document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ(document["file"], "-");
    EXPECT_EQ(document["rootAtoms"].size(), 3U);
}

TEST_F(Program, ReadsAPipeOfTheShell) {
    const Outcome outcome = shell(folder_, "$V get <(cat $D/clip.mov) moov.mvhd.timeScale");
    EXPECT_EQ(outcome.output, "600\n");
    EXPECT_EQ(outcome.status, 0);
}

/// Enough JSON for several pipes and buffers.
Bytes longMovie() {
    return join({atom("ftyp"_os, {text("qt  "), u32(0)}),
                 atom("moov"_os, {atom("abcd"_os, {zeros(4'000'000)}), zeros(1)})});
}

TEST_F(Program, AClosedPipeEndsItQuietly) {
    write("long.mov", longMovie());
    const Outcome outcome = shell(folder_, "$V json $D/long.mov | head -c 10");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, "{\n  \"file\"");
}

TEST_F(Program, AFullDiskIsAFailure) {
    write("long.mov", longMovie());
    for (const std::string command :
         {"json $D/long.mov", "outline $D/clip.mov", "get $D/clip.mov moov.mvhd.timeScale",
          "show $D/clip.mov", "data $D/clip.mov", "--help", "set --help", "--version"}) {
        SCOPED_TRACE(command);
        const Outcome outcome = shell(folder_, "$V " + command + " > /dev/full");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.errors, "vexqt: standard output: No space left on device\n");
    }
}

TEST_F(Program, AFullDiskFailsTheCopy) {
    // The movie's bytes fit below the limit, in blocks of 1024 bytes, and those of the copy do not.
    write("long.mov", longMovie());
    const Outcome outcome = shell(
        folder_, "trap '' XFSZ; ulimit -f 100; $V set $D/long.mov moov.abcd.version=1 -o $D/o.mov");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              said(path("o.mov"), "copying " + path("long.mov") + ": File too large"));
    EXPECT_FALSE(std::filesystem::exists(path("o.mov")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 2);
}

TEST_F(Program, ClosedStreamsAreNoDanger) {
    EXPECT_EQ(shell(folder_, "$V outline $D/clip.mov >&-").status, 1);
    EXPECT_EQ(shell(folder_, "$V outline $D/none.mov 2>&-").status, 1);
    EXPECT_EQ(shell(folder_, "$V outline - <&-").status, 1);
    // None of them is taken for the movie.
    EXPECT_EQ(shell(folder_,
                    "$V set $D/clip.mov moov.mvhd.timeScale=600 --in-place "
                    "<&- >&- 2>&-")
                  .status,
              0);
    EXPECT_EQ(readFile(movie_), smallMovie());
}

TEST_F(Program, ColoursAreForTerminals) {
    const auto hasColours = [](const Outcome& outcome) {
        return outcome.output.find("\x1B[") != std::string::npos;
    };
    EXPECT_FALSE(hasColours(vexqt({"show", movie_})));
    EXPECT_TRUE(hasColours(vexqt({"show", movie_, "--color=always"})));
    EXPECT_FALSE(hasColours(vexqt({"show", movie_, "--color", "never"})));
    const std::string script = "script --quiet --return --command '$V show $D/clip.mov";
    EXPECT_TRUE(
        hasColours(shell(folder_, "export TERM=xterm; unset NO_COLOR; " + script + "' /dev/null")));
    EXPECT_FALSE(
        hasColours(shell(folder_, "export TERM=xterm; " + script + " --color=never' /dev/null")));
    EXPECT_FALSE(
        hasColours(shell(folder_, "export TERM=xterm NO_COLOR=1; " + script + "' /dev/null")));
    EXPECT_FALSE(hasColours(shell(folder_, "export TERM=dumb; " + script + "' /dev/null")));
}

TEST_F(Program, ManyFilesGiveALineEach) {
    std::vector<std::string> arguments = {"json", "--lines"};
    for (int i = 0; i < 200; ++i)
        arguments.push_back(write("clip" + std::to_string(i) + ".mov", smallMovie()));
    const Outcome outcome = vexqt(arguments);
    EXPECT_EQ(outcome.status, 0);
    std::istringstream lines(outcome.output);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const auto document = nlohmann::json::parse(line);
        EXPECT_EQ(document["file"], path("clip" + std::to_string(count) + ".mov"));
    }
    EXPECT_EQ(count, 200);
}

// MARK: Movies of ffmpeg

const std::vector<std::string> kSources = {
    "-f",       "lavfi", "-i",   "testsrc=size=64x48:rate=10",
    "-f",       "lavfi", "-i",   "sine=frequency=440",
    "-t",       "2",     "-c:v", "mpeg4",
    "-bf",      "2",     "-c:a", "aac",
    "-shortest"};

std::vector<std::string> with(std::vector<std::string> arguments,
                              const std::vector<std::string>& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

class ProgramOnFfmpegMovies : public ::testing::TestWithParam<const char*> {
protected:
    std::filesystem::path movie() const {
        const std::string format = GetParam();
        std::vector<std::string> arguments = kSources;
        if (format == "faststart.mov") arguments = with(arguments, {"-movflags", "+faststart"});
        if (format == "fragmented.mp4")
            arguments = with(arguments, {"-movflags", "+frag_keyframe+empty_moov"});
        return makeMovie(folder_, format, arguments);
    }

    TemporaryFolder folder_;
};

TEST_P(ProgramOnFfmpegMovies, JsonOfBothReadersIsValidAndTellsTheSame) {
    const std::string file = movie().string();
    const Outcome fromFile = vexqt({"json", file});
    ASSERT_EQ(fromFile.status, 0);
    EXPECT_EQ(fromFile.errors, "");
    const auto document = nlohmann::json::parse(fromFile.output);
    EXPECT_EQ(document["isValid"], true);
    EXPECT_FALSE(document.contains("problems"));
    const auto lines = nlohmann::json::parse(vexqt({"json", "--lines", file}).output);
    EXPECT_EQ(lines, document);

    const auto fromMemory = nlohmann::json::parse(vexqt({"json", "--memory", file}).output);
    const auto movieOf = [](const nlohmann::json& of) {
        for (const auto& root : of["rootAtoms"])
            if (root["type"] == "moov") return root;
        return nlohmann::json();
    };
    EXPECT_EQ(movieOf(fromMemory), movieOf(document));
}

// Extension atoms of sample descriptions have no parent and stand at the left of the outline.
TEST_P(ProgramOnFfmpegMovies, OutlineAndJsonTellOfTheSameAtoms) {
    const std::string file = movie().string();
    const auto document = nlohmann::json::parse(vexqt({"json", file}).output);
    std::string outline;
    const auto tell = [&](const nlohmann::json& atom, const auto& self) -> void {
        outline += "'" + atom["type"].get<std::string>() + "'\n";
        for (const auto& child : atom["children"]) self(child, self);
    };
    for (const auto& root : document["rootAtoms"]) tell(root, tell);
    std::istringstream lines(vexqt({"outline", file}).output);
    std::string types;
    for (std::string line; std::getline(lines, line);)
        types += line.substr(line.find('\''), line.rfind(" (") - line.find('\'')) + "\n";
    EXPECT_EQ(types, outline);
}

TEST_P(ProgramOnFfmpegMovies, EveryAtomIsShownByThePathThatShowTells) {
    const std::string file = movie().string();
    const Outcome shown = vexqt({"show", "--recursive", file});
    ASSERT_EQ(shown.status, 0);
    std::istringstream lines(shown.output);
    std::vector<std::string> paths;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("  path ")) continue;
        const std::string path = line.substr(line.find_first_not_of(' ', 7));
        SCOPED_TRACE(path);
        EXPECT_NE(call({"show", file, path}).output.find(line + "\n"), std::string::npos);
        EXPECT_EQ(std::ranges::count(paths, path), 0);
        paths.push_back(path);
    }
    const std::string outline = vexqt({"outline", file}).output;
    EXPECT_EQ(static_cast<std::ptrdiff_t>(paths.size()), std::ranges::count(outline, '\n'));
}

TEST_P(ProgramOnFfmpegMovies, EveryValueOfTheJsonIsWhatGetPrints) {
    const std::string file = movie().string();
    const auto document = nlohmann::json::parse(vexqt({"json", file}).output);
    const auto compare = [&](const nlohmann::json& atom, const std::string& path) {
        for (const auto& [name, value] : atom["properties"].items()) {
            SCOPED_TRACE(path + "." + name);
            const std::string printed = call({"get", file, path + "." + name}).output;
            const std::string bare = printed.substr(0, printed.size() - 1);
            if (value.is_string()) {
                EXPECT_EQ(bare, value.get<std::string>());
            } else {
                EXPECT_EQ(nlohmann::json::parse(bare), value);
            }
        }
    };
    const auto walk = [&](const nlohmann::json& atoms, const std::string& path,
                          const auto& self) -> void {
        std::map<std::string, int> ordinals;
        for (const auto& atom : atoms) {
            const auto type = atom["type"].get<std::string>();
            const int ordinal = ordinals[type]++;
            if (type.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789") != std::string::npos)
                continue;
            const std::string here =
                path + (path.empty() ? "" : ".") + type + "[" + std::to_string(ordinal) + "]";
            compare(atom, here);
            self(atom["children"], here, self);
        }
    };
    walk(document["rootAtoms"], "", walk);
}

INSTANTIATE_TEST_SUITE_P(Formats, ProgramOnFfmpegMovies,
                         ::testing::Values("plain.mov", "faststart.mov", "plain.mp4",
                                           "fragmented.mp4", "plain.m4v"),
                         [](const auto& format) {
                             std::string name = format.param;
                             std::ranges::replace(name, '.', '_');
                             return name;
                         });

class ProgramOnFfmpegMovie : public CommandTest {};

TEST_F(ProgramOnFfmpegMovie, AnEditedMovieDecodesToTheSameFrames) {
    const auto movie = makeMovie(folder_, "a.mov", kSources);
    const std::string before = decodedDigest(movie);
    const std::string copy = path("b.mov");
    const Outcome outcome =
        vexqt({"set", movie.string(), "moov.mvhd.creationDateTime=2024-05-01T12:00:00Z",
               "moov.trak[soun].tkhd.alternateGroup=3", "-o", copy});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(decodedDigest(copy), before);
    EXPECT_NE(probe(copy, "format_tags=creation_time").find("2024-05-01T12:00:00"),
              std::string::npos);

    EXPECT_EQ(vexqt({"save", copy}).status, 0);
    EXPECT_EQ(decodedDigest(copy), before);
}

TEST_F(ProgramOnFfmpegMovie, ATrackThatIsRemovedIsGone) {
    const auto movie = makeMovie(folder_, "a.mov", kSources);
    EXPECT_EQ(vexqt({"remove", movie.string(), "moov.trak[soun]", "--in-place"}).status, 0);
    const std::string streams = probe(movie, "stream=codec_type");
    EXPECT_EQ(streams, "codec_type=video\n");
}

TEST_F(ProgramOnFfmpegMovie, ATrackOfAnotherMovieIsInserted) {
    const auto movie = makeMovie(folder_, "a.mov", kSources);
    const std::string track = path("track.bin");
    ASSERT_EQ(vexqt({"data", movie.string(), "moov.trak[vide]", "-o", track}).status, 0);
    ASSERT_EQ(
        vexqt({"insert", movie.string(), "moov", track, "--after", "trak", "--in-place"}).status,
        0);
    EXPECT_EQ(probe(movie, "stream=codec_type"),
              "codec_type=video\ncodec_type=video\ncodec_type=audio\n");
}

TEST_F(ProgramOnFfmpegMovie, AnExtensionOfASampleDescriptionIsEditedAndRemoved) {
    // Such an atom does not know its parent.
    const auto movie = makeMovie(folder_, "a.mov", kSources);
    const std::string entry = "moov.trak[vide].mdia.minf.stbl.stsd.vide";
    for (const std::vector<std::string>& form :
         {std::vector<std::string>{}, std::vector<std::string>{"--exact"}}) {
        const std::string copy = path("b.mov");
        EXPECT_EQ(vexqt(with({"set", movie.string(), entry + ".pasp.hSpacing=4", "-o", copy}, form))
                      .status,
                  0);
        EXPECT_EQ(vexqt({"get", copy, entry + ".pasp.hSpacing"}).output, "4\n");
        EXPECT_EQ(vexqt(with({"remove", copy, entry + ".pasp", "--in-place"}, form)).status, 0);
        EXPECT_EQ(vexqt({"show", copy, entry + ".pasp"}).status, 1);
        EXPECT_EQ(vexqt({"show", copy, entry + ".esds"}).status, 0);
        EXPECT_EQ(decodedDigest(copy), decodedDigest(movie));
    }
}

}  // namespace
}  // namespace vexqt::cli
