#include "vexqt/atoms/headers/VexQTtkhdAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace testing;
using namespace std::chrono_literals;

constexpr Date k1970 = std::chrono::sys_days{std::chrono::year{1970} / 1 / 1};

const Bytes kBytes = atom("tkhd"_os, {
                                         u8(0),            // version
                                         u8(0x0A),         // flags
                                         u16(0x0B0C),      //
                                         u32(2082844800),  // creation time: 1970-01-01
                                         u32(2082844861),  // modification time: a minute later
                                         u32(0x80000002),  // track ID
                                         zeros(4),         // reserved
                                         u32(0x90001234),  // duration
                                         zeros(8),         // reserved
                                         u16(0xFFFE),      // layer
                                         u16(0x8003),      // alternate group
                                         u16(0x0100),      // volume
                                         zeros(2),         // reserved
                                         u32(0x00010000),  // a
                                         u32(0x00024000),  // b
                                         u32(0x00000003),  // u: 3 * 2^-30
                                         u32(0x00048000),  // c
                                         u32(0x00050000),  // d
                                         u32(0x00000006),  // v: 6 * 2^-30
                                         u32(0x00078000),  // x
                                         u32(0x0008C000),  // y
                                         u32(0x40000000),  // w
                                         u32(0x01E00000),  // width
                                         u32(0x00008000),  // height
                                     });

