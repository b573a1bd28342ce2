#include <gtest/gtest.h>

#include <cstdio>
// The library's header wants the one above.
#include <jpeglib.h>

#include <algorithm>
#include <functional>

#include "platform/pictures.h"

namespace vexqt {
namespace {

struct Writing {
    J_COLOR_SPACE colors = JCS_RGB;  ///< Of the given quarters and, but for RGB, of the file.
    int components = 3;
    /// Sets what else is unusual, before the first line.
    std::function<void(jpeg_compress_struct&)> set = [](jpeg_compress_struct&) {};
};

/// A JPEG whose quarters have the given components.
Bytes jpeg(const std::array<Pixel, 4>& quarterColors, const Writing& writing) {
    jpeg_error_mgr errors = {};
    jpeg_compress_struct info = {};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* written = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&info, &written, &length);
    info.image_width = info.image_height = 2 * kQuarter;
    info.input_components = writing.components;
    info.in_color_space = writing.colors;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 95, TRUE);
    writing.set(info);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        Bytes line;
        for (std::uint32_t x = 0; x < 2 * kQuarter; ++x) {
            const Pixel& pixel = quarterColors[info.next_scanline / kQuarter * 2 + x / kQuarter];
            line.insert(line.end(), pixel.begin(), pixel.begin() + writing.components);
        }
        JSAMPROW row = line.data();
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    Bytes bytes(written, written + length);
    std::free(written);
    return bytes;
}

void progressive(jpeg_compress_struct& info) { jpeg_simple_progression(&info); }

/// The place of the frame header, whose height and width come 5 and 7 bytes on.
std::size_t frameHeader(const Bytes& bytes) {
    const Bytes marker = {0xFF, 0xC0};
    const auto found = std::search(bytes.begin(), bytes.end(), marker.begin(), marker.end());
    return static_cast<std::size_t>(found - bytes.begin());
}

constexpr std::array<Pixel, 4> kGreys = {{{10}, {80}, {160}, {240}}};
constexpr std::array<Pixel, 4> kGreyPixels = {
    {{10, 10, 10, 255}, {80, 80, 80, 255}, {160, 160, 160, 255}, {240, 240, 240, 255}}};

// Cyan, magenta, yellow and black, 255 being all ink.
constexpr std::array<Pixel, 4> kInks = {
    {{0, 255, 255, 0}, {255, 0, 255, 51}, {0, 0, 0, 128}, {20, 40, 60, 0}}};
constexpr std::array<Pixel, 4> kInkPixels = {
    {{255, 0, 0, 255}, {0, 204, 0, 255}, {127, 127, 127, 255}, {235, 215, 195, 255}}};

std::array<Pixel, 4> inverted(std::array<Pixel, 4> colors) {
    for (Pixel& color : colors) {
        for (std::uint8_t& component : color) component ^= 0xFF;
    }
    return colors;
}

TEST(JPEG, KindsOfTheWorldDecode) {
    const struct {
        const char* what;
        Bytes bytes;
        std::array<Pixel, 4> pixels;
    } cases[] = {
        {"baseline", jpeg(kQuarters, {}), kQuarters},
        {"progressive", jpeg(kQuarters, {.set = progressive}), kQuarters},
        {"red, green and blue themselves",
         jpeg(kQuarters, {.set = [](auto& info) { jpeg_set_colorspace(&info, JCS_RGB); }}),
         kQuarters},
        {"greyscale", jpeg(kGreys, {.colors = JCS_GRAYSCALE, .components = 1}), kGreyPixels},
        {"progressive greyscale",
         jpeg(kGreys, {.colors = JCS_GRAYSCALE, .components = 1, .set = progressive}), kGreyPixels},
        {"with restarts", jpeg(kQuarters, {.set = [](auto& info) { info.restart_interval = 1; }}),
         kQuarters},
        {"CMYK of Adobe, inverted", jpeg(inverted(kInks), {.colors = JCS_CMYK, .components = 4}),
         kInkPixels},
        {"YCCK of Adobe, inverted",
         jpeg(inverted(kInks), {.colors = JCS_CMYK,
                                .components = 4,
                                .set = [](auto& info) { jpeg_set_colorspace(&info, JCS_YCCK); }}),
         kInkPixels},
        {"CMYK of others",
         jpeg(kInks, {.colors = JCS_CMYK,
                      .components = 4,
                      .set = [](auto& info) { info.write_Adobe_marker = FALSE; }}),
         kInkPixels},
    };
    for (const auto& [what, bytes, pixels] : cases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(Picture::sizeOf(bytes), (PictureSize{2 * kQuarter, 2 * kQuarter}));
        expectQuarters(Picture::decode(bytes), pixels);
    }
}

