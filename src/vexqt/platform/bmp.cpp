// Windows and OS/2 bitmaps: a file header of 14 bytes, an information header whose own size tells
// its version, perhaps three or four colour masks, perhaps a palette, and the rows, usually from
// bottom to top. Numbers are little-endian.
#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "vexqt/platform/error.h"
#include "vexqt/platform/picture_formats.h"

namespace vexqt {

namespace {

constexpr std::size_t kFileHeader = 14;
// Masks begin here, whether the header counts them as its own or they follow it.
constexpr std::size_t kMasksOffset = 54;
constexpr std::uint32_t kCoreHeader = 12;   // 16-bit sizes, palette entries of three bytes.
constexpr std::uint32_t kShortHeader = 16;  // Of OS/2 2, without what it may leave out.
constexpr std::uint32_t kInfoHeader = 40;
constexpr std::uint32_t kLongOS2Header = 64;
constexpr std::uint32_t kV4Header = 108;
constexpr std::uint32_t kHeaders[] = {kCoreHeader, kShortHeader,   kInfoHeader, 52,
                                      56,          kLongOS2Header, kV4Header,   124};

enum Compression : std::uint32_t { kNone = 0, kRLE8 = 1, kRLE4 = 2, kMasks = 3, kAlphaMasks = 6 };

/// Little-endian numbers from bytes; past the end is a RangeError.
class Input {
public:
    explicit Input(ByteView bytes) : bytes_(bytes) {}

    ByteView part(std::uint64_t offset, std::uint64_t count) const {
        if (offset > bytes_.size() || count > bytes_.size() - offset) {
            throw RangeError(offset, count, bytes_.size());
        }
        return bytes_.subspan(offset, count);
    }
    std::uint32_t u8(std::uint64_t offset) const { return part(offset, 1)[0]; }
    std::uint32_t u16(std::uint64_t offset) const { return number(part(offset, 2)); }
    std::uint32_t u32(std::uint64_t offset) const { return number(part(offset, 4)); }

    static std::uint32_t number(ByteView bytes) {
        std::uint32_t value = 0;
        for (std::size_t i = bytes.size(); i > 0; --i) value = value << 8 | bytes[i - 1];
        return value;
    }

private:
    ByteView bytes_;
};

/// The bits of a pixel that hold one component.
class Mask {
public:
    Mask() = default;
    explicit Mask(std::uint32_t bits)
        : bits_(bits), shift_(bits == 0 ? 0 : std::countr_zero(bits)), most_(bits >> shift_) {}

    bool isEmpty() const { return bits_ == 0; }
    /// The component, stretched to a byte; 0 for an empty mask.
    std::uint8_t of(std::uint32_t pixel) const {
        if (isEmpty()) return 0;
        const std::uint64_t value = (pixel & bits_) >> shift_;
        if (most_ == 0xFF) return static_cast<std::uint8_t>(value);
        return static_cast<std::uint8_t>((value * 0xFF + most_ / 2) / most_);
    }

private:
    std::uint32_t bits_ = 0;
    int shift_ = 0;
    std::uint32_t most_ = 0;
};

using RGBA = std::array<std::uint8_t, kBytesPerPixel>;

struct Header {
    PictureSize size;
    bool topDown = false;
    std::uint32_t bits = 0;  // A pixel's.
    std::uint32_t compression = kNone;
    std::uint64_t palette = 0, pixels = 0;  // Offsets in the file.
    std::uint64_t paletteEntries = 0, paletteEntryLength = 0;
    bool hasAlphaMask = false;

