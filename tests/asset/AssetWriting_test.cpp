// What writing leaves in the file, byte for byte.
#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "testing/files.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/atoms/structure/VexQTftypAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

const Bytes kFileType = atom("ftyp"_os, {text("qt  "), u32(0x20050300), text("qt  "), zeros(12)});
const Bytes kMedia = atom("mdat"_os, {Bytes(992, 0xDA)});

Bytes filler(std::uint32_t size, std::uint8_t value) {
    return atom("wide"_os, {Bytes(size - 8, value)});
}
/// 500 bytes: a child of 20 that an edit removes, and one of 472.
const Bytes kMovie = atom("moov"_os, {atom("uuid"_os, {Bytes(12, 0x11)}), filler(472, 0x22)});
const Bytes kShrunkMovie = atom("moov"_os, {filler(472, 0x22)});

struct Written {
    bool answer = false;
    Bytes before, after;
};

/// Removes the movie's uuid child, where there is one, and writes in place.
Written writtenInPlace(ByteView bytes) {
    const TemporaryFolder folder;
    const auto path = folder / "movie.mov";
    writeFile(path, bytes);
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(path, error);
    if (asset->moovAtom()) asset->moovAtom()->removeChildrenWithType("uuid"_os);
    Written written;
    written.before = Bytes(bytes.begin(), bytes.end());
    written.answer = asset->writeInPlaceWithError(error);
    EXPECT_FALSE(error) << error.message();
    written.after = readFile(path);
    return written;
}

Bytes part(const Bytes& bytes, std::size_t from, std::size_t to) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

TEST(WriteInPlace, ANewMovieStartsWhereTheOldOneDidBehindTheMedia) {
    const Written written = writtenInPlace(join({kFileType, kMedia, kMovie}));
    EXPECT_TRUE(written.answer);
    ASSERT_EQ(written.before.size(), 1532u);
    ASSERT_EQ(written.after.size(), 1532u);
    EXPECT_EQ(part(written.after, 0, 1032), part(written.before, 0, 1032));
    EXPECT_EQ(part(written.after, 1032, 1512), kShrunkMovie);
    EXPECT_EQ(part(written.after, 1512, 1532), part(written.before, 1512, 1532));
}

TEST(WriteInPlace, AMovieInFrontBecomesFreeSpaceAndTheNewOneIsAppended) {
    const Written written = writtenInPlace(join({kFileType, kMovie, kMedia}));
    ASSERT_EQ(written.after.size(), 1532u + 480u);
    EXPECT_EQ(part(written.after, 32, 40), join({u32(500), text("free")}));
    EXPECT_EQ(part(written.after, 40, 1532), part(written.before, 40, 1532));
    EXPECT_EQ(part(written.after, 1532, 2012), kShrunkMovie);
}

TEST(WriteInPlace, WithoutMediaTheMovieIsFreedAndNoneIsWritten) {
    const Written written = writtenInPlace(join({kFileType, kMovie}));
    EXPECT_TRUE(written.answer);
    Bytes expected = written.before;
    std::ranges::copy(join({u32(500), text("free")}), expected.begin() + 32);
    EXPECT_EQ(written.after, expected);
}

TEST(WriteInPlace, MediaAtOffsetZeroCountsAsNone) {
    const Written written = writtenInPlace(join({kMedia, kMovie}));
    Bytes expected = written.before;
    std::ranges::copy(join({u32(500), text("free")}), expected.begin() + 1000);
    EXPECT_EQ(written.after, expected);
}

TEST(WriteInPlace, WithoutAMovieNothingIsWrittenAndTheAnswerIsTrue) {
    const Written written = writtenInPlace(join({kFileType, kMedia}));
    EXPECT_TRUE(written.answer);
    EXPECT_EQ(written.after, written.before);
}

TEST(WriteInPlace, AnEmptyMovieIsNotWritten) {
    const Written written = writtenInPlace(join({kFileType, kMedia, atom("moov"_os, {kFileType})}));
    EXPECT_EQ(written.after, written.before) << "a movie with a child comes back";
    const Written empty = writtenInPlace(join({kFileType, kMedia, atom("moov"_os)}));
    EXPECT_EQ(part(empty.after, 1032, 1040), join({u32(8), text("free")}));
    EXPECT_EQ(empty.after.size(), empty.before.size());
}

TEST(WriteInPlace, FollowsTheLastMediaWhereverTheMovieLies) {
    const Written written = writtenInPlace(join({kFileType, kMedia, kMovie, kMedia}));
    ASSERT_EQ(written.after.size(), written.before.size() + 480u);
    EXPECT_EQ(part(written.after, 2532, 3012), kShrunkMovie);
}

TEST(WriteInPlace, OverwritesWhateverFollowsTheMedia) {
    const Bytes behind = atom("uuid"_os, {Bytes(592, 0x77)});
    const Written written = writtenInPlace(join({kFileType, kMovie, kMedia, behind}));
    ASSERT_EQ(written.after.size(), written.before.size());
    EXPECT_EQ(part(written.after, 1532, 2012), kShrunkMovie);
    EXPECT_EQ(part(written.after, 2012, 2132), Bytes(120, 0x77));
}

TEST(WriteInPlace, AMovieWithAnExtendedSizeIsFreedEightBytesTooLate) {
    const Bytes movie = extendedAtomClaiming(508, "moov"_os, {part(kMovie, 8, 500)});
    const Written written = writtenInPlace(join({kFileType, movie, kMedia}));
    EXPECT_EQ(part(written.after, 32, 40), join({u32(1), text("moov")}));
    EXPECT_EQ(part(written.after, 40, 48), join({u32(500), text("free")}));
    EXPECT_EQ(part(written.after, 1540, 2020), kShrunkMovie);
}