TEST(JPEG, CutShortIsAbsent) {
    expectEveryCutIsAbsent(jpeg(kQuarters, {}));
    expectEveryCutIsAbsent(jpeg(kQuarters, {.set = progressive}));
}

TEST(JPEG, CutShortButEndedProperlyIsAbsent) {
    for (const Writing& writing : {Writing{}, Writing{.set = progressive}}) {
        Bytes bytes = jpeg(kQuarters, writing);
        bytes.erase(bytes.end() - 3, bytes.end());
        bytes.insert(bytes.end(), {0xFF, 0xD9});
        EXPECT_TRUE(Picture::sizeOf(bytes).has_value());
        EXPECT_FALSE(Picture::decode(bytes).has_value());
    }
}

TEST(JPEG, DamageDoesNoHarm) {
    expectChangesDoNoHarm(jpeg(kQuarters, {}));
    expectChangesDoNoHarm(jpeg(kQuarters, {.set = progressive}));
}

TEST(JPEG, AbsurdSizesAreAbsent) {
    const Bytes good = jpeg(kQuarters, {});
    const std::size_t frame = frameHeader(good);
    ASSERT_LT(frame + 9, good.size());
    const struct {
        const char* what;
        std::array<std::uint8_t, 4> heightAndWidth;
    } cases[] = {
        {"no height", {0, 0, 0, 32}},
        {"no width", {0, 32, 0, 0}},
        {"past the format", {0xFF, 0xFF, 0xFF, 0xFF}},
        {"four thousand megapixels", {0xFF, 0x00, 0xFF, 0x00}},
        {"more than so few bytes account for", {0x20, 0x00, 0x20, 0x00}},
    };
    for (const auto& [what, heightAndWidth] : cases) {
        SCOPED_TRACE(what);
        Bytes bytes = good;
        std::ranges::copy(heightAndWidth, bytes.begin() + static_cast<std::ptrdiff_t>(frame) + 5);
        EXPECT_FALSE(Picture::sizeOf(bytes).has_value());
        EXPECT_FALSE(Picture::decode(bytes).has_value());
    }
}

TEST(JPEG, WhatCouldAskForAnyAmountOfWorkIsAbsent) {
    const Bytes arithmetic = jpeg(kQuarters, {.set = [](auto& info) { info.arith_code = TRUE; }});
    EXPECT_FALSE(Picture::sizeOf(arithmetic).has_value());
    EXPECT_FALSE(Picture::decode(arithmetic).has_value());

    std::vector<jpeg_scan_info> scans;
    const auto scan = [&](int from, int to, int highBit, int lowBit) {
        scans.push_back({1, {0, 0, 0, 0}, from, to, highBit, lowBit});
    };
    scan(0, 0, 0, 3);
    for (int bit = 3; bit > 0; --bit) scan(0, 0, bit, bit - 1);
    for (int coefficient = 1; coefficient < 64; ++coefficient) {
        scan(coefficient, coefficient, 0, 0);
    }
    const auto greysIn = [&](std::size_t count) {
        return jpeg(kGreys, {.colors = JCS_GRAYSCALE, .components = 1, .set = [&](auto& info) {
                                 info.scan_info = scans.data();
                                 info.num_scans = static_cast<int>(count);
                             }});
    };
    EXPECT_TRUE(Picture::decode(greysIn(64)).has_value());
    EXPECT_FALSE(Picture::decode(greysIn(67)).has_value());
}

TEST(JPEG, UnknownNumberOfColoursIsAbsent) {
    const Bytes bytes = jpeg(kQuarters, {.colors = JCS_UNKNOWN, .components = 2});
    EXPECT_FALSE(Picture::sizeOf(bytes).has_value());
    EXPECT_FALSE(Picture::decode(bytes).has_value());
}

}  // namespace
}  // namespace vexqt
