#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "vexqt/export.h"
#include "vexqt/platform/bytes_types.h"

namespace vexqt {

/// The formats that pictures are read from and written in.
enum class PictureFormat { JPEG, PNG, BMP };

/// In pixels.
struct PictureSize {
    /// From 1 on in every picture.
    std::uint32_t width = 0, height = 0;

    bool operator==(const PictureSize&) const = default;
};

/// A still image: rows from top to bottom, each pixel its red, green, blue and alpha byte, the
/// colours not multiplied by alpha. Pictures never change; copies share their pixels.
class VEXQT_EXPORT Picture {
public:
    /// The most pixels that a picture may have.
    static constexpr std::uint64_t kMostPixels = std::uint64_t{64} << 20;

    /// Throws a ValueError unless there are four bytes for each pixel, and one pixel at least.
    Picture(PictureSize size, Bytes pixels);

    /// Absent when the bytes are none of the formats, damaged or cut short, or hold more pixels
    /// than a picture may have.
    static std::optional<Picture> decode(ByteView bytes);
    /// The format that the first bytes claim.
    static std::optional<PictureFormat> formatOf(ByteView bytes);
    /// The size from the header alone; absent when the header shows that decode() would fail.
    static std::optional<PictureSize> sizeOf(ByteView bytes);

    /// In the usual quality. JPEG has no alpha: what is transparent is laid over white. Absent when
    /// the format cannot hold the picture; JPEG ends at 65,500 pixels a side.
    std::optional<Bytes> encode(PictureFormat format) const;

    /// In pixels.
    PictureSize size() const { return size_; }
    /// In pixels.
    std::uint32_t width() const { return size_.width; }
    /// In pixels.
    std::uint32_t height() const { return size_.height; }
    /// Four bytes a pixel, row by row from the top.
    ByteView pixels() const { return *pixels_; }
    /// The pixels of a row, counted from 0; the caller has checked it.
    ByteView row(std::uint32_t y) const;
    /// Whether every alpha byte is 255.
    bool isOpaque() const;

    bool operator==(const Picture& other) const;

private:
    PictureSize size_;
    std::shared_ptr<const Bytes> pixels_;
};

}  // namespace vexqt