Bytes with(std::size_t offset, const Bytes& others) {
    Bytes bytes = kBytes;
    std::ranges::copy(others, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    return bytes;
}

TEST(TkhdAtom, ReadsEveryField) {
    VexQTAtom parent;
    const auto track = VexQTtkhdAtom::initWithData(kBytes, &parent, 160);
    ASSERT_NE(track, nullptr);
    EXPECT_EQ(track->parent(), &parent);
    EXPECT_EQ(track->offsetInFile(), 160U);
    EXPECT_EQ(track->atomSize(), 92U);
    EXPECT_EQ(track->atomType(), "tkhd"_os);
    EXPECT_EQ(track->version(), 0);
    EXPECT_EQ(track->flags0(), 0x0A);
    EXPECT_EQ(track->flags1(), 0x0B);
    EXPECT_EQ(track->flags2(), 0x0C);
    EXPECT_EQ(track->creationDateTime(), k1970);
    EXPECT_EQ(track->modificationDateTime(), k1970 + 61s);
    EXPECT_EQ(track->trackID(), 0x80000002U);
    EXPECT_EQ(track->duration(), 0x90001234U);
    EXPECT_EQ(track->layer(), 0xFFFE);
    EXPECT_EQ(track->alternateGroup(), 0x8003);
    EXPECT_EQ(track->volume(), 256);
    EXPECT_EQ(track->matrixAValue(), 1.0);
    EXPECT_EQ(track->matrixBValue(), 2.25);
    EXPECT_EQ(track->matrixUValue(), 3 / 1073741824.0);
    EXPECT_EQ(track->matrixCValue(), 4.5);
    EXPECT_EQ(track->matrixDValue(), 5.0);
    EXPECT_EQ(track->matrixVValue(), 6 / 1073741824.0);
    EXPECT_EQ(track->matrixXValue(), 7.5);
    EXPECT_EQ(track->matrixYValue(), 8.75);
    EXPECT_EQ(track->matrixWValue(), 1.0);
    EXPECT_EQ(track->trackWidth(), 480.0F);
    EXPECT_EQ(track->trackHeight(), 0.5F);
    EXPECT_EQ(track->unknownData(), std::nullopt);
}

TEST(TkhdAtom, WritesEveryField) {
    VexQTtkhdAtom track;
    track.setVersion(0);
    track.setFlags0(0x0A);
    track.setFlags1(0x0B);
    track.setFlags2(0x0C);
    track.setCreationDateTime(k1970);
    track.setModificationDateTime(k1970 + 61s);
    track.setTrackID(0x80000002);
    track.setDuration(0x90001234);
    track.setLayer(0xFFFE);
    track.setAlternateGroup(0x8003);
    track.setVolume(0x0100);
    track.setMatrix({1.0, 2.25, 3 / 1073741824.0, 4.5, 5.0, 6 / 1073741824.0, 7.5, 8.75, 1.0});
    track.setTrackWidth(480.0F);
    track.setTrackHeight(0.5F);
    EXPECT_EQ(track.atomData(), kBytes);
    EXPECT_EQ(track.atomSize(), 92U);
}

TEST(TkhdAtom, RefusesEveryLengthBut92) {
    for (const std::size_t length : {0U, 8U, 91U, 93U, 104U})
        EXPECT_EQ(VexQTtkhdAtom::initWithData(zeros(length), nullptr, 0), nullptr) << length;
    EXPECT_NE(VexQTtkhdAtom::initWithData(zeros(92), nullptr, 0), nullptr);
}

TEST(TkhdAtom, KeepsTheVersionAndWritesZero) {
    const auto track = VexQTtkhdAtom::initWithData(with(8, u8(1)), nullptr, 0);
    EXPECT_EQ(track->version(), 1);
    EXPECT_EQ(track->trackID(), 0x80000002U);
    EXPECT_EQ(track->atomData(), kBytes);
    EXPECT_EQ(track->version(), 1);
}

TEST(TkhdAtom, WritesReservedBytesAsZero) {
    Bytes bytes = with(24, u32(0xE1E1E1E1));
    std::fill_n(bytes.begin() + 32, 8, std::uint8_t{0xE2});
    std::fill_n(bytes.begin() + 46, 2, std::uint8_t{0xE3});
    EXPECT_EQ(VexQTtkhdAtom::initWithData(bytes, nullptr, 0)->atomData(), kBytes);
}

TEST(TkhdAtom, RoundsMatrixElementsToSinglePrecision) {
    // w is 1 + 2^-30; a needs 31 bits.
    Bytes bytes = with(80, u32(0x40000001));
    std::ranges::copy(u32(0x7FFFFFFF), bytes.begin() + 48);
    const auto track = VexQTtkhdAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(track->matrixWValue(), 1.0);
    EXPECT_EQ(track->matrixAValue(), 32768.0);
    EXPECT_EQ(track->atomData(), with(48, u32(0x80000000)));
}

TEST(TkhdAtom, KeepsTheIdentityMatrix) {
    const Bytes bytes =
        with(48, join({u32(0x00010000), zeros(12), u32(0x00010000), zeros(12), u32(0x40000000)}));
    const auto track = VexQTtkhdAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(track->matrix(), (Matrix{1, 0, 0, 0, 1, 0, 0, 0, 1}));
    EXPECT_EQ(track->atomData(), bytes);
}

TEST(TkhdAtom, AWholeNegativeMatrixElementReadsOneLower) {
    const auto track = VexQTtkhdAtom::initWithData(with(52, u32(0xFFFF0000)), nullptr, 0);
    EXPECT_EQ(track->matrixBValue(), -2.0);
    EXPECT_EQ(track->atomData(), with(52, u32(0xFFFE0000)));
}

TEST(TkhdAtom, ComputesDimensionsInSinglePrecision) {
    // 65535 + 65535/65536 has 32 bits and becomes 65536; 1 + 1/65536 has 17 and stays.
    const auto track =
        VexQTtkhdAtom::initWithData(with(84, join({u32(0xFFFFFFFF), u32(0x00010001)})), nullptr, 0);
    EXPECT_EQ(track->trackWidth(), 65536.0F);
    EXPECT_EQ(track->trackHeight(), 1.0F + 1.0F / 65536.0F);
    EXPECT_EQ(track->atomData(), with(84, join({u32(0), u32(0x00010001)})));
}

TEST(TkhdAtom, ANegativeDimensionIsRoundedDown) {
    const auto track = VexQTtkhdAtom::initWithData(kBytes, nullptr, 0);
    track->setTrackWidth(-0.25F);
    EXPECT_EQ(track->atomData(), with(84, u32(0xFFFFC000)));
}

TEST(TkhdAtom, WritesAnAbsentDateAs2001) {
    VexQTtkhdAtom track;
    EXPECT_EQ(track.creationDateTime(), std::nullopt);
    EXPECT_EQ(track.modificationDateTime(), std::nullopt);
    EXPECT_EQ(track.atomData(),
              atom("tkhd"_os, {zeros(4), u32(3061152000), u32(3061152000), zeros(72)}));
}

TEST(TkhdAtom, HasANameAndAView) {
    const VexQTtkhdAtom track;
    EXPECT_EQ(track.atomName(), "Track Header");
    EXPECT_EQ(track.atomNibName(), "VexQTtkhdAtom");
}

}  // namespace
}  // namespace vexqt
