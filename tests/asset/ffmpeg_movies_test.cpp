// Movies of another writer: opened, edited, saved in place, and played to the same frames.
#include <gtest/gtest.h>

#include "testing/files.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/atoms/headers/VexQTmvhdAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

struct Movie {
    std::string name;
    std::vector<std::string> arguments;
};

const std::vector<std::string> kPicture = {"-f", "lavfi", "-i",
                                           "testsrc=size=64x48:rate=10:duration=1"};
const std::vector<std::string> kSound = {"-f", "lavfi", "-i", "sine=frequency=440:duration=1"};

std::vector<std::string> all(std::initializer_list<std::vector<std::string>> lists) {
    std::vector<std::string> joined;
    for (const auto& list : lists) joined.insert(joined.end(), list.begin(), list.end());
    return joined;
}

const Movie kMovies[] = {
    {"video.mov", all({kPicture, {"-c:v", "mpeg4"}})},
    {"video.mp4", all({kPicture, {"-c:v", "mpeg4"}})},
    {"sound.mov", all({kSound, {"-c:a", "pcm_s16le"}})},
    {"both.mov", all({kPicture, kSound, {"-c:v", "mpeg4", "-c:a", "aac"}})},
    {"both.mp4", all({kPicture, kSound, {"-c:v", "mpeg4", "-c:a", "aac"}})},
    {"first.mov", all({kPicture, {"-c:v", "mpeg4", "-movflags", "faststart"}})},
    {"first.mp4", all({kPicture, kSound, {"-c:v", "mpeg4", "-movflags", "faststart"}})},
    {"fragments.mp4", all({kPicture,
                           {"-c:v", "mpeg4", "-g", "5", "-movflags",
                            "frag_keyframe+empty_moov+default_base_moof"}})},
};

std::string nameOf(const ::testing::TestParamInfo<Movie>& tested) {
    std::string name = tested.param.name;
    std::ranges::replace(name, '.', '_');
    return name;
}

class FfmpegMovies : public ::testing::TestWithParam<Movie> {};
INSTANTIATE_TEST_SUITE_P(Asset, FfmpegMovies, ::testing::ValuesIn(kMovies), nameOf);
class UnfragmentedMovies : public ::testing::TestWithParam<Movie> {};
INSTANTIATE_TEST_SUITE_P(Asset, UnfragmentedMovies,
                         ::testing::ValuesIn(std::begin(kMovies), std::end(kMovies) - 1), nameOf);

TEST_P(FfmpegMovies, FileAndMemoryReaderGiveTheSameTree) {
    const TemporaryFolder folder;
    const auto path = makeMovie(folder, GetParam().name, GetParam().arguments);
    std::error_code error;
    const auto fromFile = VexQTAsset::initWithURL(path, error);
    const auto fromMemory = VexQTAsset::initWithData(readFile(path));
    ASSERT_EQ(fromFile->valueForKey("isValid"), Value(true));
    ASSERT_EQ(fromFile->rootAtoms().size(), fromMemory->rootAtoms().size());
    for (std::size_t i = 0; i < fromFile->rootAtoms().size(); ++i) {
        EXPECT_EQ(fromFile->rootAtoms()[i]->description(),
                  fromMemory->rootAtoms()[i]->description());
    }
    EXPECT_EQ(fromFile->assetData(), fromMemory->assetData());
}

TEST_P(UnfragmentedMovies, PlayToTheSameFramesAfterAnEditSavedInPlace) {
    const TemporaryFolder folder;
    const auto path = makeMovie(folder, GetParam().name, GetParam().arguments);
    const std::string frames = decodedDigest(path);
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(path, error);
    auto& header = dynamic_cast<VexQTmvhdAtom&>(*asset->moovAtom()->childWithType("mvhd"_os));
    header.setPreferredVolume(0.5F);
    header.setNextTrackID(77);
    ASSERT_TRUE(asset->writeInPlaceWithError(error)) << error.message();

    EXPECT_EQ(decodedDigest(path), frames);
    const auto again = VexQTAsset::initWithURL(path, error);
    EXPECT_EQ(again->valueForKeyPath("moov.mvhd.preferredVolume"), Value(0.5));
    EXPECT_EQ(again->valueForKeyPath("moov.mvhd.nextTrackID"), Value(77));
}

// The operation moves every movie behind the media, whatever that means to players.
TEST(FragmentedMovie, MovesBehindItsFragmentsAndOverwritesTheirIndex) {
    const TemporaryFolder folder;
    const Movie& fragmented = kMovies[std::size(kMovies) - 1];
    const auto path = makeMovie(folder, fragmented.name, fragmented.arguments);
    const Bytes before = readFile(path);
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(path, error);
    const Bytes movie = asset->moovAtom()->atomData();
    const VexQTAtom& lastMedia = *asset->rootAtoms().end()[-2];
    ASSERT_EQ(lastMedia.atomTypeString(), "mdat");
    ASSERT_TRUE(asset->writeInPlaceWithError(error)) << error.message();

    const Bytes after = readFile(path);
    const auto end = static_cast<std::ptrdiff_t>(lastMedia.offsetInFile() + lastMedia.atomSize());
    EXPECT_EQ(Bytes(after.begin() + end, after.end()), movie);
    const auto segments = static_cast<std::ptrdiff_t>(asset->moovAtom()->offsetInFile() +
                                                      asset->moovAtom()->originalSize());
    EXPECT_TRUE(
        std::equal(before.begin() + segments, before.begin() + end, after.begin() + segments));
}

}  // namespace
}  // namespace vexqt
