// How much memory a movie can make the library take, and how much of its file it reads, whatever is
// in it.

#include <gtest/gtest.h>

#include "limits/CountingFile.h"
#include "limits/Heap.h"
#include "limits/hostile_movies.h"
#include "testing/bytes.h"
#include "vexqt/asset/VexQTAsset.h"

namespace vexqt::testing {
namespace {

constexpr std::uint64_t kKiB = 1024, kMiB = 1024 * kKiB;
/// What a reading takes besides: buffers, and the list of problems, which has an end.
constexpr std::uint64_t kAllowance = 8 * kMiB;

/// Lengths that double, and some between: lists grow in steps, which are worst behind a step.
/// What is asked for does not depend on sanitizers, but the time that it takes does.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kUnit = kKiB / 16;
#else
constexpr std::size_t kUnit = kKiB;
#endif
constexpr std::size_t kLengths[] = {700 * kUnit, 1030 * kUnit, 1400 * kUnit};

TEST(Memory, IsAtMost32TimesTheMovieAnd4TimesItsTables) {
    for (const HostileFamily& family : hostileFamilies()) {
        SCOPED_TRACE(family.name);
        const std::uint64_t times = family.isTables ? 4 : 32;
        std::uint64_t peakOfShortest = 0;
        for (const std::size_t length : kLengths) {
            const Bytes movie = family.movie(length);
            const HeapWatch heap;
            const auto asset = VexQTAsset::initWithData(movie, {.tolerant = true});
            EXPECT_LE(heap.peak(), kAllowance + times * movie.size());
            // The allowance is a constant: what is added by more bytes keeps to the factor alone.
            if (length == kLengths[0]) peakOfShortest = heap.peak();
            const std::uint64_t more = movie.size() - std::min(movie.size(), kLengths[0]);
            EXPECT_LE(heap.peak(), peakOfShortest + times * (more + 64 * kKiB));
            EXPECT_LE(heap.largest(), 4 * movie.size()) << "in one piece";
            EXPECT_EQ(!asset->problems().empty(), family.isBroken);
        }
    }
}

/// Sample tables and lists that were read are kept as they lie until somebody asks for them.
TEST(Memory, OfTablesThatNobodyLooksAtIsTheMovieOnce) {
    for (const HostileFamily& family : hostileFamilies()) {
        if (!family.isTables) continue;
        SCOPED_TRACE(family.name);
        const Bytes movie = family.movie(kMiB);
        const HeapWatch heap;
        const auto asset = VexQTAsset::initWithData(movie);
        EXPECT_LE(heap.peak(), movie.size() + 64 * kKiB);
    }
}

TEST(Memory, IsAllGivenBack) {
    for (const HostileFamily& family : hostileFamilies()) {
        SCOPED_TRACE(family.name);
        const Bytes movie = family.movie(64 * kUnit);
        VexQTAsset::initWithData(movie, {.tolerant = true});
        const HeapWatch heap;
        VexQTAsset::initWithData(movie, {.tolerant = true});
        EXPECT_EQ(heap.live(), 0);
    }
}

/// No reading takes more for a size that a file claims than the file has.
TEST(Memory, IsNotTakenOnTheWordOfASize) {
    for (const OSType type : {"moov"_os, "moof"_os, "ftyp"_os, "abcd"_os}) {
        SCOPED_TRACE(textFromCode(type));
        for (const Bytes& movie : {atomClaiming(0xFFFFFFF0, type, {zeros(100)}),
                                   extendedAtomClaiming(0xFFFFFFFFFFFFFFF0, type, {zeros(100)}),
                                   extendedAtomClaiming(0x7FFFFFFFFFFFFFFF, type, {zeros(100)})}) {
            CountingFile file(movie, 0, {});
            VexQTAsset asset;
            const HeapWatch heap;
            asset.readMainAtomsWithFileHandle(file, {.tolerant = true});
            EXPECT_LE(heap.largest(), 4 * kKiB);
            EXPECT_LE(file.bytesRead(), 2 * movie.size() + 64);
        }
    }
}

TEST(Reading, TouchesTheMovieAtomAndNoMediaData) {
    const Bytes movie = atom("moov"_os, {zeros(1000), atom("abcd"_os, {zeros(500'000)})});
    constexpr std::uint64_t kTerabyte = std::uint64_t{1} << 40;
    const Bytes before = join({atom("ftyp"_os, {text("qt  "), u32(0x200), text("qt  ")}),
                               extendedAtomClaiming(kTerabyte + 16, "mdat"_os)});
    CountingFile file(before, kTerabyte, movie);
    VexQTAsset asset;
    const HeapWatch heap;
    asset.readMainAtomsWithFileHandle(file, {.tolerant = true});
    ASSERT_NE(asset.moovAtom(), nullptr);
    EXPECT_EQ(asset.moovAtom()->origin().size(), movie.size());
    EXPECT_LE(file.bytesRead(), movie.size() + 64 * kKiB);
    EXPECT_LE(heap.peak(), movie.size() + 64 * kKiB);
}

/// A damaged header lets media pass for an atom of which nothing is known.
TEST(Memory, IsNotTakenForBytesThatAreNoMovie) {
    constexpr std::uint64_t kTerabyte = std::uint64_t{1} << 40;
    const Bytes movie = atom("moov"_os, {zeros(8)});
    for (const OSType type : {"abcd"_os, "ftyp"_os}) {
        SCOPED_TRACE(textFromCode(type));
        const Bytes small = atom("abcd"_os, {u32(0x01020304)});
        CountingFile file(join({small, extendedAtomClaiming(kTerabyte + 16, type)}), kTerabyte,
                          join({movie, small, atomClaiming(500, type, {zeros(40)})}));
        VexQTAsset asset;
        const HeapWatch heap;
        asset.readMainAtomsWithFileHandle(file, {.tolerant = true});
        EXPECT_LE(heap.peak(), 64 * kKiB);
        EXPECT_LE(file.bytesRead(), kKiB);
        ASSERT_EQ(asset.rootAtoms().size(), 5U);
        ASSERT_EQ(asset.problems().size(), 4U);  // One more tells that the last one is cut short.
        EXPECT_EQ(asset.problems()[0],
                  (Problem{textFromCode(type) + (type == "abcd"_os ? "[1]" : ""), small.size(),
                           std::to_string(kTerabyte + 16) +
                               " bytes that are no movie - left in the file unread"}));

        VexQTAtom& first = *asset.rootAtoms()[0];
        EXPECT_FALSE(first.isLeftInFile());
        EXPECT_EQ(first.unknownData(), u32(0x01020304));
        VexQTAtom& left = *asset.rootAtoms()[1];
        EXPECT_TRUE(left.isLeftInFile());
        EXPECT_EQ(left.atomType(), type);
        EXPECT_EQ(left.atomSize(), kTerabyte + 8);
        EXPECT_EQ(left.extent().start, small.size());
        EXPECT_EQ(left.extent().length, kTerabyte + 16);
        EXPECT_FALSE(left.unknownData());
        EXPECT_EQ(left.atomData(), Bytes());
        EXPECT_EQ(asset.moovAtom(), asset.rootAtoms()[2].get());
        EXPECT_TRUE(asset.rootAtoms()[3]->isLeftInFile()) << "all that is taken is taken";
        EXPECT_EQ(asset.rootAtoms()[4]->extent().length, 48U);
    }
}

/// 64 MiB of unknown atoms are read, and no byte more.
TEST(Memory, IsTakenFor64MiBOfUnknownAtoms) {
    for (const std::uint64_t length : {64 * kMiB, 64 * kMiB + 1}) {
        CountingFile file(atomClaiming(static_cast<std::uint32_t>(length), "abcd"_os), length - 8,
                          {});
        VexQTAsset asset;
        asset.readMainAtomsWithFileHandle(file, {.tolerant = true});
        ASSERT_EQ(asset.rootAtoms().size(), 1U);
        EXPECT_EQ(asset.rootAtoms()[0]->isLeftInFile(), length > 64 * kMiB);
    }
}

/// Free space is passed over like media data: it costs its header.
TEST(Reading, OfManyRootAtomsTouchesTheirHeaders) {
    Bytes all;
    for (int i = 0; i < 10'000; ++i) {
        const Bytes space = atom(i % 2 == 0 ? "free"_os : "mdat"_os, {zeros(200)});
        all.insert(all.end(), space.begin(), space.end());
    }
    CountingFile file(all, 0, {});
    VexQTAsset asset;
    const HeapWatch heap;
    asset.readMainAtomsWithFileHandle(file, {.tolerant = true});
    EXPECT_EQ(asset.rootAtoms().size(), 10'000U);
    EXPECT_LE(file.bytesRead(), 10'000U * 16);
    EXPECT_EQ(file.reads(), 10'000U);
    EXPECT_LE(heap.peak(), 2 * all.size());
}

}  // namespace
}  // namespace vexqt::testing
