#include <gtest/gtest.h>

#include <limits>

#include "platform/pictures.h"

namespace vexqt {
namespace {

void append(Bytes& bytes, ByteView more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

void appendNumber(Bytes& bytes, std::uint32_t value, int width) {
    for (int i = 0; i < width; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

/// A bitmap as a program might write it that does not check what it is told.
struct Bitmap {
    std::int32_t width = 0, height = 0;
    std::uint32_t bits = 0;
    Bytes pixels;
    Bytes palette = {};
    std::uint32_t colors = 0;  ///< How many of the palette the header says there are.
    std::uint32_t compression = 0;
    Bytes masks = {};  ///< Behind the first 40 bytes of the header, part of it or not.
    std::uint32_t headerLength = 40;

    Bytes bytes() const {
        Bytes header;
        appendNumber(header, headerLength, 4);
        const int sizeWidth = headerLength == 12 ? 2 : 4;
        appendNumber(header, static_cast<std::uint32_t>(width), sizeWidth);
        appendNumber(header, static_cast<std::uint32_t>(height), sizeWidth);
        appendNumber(header, 1, 2);
        appendNumber(header, bits, 2);
        if (headerLength >= 40) {
            appendNumber(header, compression, 4);
            header.resize(32);
            appendNumber(header, colors, 4);
            appendNumber(header, 0, 4);
            append(header, masks);
        }
        if (header.size() < headerLength) header.resize(headerLength);
        append(header, palette);

        Bytes bytes = {'B', 'M'};
        appendNumber(bytes, static_cast<std::uint32_t>(14 + header.size() + pixels.size()), 4);
        appendNumber(bytes, 0, 4);
        appendNumber(bytes, static_cast<std::uint32_t>(14 + header.size()), 4);
        append(bytes, header);
        append(bytes, pixels);
        return bytes;
    }
};

constexpr Pixel kRed = {255, 0, 0, 255}, kGreen = {0, 255, 0, 255}, kBlue = {0, 0, 255, 255};
constexpr Pixel kBlack = {0, 0, 0, 255};

/// Red, green, blue and (1, 2, 3), each with a fourth byte that means nothing.
const Bytes kPalette = {0, 0, 255, 9, 0, 255, 0, 9, 255, 0, 0, 9, 3, 2, 1, 9};
const Bytes kShortPalette = {0, 0, 255, 0, 255, 0, 255, 0, 0, 3, 2, 1};
constexpr Pixel kFourth = {1, 2, 3, 255};

/// Four masks, the lowest byte of the file being red.
const Bytes kRedFirst = {0xFF, 0, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0xFF};

Bytes firstTwelve(Bytes masks) {
    masks.resize(12);
    return masks;
}

TEST(BMP, KindsOfTheWorldDecode) {
    const struct {
        const char* what;
        Bitmap bitmap;
        Picture picture;
    } cases[] = {
        {"24 bits, from bottom to top",
         {1, 2, 24, {1, 2, 3, 0, 4, 5, 6, 0}},
         pictureOf({1, 2}, {{6, 5, 4, 255}, {3, 2, 1, 255}})},
        {"from top to bottom",
         {1, -2, 24, {1, 2, 3, 0, 4, 5, 6, 0}},
         pictureOf({1, 2}, {{3, 2, 1, 255}, {6, 5, 4, 255}})},
        {"the last row without padding",
         {1, 2, 24, {1, 2, 3, 0, 4, 5, 6}},
         pictureOf({1, 2}, {{6, 5, 4, 255}, {3, 2, 1, 255}})},
        {"32 bits, the fourth byte meaning nothing",
         {2, 1, 32, {1, 2, 3, 0, 4, 5, 6, 7}},
         pictureOf({2, 1}, {{3, 2, 1, 255}, {6, 5, 4, 255}})},
        {"16 bits, five to a colour",
         {4, 1, 16, {0x00, 0x7C, 0xE0, 0x03, 0x1F, 0x00, 0x10, 0x82}},
         pictureOf({4, 1}, {kRed, kGreen, kBlue, {0, 132, 132, 255}})},
        {"8 bits", {3, 1, 8, {2, 0, 3, 0}, kPalette, 4}, pictureOf({3, 1}, {kBlue, kRed, kFourth})},
        {"4 bits",
         {3, 1, 4, {0x20, 0x3F, 0, 0}, kPalette, 4},
         pictureOf({3, 1}, {kBlue, kRed, kFourth})},
        {"1 bit",
         {9, 1, 1, {0b01100000, 0b10000000, 0, 0}, kPalette, 2},
         pictureOf({9, 1}, {kRed, kGreen, kGreen, kRed, kRed, kRed, kRed, kRed, kGreen})},
        {"a pixel past the palette is black",
         {2, 1, 8, {1, 200, 0, 0}, kPalette, 4},
         pictureOf({2, 1}, {kGreen, kBlack})},
        {"a palette whose length is not told",
         {2, 1, 8, {1, 200, 0, 0}, kPalette, 0},
         pictureOf({2, 1}, {kGreen, kBlack})},
        {"a palette that claims more than there can be",
         {2, 1, 8, {1, 3, 0, 0}, kPalette, 0xFFFFFFFF},
         pictureOf({2, 1}, {kGreen, kFourth})},
        {"OS/2",
         {.width = 2,
          .height = 1,
          .bits = 8,
          .pixels = {1, 3, 0, 0},
          .palette = kShortPalette,
          .headerLength = 12},
         pictureOf({2, 1}, {kGreen, kFourth})},
        {"OS/2 2, as short as it may be",
         {.width = 2,
          .height = 1,
          .bits = 8,
          .pixels = {1, 3, 0, 0},
          .palette = kPalette,
          .headerLength = 16},
         pictureOf({2, 1}, {kGreen, kFourth})},
        {"OS/2 2 in full",
         {.width = 1, .height = 1, .bits = 24, .pixels = {1, 2, 3, 0}, .headerLength = 64},
         pictureOf({1, 1}, {{3, 2, 1, 255}})},
        {"masks behind the header",
         {.width = 1,
          .height = 1,
          .bits = 32,
          .pixels = {1, 2, 3, 4},
          .compression = 3,
          .masks = firstTwelve(kRedFirst)},
         pictureOf({1, 1}, {{1, 2, 3, 255}})},
        {"masks behind the header, alpha among them",
         {.width = 1,
          .height = 1,
          .bits = 32,
          .pixels = {1, 2, 3, 4},
          .compression = 6,
          .masks = kRedFirst},
         pictureOf({1, 1}, {{1, 2, 3, 4}})},
        {"masks in a header of 52 bytes",
         {.width = 1,
          .height = 1,
          .bits = 32,
          .pixels = {1, 2, 3, 4},
          .compression = 3,
          .masks = firstTwelve(kRedFirst),
          .headerLength = 52},
         pictureOf({1, 1}, {{1, 2, 3, 255}})},
        {"masks in a header of 56 bytes",
         {.width = 1,
          .height = 1,
          .bits = 32,
          .pixels = {1, 2, 3, 4},
          .compression = 3,
          .masks = kRedFirst,
          .headerLength = 56},
         pictureOf({1, 1}, {{1, 2, 3, 4}})},
        {"masks in a header of 124 bytes",
         {.width = 1,
          .height = 1,
          .bits = 32,
          .pixels = {1, 2, 3, 4},
          .compression = 3,
          .masks = kRedFirst,
          .headerLength = 124},
         pictureOf({1, 1}, {{1, 2, 3, 4}})},
        {"masks that do not count without the compression",
         {.width = 1,
          .height = 1,
          .bits = 32,
          .pixels = {1, 2, 3, 4},
          .masks = kRedFirst,
          .headerLength = 108},
         pictureOf({1, 1}, {{3, 2, 1, 255}})},
        {"masks of 16 bits, six for green",
         {.width = 3,
          .height = 1,
          .bits = 16,
          .pixels = {0x00, 0xF8, 0xE0, 0x07, 0x30, 0x84, 0, 0},
          .compression = 3,
          .masks = {0x00, 0xF8, 0, 0, 0xE0, 0x07, 0, 0, 0x1F, 0, 0, 0}},
         pictureOf({3, 1}, {kRed, kGreen, {132, 134, 132, 255}})},
        {"masks of ten bits and none",
         {.width = 1,
          .height = 1,
          .bits = 32,
          .pixels = {0xFF, 0xFF, 0xFF, 0xFF},
          .compression = 3,
          .masks = {0x00, 0x00, 0xF0, 0x3F, 0x00, 0xFC, 0x0F, 0, 0, 0, 0, 0}},
         pictureOf({1, 1}, {{255, 255, 0, 255}})},
        {"a mask of all bits",
         {.width = 1,
          .height = 1,
          .bits = 32,
          .pixels = {0, 0, 0, 0x80},
          .compression = 3,
          .masks = {0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0}},
         pictureOf({1, 1}, {{128, 0, 0, 255}})},
    };
    for (const auto& [what, bitmap, picture] : cases) {
        SCOPED_TRACE(what);
        const Bytes bytes = bitmap.bytes();
        EXPECT_EQ(Picture::sizeOf(bytes), picture.size());
        EXPECT_EQ(Picture::decode(bytes), picture);
    }
}

TEST(BMP, RunsDecode) {
    const Pixel &r = kRed, &g = kGreen, &b = kBlue, &f = kFourth;
    const struct {
        const char* what;
        std::uint32_t bits;
        Bytes runs;
        Picture picture;
    } cases[] = {
        {"a run and an end", 8, {3, 1, 0, 0, 3, 2, 0, 1}, pictureOf({3, 2}, {b, b, b, g, g, g})},
        {"single pixels, padded to two bytes",
         8,
         {0, 3, 1, 2, 3, 99, 0, 0, 3, 1, 0, 0},
         pictureOf({3, 2}, {g, g, g, g, b, f})},
        {"a jump", 8, {1, 1, 0, 2, 1, 1, 1, 2, 0, 1}, pictureOf({3, 2}, {r, r, b, g, r, r})},
        {"an early end leaves the first colour",
         8,
         {1, 3, 0, 1},
         pictureOf({3, 2}, {r, r, r, f, r, r})},
        {"what is too much for the row is dropped",
         8,
         {200, 1, 0, 0, 0, 4, 2, 2, 2, 3, 0, 1},
         pictureOf({3, 2}, {b, b, b, g, g, g})},
        {"a jump past the picture ends it",
         8,
         {1, 2, 0, 2, 255, 255},
         pictureOf({3, 2}, {r, r, r, b, r, r})},
        {"two colours in turns",
         4,
         {3, 0x12, 0, 0, 2, 0x33, 0, 1},
         pictureOf({3, 2}, {f, f, r, g, b, g})},
        {"single pixels, two to a byte",
         4,
         {0, 3, 0x12, 0x30, 0, 0, 3, 0x00, 0, 1},
         pictureOf({3, 2}, {r, r, r, g, b, f})},
        {"single pixels, padded to two bytes, two to a byte",
         4,
         {0, 5, 0x12, 0x30, 0x00, 99, 0, 0, 3, 0x11, 0, 1},
         pictureOf({3, 2}, {g, g, g, g, b, f})},
    };
    for (const auto& [what, bits, runs, picture] : cases) {
        SCOPED_TRACE(what);
        const Bitmap bitmap = {3, 2, bits, runs, kPalette, 4, bits == 8 ? 1U : 2U};
        const Bytes bytes = bitmap.bytes();
        EXPECT_EQ(Picture::sizeOf(bytes), picture.size());
        EXPECT_EQ(Picture::decode(bytes), picture);
    }
}

TEST(BMP, AbsurdHeadersAreAbsent) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    const Bytes pixels(64);
    const struct {
        const char* what;
        Bitmap bitmap;
    } cases[] = {
        {"no width", {0, 1, 24, pixels}},
        {"no height", {1, 0, 24, pixels}},
        {"a negative width", {-1, 1, 24, pixels}},
        {"the greatest size", {kMost, kMost, 24, pixels}},
        {"the greatest width", {kMost, 1, 1, pixels, kPalette}},
        {"the least height", {1, kLeast, 1, pixels, kPalette}},
        {"more rows than there are bytes for", {1, 17, 24, pixels}},
        {"2 bits", {1, 1, 2, pixels}},
        {"0 bits", {1, 1, 0, pixels}},
        {"64 bits", {1, 1, 64, pixels}},
        {"runs of 24 bits", {1, 1, 24, pixels, kPalette, 0, 1}},
        {"runs of 8 bits that are 4", {1, 1, 4, pixels, kPalette, 0, 1}},
        {"runs of 4 bits that are 8", {1, 1, 8, pixels, kPalette, 0, 2}},
        {"runs from top to bottom", {1, -1, 8, pixels, kPalette, 0, 1}},
        {"runs for more pixels than they account for", {8000, 8000, 8, pixels, kPalette, 0, 1}},
        {"masks of 24 bits", {1, 1, 24, pixels, {}, 0, 3, Bytes(12)}},
        {"a JPEG inside", {1, 1, 24, pixels, {}, 0, 4}},
        {"a PNG inside", {1, 1, 24, pixels, {}, 0, 5}},
        {"an unknown compression", {1, 1, 24, pixels, {}, 0, 0xFFFFFFFF}},
        {"an unknown header", {1, 1, 24, pixels, {}, 0, 0, {}, 41}},
        {"a compression of OS/2", {1, 1, 32, pixels, {}, 0, 3, {}, 64}},
    };
    for (const auto& [what, bitmap] : cases) {
        SCOPED_TRACE(what);
        EXPECT_FALSE(Picture::sizeOf(bitmap.bytes()).has_value());
        EXPECT_FALSE(Picture::decode(bitmap.bytes()).has_value());
    }
}

TEST(BMP, PixelsOutsideTheFileOrInTheHeaderAreAbsent) {
    const Bytes good = Bitmap{1, 1, 24, {1, 2, 3, 0}}.bytes();
    for (const int offset : {0, 53, 56, 200}) {
        SCOPED_TRACE(offset);
        Bytes bytes = good;
        bytes[10] = static_cast<std::uint8_t>(offset);
        EXPECT_FALSE(Picture::sizeOf(bytes).has_value());
        EXPECT_FALSE(Picture::decode(bytes).has_value());
    }
    Bytes bytes = good;
    bytes[13] = 0xFF;
    EXPECT_FALSE(Picture::decode(bytes).has_value());
}

TEST(BMP, CutShortIsAbsent) {
    expectEveryCutIsAbsent(Bitmap{4, 2, 24, Bytes(24, 7)}.bytes());
    expectEveryCutIsAbsent(Bitmap{4, 2, 8, {1, 2, 3, 0, 0, 1, 2, 3}, kPalette, 4}.bytes());
    expectEveryCutIsAbsent(
        Bitmap{3, 2, 8, {0, 3, 1, 2, 3, 99, 0, 0, 3, 1, 0, 1}, kPalette, 4, 1}.bytes());
    expectEveryCutIsAbsent(
        Bitmap{3, 2, 4, {1, 0x11, 0, 2, 1, 1, 2, 0x33, 0, 1}, kPalette, 4, 2}.bytes());
}

TEST(BMP, DamageDoesNoHarm) {
    expectChangesDoNoHarm(
        Bitmap{3, 2, 8, {0, 3, 1, 2, 3, 99, 0, 0, 3, 1, 0, 1}, kPalette, 4, 1}.bytes());
    expectChangesDoNoHarm(
        Bitmap{3, 2, 4, {1, 0x11, 0, 2, 1, 1, 2, 0x33, 0, 1}, kPalette, 4, 2}.bytes());
    expectChangesDoNoHarm(Bitmap{2, 2, 16, Bytes(8, 7), {}, 0, 3, kRedFirst, 56}.bytes());
    expectChangesDoNoHarm(Bitmap{4, 2, 1, Bytes(8, 7), kPalette, 2}.bytes());
}

TEST(BMP, AnOpaquePictureIsWrittenWithThreeBytesAPixel) {
    const Picture picture = pictureOf({1, 2}, {{1, 2, 3, 255}, {4, 5, 6, 255}});
    EXPECT_EQ(picture.encode(PictureFormat::BMP), (Bytes{
                                                      'B',  'M',         // signature
                                                      62,   0,    0, 0,  // file's length
                                                      0,    0,    0, 0,  // reserved
                                                      54,   0,    0, 0,  // where pixels begin
                                                      40,   0,    0, 0,  // header's length
                                                      1,    0,    0, 0,  // width
                                                      2,    0,    0, 0,  // height
                                                      1,    0,           // planes
                                                      24,   0,           // bits
                                                      0,    0,    0, 0,  // compression
                                                      8,    0,    0, 0,  // pixels' length
                                                      0x13, 0x0B, 0, 0,  // dots a metre across
                                                      0x13, 0x0B, 0, 0,  // dots a metre down
                                                      0,    0,    0, 0,  // colours
                                                      0,    0,    0, 0,  // colours that matter
                                                      6,    5,    4, 0, 3, 2, 1, 0,  // rows
                                                  }));
}

TEST(BMP, APictureWithTransparencyIsWrittenWithMasks) {
    const Picture picture = pictureOf({1, 2}, {{1, 2, 3, 4}, {5, 6, 7, 255}});
    Bytes expected = {
        'B',  'M',               // signature
        130,  0,    0,    0,     // file's length
        0,    0,    0,    0,     // reserved
        122,  0,    0,    0,     // where pixels begin
        108,  0,    0,    0,     // header's length
        1,    0,    0,    0,     // width
        2,    0,    0,    0,     // height
        1,    0,                 // planes
        32,   0,                 // bits
        3,    0,    0,    0,     // compression: masks
        8,    0,    0,    0,     // pixels' length
        0x13, 0x0B, 0,    0,     // dots a metre across
        0x13, 0x0B, 0,    0,     // dots a metre down
        0,    0,    0,    0,     // colours
        0,    0,    0,    0,     // colours that matter
        0,    0,    0xFF, 0,     // red mask
        0,    0xFF, 0,    0,     // green mask
        0xFF, 0,    0,    0,     // blue mask
        0,    0,    0,    0xFF,  // alpha mask
        'B',  'G',  'R',  's',   // colour space
    };
    expected.resize(122);
    append(expected, Bytes{7, 6, 5, 255, 3, 2, 1, 4});
    EXPECT_EQ(picture.encode(PictureFormat::BMP), expected);
}

}  // namespace
}  // namespace vexqt
