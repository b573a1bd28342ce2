#include "vexqt/platform/Picture.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

#include "vexqt/platform/error.h"
#include "vexqt/platform/picture_formats.h"

namespace vexqt {

namespace {

struct Format {
    PictureFormat format;
    std::array<std::uint8_t, 8> signature;
    std::size_t signatureLength;
    std::optional<PictureSize> (*sizeOf)(ByteView);
    std::optional<Picture> (*decode)(ByteView);
    std::optional<Bytes> (*encode)(const Picture&);
};

constexpr Format kFormats[] = {
    {PictureFormat::JPEG, {0xFF, 0xD8, 0xFF}, 3, sizeOfJPEG, decodeJPEG, encodeJPEG},
    {PictureFormat::PNG,
     {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'},
     8,
     sizeOfPNG,
     decodePNG,
     encodePNG},
    {PictureFormat::BMP, {'B', 'M'}, 2, sizeOfBMP, decodeBMP, encodeBMP},
};

const Format* formatFrom(ByteView bytes) {
    const auto begins = [bytes](const Format& format) {
        const ByteView signature = ByteView(format.signature).first(format.signatureLength);
        return bytes.size() >= signature.size() &&
               std::ranges::equal(bytes.first(signature.size()), signature);
    };
    const auto* const found = std::ranges::find_if(kFormats, begins);
    return found == std::end(kFormats) ? nullptr : found;
}

constexpr std::uint64_t kMostPixelsPerByte = 16'384;

}  // namespace

std::optional<PictureSize> plausibleSize(std::uint64_t width, std::uint64_t height,
                                         std::size_t byteCount) {
    const std::uint64_t most =
        std::min<std::uint64_t>(byteCount, Picture::kMostPixels / kMostPixelsPerByte) *
        kMostPixelsPerByte;
    if (width == 0 || height == 0 || width > most / height) return std::nullopt;
    return PictureSize{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
}

Picture::Picture(PictureSize size, Bytes pixels)
    : size_(size), pixels_(std::make_shared<const Bytes>(std::move(pixels))) {
    const std::uint64_t count = std::uint64_t{width()} * height();
    if (count == 0 || count > kMostPixels || count * kBytesPerPixel != pixels_->size()) {
        throw ValueError("a picture of " + std::to_string(width()) + " by " +
                         std::to_string(height()) + " pixels cannot have " +
                         std::to_string(pixels_->size()) + " bytes");
    }
}

std::optional<Picture> Picture::decode(ByteView bytes) {
    const Format* const format = formatFrom(bytes);
    if (format == nullptr) return std::nullopt;
    return format->decode(bytes);
}

std::optional<PictureFormat> Picture::formatOf(ByteView bytes) {
    const Format* const format = formatFrom(bytes);
    if (format == nullptr) return std::nullopt;
    return format->format;
}

std::optional<PictureSize> Picture::sizeOf(ByteView bytes) {
    const Format* const format = formatFrom(bytes);
    if (format == nullptr) return std::nullopt;
    return format->sizeOf(bytes);
}

std::optional<Bytes> Picture::encode(PictureFormat format) const {
    const auto* const found = std::ranges::find(kFormats, format, &Format::format);
    return found->encode(*this);
}

ByteView Picture::row(std::uint32_t y) const {
    const std::size_t length = width() * kBytesPerPixel;
    return pixels().subspan(y * length, length);
}

bool Picture::isOpaque() const {
    for (std::size_t i = 3; i < pixels_->size(); i += kBytesPerPixel) {
        if ((*pixels_)[i] != 0xFF) return false;
    }
    return true;
}

bool Picture::operator==(const Picture& other) const {
    return size_ == other.size_ && *pixels_ == *other.pixels_;
}

}  // namespace vexqt
