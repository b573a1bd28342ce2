#include "vexqt/atoms/structure/VexQTmoovAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "testing/reading.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/atoms/structure/VexQTmoofAtom.h"

namespace vexqt {
namespace {

using namespace testing;

Bytes media(OSType subType) {
    return atom("mdia"_os, {atom("hdlr"_os, {u32(0), text("mhlr"), u32(subType), zeros(12)})});
}
Bytes track(std::uint32_t trackID, std::initializer_list<ByteView> children) {
    return atom("trak"_os, {atom("tkhd"_os, {zeros(12), u32(trackID), zeros(68)}), join(children)});
}
/// A track without a media, two of video with a sound between them, and one whose first media
/// is sound.
const Bytes kMovie = atom("moov"_os, {
                                         track(1, {}),
                                         track(2, {media("vide"_os)}),
                                         track(3, {media("soun"_os)}),
                                         atom("free"_os, {u8(0)}),
                                         track(4, {media("vide"_os)}),
                                         track(5, {media("soun"_os), media("vide"_os)}),
                                     });

std::uint64_t trackID(const VexQTtrakAtom* track) {
    return track != nullptr ? *integerFrom(track->valueForKeyPath("tkhd.trackID")) : 0;
}

TEST(MoovAtom, GivesItsTracksInOrder) {
    const auto movie = VexQTmoovAtom::initWithData(kMovie, nullptr, 0);
    std::vector<std::uint64_t> trackIDs;
    for (const VexQTtrakAtom* track : movie->allTrackAtoms()) trackIDs.push_back(trackID(track));
    EXPECT_EQ(trackIDs, (std::vector<std::uint64_t>{1, 2, 3, 4, 5}));
    EXPECT_TRUE(VexQTmoovAtom().allTrackAtoms().empty());
}

TEST(MoovAtom, CountsTheTracksOfAMediaTypeFromZero) {
    const auto movie = VexQTmoovAtom::initWithData(kMovie, nullptr, 0);
    EXPECT_EQ(trackID(movie->trackAtomForMediaType("vide"_os, 0)), 2U);
    EXPECT_EQ(trackID(movie->trackAtomForMediaType("vide"_os, 1)), 4U);
    EXPECT_EQ(movie->trackAtomForMediaType("vide"_os, 2), nullptr);
    EXPECT_EQ(trackID(movie->trackAtomForMediaType("soun"_os, 0)), 3U);
    EXPECT_EQ(trackID(movie->trackAtomForMediaType("soun"_os, 1)), 5U);
    EXPECT_EQ(movie->trackAtomForMediaType("soun"_os, 0xFFFFFFFF), nullptr);
    EXPECT_EQ(movie->trackAtomForMediaType("text"_os, 0), nullptr);
}

TEST(MoovAtom, LooksAtTheMediaTypeThatATrackHasNow) {
    const auto movie = VexQTmoovAtom::initWithData(kMovie, nullptr, 0);
    VexQTtrakAtom* first = movie->allTrackAtoms()[1];
    dynamic_cast<VexQTmdiaAtom&>(*first->childWithType("mdia"_os)).setMediaType("text"_os);
    EXPECT_EQ(movie->trackAtomForMediaType("text"_os, 0), first);
    EXPECT_EQ(trackID(movie->trackAtomForMediaType("vide"_os, 0)), 4U);
    first->setAtomType("skip"_os);
    EXPECT_EQ(movie->trackAtomForMediaType("text"_os, 0), nullptr);
    EXPECT_EQ(movie->allTrackAtoms().size(), 4U);
}

TEST(MoovAtom, OfATolerantReadingHasNoTrackThatWasDeclined) {
    const auto [movie, problems] = readTolerantly<VexQTmoovAtom>(
        atom("moov"_os,
             {atom("trak"_os, {media("vide"_os)}), atomClaiming(1, "trak"_os, {u32(0), u8(0)})}));
    EXPECT_EQ(problems.size(), 1U);
    EXPECT_EQ(movie->children().size(), 2U);
    EXPECT_EQ(movie->allTrackAtoms().size(), 1U);
    EXPECT_EQ(movie->trackAtomForMediaType("vide"_os, 1), nullptr);
}

TEST(MoovAtom, KeepsItsOriginalSize) {
    VexQTmoovAtom movie;
    EXPECT_EQ(movie.originalSize(), 0U);
    movie.setOriginalSize(0x123456789A);
    movie.atomData();
    EXPECT_EQ(movie.originalSize(), 0x123456789AU);
    EXPECT_EQ(movie.valueForKey("originalSize"), Value(0x123456789AU));
    EXPECT_EQ(VexQTmoovAtom::initWithData(kMovie, nullptr, 0)->originalSize(), 0U);
    VexQTmoofAtom segment;
    EXPECT_EQ(segment.originalSize(), 0U);
    segment.setOriginalSize(7);
    EXPECT_EQ(segment.originalSize(), 7U);
}

TEST(MoovAtom, TakesAnExtendedSizeForTheHeaderOfAChild) {
    // The high half of the extended size, 0, is the size of the child; the low half is its type.
    const Bytes bytes = extendedAtomClaiming(0x61626364, "moov"_os, {text("payload")});
    const auto movie = VexQTmoovAtom::initWithData(bytes, nullptr, 0);
    ASSERT_EQ(movie->children().size(), 1U);
    EXPECT_EQ(movie->children()[0]->atomTypeString(), "abcd");
    EXPECT_EQ(movie->children()[0]->unknownData(), text("payload"));
    EXPECT_EQ(movie->atomSize(), 23U);
}

TEST(MoovAtom, OfFewerThan17BytesHasNoChildren) {
    for (std::size_t length = 0; length < 17; ++length) {
        const auto movie = VexQTmoovAtom::initWithData(Bytes(length, 0xFF), nullptr, 0);
        EXPECT_TRUE(movie->children().empty());
        EXPECT_EQ(movie->atomSize(), length);
    }
    EXPECT_THROW(VexQTmoovAtom::initWithData(Bytes(17, 0xFF), nullptr, 0), RangeError);
}

TEST(MoovAtom, ThatHoldsAHeaderOfAnotherLengthRaises) {
    const Bytes bytes = atom("moov"_os, {atom("mvhd"_os, {zeros(112)})});
    EXPECT_EQ(errorOf<InsertionError>([&] { VexQTmoovAtom::initWithData(bytes, nullptr, 40); }),
              "moov.mvhd at 48: VexQTmvhdAtom declines 120 bytes");
}

TEST(MoovAtom, OfATolerantReadingKeepsAHeaderOfAnotherLength) {
    const Bytes bytes = atom("moov"_os, {atom("mvhd"_os, {zeros(112)})});
    const auto [movie, problems] = readTolerantly<VexQTmoovAtom>(bytes, 40);
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].path, "moov.mvhd");
    EXPECT_EQ(problems[0].offsetInFile, 48U);
    EXPECT_EQ(problems[0].message,
              "Atom 'mvhd' declined by VexQTmvhdAtom (120 bytes) - kept as raw data");
    EXPECT_EQ(movie->children()[0]->declinedClass(), "VexQTmvhdAtom");
    EXPECT_EQ(movie->atomData(), bytes);
}

TEST(MoovAtom, ErrorsNameThePathFromTheMovieDown) {
    const Bytes bytes = atom(
        "moov"_os,
        {track(1, {}), track(2, {}),
         track(3, {atom("mdia"_os,
                        {atom("minf"_os,
                              {atom("stbl"_os, {atomClaiming(99, "stts"_os, {zeros(8)})})})})})});
    EXPECT_EQ(errorOf<RangeError>([&] { VexQTmoovAtom::initWithData(bytes, nullptr, 1000); }),
              "moov.trak[2].mdia.minf.stbl.stts at 1332: 99 bytes wanted at 8, 24 there");
}

}  // namespace
}  // namespace vexqt
