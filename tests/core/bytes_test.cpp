#include "vexqt/core/bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "testing/reading.h"

namespace vexqt {
namespace {

using testing::errorOf;

const Bytes kFifteen = {0x01, 0x12, 0x34, 0x23, 0x45, 0x67, 0x89, 0xA1,
                        0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 0x07, 0x18};

TEST(FromBigEndian, ReversesBytesOnMachinesThatNeedIt) {
    const std::array<std::uint8_t, 4> bytes = {0x89, 0x01, 0x02, 0x03};
    EXPECT_EQ(fromBigEndian(std::bit_cast<std::uint32_t>(bytes)), 0x89010203U);
    EXPECT_EQ(fromBigEndian(std::bit_cast<std::int32_t>(bytes)), -0x76FEFDFD);
    EXPECT_EQ(fromBigEndian(std::uint8_t{0x89}), 0x89);
}

TEST(ByteReader, ReadsBigEndianNumbersOneAfterAnother) {
    ByteReader in(kFifteen);
    EXPECT_EQ(in.u8(), 0x01U);
    EXPECT_EQ(in.u16(), 0x1234U);
    EXPECT_EQ(in.u32(), 0x23456789U);
    EXPECT_EQ(in.u64(), 0xA1B2C3D4E5F60718U);
    EXPECT_EQ(in.position(), 15U);
    EXPECT_EQ(in.remaining(), 0U);
}

TEST(ByteReader, TakesPartsOfTheBytesThemselves) {
    ByteReader in(kFifteen, 3);
    EXPECT_EQ(in.take(2).data(), kFifteen.data() + 3);
    in.skip(1);
    EXPECT_EQ(in.position(), 6U);
    const ByteView rest = in.rest();
    EXPECT_EQ(rest.data(), kFifteen.data() + 6);
    EXPECT_EQ(rest.size(), 9U);
    EXPECT_TRUE(in.rest().empty());
}

TEST(ByteReader, AReadPastTheEndSaysWhatWasWantedAndWhatIsThere) {
    ByteReader in(kFifteen, 12);
    EXPECT_EQ(errorOf<RangeError>([&] { in.u32(); }), "4 bytes wanted at 12, 15 there");
    EXPECT_EQ(errorOf<RangeError>([&] { in.u64(); }), "8 bytes wanted at 12, 15 there");
    EXPECT_EQ(errorOf<RangeError>([&] { in.take(5); }), "5 bytes wanted at 12, 15 there");
    EXPECT_EQ(errorOf<RangeError>([&] { in.skip(6); }), "6 bytes wanted at 12, 15 there");
}

TEST(ByteReader, AReadPastTheEndDoesNotMove) {
    ByteReader in(kFifteen, 12);
    EXPECT_THROW(in.u32(), RangeError);
    EXPECT_EQ(in.position(), 12U);
    EXPECT_EQ(in.u16(), 0xF607U);
}

TEST(ByteReader, ACountThatWouldWrapIsPastTheEnd) {
    ByteReader in(kFifteen, 12);
    EXPECT_THROW(in.take(std::numeric_limits<std::uint64_t>::max()), RangeError);
    EXPECT_THROW(in.take(std::numeric_limits<std::uint64_t>::max() - 11), RangeError);
    EXPECT_EQ(in.position(), 12U);
}

TEST(ByteReader, MovesAnywhereAndFailsAtTheNextRead) {
    ByteReader in(kFifteen);
    in.seek(15);
    EXPECT_TRUE(in.take(0).empty());
    in.seek(16);
    EXPECT_EQ(in.remaining(), 0U);
    EXPECT_TRUE(in.rest().empty());
    EXPECT_EQ(errorOf<RangeError>([&] { in.take(0); }), "0 bytes wanted at 16, 15 there");
    in.seek(std::numeric_limits<std::size_t>::max());
    EXPECT_THROW(in.u8(), RangeError);
    EXPECT_EQ(in.remaining(), 0U);
    in.seek(0);
    EXPECT_EQ(in.u8(), 0x01U);
}

TEST(ByteReader, HasNothingToReadInNoBytes) {
    ByteReader in(ByteView{});
    EXPECT_EQ(in.length(), 0U);
    EXPECT_TRUE(in.rest().empty());
    EXPECT_THROW(in.u8(), RangeError);
}

TEST(ByteWriter, WritesBigEndianNumbersOneAfterAnother) {
    ByteWriter out;
    out.u8(0x01);
    out.u16(0x1234);
    out.u32(0x23456789);
    out.u64(0xA1B2C3D4E5F60718);
    EXPECT_EQ(out.length(), 15U);
    EXPECT_EQ(out.release(), kFifteen);
}

TEST(ByteWriter, AppendsPatchesAndInserts) {
    ByteWriter out;
    out.zeros(2);
    out.append(Bytes{0x11, 0x22, 0x33, 0x44, 0x55});
    out.patchU32(1, 0xA1A2A3A4);
    EXPECT_EQ(Bytes(out.view().begin(), out.view().end()),
              (Bytes{0x00, 0xA1, 0xA2, 0xA3, 0xA4, 0x44, 0x55}));
    out.insert(1, Bytes{0xE1, 0xE2});
    out.insert(9, Bytes{0xE3});
    EXPECT_EQ(out.release(), (Bytes{0x00, 0xE1, 0xE2, 0xA1, 0xA2, 0xA3, 0xA4, 0x44, 0x55, 0xE3}));
}

TEST(ByteWriter, GrowsByBytesForItsCaller) {
    ByteWriter out;
    out.u8(1);
    const std::span<std::uint8_t> two = out.grow(2);
    ASSERT_EQ(two.size(), 2U);
    EXPECT_EQ(two[0], 0);
    two[1] = 9;
    out.u8(2);
    EXPECT_EQ(out.release(), (Bytes{1, 0, 9, 2}));
}

TEST(SharedBytes, PartsLieInTheBlockTheyArePartOf) {
    const SharedBytes block = SharedBytes::copyOf(kFifteen);
    const SharedBytes part = block.part(3, 4).part(1, 2);
    EXPECT_EQ(part.view().data(), block.view().data() + 4);
    EXPECT_EQ(part.size(), 2U);
    EXPECT_EQ(block.first(2).view().data(), block.view().data());
    EXPECT_EQ(block.first(2).size(), 2U);
}

TEST(SharedBytes, PartsKeepTheBlockAlive) {
    SharedBytes part;
    {
        Bytes bytes = kFifteen;
        part = SharedBytes::copyOf(bytes).part(13, 2);
        bytes.assign(15, 0xFF);
    }
    EXPECT_EQ(Bytes(part.view().begin(), part.view().end()), (Bytes{0x07, 0x18}));
}

TEST(SharedBytes, TellWhereAPartOfTheirBlockLiesInThem) {
    const SharedBytes block = SharedBytes::copyOf(kFifteen);
    const SharedBytes four = block.part(3, 4);
    EXPECT_EQ(four.offsetOf(four), 0U);
    EXPECT_EQ(four.offsetOf(block.part(5, 2)), 2U);
    EXPECT_EQ(four.offsetOf(block.part(7, 0)), 4U);
    EXPECT_EQ(four.offsetOf(block.part(2, 2)), std::nullopt) << "in front";
    EXPECT_EQ(four.offsetOf(block.part(8, 1)), std::nullopt) << "behind";
    EXPECT_EQ(four.offsetOf(block.part(5, 3)), std::nullopt) << "over the end";
    EXPECT_EQ(four.offsetOf(SharedBytes::copyOf(kFifteen)), std::nullopt) << "another block";
    EXPECT_EQ(SharedBytes().offsetOf(four), std::nullopt);
    EXPECT_EQ(four.offsetOf(SharedBytes()), std::nullopt);
}

TEST(SharedBytes, JoinWhatLiesBehindThemInTheirBlock) {
    const SharedBytes block = SharedBytes::copyOf(kFifteen);
    const SharedBytes four = block.part(3, 4);
    const auto seven = four.joined(block.part(7, 3));
    ASSERT_TRUE(seven);
    EXPECT_EQ(seven->size(), 7U);
    EXPECT_EQ(block.offsetOf(*seven), 3U);
    EXPECT_FALSE(four.joined(block.part(8, 3))) << "a gap";
    EXPECT_FALSE(four.joined(block.part(6, 3))) << "both have a byte in common";
    EXPECT_FALSE(four.joined(SharedBytes::copyOf(kFifteen)));
    EXPECT_FALSE(SharedBytes().joined(four));
}

TEST(SharedBytes, OfNothingAreEmpty) {
    EXPECT_EQ(SharedBytes().size(), 0U);
    EXPECT_TRUE(SharedBytes().view().empty());
    EXPECT_EQ(SharedBytes().part(0, 0).size(), 0U);
    EXPECT_EQ(SharedBytes::copyOf({}).size(), 0U);
}

}  // namespace
}  // namespace vexqt
