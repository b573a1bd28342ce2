// What the tests of the picture formats share.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <ostream>
#include <utility>

#include "vexqt/platform/Picture.h"

namespace vexqt {

using Pixel = std::array<std::uint8_t, 4>;

inline std::ostream& operator<<(std::ostream& out, const PictureSize& size) {
    return out << size.width << " by " << size.height;
}

/// What a failing test shows.
inline void PrintTo(const Picture& picture, std::ostream* out) {
    *out << picture.size()
         << testing::PrintToString(Bytes(picture.pixels().begin(), picture.pixels().end()));
}

inline Pixel pixelAt(const Picture& picture, std::uint32_t x, std::uint32_t y) {
    const ByteView pixel = picture.row(y).subspan(std::size_t{x} * 4, 4);
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

inline Picture pictureOf(PictureSize size, std::initializer_list<Pixel> pixels) {
    Bytes bytes;
    for (const Pixel& pixel : pixels) bytes.insert(bytes.end(), pixel.begin(), pixel.end());
    return {size, std::move(bytes)};
}

/// Four quarters of one colour each, large enough for a format that smears colours.
inline constexpr std::uint32_t kQuarter = 16;
inline constexpr std::array<Pixel, 4> kQuarters = {{
    {200, 40, 30, 255},    // above left
    {50, 180, 60, 255},    // above right
    {20, 70, 210, 255},    // below left
    {120, 130, 140, 255},  // below right
}};

inline Picture quarters() {
    Bytes bytes;
    for (std::uint32_t y = 0; y < 2 * kQuarter; ++y) {
        for (std::uint32_t x = 0; x < 2 * kQuarter; ++x) {
            const Pixel& pixel = kQuarters[y / kQuarter * 2 + x / kQuarter];
            bytes.insert(bytes.end(), pixel.begin(), pixel.end());
        }
    }
    return {{2 * kQuarter, 2 * kQuarter}, std::move(bytes)};
}

inline void expectAbout(const Pixel& pixel, const Pixel& expected) {
    for (std::size_t i = 0; i < pixel.size(); ++i) {
        EXPECT_LE(std::abs(pixel[i] - expected[i]), 4)
            << testing::PrintToString(pixel) << " is not about "
            << testing::PrintToString(expected);
    }
}

inline void expectQuarters(const std::optional<Picture>& picture,
                           const std::array<Pixel, 4>& colors = kQuarters) {
    ASSERT_TRUE(picture.has_value());
    ASSERT_EQ(picture->size(), (PictureSize{2 * kQuarter, 2 * kQuarter}));
    expectAbout(pixelAt(*picture, 5, 5), colors[0]);
    expectAbout(pixelAt(*picture, 26, 5), colors[1]);
    expectAbout(pixelAt(*picture, 5, 26), colors[2]);
    expectAbout(pixelAt(*picture, 26, 26), colors[3]);
}

/// The size from the header is that of the decoded picture, if there is one.
inline void expectSizeAgrees(ByteView bytes) {
    const auto picture = Picture::decode(bytes);
    if (picture) {
        EXPECT_EQ(Picture::sizeOf(bytes), picture->size());
    }
}

inline void expectEveryCutIsAbsent(ByteView bytes) {
    ASSERT_TRUE(Picture::decode(bytes).has_value());
    const auto size = Picture::sizeOf(bytes);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        SCOPED_TRACE(length);
        EXPECT_FALSE(Picture::decode(bytes.first(length)).has_value());
        const auto cut = Picture::sizeOf(bytes.first(length));
        EXPECT_TRUE(!cut || cut == size);
    }
}

/// Changes each byte to what is likely to hurt; there is nothing to see but that nothing breaks.
inline void expectChangesDoNoHarm(const Bytes& bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        SCOPED_TRACE(i);
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF, bytes[i] ^ 0x10}) {
            Bytes changed = bytes;
            changed[i] = static_cast<std::uint8_t>(value);
            expectSizeAgrees(changed);
        }
    }
}

}  // namespace vexqt
