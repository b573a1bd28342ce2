// What Picture knows of each format; for Picture alone.
#pragma once

#include "vexqt/platform/Picture.h"

namespace vexqt {

inline constexpr std::size_t kBytesPerPixel = 4;

/// The size that a header of a picture of so many bytes gives, or absent when it is absurd: no
/// pixels, too many, or more than so few bytes account for. The densest real case is an empty
/// 1-bit PNG with about 8,000 pixels in a byte.
std::optional<PictureSize> plausibleSize(std::uint64_t width, std::uint64_t height,
                                         std::size_t byteCount);

std::optional<PictureSize> sizeOfJPEG(ByteView bytes);
std::optional<Picture> decodeJPEG(ByteView bytes);
std::optional<Bytes> encodeJPEG(const Picture& picture);

std::optional<PictureSize> sizeOfPNG(ByteView bytes);
std::optional<Picture> decodePNG(ByteView bytes);
std::optional<Bytes> encodePNG(const Picture& picture);

std::optional<PictureSize> sizeOfBMP(ByteView bytes);
std::optional<Picture> decodeBMP(ByteView bytes);
std::optional<Bytes> encodeBMP(const Picture& picture);

}  // namespace vexqt
