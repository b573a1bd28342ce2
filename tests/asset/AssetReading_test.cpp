// What the two readers make of the top level of a movie.
#include <gtest/gtest.h>

#include <map>

#include "testing/LogLines.h"
#include "testing/bytes.h"
#include "testing/files.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/atoms/headers/VexQTmvhdAtom.h"
#include "vexqt/atoms/structure/VexQTftypAtom.h"
#include "vexqt/atoms/structure/VexQTmoofAtom.h"
#include "vexqt/platform/files.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

enum class From { File, Memory };

std::unique_ptr<VexQTAsset> opened(From from, ByteView bytes, ReadOptions options = {}) {
    if (from == From::Memory) return VexQTAsset::initWithData(bytes, options);
    const TemporaryFolder folder;
    const auto path = folder / "movie.mov";
    writeFile(path, bytes);
    std::error_code error;
    auto asset = VexQTAsset::initWithURL(path, error, options);
    EXPECT_FALSE(error) << error.message();
    return asset;
}

/// "ftyp 0 20, mdat 20 12": types, offsets and sizes of the roots.
std::string listed(const VexQTAsset& asset) {
    std::string text;
    for (const auto& root : asset.rootAtoms()) {
        if (!text.empty()) text += ", ";
        text += root->atomTypeString() + " " + std::to_string(root->offsetInFile()) + " " +
                std::to_string(root->atomSize());
    }
    return text;
}

bool isValid(const VexQTAsset& asset) { return asset.valueForKey("isValid") == Value(true); }

Bytes fileType(std::string_view brand) {
    return atom("ftyp"_os, {text(brand), u32(0x20050300), text("qt  ")});
}
const Bytes kMedia = atom("mdat"_os, {text("four")});
const Bytes kMovie = atom("moov"_os, {atom("wide"_os, {u32(7)})});

/// Both readers see the same movie in the same way, but for what is named where they differ.
class BothReaders : public ::testing::TestWithParam<From> {};
INSTANTIATE_TEST_SUITE_P(Asset, BothReaders, ::testing::Values(From::File, From::Memory),
                         [](const auto& tested) {
                             return tested.param == From::File ? "File" : "Memory";
                         });

TEST_P(BothReaders, ListFileTypeMediaAndMovieOfAValidFile) {
    const auto asset = opened(GetParam(), join({fileType("qt  "), kMedia, kMovie}));
    EXPECT_EQ(listed(*asset), "ftyp 0 20, mdat 20 12, moov 32 20");
    EXPECT_TRUE(isValid(*asset));
    EXPECT_EQ(asset->moovAtom(), asset->rootAtoms()[2].get());
    EXPECT_EQ(asset->moovAtom()->originalSize(), 20u);
    EXPECT_EQ(asset->moovAtom()->children()[0]->offsetInFile(), 40u);
    EXPECT_EQ(asset->moovAtom()->parent(), nullptr);
}

TEST_P(BothReaders, StopAtABrandThatIsNotAcceptedAndLogIt) {
    const LogLines log;
    const auto asset = opened(GetParam(), join({fileType("avc1"), kMedia, kMovie}));
    EXPECT_EQ(listed(*asset), "ftyp 0 20");
    EXPECT_FALSE(isValid(*asset));
    EXPECT_EQ(log.lines, std::vector<std::string>{"File is NOT a valid QuickTime movie file"});
}

TEST_P(BothReaders, AcceptJustTenMajorBrands) {
    for (const std::string_view brand :
         {"M4A ", "M4P ", "M4V ", "iso5", "iso6", "isom", "mmp4", "mp41", "mp42", "qt  "}) {
        EXPECT_TRUE(isValid(*opened(GetParam(), join({fileType(brand), kMovie})))) << brand;
    }
    for (const std::string_view brand : {"mp43", "iso4", "M4B ", "QT  ", "3gp4"})
        EXPECT_FALSE(isValid(*opened(GetParam(), join({fileType(brand), kMovie})))) << brand;
}

TEST_P(BothReaders, OnlyTheMajorBrandCounts) {
    const Bytes compatible = atom("ftyp"_os, {text("avc1"), u32(0), text("qt  "), text("isom")});
    EXPECT_FALSE(isValid(*opened(GetParam(), join({compatible, kMovie}))));
}