    bool isRunLength() const { return compression == kRLE8 || compression == kRLE4; }
    bool hasMasks() const { return compression == kMasks || compression == kAlphaMasks; }
    std::uint64_t rowLength() const { return (std::uint64_t{size.width} * bits + 7) / 8; }
    std::uint64_t stride() const { return (rowLength() + 3) / 4 * 4; }
};

bool fits(std::uint32_t compression, std::uint32_t bits) {
    switch (compression) {
        case kNone:
            return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
        case kRLE8:
            return bits == 8;
        case kRLE4:
            return bits == 4;
        case kMasks:
        case kAlphaMasks:
            return bits == 16 || bits == 32;
        default:
            return false;
    }
}

/// The numbers of a header of a known version, those absent that this version lacks.
struct Numbers {
    std::uint32_t length = 0;
    std::int64_t width = 0, height = 0;
    std::uint32_t bits = 0, compression = kNone, colors = 0;
};

std::optional<Numbers> readNumbers(const Input& input) {
    Numbers numbers = {.length = input.u32(14)};
    if (std::ranges::find(kHeaders, numbers.length) == std::end(kHeaders)) return std::nullopt;
    if (numbers.length == kCoreHeader) {
        numbers.width = input.u16(18);
        numbers.height = input.u16(20);
        numbers.bits = input.u16(24);
        return numbers;
    }
    numbers.width = static_cast<std::int32_t>(input.u32(18));
    numbers.height = static_cast<std::int32_t>(input.u32(22));
    numbers.bits = input.u16(28);
    if (numbers.length == kShortHeader) return numbers;
    numbers.compression = input.u32(30);
    numbers.colors = input.u32(46);
    return numbers;
}

/// The header of a picture that can be decoded as far as the header shows.
std::optional<Header> readHeader(ByteView bytes) {
    const Input input(bytes);
    const std::optional<Numbers> numbers = readNumbers(input);
    if (!numbers || !fits(numbers->compression, numbers->bits)) return std::nullopt;

    Header header;
    header.topDown = numbers->height < 0;
    header.bits = numbers->bits;
    header.compression = numbers->compression;
    // OS/2 means other compressions by these numbers, and runs always go from bottom to top.
    if (header.hasMasks() && numbers->length == kLongOS2Header) return std::nullopt;
    if (header.isRunLength() && header.topDown) return std::nullopt;
    if (numbers->width < 0) return std::nullopt;
    const auto width = static_cast<std::uint64_t>(numbers->width);
    const auto height = static_cast<std::uint64_t>(std::abs(numbers->height));
    const std::optional<PictureSize> size = plausibleSize(width, height, bytes.size());
    if (!size) return std::nullopt;
    header.size = *size;

    header.hasAlphaMask = header.compression == kAlphaMasks || numbers->length >= 56;
    header.palette = kFileHeader + numbers->length;
    if (header.hasMasks() && numbers->length == kInfoHeader) {
        header.palette += header.hasAlphaMask ? 16 : 12;
    }
    header.pixels = input.u32(10);
    if (header.pixels < header.palette) return std::nullopt;
    header.paletteEntryLength = numbers->length == kCoreHeader ? 3 : 4;
    if (header.bits <= 8) {
        const std::uint64_t room = (header.pixels - header.palette) / header.paletteEntryLength;
        const std::uint64_t most = std::uint64_t{1} << header.bits;
        header.paletteEntries = std::min(room, most);
        if (numbers->colors != 0) {
            header.paletteEntries = std::min<std::uint64_t>(header.paletteEntries, numbers->colors);
        }
    }
    // The last row may lack its padding.
    const std::uint64_t least =
        header.isRunLength() ? 0 : header.stride() * (height - 1) + header.rowLength();
    input.part(header.pixels, least);
    return header;
}

class BMPReader {
public:
    BMPReader(ByteView bytes, const Header& header)
        : input_(bytes),
          header_(header),
          pixels_(std::size_t{header.size.width} * header.size.height * kBytesPerPixel) {}

    Picture read() {
        readPalette();
        readMasks();
        header_.isRunLength() ? readRuns() : readRows();
        return Picture(header_.size, std::move(pixels_));
    }

private:
    void put(std::uint32_t x, std::uint32_t rowInFile, const RGBA& pixel) {
        const std::uint32_t y = header_.topDown ? rowInFile : header_.size.height - 1 - rowInFile;
        const std::size_t at = (std::size_t{y} * header_.size.width + x) * kBytesPerPixel;
        std::ranges::copy(pixel, std::span(pixels_).subspan(at, kBytesPerPixel).begin());
    }

    /// Entries that the file leaves out are black.
    void readPalette() {
        palette_.fill({0, 0, 0, 0xFF});
        for (std::size_t i = 0; i < header_.paletteEntries; ++i) {
            const ByteView entry = input_.part(header_.palette + i * header_.paletteEntryLength, 3);
            palette_[i] = {entry[2], entry[1], entry[0], 0xFF};
        }
    }

    void readMasks() {
        if (header_.hasMasks()) {
            for (std::size_t i = 0; i < (header_.hasAlphaMask ? 4 : 3); ++i) {
                masks_[i] = Mask(input_.u32(kMasksOffset + 4 * i));
            }
        } else if (header_.bits == 16) {
            masks_ = {Mask(0x7C00), Mask(0x03E0), Mask(0x001F), Mask()};
        } else {
            masks_ = {Mask(0xFF0000), Mask(0x00FF00), Mask(0x0000FF), Mask()};
        }
    }

    void readRows() {
        for (std::uint32_t y = 0; y < header_.size.height; ++y) {
            const ByteView row =
                input_.part(header_.pixels + header_.stride() * y, header_.rowLength());
            for (std::uint32_t x = 0; x < header_.size.width; ++x) put(x, y, pixelOf(row, x));
        }
    }

    RGBA pixelOf(ByteView row, std::uint32_t x) const {
        if (header_.bits <= 8) return palette_[indexIn(row, x, header_.bits)];
        const std::size_t length = header_.bits / 8;
        const std::uint32_t pixel = Input::number(row.subspan(x * length, length));
        const std::uint8_t alpha = masks_[3].isEmpty() ? 0xFF : masks_[3].of(pixel);
        return {masks_[0].of(pixel), masks_[1].of(pixel), masks_[2].of(pixel), alpha};
    }

    /// Several to a byte, the first in its highest bits.
    static std::size_t indexIn(ByteView row, std::uint32_t x, std::uint32_t bits) {
        const std::uint32_t bit = x * bits;
        return row[bit / 8] >> (8 - bits - bit % 8) & ((1U << bits) - 1);
    }

