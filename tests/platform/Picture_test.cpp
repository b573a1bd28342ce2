#include "vexqt/platform/Picture.h"

#include <gtest/gtest.h>

#include "platform/pictures.h"
#include "vexqt/platform/error.h"

namespace vexqt {
namespace {

constexpr PictureFormat kFormats[] = {PictureFormat::JPEG, PictureFormat::PNG, PictureFormat::BMP};

TEST(Picture, HasItsPixelsRowByRow) {
    const Picture picture =
        pictureOf({2, 2}, {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}});
    EXPECT_EQ(picture.width(), 2U);
    EXPECT_EQ(picture.height(), 2U);
    EXPECT_EQ(picture.pixels().size(), 16U);
    EXPECT_EQ(pixelAt(picture, 1, 0), (Pixel{5, 6, 7, 8}));
    EXPECT_EQ(pixelAt(picture, 0, 1), (Pixel{9, 10, 11, 12}));
}

TEST(Picture, NeedsFourBytesForEachPixel) {
    EXPECT_THROW(Picture({2, 2}, Bytes(15)), ValueError);
    EXPECT_THROW(Picture({2, 2}, Bytes(17)), ValueError);
    EXPECT_THROW(Picture({0, 2}, {}), ValueError);
    EXPECT_THROW(Picture({2, 0}, {}), ValueError);
    EXPECT_THROW(Picture({0x80000000, 0x80000000}, {}), ValueError);
    EXPECT_THROW(Picture({0xFFFFFFFF, 0xFFFFFFFF}, Bytes(4)), ValueError);
}

TEST(Picture, IsOpaqueWhenEveryPixelIs) {
    EXPECT_TRUE(pictureOf({2, 1}, {{0, 0, 0, 255}, {0, 0, 0, 255}}).isOpaque());
    EXPECT_FALSE(pictureOf({2, 1}, {{0, 0, 0, 255}, {0, 0, 0, 254}}).isOpaque());
}

TEST(Picture, ComparesSizeAndPixels) {
    const Picture wide = pictureOf({2, 1}, {{1, 2, 3, 4}, {5, 6, 7, 8}});
    EXPECT_EQ(wide, pictureOf({2, 1}, {{1, 2, 3, 4}, {5, 6, 7, 8}}));
    EXPECT_NE(wide, pictureOf({2, 1}, {{1, 2, 3, 4}, {5, 6, 7, 9}}));
    EXPECT_NE(wide, pictureOf({1, 2}, {{1, 2, 3, 4}, {5, 6, 7, 8}}));
}

TEST(Picture, FormatIsToldByTheFirstBytes) {
    const struct {
        const char* what;
        Bytes bytes;
        std::optional<PictureFormat> format;
    } cases[] = {
        {"nothing", {}, std::nullopt},
        {"JPEG", {0xFF, 0xD8, 0xFF}, PictureFormat::JPEG},
        {"JPEG cut short", {0xFF, 0xD8}, std::nullopt},
        {"PNG", {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A}, PictureFormat::PNG},
        {"PNG cut short", {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A}, std::nullopt},
        {"PNG after a transfer as text",
         {0x89, 'P', 'N', 'G', 0x0A, 0x1A, 0x0A, 0x00},
         std::nullopt},
        {"BMP", {'B', 'M'}, PictureFormat::BMP},
        {"GIF", {'G', 'I', 'F', '8', '9', 'a', 0, 0}, std::nullopt},
    };
    for (const auto& [what, bytes, format] : cases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(Picture::formatOf(bytes), format);
        EXPECT_FALSE(Picture::sizeOf(bytes).has_value());
        EXPECT_FALSE(Picture::decode(bytes).has_value());
    }
}

TEST(Picture, GarbageBehindASignatureIsAbsent) {
    for (const PictureFormat format : kFormats) {
        SCOPED_TRACE(static_cast<int>(format));
        Bytes bytes = quarters().encode(format).value();
        std::uint32_t random = 1;
        for (std::size_t i = 8; i < bytes.size(); ++i) {
            random = random * 1664525 + 1013904223;
            bytes[i] = static_cast<std::uint8_t>(random >> 24);
        }
        EXPECT_FALSE(Picture::sizeOf(bytes).has_value());
        EXPECT_FALSE(Picture::decode(bytes).has_value());
    }
}

TEST(Picture, EveryFormatKeepsAnOpaquePicture) {
    for (const PictureFormat format : kFormats) {
        SCOPED_TRACE(static_cast<int>(format));
        const Bytes bytes = quarters().encode(format).value();
        EXPECT_EQ(Picture::formatOf(bytes), format);
        EXPECT_EQ(Picture::sizeOf(bytes), quarters().size());
        const auto picture = Picture::decode(bytes);
        expectQuarters(picture);
        if (format != PictureFormat::JPEG) {
            EXPECT_EQ(picture, quarters());
        }
    }
}

TEST(Picture, PNGAndBMPKeepTransparency) {
    const Picture picture = pictureOf({3, 2}, {{1, 2, 3, 0},
                                               {50, 60, 70, 128},
                                               {255, 0, 255, 255},
                                               {4, 5, 6, 1},
                                               {0, 255, 0, 254},
                                               {9, 8, 7, 77}});
    EXPECT_EQ(Picture::decode(picture.encode(PictureFormat::PNG).value()), picture);
    EXPECT_EQ(Picture::decode(picture.encode(PictureFormat::BMP).value()), picture);
}

TEST(Picture, JPEGLaysTransparencyOverWhite) {
    Bytes pixels;
    for (int i = 0; i < 256; ++i) pixels.insert(pixels.end(), {200, 100, 0, 128});
    const Picture picture({16, 16}, std::move(pixels));
    const auto decoded = Picture::decode(picture.encode(PictureFormat::JPEG).value());
    ASSERT_TRUE(decoded);
    expectAbout(pixelAt(*decoded, 8, 8), {227, 177, 127, 255});
}

TEST(Picture, OddSizesSurviveEveryFormat) {
    for (const PictureSize size :
         {PictureSize{1, 1}, PictureSize{3, 5}, PictureSize{17, 2}, PictureSize{1, 300}}) {
        for (const PictureFormat format : kFormats) {
            SCOPED_TRACE(testing::Message() << size << " in " << static_cast<int>(format));
            const Picture picture(size, Bytes(std::size_t{size.width} * size.height * 4, 0xFF));
            const Bytes bytes = picture.encode(format).value();
            EXPECT_EQ(Picture::decode(bytes), picture);
            EXPECT_EQ(Picture::sizeOf(bytes), size);
        }
    }
}

TEST(Picture, AllFormatsButJPEGHoldAVeryWideOne) {
    const Picture picture({70'000, 1}, Bytes(280'000, 0xFF));
    EXPECT_FALSE(picture.encode(PictureFormat::JPEG).has_value());
    EXPECT_EQ(Picture::decode(picture.encode(PictureFormat::PNG).value()), picture);
    EXPECT_EQ(Picture::decode(picture.encode(PictureFormat::BMP).value()), picture);
}

TEST(Picture, BytesBehindThePictureDoNotMatter) {
    for (const PictureFormat format : kFormats) {
        SCOPED_TRACE(static_cast<int>(format));
        Bytes bytes = quarters().encode(format).value();
        bytes.insert(bytes.end(), {0, 1, 2, 3});
        expectQuarters(Picture::decode(bytes));
    }
}

}  // namespace
}  // namespace vexqt