TEST_P(BothReaders, ListAFileWithoutFileTypeAsInvalid) {
    const LogLines log;
    const auto asset = opened(GetParam(), join({atom("wide"_os), kMedia, kMovie}));
    EXPECT_EQ(listed(*asset), "wide 0 8, mdat 8 12, moov 20 20");
    EXPECT_EQ(asset->rootAtoms()[0]->atomClass().className, "VexQTAtom");
    EXPECT_FALSE(isValid(*asset));
    EXPECT_TRUE(log.lines.empty());
}

TEST_P(BothReaders, EndWhereNoHeaderIsLeftAndLogNothing) {
    for (std::size_t count = 0; count < 8; ++count) {
        SCOPED_TRACE(count);
        const LogLines log;
        const auto asset =
            opened(GetParam(), join({fileType("qt  "), kMedia, kMovie, Bytes(count, 0xEE)}));
        EXPECT_EQ(listed(*asset), "ftyp 0 20, mdat 20 12, moov 32 20");
        EXPECT_TRUE(isValid(*asset));
        EXPECT_TRUE(log.lines.empty());
    }
}

TEST_P(BothReaders, EndAtAMediaAtomOfSizeZeroWithoutListingIt) {
    const LogLines log;
    const auto asset =
        opened(GetParam(), join({fileType("qt  "), atomClaiming(0, "mdat"_os), kMovie}));
    EXPECT_EQ(listed(*asset), "ftyp 0 20");
    EXPECT_TRUE(log.lines.empty());
}

TEST_P(BothReaders, ReportAGenericAtomEightBytesBeforeItsEnd) {
    const auto asset = opened(
        GetParam(), join({atom("mdat"_os, {zeros(92)}), atom("uuid"_os, {zeros(12)}), kMovie}));
    EXPECT_EQ(asset->rootAtoms()[1]->offsetInFile(), 112u);
    EXPECT_EQ(asset->rootAtoms()[1]->extent().start, 100u);
    EXPECT_EQ(asset->rootAtoms()[1]->extent().length, 20u);
}

TEST_P(BothReaders, GiveAnAtomWithAnExtendedSizeTheBytesFromItsEighthOn) {
    const Bytes brands = join({text("isom"), u32(0x200), zeros(16)});
    const auto asset =
        opened(GetParam(), join({extendedAtomClaiming(40, "ftyp"_os, {brands}), kMovie, kMedia}));
    ASSERT_EQ(listed(*asset), "ftyp 8 32, moov 40 20, mdat 60 12");
    const auto& type = dynamic_cast<const VexQTftypAtom&>(*asset->rootAtoms()[0]);
    EXPECT_EQ(type.majorBrand(), "isom"_os);
    EXPECT_EQ(type.compatibleBrands().size(), 4u);
    EXPECT_EQ(type.extent().start, 0u);
    EXPECT_EQ(type.extent().headerLength, 16u);
    EXPECT_EQ(type.extent().length, 40u);
}

TEST_P(BothReaders, ReadAMovieWithAnExtendedSize) {
    const auto asset =
        opened(GetParam(),
               join({extendedAtomClaiming(28, "moov"_os, {atom("wide"_os, {u32(7)})}), kMedia}));
    ASSERT_EQ(listed(*asset), "moov 8 20, mdat 28 12");
    EXPECT_EQ(asset->moovAtom()->originalSize(), 20u);
    ASSERT_EQ(asset->moovAtom()->children().size(), 1u);
    EXPECT_EQ(asset->moovAtom()->children()[0]->offsetInFile(), 16u);
}

TEST_P(BothReaders, ReadAMediaAtomWithAnExtendedSize) {
    const auto asset =
        opened(GetParam(), join({extendedAtomClaiming(20, "mdat"_os, {text("four")}), kMovie}));
    EXPECT_EQ(listed(*asset), "mdat 8 12, moov 20 20");
    EXPECT_EQ(asset->rootAtoms()[0]->extent().length, 20u);
}

TEST_P(BothReaders, ReadSegmentsAsSegments) {
    const auto asset =
        opened(GetParam(), join({atom("moof"_os, {atom("mfhd"_os, {u32(1)})}), kMedia}));
    const auto& segment = dynamic_cast<const VexQTmoofAtom&>(*asset->rootAtoms()[0]);
    EXPECT_EQ(segment.originalSize(), 20u);
    EXPECT_EQ(segment.children()[0]->atomTypeString(), "mfhd");
}

TEST_P(BothReaders, RaiseWhereAHeaderWouldNotMoveForward) {
    for (const OSType type : {"free"_os, "moov"_os}) {
        EXPECT_THROW(opened(GetParam(), join({atomClaiming(0, type), kMedia, kMedia})), RangeError);
    }
}

