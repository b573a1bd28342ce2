// The example programs, run on movies made here; ffprobe says whether what they tell is true.
#include <gtest/gtest.h>

#include <sstream>

#include "testing/files.h"

namespace vexqt {
namespace {

using namespace testing;

class Examples : public ::testing::Test {
protected:
    /// A second of pictures and sound, several samples in a chunk, with a place of recording.
    std::filesystem::path movie(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments = {
            "-f",        "lavfi",
            "-i",        "testsrc=size=64x48:rate=25:duration=1",
            "-f",        "lavfi",
            "-i",        "sine=frequency=440:sample_rate=48000:duration=1",
            "-c:v",      "mpeg4",
            "-c:a",      "aac",
            "-metadata", "location=+47.4925+019.0513/"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return makeMovie(folder_, "clip.mov", arguments);
    }
    Outcome example(const std::string& name, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), VEXQT_EXAMPLES "/" + name);
        return run(arguments);
    }
    /// What ffprobe prints: a line a value or packet, empty ones and commas at the end left out.
    static std::string probed(const std::filesystem::path& movie, const std::string& stream,
                              const std::string& entries) {
        std::istringstream lines(run({"ffprobe", "-v", "error", "-select_streams", stream,
                                      "-show_entries", entries, "-of", "csv=p=0", movie.string()})
                                     .output);
        std::string told;
        for (std::string line; std::getline(lines, line);) {
            while (!line.empty() && line.back() == ',') line.pop_back();
            if (!line.empty()) told += line + '\n';
        }
        return told;
    }

    TemporaryFolder folder_;
};

TEST_F(Examples, ListTracksTellsNumberKindLengthAndFormat) {
    const Outcome outcome = example("list_tracks", {movie().string()});
    EXPECT_EQ(outcome.output, "1: vide, 1.000 s, mp4v\n2: soun, 1.021 s, mp4a\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(Examples, ListTracksSaysWhyAFileIsNotOpened) {
    const Outcome outcome = example("list_tracks", {"/no/such/file"});
    EXPECT_EQ(outcome.errors, "/no/such/file: No such file or directory\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(Examples, SetTimeScaleKeepsTheMovieAsLongAsItWas) {
    const auto before = movie();
    const auto after = folder_ / "fixed.mov";
    ASSERT_EQ(example("set_time_scale", {before.string(), "90000", after.string()}).status, 0);
    for (const char* stream : {"v", "a"})
        EXPECT_EQ(probed(after, stream, "packet=pts_time,size"),
                  probed(before, stream, "packet=pts_time,size"));
    // 32 bits of time scale, at 12 bytes behind the header of the movie header.
    const Bytes bytes = readFile(after);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::size_t header = text.find("mvhd");
    ASSERT_NE(header, text.npos);
    EXPECT_EQ(text.substr(header + 16, 4), std::string_view("\0\x01\x5F\x90", 4));
}

TEST_F(Examples, SampleTablePlacesEverySampleWhereItsBytesAre) {
    const auto clip = movie();
    for (const char* stream : {"0", "1"}) {
        SCOPED_TRACE(stream);
        std::istringstream lines(example("sample_table", {clip.string(), stream}).output);
        std::string line;
        std::getline(lines, line);
        EXPECT_EQ(line, "sample,time,duration,offset,size");
        std::string placed;
        while (std::getline(lines, line)) {
            // Its last two columns are the offset and the size; ffprobe has them the other way.
            const std::size_t size = line.rfind(',') + 1;
            const std::size_t offset = line.rfind(',', size - 2) + 1;
            placed += line.substr(size) + ',' + line.substr(offset, size - 1 - offset) + '\n';
        }
        EXPECT_EQ(placed, probed(clip, stream, "packet=size,pos"));
    }
}

TEST_F(Examples, StripLocationRemovesClassicAnnotations) {
    const auto before = movie();
    const auto after = folder_ / "clean.mov";
    ASSERT_EQ(probed(before, "v", "format_tags=location"), "+47.4925+019.0513/\n");
    EXPECT_EQ(example("strip_location", {before.string(), after.string()}).output, "1 removed\n");
    EXPECT_EQ(probed(after, "v", "format_tags=location"), "");
    EXPECT_EQ(packetDigest(after), packetDigest(before));
}

TEST_F(Examples, StripLocationRemovesKeyedItems) {
    const auto before = movie({"-movflags", "use_metadata_tags", "-metadata", "title=Kept"});
    const auto after = folder_ / "clean.mov";
    // One in the movie's own language and one without a language.
    EXPECT_EQ(example("strip_location", {before.string(), after.string()}).output, "2 removed\n");
    EXPECT_EQ(probed(after, "v", "format_tags=location,title"), "Kept\n");
    EXPECT_EQ(packetDigest(after), packetDigest(before));
}

TEST_F(Examples, DelayTrackLetsATrackBeginLater) {
    const auto clip = movie();
    ASSERT_EQ(probed(clip, "a", "stream=start_time"), "0.000000\n");
    const Outcome outcome = example("delay_track", {clip.string(), "1", "250"});
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(probed(clip, "a", "stream=start_time"), "0.250000\n");
    EXPECT_EQ(probed(clip, "v", "stream=start_time"), "0.000000\n");
}

TEST_F(Examples, DelayTrackSaysWhichStepLedNowhere) {
    const Outcome outcome = example("delay_track", {movie().string(), "7", "250"});
    EXPECT_NE(outcome.errors.find("trak"), std::string::npos) << outcome.errors;
    EXPECT_EQ(outcome.status, 1);
}

#ifdef VEXQT_VIEWER
TEST_F(Examples, ViewerOpensItsWindowAndStaysThere) {
    const auto clip = movie();
    const Outcome outcome = run({"env", "QT_QPA_PLATFORM=offscreen", "timeout", "2",
                                 VEXQT_EXAMPLES "/viewer", clip.string()});
    // Qt itself says a word or two about a machine without a screen.
    EXPECT_EQ(outcome.errors.find("viewer"), std::string::npos) << outcome.errors;
    EXPECT_EQ(outcome.status, 124) << outcome.errors;
}
#endif

}  // namespace
}  // namespace vexqt
