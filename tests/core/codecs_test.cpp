// Each codec: how many bytes it takes, what they are read as, and what they are written as.
#include "vexqt/core/codecs.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt::testing {
namespace {

template <class Codec>
auto read(const Bytes& bytes) {
    EXPECT_EQ(Codec::width, bytes.size());
    ByteReader in(bytes);
    auto value = Codec::read(in);
    EXPECT_EQ(in.remaining(), 0U);
    return value;
}

/// What a codec reads.
template <class Codec>
using Held = decltype(Codec::read(std::declval<ByteReader&>()));

template <class Codec>
Bytes written(const Held<Codec>& value) {
    ByteWriter out;
    Codec::write(out, value);
    return out.release();
}

/// Expects bytes to be read as a value and the value to be written as the bytes.
template <class Codec>
void expectBoth(const Bytes& bytes, const Held<Codec>& value) {
    EXPECT_EQ(read<Codec>(bytes), value);
    EXPECT_EQ(written<Codec>(value), bytes);
}

template <class Codec>
void expectRange(double least, double end) {
    EXPECT_EQ(Codec::range.least, least);
    EXPECT_EQ(Codec::range.end, end);
}

TEST(Codec, OfUnsignedIntegersTakesTheirBytes) {
    expectBoth<U8>({0xF1}, 0xF1);
    expectBoth<U16>({0xF1, 0x02}, 0xF102);
    expectBoth<U32>({0xF1, 0x02, 0x03, 0x04}, 0xF1020304U);
    expectBoth<U64>({0xF1, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08},
                    std::uint64_t{0xF102030405060708});
}

TEST(Codec, OfSignedIntegersTakesTheirBits) {
    expectBoth<Signed<std::int8_t>>({0xFE}, -2);
    expectBoth<Signed<std::int16_t>>({0xFE, 0xFF}, -257);
    expectBoth<Signed<std::int32_t>>({0xFE, 0xFF, 0xFF, 0xFF}, -0x1000001);
    expectBoth<Signed<std::int64_t>>({0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
                                     -std::int64_t{0x100000000000001});
}

TEST(Codec, OfCodesAndMasksIsThatOfTheIntegerShownOtherwise) {
    expectBoth<Code>({'m', 'o', 'o', 'v'}, "moov"_os);
    EXPECT_EQ(Code::display, Display::Code);
    expectBoth<Hex<U16>>({0x12, 0x34}, 0x1234);
    EXPECT_EQ(Hex<U16>::display, Display::Hexadecimal);
}

TEST(Codec, OfFixedPointNumbersTakesTheirBitsAsDefined) {
    expectBoth<SignedFixed1616>({0x00, 0x01, 0x80, 0x00}, 1.5);
    expectRange<SignedFixed1616>(-32768, 32768);
    EXPECT_EQ(read<SignedFixed1616>({0xFF, 0xFF, 0x00, 0x00}), -2.0);
    expectBoth<SignedFixed230>({0x40, 0x00, 0x00, 0x00}, 1.0);
    expectRange<SignedFixed230>(-2, 2);
    expectBoth<UnsignedFixed88>({0x81, 0x80}, 129.5);
    expectRange<UnsignedFixed88>(0, 256);
    expectBoth<UnsignedFixed1616>({0x80, 0x01, 0x80, 0x00}, 32769.5);
    expectRange<UnsignedFixed1616>(0, 65536);
}

TEST(Codec, OfDatesCountsSecondsFrom1904) {
    using namespace std::chrono;
    expectBoth<MacDate>({0, 0, 0, 0}, sys_days{1904y / 1 / 1});
    expectBoth<MacDate>({0, 1, 0x51, 0x81}, sys_days{1904y / 1 / 2} + seconds(1));
    EXPECT_EQ(written<MacDate>(std::nullopt), (Bytes{0xB6, 0x75, 0x79, 0x00}));
    EXPECT_EQ(written<MacDate>(sys_days{1904y / 1 / 1} - seconds(1)),
              (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(Codec, OfAMatrixHasItsLastColumnInAnotherForm) {
    const Bytes bytes = join({u32(0x00018000), u32(0x00028000), u32(0x40000000),  //
                              u32(0x00038000), u32(0x00048000), u32(0x00000000),  //
                              u32(0x00058000), u32(0x00068000), u32(0x40000000)});
    expectBoth<MovieMatrix>(bytes, Matrix{1.5, 2.5, 1, 3.5, 4.5, 0, 5.5, 6.5, 1});
}

}  // namespace
}  // namespace vexqt::testing
