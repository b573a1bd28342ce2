#include <gtest/gtest.h>
#include <png.h>

#include <functional>
#include <string_view>

#include "platform/pictures.h"

namespace vexqt {
namespace {

const Bytes kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

void append(Bytes& bytes, ByteView more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

Bytes bigEndian(std::uint32_t value) {
    Bytes bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
    return bytes;
}

/// A chunk with its checksum.
Bytes chunk(std::string_view name, ByteView content) {
    Bytes checked(name.begin(), name.end());
    append(checked, content);
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::uint8_t byte : checked) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    Bytes bytes = bigEndian(static_cast<std::uint32_t>(content.size()));
    append(bytes, checked);
    append(bytes, bigEndian(~crc));
    return bytes;
}

/// The beginning of an 8-bit greyscale PNG, its data long enough for any size.
Bytes headerOf(std::uint32_t width, std::uint32_t height) {
    Bytes header = bigEndian(width);
    append(header, bigEndian(height));
    append(header, Bytes{8, PNG_COLOR_TYPE_GRAY, 0, 0, 0});
    Bytes bytes = kSignature;
    append(bytes, chunk("IHDR", header));
    append(bytes, chunk("IDAT", Bytes(5000)));
    return bytes;
}

struct Writing {
    PictureSize size;
    int depth, colorType;
    std::vector<Bytes> rows;
    int interlace = PNG_INTERLACE_NONE;
    /// Sets what comes before the rows.
    std::function<void(png_structp, png_infop)> set = [](png_structp, png_infop) {};
};

Bytes png(const Writing& writing) {
    Bytes bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &bytes,
        [](png_structp self, png_bytep data, std::size_t count) {
            append(*static_cast<Bytes*>(png_get_io_ptr(self)), {data, count});
        },
        nullptr);
    png_set_IHDR(png, info, writing.size.width, writing.size.height, writing.depth,
                 writing.colorType, writing.interlace, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    writing.set(png, info);
    png_write_info(png, info);
    std::vector<Bytes> rows = writing.rows;
    std::vector<png_bytep> pointers;
    for (Bytes& row : rows) pointers.push_back(row.data());
    png_write_image(png, pointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

void setPalette(png_structp png, png_infop info) {
    const png_color colors[] = {{10, 20, 30}, {40, 50, 60}, {70, 80, 90}, {100, 110, 120}};
    png_set_PLTE(png, info, colors, 4);
}

void setPaletteWithAlpha(png_structp png, png_infop info) {
    setPalette(png, info);
    const png_byte alphas[] = {0, 77};
    png_set_tRNS(png, info, alphas, 2, nullptr);
}

void setTransparentColor(png_structp png, png_infop info) {
    const png_color_16 color = {.index = 0, .red = 7, .green = 8, .blue = 9, .gray = 3};
    png_set_tRNS(png, info, nullptr, 0, &color);
}

TEST(PNG, KindsOfTheWorldDecode) {
    constexpr PictureSize two = {2, 1}, four = {4, 1};
    const struct {
        const char* what;
        Writing writing;
        Picture picture;
    } cases[] = {
        {"red, green and blue",
         {two, 8, PNG_COLOR_TYPE_RGB, {{1, 2, 3, 4, 5, 6}}},
         pictureOf(two, {{1, 2, 3, 255}, {4, 5, 6, 255}})},
        {"with alpha",
         {two, 8, PNG_COLOR_TYPE_RGB_ALPHA, {{1, 2, 3, 4, 5, 6, 7, 8}}},
         pictureOf(two, {{1, 2, 3, 4}, {5, 6, 7, 8}})},
        {"grey",
         {two, 8, PNG_COLOR_TYPE_GRAY, {{1, 200}}},
         pictureOf(two, {{1, 1, 1, 255}, {200, 200, 200, 255}})},
        {"grey with alpha",
         {two, 8, PNG_COLOR_TYPE_GRAY_ALPHA, {{1, 2, 200, 201}}},
         pictureOf(two, {{1, 1, 1, 2}, {200, 200, 200, 201}})},
        {"grey of 1 bit",
         {four, 1, PNG_COLOR_TYPE_GRAY, {{0b01100000}}},
         pictureOf(four,
                   {{0, 0, 0, 255}, {255, 255, 255, 255}, {255, 255, 255, 255}, {0, 0, 0, 255}})},
        {"grey of 2 bits",
         {four, 2, PNG_COLOR_TYPE_GRAY, {{0b00011011}}},
         pictureOf(
             four,
             {{0, 0, 0, 255}, {85, 85, 85, 255}, {170, 170, 170, 255}, {255, 255, 255, 255}})},
        {"grey of 4 bits",
         {two, 4, PNG_COLOR_TYPE_GRAY, {{0x3F}}},
         pictureOf(two, {{51, 51, 51, 255}, {255, 255, 255, 255}})},
        {"grey of 16 bits",
         {two, 16, PNG_COLOR_TYPE_GRAY, {{0x12, 0x12, 0xFE, 0xFE}}},
         pictureOf(two, {{0x12, 0x12, 0x12, 255}, {0xFE, 0xFE, 0xFE, 255}})},
        {"16 bits, to the nearest",
         {two,
          16,
          PNG_COLOR_TYPE_RGB,
          {{0x00, 0x7F, 0x00, 0x81, 0xFF, 0x7E, 0xFF, 0x80, 0, 0, 1, 1}}},
         pictureOf(two, {{0, 1, 254, 255}, {255, 0, 1, 255}})},
        {"16 bits with alpha",
         {two, 16, PNG_COLOR_TYPE_RGB_ALPHA, {{1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8}}},
         pictureOf(two, {{1, 2, 3, 4}, {5, 6, 7, 8}})},
        {"a palette of 8 bits",
         {two, 8, PNG_COLOR_TYPE_PALETTE, {{3, 1}}, PNG_INTERLACE_NONE, setPalette},
         pictureOf(two, {{100, 110, 120, 255}, {40, 50, 60, 255}})},
        {"a palette of 2 bits",
         {four, 2, PNG_COLOR_TYPE_PALETTE, {{0b11100100}}, PNG_INTERLACE_NONE, setPalette},
         pictureOf(
             four,
             {{100, 110, 120, 255}, {70, 80, 90, 255}, {40, 50, 60, 255}, {10, 20, 30, 255}})},
        {"a palette with transparency",
         {four, 2, PNG_COLOR_TYPE_PALETTE, {{0b11100100}}, PNG_INTERLACE_NONE, setPaletteWithAlpha},
         pictureOf(four,
                   {{100, 110, 120, 255}, {70, 80, 90, 255}, {40, 50, 60, 77}, {10, 20, 30, 0}})},
        {"a transparent colour",
         {two,
          8,
          PNG_COLOR_TYPE_RGB,
          {{7, 8, 9, 7, 8, 10}},
          PNG_INTERLACE_NONE,
          setTransparentColor},
         pictureOf(two, {{7, 8, 9, 0}, {7, 8, 10, 255}})},
        {"a transparent grey",
         {two, 8, PNG_COLOR_TYPE_GRAY, {{3, 4}}, PNG_INTERLACE_NONE, setTransparentColor},
         pictureOf(two, {{3, 3, 3, 0}, {4, 4, 4, 255}})},
        {"a transparent grey of 4 bits",
         {two, 4, PNG_COLOR_TYPE_GRAY, {{0x34}}, PNG_INTERLACE_NONE, setTransparentColor},
         pictureOf(two, {{51, 51, 51, 0}, {68, 68, 68, 255}})},
        {"interlaced",
         {{3, 2}, 8, PNG_COLOR_TYPE_GRAY, {{1, 2, 3}, {4, 5, 6}}, PNG_INTERLACE_ADAM7},
         pictureOf({3, 2}, {{1, 1, 1, 255},
                            {2, 2, 2, 255},
                            {3, 3, 3, 255},
                            {4, 4, 4, 255},
                            {5, 5, 5, 255},
                            {6, 6, 6, 255}})},
        {"a gamma, which is passed over",
         {two,
          8,
          PNG_COLOR_TYPE_GRAY,
          {{100, 200}},
          PNG_INTERLACE_NONE,
          [](png_structp png, png_infop info) { png_set_gAMA(png, info, 1.0); }},
         pictureOf(two, {{100, 100, 100, 255}, {200, 200, 200, 255}})},
    };
    for (const auto& [what, writing, picture] : cases) {
        SCOPED_TRACE(what);
        const Bytes bytes = png(writing);
        EXPECT_EQ(Picture::sizeOf(bytes), picture.size());
        EXPECT_EQ(Picture::decode(bytes), picture);
    }
}

TEST(PNG, InterlacedKeepsEveryPixelInItsPlace) {
    std::vector<Bytes> rows;
    Bytes pixels;
    for (std::uint8_t y = 0; y < 13; ++y) {
        Bytes& row = rows.emplace_back();
        for (std::uint8_t x = 0; x < 11; ++x) {
            append(row, Bytes{x, y, 7});
            append(pixels, Bytes{x, y, 7, 255});
        }
    }
    const Bytes bytes = png({{11, 13}, 8, PNG_COLOR_TYPE_RGB, rows, PNG_INTERLACE_ADAM7});
    EXPECT_EQ(Picture::decode(bytes), Picture({11, 13}, pixels));
}

TEST(PNG, CutShortIsAbsent) {
    expectEveryCutIsAbsent(quarters().encode(PictureFormat::PNG).value());
    expectEveryCutIsAbsent(
        png({{3, 2}, 8, PNG_COLOR_TYPE_GRAY, {{1, 2, 3}, {4, 5, 6}}, PNG_INTERLACE_ADAM7}));
}

TEST(PNG, DamageDoesNoHarm) {
    expectChangesDoNoHarm(quarters().encode(PictureFormat::PNG).value());
    expectChangesDoNoHarm(png({{4, 1},
                               2,
                               PNG_COLOR_TYPE_PALETTE,
                               {{0b11100100}},
                               PNG_INTERLACE_ADAM7,
                               setPaletteWithAlpha}));
}

TEST(PNG, AbsurdSizesAreAbsent) {
    const PictureSize sizes[] = {{0, 1},
                                 {1, 0},
                                 {0xFFFFFFFF, 0xFFFFFFFF},
                                 {0x7FFFFFFF, 0x7FFFFFFF},
                                 {0x7FFFFFFF, 1},
                                 {1, 0x7FFFFFFF},
                                 {8192, 8193}};
    for (const PictureSize size : sizes) {
        SCOPED_TRACE(size);
        const Bytes bytes = headerOf(size.width, size.height);
        EXPECT_FALSE(Picture::sizeOf(bytes).has_value());
        EXPECT_FALSE(Picture::decode(bytes).has_value());
    }
}

TEST(PNG, SixtyFourMegapixelsAreNotAbsurd) {
    EXPECT_EQ(Picture::sizeOf(headerOf(8192, 8192)), (PictureSize{8192, 8192}));
    EXPECT_EQ(Picture::sizeOf(headerOf(1 << 26, 1)), (PictureSize{1 << 26, 1}));
    EXPECT_EQ(Picture::sizeOf(headerOf(1, 1 << 26)), (PictureSize{1, 1 << 26}));
}

TEST(PNG, MorePixelsThanTheBytesAccountForAreAbsent) {
    Bytes bytes = headerOf(8192, 8192);
    bytes.resize(4000);
    EXPECT_FALSE(Picture::sizeOf(bytes).has_value());
}

TEST(PNG, AnEmptyPageOfOneBitIsAPicture) {
    const Bytes bytes =
        png({{2048, 2048}, 1, PNG_COLOR_TYPE_GRAY, std::vector<Bytes>(2048, Bytes(256))});
    EXPECT_LT(bytes.size(), 1000U);
    EXPECT_EQ(Picture::sizeOf(bytes), (PictureSize{2048, 2048}));
    EXPECT_TRUE(Picture::decode(bytes).has_value());
}

TEST(PNG, ChunksThatNeedNotBeThereArePassedOver) {
    Bytes bytes = quarters().encode(PictureFormat::PNG).value();
    Bytes chunks;
    for (int i = 0; i < 2000; ++i) append(chunks, chunk("tEXt", Bytes{'a', 0, 'b'}));
    append(chunks, chunk("iCCP", Bytes(100'000, 'x')));
    append(chunks, chunk("prVt", Bytes(9'000'000)));
    constexpr std::ptrdiff_t behindTheHeader = 8 + 25;
    bytes.insert(bytes.begin() + behindTheHeader, chunks.begin(), chunks.end());
    bytes.insert(bytes.end() - 12, chunks.begin(), chunks.end());
    EXPECT_EQ(Picture::sizeOf(bytes), quarters().size());
    EXPECT_EQ(Picture::decode(bytes), quarters());
}

TEST(PNG, APaletteThatIsMissingIsAbsent) {
    Bytes bytes = kSignature;
    append(bytes, chunk("IHDR", Bytes{0, 0, 0, 1, 0, 0, 0, 1, 8, PNG_COLOR_TYPE_PALETTE, 0, 0, 0}));
    append(bytes, chunk("IDAT", Bytes(20)));
    EXPECT_FALSE(Picture::sizeOf(bytes).has_value());
    EXPECT_FALSE(Picture::decode(bytes).has_value());
}

}  // namespace
}  // namespace vexqt