    /// Runs of equal pixels, stretches of single ones and jumps, until an end mark or the last row
    /// is over. What they leave out has the first colour, and what they have too much is dropped.
    void readRuns() {
        for (std::size_t i = 0; i < pixels_.size(); i += kBytesPerPixel) {
            std::ranges::copy(palette_[0], std::span(pixels_).subspan(i).begin());
        }
        const std::uint32_t perByte = header_.compression == kRLE4 ? 2 : 1;
        std::uint64_t at = header_.pixels, x = 0, y = 0;
        while (y < header_.size.height) {
            const std::uint32_t count = input_.u8(at), value = input_.u8(at + 1);
            at += 2;
            if (count > 0) {
                const ByteView pair = input_.part(at - 1, 1);
                for (std::uint32_t i = 0; i < count; ++i) putIndex(x++, y, pair, i % perByte);
            } else if (value == 0) {
                x = 0;
                ++y;
            } else if (value == 1) {
                return;
            } else if (value == 2) {
                x += input_.u8(at);
                y += input_.u8(at + 1);
                at += 2;
            } else {
                const std::uint64_t length = (value + perByte - 1) / perByte;
                const ByteView stretch = input_.part(at, length);
                for (std::uint32_t i = 0; i < value; ++i) putIndex(x++, y, stretch, i);
                at += (length + 1) / 2 * 2;
            }
        }
    }

    /// Puts one of several indexes, if the picture has such a place.
    void putIndex(std::uint64_t x, std::uint64_t y, ByteView indexes, std::uint32_t which) {
        if (x >= header_.size.width || y >= header_.size.height) return;
        put(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
            palette_[indexIn(indexes, which, header_.bits)]);
    }

    Input input_;
    const Header& header_;
    Bytes pixels_;
    std::array<RGBA, 256> palette_ = {};
    std::array<Mask, 4> masks_ = {};
};

class Output {
public:
    void u8(std::uint32_t value) { bytes_.push_back(static_cast<std::uint8_t>(value)); }
    void u16(std::uint32_t value) {
        u8(value & 0xFF);
        u8(value >> 8 & 0xFF);
    }
    void u32(std::uint32_t value) {
        u16(value & 0xFFFF);
        u16(value >> 16);
    }
    void zeroes(std::size_t count) { bytes_.insert(bytes_.end(), count, 0); }

    void reserve(std::size_t count) { bytes_.reserve(count); }
    Bytes take() { return std::move(bytes_); }

private:
    Bytes bytes_;
};

}  // namespace

std::optional<PictureSize> sizeOfBMP(ByteView bytes) {
    try {
        const std::optional<Header> header = readHeader(bytes);
        if (!header) return std::nullopt;
        return header->size;
    } catch (const RangeError&) {
        return std::nullopt;
    }
}

std::optional<Picture> decodeBMP(ByteView bytes) {
    try {
        const std::optional<Header> header = readHeader(bytes);
        if (!header) return std::nullopt;
        return BMPReader(bytes, *header).read();
    } catch (const RangeError&) {
        return std::nullopt;
    }
}

/// Three bytes a pixel when it is opaque, which everything reads; four with masks when it is not.
std::optional<Bytes> encodeBMP(const Picture& picture) {
    const bool opaque = picture.isOpaque();
    const std::uint32_t bytesPerPixel = opaque ? 3 : 4;
    const std::uint32_t headerLength = opaque ? kInfoHeader : kV4Header;
    const std::size_t rowLength = std::size_t{picture.width()} * bytesPerPixel;
    const std::size_t padding = (4 - rowLength % 4) % 4;
    const auto pixelsLength = static_cast<std::uint32_t>((rowLength + padding) * picture.height());
    const auto pixels = static_cast<std::uint32_t>(kFileHeader + headerLength);
    constexpr std::uint32_t dotsPerMetre = 2835;  // 72 an inch.

    Output out;
    out.reserve(std::size_t{pixels} + pixelsLength);
    out.u8('B');
    out.u8('M');
    out.u32(pixels + pixelsLength);
    out.zeroes(4);
    out.u32(pixels);
    out.u32(headerLength);
    out.u32(picture.width());
    out.u32(picture.height());
    out.u16(1);  // Planes.
    out.u16(bytesPerPixel * 8);
    out.u32(opaque ? kNone : kMasks);
    out.u32(pixelsLength);
    out.u32(dotsPerMetre);
    out.u32(dotsPerMetre);
    out.zeroes(8);  // No palette.
    if (!opaque) {
        out.u32(0x00FF0000);
        out.u32(0x0000FF00);
        out.u32(0x000000FF);
        out.u32(0xFF000000);
        out.u32(0x73524742);  // "sRGB"; the colour space's end points and gammas are then not used.
        out.zeroes(48);
    }
    for (std::uint32_t y = picture.height(); y > 0; --y) {
        const ByteView row = picture.row(y - 1);
        for (std::size_t i = 0; i < row.size(); i += kBytesPerPixel) {
            out.u8(row[i + 2]);
            out.u8(row[i + 1]);
            out.u8(row[i]);
            if (!opaque) out.u8(row[i + 3]);
        }
        out.zeroes(padding);
    }
    return out.take();
}

}  // namespace vexqt