TEST(WriteInPlace, OfSeveralMoviesAllAreFreedAndTheLastIsWritten) {
    const Bytes second = atom("moov"_os, {filler(30, 0x33)});
    const Written written = writtenInPlace(join({kFileType, kMovie, second, kMedia}));
    EXPECT_EQ(part(written.after, 32, 40), join({u32(500), text("free")}));
    EXPECT_EQ(part(written.after, 532, 540), join({u32(38), text("free")}));
    EXPECT_EQ(part(written.after, 1570, 1608), second);
}

TEST(WriteInPlace, AMovieMadeInMemoryFreesTheStartOfTheFile) {
    const TemporaryFolder folder;
    writeFile(folder / "a.mov", join({kFileType, kMedia}));
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(folder / "a.mov", error);
    asset->rootAtoms().push_back(std::make_unique<VexQTmoovAtom>());
    EXPECT_TRUE(asset->writeInPlaceWithError(error));
    EXPECT_EQ(part(readFile(folder / "a.mov"), 0, 8), join({u32(0), text("free")}));
}

TEST(WriteInPlace, MediaThatClaimsToEndPastTheFileLeavesAGapOfZeros) {
    const Written written = writtenInPlace(
        join({kFileType, kMovie, atomClaiming(1100, "mdat"_os, {Bytes(992, 0xDA)})}));
    ASSERT_EQ(written.after.size(), 532u + 1100u + 480u);
    EXPECT_EQ(part(written.after, 1532, 1632), zeros(100));
    EXPECT_EQ(part(written.after, 1632, 2112), kShrunkMovie);
}

TEST(WriteInPlace, ChangesNoOffsetAndNoOriginalSize) {
    const TemporaryFolder folder;
    writeFile(folder / "a.mov", join({kFileType, kMovie, kMedia}));
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(folder / "a.mov", error);
    asset->moovAtom()->removeChildrenWithType("uuid"_os);
    ASSERT_TRUE(asset->writeInPlaceWithError(error));
    EXPECT_EQ(asset->moovAtom()->offsetInFile(), 32u);
    EXPECT_EQ(asset->moovAtom()->originalSize(), 500u);
    EXPECT_EQ(asset->moovAtom()->atomSize(), 480u);
    const Bytes once = readFile(folder / "a.mov");
    ASSERT_TRUE(asset->writeInPlaceWithError(error));
    EXPECT_EQ(readFile(folder / "a.mov"), once);
}

TEST(WriteInPlace, WritesNoOtherRootAtom) {
    const TemporaryFolder folder;
    const Bytes bytes = join({kFileType, kMedia, kMovie});
    writeFile(folder / "a.mov", bytes);
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(folder / "a.mov", error);
    dynamic_cast<VexQTftypAtom&>(*asset->rootAtoms()[0]).setMajorBrand("mp42"_os);
    ASSERT_TRUE(asset->writeInPlaceWithError(error));
    EXPECT_EQ(readFile(folder / "a.mov"), bytes);
}

TEST(WriteInPlace, FailsForMoviesWithoutAFileAndForFilesThatAreGone) {
    std::error_code error;
    EXPECT_FALSE(VexQTAsset::initWithData(kMovie)->writeInPlaceWithError(error));
    EXPECT_TRUE(error);
    EXPECT_FALSE(VexQTAsset().writeInPlaceWithError(error));

    const TemporaryFolder folder;
    writeFile(folder / "a.mov", kMovie);
    const auto asset = VexQTAsset::initWithURL(folder / "a.mov", error);
    std::filesystem::remove(folder / "a.mov");
    EXPECT_FALSE(asset->writeInPlaceWithError(error));
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
    EXPECT_FALSE(std::filesystem::exists(folder / "a.mov"));
}

TEST(WriteToURL, WritesASkeletonOfFortyBytesAndAnswersFalse) {
    const TemporaryFolder folder;
    writeFile(folder / "new.mov", zeros(100));
    std::error_code error;
    EXPECT_FALSE(VexQTAsset::initWithData(kMovie)->writeToURL(folder / "new.mov", error));
    EXPECT_FALSE(error);
    EXPECT_EQ(readFile(folder / "new.mov"), join({u32(32), text("ftypqt  "), u32(0x00030520),
                                                  text("qt  "), zeros(12), u32(8), text("moov")}));
}

TEST(WriteToURL, AnswersFalseWithTheSystemsErrorWhereNoFileCanBe) {
    std::error_code error;
    EXPECT_FALSE(VexQTAsset().writeToURL("/no/such/folder/new.mov", error));
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
}

TEST(AssetData, IsTheRootAtomsWithoutMediaAndFreeSpace) {
    const Bytes user = atom("uuid"_os, {text("abc")});
    const Bytes bytes = join({kFileType, atom("free"_os, {zeros(9)}), kMedia, user, kMovie});
    EXPECT_EQ(VexQTAsset::initWithData(bytes)->assetData(), join({kFileType, user, kMovie}));
}

TEST(AssetData, OfAMovieMadeInMemoryIsAnEmptyMovie) {
    EXPECT_EQ(VexQTAsset().assetData(), atom("moov"_os));
}

}  // namespace
}  // namespace vexqt