TEST_P(BothReaders, LogAnEmptyAtomAndStop) {
    const LogLines log;
    const auto asset = opened(GetParam(), join({kMedia, atomClaiming(0, "uuid"_os), kMovie}));
    EXPECT_EQ(listed(*asset), "mdat 0 12");
    EXPECT_EQ(log.lines, std::vector<std::string>{"Empty Atom"});
}

TEST_P(BothReaders, RaiseWhereTheFileEndsInsideAnExtendedHeader) {
    const Bytes cut = join({kMedia, u32(1), text("moov"), u32(0)});
    EXPECT_THROW(opened(GetParam(), cut), RangeError);
    const auto asset = opened(GetParam(), cut, {.tolerant = true});
    EXPECT_EQ(listed(*asset), "mdat 0 12");
    EXPECT_EQ(asset->problems(),
              (std::vector<Problem>{{"moov", 12, "the file ends inside its header"}}));
}

TEST_P(BothReaders, LetErrorsOfAtomsOutWithPathAndOffset) {
    const Bytes header = atom("mvhd"_os, {zeros(112)});
    try {
        opened(GetParam(), join({fileType("qt  "), atom("moov"_os, {header})}));
        FAIL() << "a movie header of 120 bytes is declined";
    } catch (const InsertionError& error) {
        EXPECT_STREQ(error.what(), "moov.mvhd at 28: VexQTmvhdAtom declines 120 bytes");
        EXPECT_EQ(error.path(), "moov.mvhd");
        EXPECT_EQ(error.offsetInFile(), 28u);
    }
}

TEST_P(BothReaders, KeepDeclinedAtomsWhenTolerant) {
    const Bytes header = atom("mvhd"_os, {Bytes(112, 0x5A)});
    const Bytes movie = atom("moov"_os, {header});
    const auto asset = opened(GetParam(), join({fileType("qt  "), movie}), {.tolerant = true});
    ASSERT_EQ(asset->moovAtom()->children().size(), 1u);
    EXPECT_EQ(asset->moovAtom()->children()[0]->declinedClass(), "VexQTmvhdAtom");
    EXPECT_EQ(asset->moovAtom()->atomData(), movie);
    EXPECT_EQ(asset->problems(),
              (std::vector<Problem>{{"moov.mvhd", 28,
                                     "Atom 'mvhd' declined by VexQTmvhdAtom (120 bytes) - kept as "
                                     "raw data"}}));
}

TEST_P(BothReaders, GoOnBehindABrandThatIsNotAcceptedWhenTolerant) {
    const LogLines log;
    const auto asset =
        opened(GetParam(), join({fileType("avc1"), kMedia, kMovie}), {.tolerant = true});
    EXPECT_EQ(listed(*asset), "ftyp 0 20, mdat 20 12, moov 32 20");
    EXPECT_FALSE(isValid(*asset));
    EXPECT_EQ(log.lines, std::vector<std::string>{"File is NOT a valid QuickTime movie file"});
    ASSERT_EQ(asset->problems().size(), 1u);
    EXPECT_EQ(asset->problems()[0].path, "ftyp");
    EXPECT_EQ(asset->problems()[0].message,
              "major brand 'avc1' is not accepted, only 'M4A ' 'M4P ' 'M4V ' 'iso5' 'iso6' 'isom' "
              "'mmp4' 'mp41' 'mp42' 'qt  '");
}

TEST_P(BothReaders, GiveWhatIsThereOfAFileCutShortWhenTolerant) {
    Bytes bytes = join({fileType("qt  "), kMovie});
    bytes.resize(bytes.size() - 2);
    const auto asset = opened(GetParam(), bytes, {.tolerant = true});
    EXPECT_EQ(listed(*asset), "ftyp 0 20, moov 20 18");
    ASSERT_EQ(asset->problems().size(), 2u);
    EXPECT_EQ(asset->problems()[0],
              (Problem{"moov", 20, "declares 20 bytes, 18 there - the file is cut short"}));
    EXPECT_EQ(asset->problems()[1].path, "moov.wide");
}

TEST_P(BothReaders, ListAnOpenEndedMediaAtomUpToTheEndWhenTolerant) {
    const auto asset = opened(
        GetParam(), join({fileType("qt  "), kMovie, atomClaiming(0, "mdat"_os, {zeros(50)})}),
        {.tolerant = true});
    EXPECT_EQ(listed(*asset), "ftyp 0 20, moov 20 20, mdat 40 58");
}

