// Subtitles and timecodes of another writer: edited, saved in place, and found by it again.
#include <gtest/gtest.h>

#include "testing/files.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/atoms/headers/VexQTgminAtom.h"
#include "vexqt/atoms/headers/VexQTsmhdAtom.h"
#include "vexqt/atoms/headers/VexQTtcmiAtom.h"
#include "vexqt/atoms/headers/VexQTtextAtom.h"
#include "vexqt/atoms/headers/VexQTvmhdAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTtmcdSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTtx3gAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

/// A movie that lies in a folder of its own, as it was read last.
class Movie {
public:
    Movie(const std::string& name, const std::vector<std::string>& arguments)
        : path_(makeMovie(folder_, name, arguments)), media_(packetDigest(path_)) {
        read();
    }
    /// Saves, compares the media with what they were, and reads what was saved.
    void saveAndReadAgain() {
        std::error_code error;
        EXPECT_TRUE(asset_->writeInPlaceWithError(error)) << error.message();
        EXPECT_EQ(packetDigest(path_), media_);
        read();
    }
    /// The atom at a key path below the media information of the first track of a media type.
    template <class T>
    T& find(OSType mediaType, const std::string& path) {
        const VexQTAtom* track = asset_->moovAtom()->trackAtomForMediaType(mediaType, 0);
        if (track == nullptr) throw std::runtime_error("no track of that media type");
        const Value atom = track->valueForKeyPath("mdia.minf." + path);
        if (atom.isAbsent()) throw std::runtime_error("no atom at " + path);
        return dynamic_cast<T&>(*std::get<VexQTAtom*>(atom));
    }
    const std::filesystem::path& path() const { return path_; }

private:
    void read() {
        std::error_code error;
        asset_ = VexQTAsset::initWithURL(path_, error);
        ASSERT_TRUE(asset_) << error.message();
    }

    TemporaryFolder folder_;
    std::filesystem::path path_;
    std::string media_;
    std::unique_ptr<VexQTAsset> asset_;
};

/// A subtitle's description is made to end with the font table: a bit rate behind it would be read
/// for fonts.
std::vector<std::string> subtitled() {
    return {"-f",          "lavfi", "-i",   "testsrc=size=64x48:rate=10:duration=2",
            "-f",          "srt",   "-i",   "data:,1\n00:00:00,000 --> 00:00:01,000\nHello\n",
            "-c:v",        "mpeg4", "-c:s", "mov_text",
            "-write_btrt", "0"};
}

