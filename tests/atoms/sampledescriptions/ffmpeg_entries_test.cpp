// Sample descriptions of another writer: read, written back, edited, saved in place, and understood
// by that other one with the new values and the same media.
#include <gtest/gtest.h>

#include <functional>

#include "testing/files.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/atoms/headers/VexQTclapAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTchanAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTsounSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTvideSampleDescription.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

using Words = std::vector<std::string>;
Words source(const std::string& name, const Words& more) {
    Words words = {"-f", "lavfi", "-i", name};
    words.insert(words.end(), more.begin(), more.end());
    return words;
}
Words picture(const std::string& size, const Words& more) {
    return source("testsrc=size=" + size + ":rate=10:duration=0.5", more);
}
Words tone(const Words& more) { return source("sine=frequency=440:duration=0.5", more); }
Words stereo(const Words& more) {
    return source("aevalsrc=sin(440*2*PI*t)|sin(550*2*PI*t):c=stereo:d=0.5", more);
}
const Words kColours = {"-color_primaries", "bt709", "-color_trc", "bt709",
                        "-colorspace",      "bt709", "-movflags",  "write_colr"};
Words operator+(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

/// What is read, from the entry on, and how it is edited.
using Edits = std::vector<std::pair<std::string, Value>>;

struct Movie {
    std::string name;
    Words arguments;
    std::string extensions;  ///< The entry's children before the edits.
    Edits edits;
    std::string probed;  ///< What ffprobe is asked of the stream.
    std::string before, after;
};

void PrintTo(const Movie& movie, std::ostream* out) { *out << movie.name; }

const Movie kMovies[] = {
    {.name = "AvcAspectRatio",
     .arguments = picture(
         "64x48", Words{"-c:v", "libx264", "-pix_fmt", "yuv420p", "-vf", "setsar=4/3"} + kColours),
     .extensions = "avcC colr pasp",
     .edits = {{"pasp.hSpacing", 64}, {"pasp.vSpacing", 45}, {"compressorName", "edited"}},
     .probed = "stream=sample_aspect_ratio:stream_tags=encoder",
     .before = "sample_aspect_ratio=4:3\nTAG:encoder=Lavc",
     .after = "sample_aspect_ratio=64:45\nTAG:encoder=edited\n"},
    {.name = "ProResAspectRatioAndFields",
     .arguments = picture("64x48", Words{"-c:v", "prores_ks", "-pix_fmt", "yuv422p10le", "-vf",
                                         "setsar=4/3,setfield=tff", "-flags", "+ildct"} +
                                       kColours),
     .extensions = "fiel colr pasp",
     .edits = {{"pasp.hSpacing", 8}, {"pasp.vSpacing", 9}, {"fiel.fieldDominance", 6}},
     .probed = "stream=sample_aspect_ratio,field_order",
     .before = "sample_aspect_ratio=4:3\nfield_order=tb\n",
     .after = "sample_aspect_ratio=8:9\nfield_order=bb\n"},
    {.name = "UncompressedSizeAndColours",
     .arguments = picture("720x486", Words{"-c:v", "v210", "-pix_fmt", "yuv422p10le"} + kColours),
     .extensions = "fiel colr pasp clap",
     .edits = {{"height", 480},
               {"clap.apertureHeight_N", 472},
               {"colr.primariesIndex", 9},
               {"colr.transferFunctionIndex", 16},
               {"colr.matrixIndex", 6}},
     .probed = "stream=width,height,color_primaries,color_transfer,color_space",
     .before = "width=720\nheight=486\ncolor_space=bt709\ncolor_transfer=bt709\n"
               "color_primaries=bt709\n",
     .after = "width=720\nheight=480\ncolor_space=smpte170m\ncolor_transfer=smpte2084\n"
              "color_primaries=bt2020\n"},
    {.name = "SoundVersion0Rate",
     .arguments = tone({"-c:a", "pcm_s16le"}),
     .extensions = "chan",
     .edits = {{"sampleRate", 48000.0}},
     .probed = "stream=codec_name,sample_rate",
     .before = "codec_name=pcm_s16le\nsample_rate=44100\n",
     .after = "codec_name=pcm_s16le\nsample_rate=48000\n"},
    {.name = "SoundVersion0MadeVersion1",
     .arguments = stereo({"-c:a", "pcm_s16le"}),
     .extensions = "chan",
     .edits = {{"soundVersion", 1},
               {"samplesPerPacket", 1},
               {"bytesPerPacket", 2},
               {"bytesPerFrame", 4},
               {"bytesPerSample", 2}},
     .probed = "stream=codec_name,channels,channel_layout",
     .before = "codec_name=pcm_s16le\nchannels=2\nchannel_layout=stereo\n",
     .after = "codec_name=pcm_s16le\nchannels=2\nchannel_layout=stereo\n"},
    {.name = "SoundVersion1ByteOrder",
     .arguments = tone({"-c:a", "pcm_s24le"}),
     .extensions = "wave chan",
     .edits = {{"wave.enda.littleEndian", false}},
     .probed = "stream=codec_name",
     .before = "codec_name=pcm_s24le\n",
     .after = "codec_name=pcm_s24be\n"},
    {.name = "SoundVersion2RateAndFlags",
     .arguments = tone({"-c:a", "pcm_s16le", "-ar", "96000"}),
     .extensions = "chan",
     .edits = {{"audioSampleRate", 88200.0}, {"formatSpecificFlags", 14}},
     .probed = "stream=codec_name,sample_rate",
     .before = "codec_name=pcm_s16le\nsample_rate=96000\n",
     .after = "codec_name=pcm_s16be\nsample_rate=88200\n"},
    {.name = "AacVendor",
     .arguments = tone({"-c:a", "aac"}),
     .extensions = "wave chan",
     .edits = {{"vendor", std::uint32_t{"abcd"_os}}},
     .probed = "stream=codec_name,sample_rate:stream_tags=vendor_id",
     .before = "codec_name=aac\nsample_rate=44100\nTAG:vendor_id=[0][0][0][0]\n",
     .after = "codec_name=aac\nsample_rate=44100\nTAG:vendor_id=abcd\n"},
    {.name = "MultichannelLayout",
     .arguments = source("aevalsrc=sin(440*2*PI*t)|0|0|0|0|0:c=5.1:d=0.5", {"-c:a", "pcm_s16le"}),
     .extensions = "chan",
     .edits = {{"chan.channelBitmap", 0x60F}},
     .probed = "stream=channels,channel_layout",
     .before = "channels=6\nchannel_layout=5.1\n",
     .after = "channels=6\nchannel_layout=5.1(side)\n"},
};

std::string nameOf(const ::testing::TestParamInfo<Movie>& tested) { return tested.param.name; }

/// The table of the first track.
VexQTAtom& tableOf(const VexQTAsset& asset) {
    return *std::get<VexQTAtom*>(asset.valueForKeyPath("moov.trak.mdia.minf.stbl.stsd"));
}
VexQTAtom& entryOf(const VexQTAsset& asset) { return *tableOf(asset).children().at(0); }

void edit(VexQTAtom& entry, const std::string& path, const Value& value) {
    VexQTAtom* atom = &entry;
    const std::size_t point = path.rfind('.');
    if (point != std::string::npos)
        atom = std::get<VexQTAtom*>(entry.valueForKeyPath(path.substr(0, point)));
    atom->setValueForKey(value, path.substr(point + 1));
}

class FfmpegEntries : public ::testing::TestWithParam<Movie> {};
INSTANTIATE_TEST_SUITE_P(SampleDescriptions, FfmpegEntries, ::testing::ValuesIn(kMovies), nameOf);

TEST_P(FfmpegEntries, AreWrittenBackByteForByte) {
    const TemporaryFolder folder;
    const auto path = makeMovie(folder, "movie.mov", GetParam().arguments);
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(path, error);
    VexQTAtom& table = tableOf(*asset);
    std::string extensions;
    for (const auto& extension : entryOf(*asset).children())
        extensions += (extensions.empty() ? "" : " ") + extension->atomTypeString();
    EXPECT_EQ(extensions, GetParam().extensions);

    const Bytes file = readFile(path);
    const auto start = file.begin() + static_cast<std::ptrdiff_t>(table.offsetInFile());
    EXPECT_EQ(table.atomData(),
              Bytes(start, start + static_cast<std::ptrdiff_t>(table.atomSize())));
}

TEST_P(FfmpegEntries, AreUnderstoodWithTheirEditsAndTheMediaIsTheSame) {
    const TemporaryFolder folder;
    const auto path = makeMovie(folder, "movie.mov", GetParam().arguments);
    const std::string media = packetDigest(path);
    const std::string before = probe(path, GetParam().probed);
    EXPECT_EQ(before.substr(0, GetParam().before.size()), GetParam().before);

    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(path, error);
    for (const auto& [key, value] : GetParam().edits) edit(entryOf(*asset), key, value);
    ASSERT_TRUE(asset->writeInPlaceWithError(error)) << error.message();

    EXPECT_EQ(probe(path, GetParam().probed), GetParam().after);
    EXPECT_EQ(packetDigest(path), media);
    const auto again = VexQTAsset::initWithURL(path, error);
    for (const auto& [key, value] : GetParam().edits) {
        SCOPED_TRACE(key);
        EXPECT_EQ(entryOf(*again).valueForKeyPath(key), value);
    }
}

TEST(FfmpegChannelLabels, AreUnderstoodAfterEachEdit) {
    const TemporaryFolder folder;
    const auto path = makeMovie(folder, "movie.mov", stereo({"-c:a", "pcm_s16le"}));
    const std::string samples = decodedDigest(path);
    std::error_code error;
    {
        const auto asset = VexQTAsset::initWithURL(path, error);
        auto& layout = dynamic_cast<VexQTchanAtom&>(*entryOf(*asset).childWithType("chan"_os));
        layout.setChannelLayoutTag(0);  // A description for every channel.
        for (const std::uint32_t label : {1U, 2U}) {
            auto description = std::make_unique<VexQTChannelDescription>();
            description->setChannelLabel(label);
            layout.addChild(std::move(description));
        }
        ASSERT_TRUE(asset->writeInPlaceWithError(error)) << error.message();
    }
    EXPECT_EQ(probe(path, "stream=channel_layout"), "channel_layout=stereo\n");
    {
        const auto asset = VexQTAsset::initWithURL(path, error);
        const auto& layout = *entryOf(*asset).childWithType("chan"_os);
        ASSERT_EQ(layout.children().size(), 2U);
        layout.children()[1]->setValueForKey(3, "channelLabel");
        ASSERT_TRUE(asset->writeInPlaceWithError(error)) << error.message();
    }
    EXPECT_EQ(probe(path, "stream=channel_layout"), "channel_layout=2 channels (FL+FC)\n");
    EXPECT_EQ(decodedDigest(path), samples);
}

}  // namespace
}  // namespace vexqt