TEST_P(BothReaders, TolerateAnyBytesAtAll) {
    const Bytes movie = join({fileType("qt  "), kMedia, kMovie});
    for (std::size_t length = 0; length <= movie.size(); ++length) {
        SCOPED_TRACE(length);
        const Bytes cut(movie.begin(), movie.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_NO_THROW(opened(GetParam(), cut, {.tolerant = true}));
    }
}

TEST_P(BothReaders, NeverReserveWhatAnAtomOnlyClaims) {
    const Bytes movie = extendedAtomClaiming(0x7FFFFFFFFFFFFFFF, "moov"_os, {kMedia});
    EXPECT_NO_THROW(opened(GetParam(), movie, {.tolerant = true}));
}

TEST_P(BothReaders, EndBehindAnAtomWhoseSizeWraps) {
    const Bytes wrapping = extendedAtomClaiming(3, "free"_os, {zeros(40)});
    const auto asset = opened(GetParam(), wrapping, {.tolerant = true});
    EXPECT_EQ(asset->rootAtoms().size(), 1u);
    EXPECT_EQ(asset->rootAtoms()[0]->atomSize(), 0xFFFFFFFFFFFFFFFB);
}

// MARK: Where the two differ

TEST(FileReader, OffsetOfFreeSpaceIsEightBehindItsStart) {
    const Bytes bytes = join({kMedia, atom("free"_os, {zeros(8)}), kMovie});
    EXPECT_EQ(listed(*opened(From::File, bytes)), "mdat 0 12, free 20 16, moov 28 20");
    EXPECT_EQ(listed(*opened(From::Memory, bytes)), "mdat 0 12, free 12 16, moov 28 20");
    EXPECT_EQ(opened(From::File, bytes)->rootAtoms()[1]->extent().start, 12u);
}

TEST(FileReader, ReadsALastAtomThatIsABareHeaderAndTheMemoryReaderDoesNot) {
    const Bytes bytes = join({kMedia, atom("free"_os)});
    EXPECT_EQ(listed(*opened(From::File, bytes)), "mdat 0 12, free 20 8");
    EXPECT_EQ(listed(*opened(From::Memory, bytes)), "mdat 0 12");
}

TEST(FileReader, MakesAnAtomOfTheBytesThatCameBack) {
    const LogLines log;
    const auto asset =
        opened(From::File, join({kMedia, atomClaiming(99, "uuid"_os, {text("abc")})}));
    ASSERT_EQ(asset->rootAtoms().size(), 2u);
    EXPECT_EQ(asset->rootAtoms()[1]->unknownData(), text("abc"));
    EXPECT_EQ(asset->rootAtoms()[1]->atomSize(), 99u);
    EXPECT_EQ(asset->rootAtoms()[1]->offsetInFile(), 23u - 8u);
    EXPECT_TRUE(log.lines.empty());
}

TEST(FileReader, KeepsTheDeclaredSizeAsOriginalSizeAfterAShortRead) {
    const auto asset = opened(From::File, join({kMedia, atomClaiming(999, "moov"_os, {zeros(8)})}));
    EXPECT_EQ(asset->moovAtom()->originalSize(), 999u);
    EXPECT_EQ(asset->moovAtom()->atomSize(), 16u);
}

TEST(MemoryReader, LogsAnAtomThatRunsPastTheBufferAndStops) {
    const LogLines log;
    const auto asset =
        opened(From::Memory, join({kMedia, atomClaiming(99, "moov"_os, {zeros(11)})}));
    EXPECT_EQ(listed(*asset), "mdat 0 12");
    EXPECT_EQ(log.lines,
              std::vector<std::string>{"Atom 'moov' declares size 99 but only 31 bytes are "
                                       "available - truncated data, stopping parse"});
}

TEST(MemoryReader, FewerThanEightBytesAreARangeError) {
    EXPECT_THROW(VexQTAsset::initWithData(zeros(7)), RangeError);
    EXPECT_EQ(opened(From::File, zeros(7))->rootAtoms().size(), 0u);
    EXPECT_EQ(VexQTAsset::initWithData(zeros(7), {.tolerant = true})->problems().size(), 1u);
}

TEST(MemoryReader, RaisesAStandingHeaderOnlyWhenTheLoopWouldGoOn) {
    EXPECT_NO_THROW(opened(From::Memory, join({kMedia, atomClaiming(0, "free"_os)})));
    EXPECT_THROW(opened(From::File, join({kMedia, atomClaiming(0, "free"_os)})), RangeError);
}

TEST(MemoryReader, NeedsTheBytesOnlyDuringTheCall) {
    auto bytes = std::make_unique<Bytes>(join({kMedia, kMovie}));
    const auto asset = VexQTAsset::initWithData(*bytes);
    bytes.reset();
    EXPECT_EQ(asset->moovAtom()->children()[0]->unknownData(), u32(7));
}

// MARK: The asset

TEST(Asset, MadeInMemoryIsValidAndHoldsAnEmptyMovie) {
    const VexQTAsset asset;
    EXPECT_TRUE(isValid(asset));
    EXPECT_FALSE(asset.assetURL());
    ASSERT_EQ(asset.rootAtoms().size(), 1u);
    EXPECT_EQ(asset.moovAtom()->children().size(), 0u);
    EXPECT_EQ(asset.moovAtom()->originalSize(), 0u);
}

TEST(Asset, AFileThatCannotBeOpenedGivesNoneAndTheSystemsError) {
    std::error_code error;
    EXPECT_EQ(VexQTAsset::assetWithURL("/no/such/movie.mov", error), nullptr);
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
}

TEST(Asset, KeepsTheLocationThatItWasReadFrom) {
    const TemporaryFolder folder;
    writeFile(folder / "a.mov", join({fileType("qt  "), kMovie}));
    std::error_code error;
    EXPECT_EQ(VexQTAsset::initWithURL(folder / "a.mov", error)->assetURL(), folder / "a.mov");
    EXPECT_FALSE(VexQTAsset::initWithData(kMovie)->assetURL());
}

TEST(Asset, FollowsKeyPathsFromItsRoots) {
    VexQTmvhdAtom header;
    header.setTimeScale(600);
    const auto asset = VexQTAsset::initWithData(atom("moov"_os, {header.atomData()}));
    EXPECT_EQ(asset->valueForKeyPath("moov.mvhd.timeScale"), Value(600));
    EXPECT_TRUE(asset->valueForKeyPath("moov.trak.tkhd").isAbsent());
    EXPECT_TRUE(asset->valueForKey("nope").isAbsent());
}

TEST(Asset, ReadingAgainReplacesTheRootsAndKeepsTheValidity) {
    const auto asset = VexQTAsset::initWithData(join({fileType("qt  "), kMovie}));
    asset->readMainAtomsWithData(join({kMedia, kMovie}));
    EXPECT_EQ(listed(*asset), "mdat 0 12, moov 12 20");
    EXPECT_TRUE(isValid(*asset));
}

/// A file of a few pieces far apart, zeros between them, that counts what is read of it.
class SparseFile final : public ReadOnlyFile {
public:
    void put(std::uint64_t offset, const Bytes& bytes) {
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes_[offset + i] = bytes[i];
        size_ = std::max(size_, offset + bytes.size());
    }
    std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> into,
                       std::error_code& error) override {
        error.clear();
        std::size_t count = 0;
        for (; count < into.size() && offset + count < size_; ++count) {
            const auto byte = bytes_.find(offset + count);
            into[count] = byte != bytes_.end() ? byte->second : std::uint8_t{0};
        }
        bytesRead += count;
        return count;
    }
    FileIdentity identity(std::error_code& error) override {
        error.clear();
        return {.size = size_, .isRegular = true};
    }

    std::uint64_t bytesRead = 0;

private:
    std::map<std::uint64_t, std::uint8_t> bytes_;
    std::uint64_t size_ = 0;
};

TEST(Asset, NeverReadsMediaOrFreeSpace) {
    const std::uint32_t big = 1U << 30;
    SparseFile file;
    file.put(0, fileType("qt  "));
    file.put(20, atomClaiming(big, "mdat"_os));
    file.put(20 + std::uint64_t{big}, atomClaiming(big, "free"_os));
    file.put(20 + 2 * std::uint64_t{big}, kMovie);

    VexQTAsset asset;
    asset.readMainAtomsWithFileHandle(file);
    EXPECT_EQ(listed(asset),
              "ftyp 0 20, mdat 20 1073741824, free 1073741852 1073741824, moov "
              "2147483668 20");
    EXPECT_LE(file.bytesRead, 4 * 16 + fileType("qt  ").size() + kMovie.size());
}

}  // namespace
}  // namespace vexqt