/// The movie's subtitles as a script of styles and texts.
std::string script(const Movie& movie) {
    const Outcome outcome = run({"ffmpeg", "-v", "error", "-nostdin", "-i", movie.path().string(),
                                 "-map", "0:s", "-f", "ass", "-"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return outcome.output;
}

std::vector<std::string> timecoded() {
    return {"-f",
            "lavfi",
            "-i",
            "testsrc=size=64x48:rate=25:duration=2",
            "-c:v",
            "mpeg4",
            "-timecode",
            "01:02:03:04",
            "-metadata:s:v",
            "reel_name=Tape7"};
}

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(FfmpegSubtitles, KeepTheirTextUnderAnEditedStyle) {
    Movie movie("subtitles.mp4", subtitled());
    ASSERT_TRUE(has(script(movie), "Default,Arial,16,&Hffffff,")) << script(movie);
    auto& text = movie.find<VexQTtx3gAtom>("sbtl"_os, "stbl.stsd.sbtl.tx3g");
    text.setTextBoxTop(3);
    text.setTextBoxLeft(4);
    text.setTextBoxBottom(45);
    text.setTextBoxRight(60);
    text.setFontSize(21);
    text.setFontColor(Color::rgb(1, 0.4, 0));
    auto& fonts = movie.find<VexQTftabAtom>("sbtl"_os, "stbl.stsd.sbtl.tx3g.ftab");
    ASSERT_EQ(fonts.fontTableEntries().size(), 1U);
    fonts.fontTableEntries()[0].setFontName("Roman");
    movie.saveAndReadAgain();

    EXPECT_TRUE(has(script(movie), "Default,Roman,21,&H66ff,")) << script(movie);
    EXPECT_TRUE(has(script(movie), "Hello"));
    EXPECT_TRUE(has(probe(movie.path(), "stream=codec_tag_string"), "tx3g"));
    const auto& again = movie.find<VexQTtx3gAtom>("sbtl"_os, "stbl.stsd.sbtl.tx3g");
    EXPECT_EQ(again.textBoxTop(), 3);
    EXPECT_EQ(again.textBoxLeft(), 4);
    EXPECT_EQ(again.textBoxBottom(), 45);
    EXPECT_EQ(again.textBoxRight(), 60);
}

TEST(FfmpegSubtitles, TakeALongerFontNameWhenTheSizesGrow) {
    Movie movie("subtitles.mp4", subtitled());
    auto& fonts = movie.find<VexQTftabAtom>("sbtl"_os, "stbl.stsd.sbtl.tx3g.ftab");
    fonts.fontTableEntries()[0].setFontName("Times New Roman");
    fonts.increaseSizeBy(10);
    movie.saveAndReadAgain();
    EXPECT_TRUE(has(script(movie), "Default,Times New Roman,16,")) << script(movie);
}

TEST(FfmpegSubtitles, AreATextMediaInAMovieOfTheOlderKind) {
    Movie movie("subtitles.mov", subtitled());
    auto& base = movie.find<VexQTgminAtom>("text"_os, "gmhd.gmin");
    base.setGraphicsMode(0x24);
    base.setOpColor1(0x1234);
    base.setBalance(0.25);
    movie.find<VexQTtextAtom>("text"_os, "gmhd.text").setMatrixXValue(12.5);
    movie.find<VexQTvmhdAtom>("vide"_os, "vmhd").setGraphicsMode(0x100);
    movie.find<VexQTSampleDescription>("text"_os, "stbl.stsd.text").setDataReferenceIndex(1);
    movie.saveAndReadAgain();

    EXPECT_TRUE(has(probe(movie.path(), "stream=codec_tag_string"), "text"));
    EXPECT_TRUE(has(script(movie), "Hello"));
    const auto& again = movie.find<VexQTgminAtom>("text"_os, "gmhd.gmin");
    EXPECT_EQ(again.graphicsMode(), 0x24);
    EXPECT_EQ(again.opColor1(), 0x1234);
    EXPECT_EQ(again.balance(), 0.25);
    EXPECT_EQ(movie.find<VexQTtextAtom>("text"_os, "gmhd.text").matrixXValue(), 12.5);
    EXPECT_EQ(movie.find<VexQTvmhdAtom>("vide"_os, "vmhd").graphicsMode(), 0x100);
}

TEST(FfmpegTimecode, IsCountedAnewAfterAnEdit) {
    Movie movie("timecode.mov", timecoded());
    const std::string tags = "stream_tags=timecode,reel_name";
    ASSERT_TRUE(has(probe(movie.path(), tags), "TAG:timecode=01:02:03:04"));
    ASSERT_TRUE(has(probe(movie.path(), tags), "TAG:reel_name=Tape7"));
    auto& entry = movie.find<VexQTtmcdSampleDescription>("tmcd"_os, "stbl.stsd.tmcd");
    EXPECT_EQ(entry.numFrames(), 25);
    EXPECT_EQ(entry.timeScale(), 25 * entry.frameDuration());
    EXPECT_EQ(entry.sourceName(), "Tape7");
    entry.setTimeScale(30 * entry.frameDuration());
    entry.setNumFrames(30);
    entry.setSourceName("Reel 0042 B");
    auto& style = movie.find<VexQTtcmiAtom>("tmcd"_os, "gmhd.tmcd.tcmi");
    EXPECT_EQ(style.fontName(), "Lucida Grande");
    style.setFontName("Monaco");
    style.setTextSize(18);
    style.setTextColor(Color::rgb(0.5, 0.25, 0.125));
    movie.find<VexQTgminAtom>("tmcd"_os, "gmhd.gmin").setGraphicsMode(0x20);
    movie.saveAndReadAgain();

    // 93079 frames, counted 30 a second.
    EXPECT_TRUE(has(probe(movie.path(), tags), "TAG:timecode=00:51:42:19"))
        << probe(movie.path(), tags);
    EXPECT_TRUE(has(probe(movie.path(), tags), "TAG:reel_name=Reel 0042 B"));
    const auto& again = movie.find<VexQTtcmiAtom>("tmcd"_os, "gmhd.tmcd.tcmi");
    EXPECT_EQ(again.fontName(), "Monaco");
    EXPECT_EQ(again.textSize(), 18);
    EXPECT_EQ(again.textColor(), Color::rgb(0.5, 0.25, 0.125));
    EXPECT_EQ(movie.find<VexQTgminAtom>("tmcd"_os, "gmhd.gmin").graphicsMode(), 0x20);
}

TEST(FfmpegTimecode, LosesItsSourceWithAnEmptyName) {
    Movie movie("timecode.mov", timecoded());
    movie.find<VexQTtmcdSampleDescription>("tmcd"_os, "stbl.stsd.tmcd").setSourceName("");
    movie.saveAndReadAgain();
    const std::string tags = probe(movie.path(), "stream_tags=timecode,reel_name");
    EXPECT_FALSE(has(tags, "reel_name")) << tags;
    EXPECT_TRUE(has(tags, "TAG:timecode=01:02:03:04")) << tags;
}

TEST(FfmpegTimecode, IsFoundInAMovieOfTheNewerKind) {
    Movie movie("timecode.mp4", timecoded());
    auto& entry = movie.find<VexQTtmcdSampleDescription>("tmcd"_os, "stbl.stsd.tmcd");
    entry.setTimeScale(30 * entry.frameDuration());
    entry.setNumFrames(30);
    movie.saveAndReadAgain();
    const std::string tags = probe(movie.path(), "stream_tags=timecode");
    EXPECT_TRUE(has(tags, "TAG:timecode=00:51:42:19")) << tags;
}

TEST(FfmpegSound, KeepsItsSamplesUnderAnEditedBalance) {
    Movie movie("sound.mov",
                {"-f", "lavfi", "-i", "sine=frequency=440:duration=1", "-c:a", "pcm_s16le"});
    movie.find<VexQTsmhdAtom>("soun"_os, "smhd").setBalance(-1.25F);
    movie.saveAndReadAgain();
    // A negative balance reads one lower than it was written.
    EXPECT_EQ(movie.find<VexQTsmhdAtom>("soun"_os, "smhd").balance(), -2.25F);
    EXPECT_TRUE(has(probe(movie.path(), "stream=codec_name"), "pcm_s16le"));
}

}  // namespace
}  // namespace vexqt
