// The library for PNG reports errors by longjmp, which must not pass over a destructor. So every
// method that calls it and sets a trap has nothing but plain locals, and what owns memory lies in
// the reader, the writer or their callers.
#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <new>
#include <utility>

#include "vexqt/platform/picture_formats.h"

namespace vexqt {

namespace {

[[noreturn]] void spring(png_structp png, png_const_charp /*message*/) { png_longjmp(png, 1); }
void ignoreWarning(png_structp /*png*/, png_const_charp /*message*/) {}

class PNGReader {
public:
    explicit PNGReader(ByteView bytes)
        : bytes_(bytes),
          png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, this, spring, ignoreWarning)) {}
    PNGReader(const PNGReader&) = delete;
    PNGReader& operator=(const PNGReader&) = delete;
    ~PNGReader() { png_destroy_read_struct(&png_, &info_, nullptr); }

    std::optional<PictureSize> size() {
        if (png_ == nullptr || !readHeader()) return std::nullopt;
        return plausibleSize(png_get_image_width(png_, info_), png_get_image_height(png_, info_),
                             bytes_.size());
    }

    /// After the size was asked for.
    bool readPixels(std::span<std::uint8_t> pixels) {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        png_set_expand(png_);
        png_set_scale_16(png_);
        png_set_gray_to_rgb(png_);
        png_set_add_alpha(png_, 0xFF, PNG_FILLER_AFTER);
        const int passes = png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        const std::size_t stride = png_get_rowbytes(png_, info_);
        if (stride * png_get_image_height(png_, info_) != pixels.size()) return false;
        for (int pass = 0; pass < passes; ++pass) {
            for (std::size_t at = 0; at < pixels.size(); at += stride) {
                png_read_row(png_, pixels.subspan(at, stride).data(), nullptr);
            }
        }
        png_read_end(png_, nullptr);
        return true;
    }

private:
    bool readHeader() {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        info_ = png_create_info_struct(png_);
        if (info_ == nullptr) return false;
        // Of the chunks that need not be there, only transparency is read. The others may be as
        // long as the file.
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_set_user_limits(png_, Picture::kMostPixels, Picture::kMostPixels);
        png_set_chunk_cache_max(png_, 16);
        png_set_chunk_malloc_max(png_, bytes_.size());
        png_set_read_fn(png_, this, read);
        png_read_info(png_, info_);
        return true;
    }

    static void read(png_structp png, png_bytep into, std::size_t count) {
        auto& reader = *static_cast<PNGReader*>(png_get_io_ptr(png));
        if (count > reader.bytes_.size() - reader.position_) png_error(png, "cut short");
        std::ranges::copy(reader.bytes_.subspan(reader.position_, count), into);
        reader.position_ += count;
    }

    ByteView bytes_;
    std::size_t position_ = 0;
    png_structp png_;
    png_infop info_ = nullptr;
};

class PNGWriter {
public:
    explicit PNGWriter(const Picture& picture)
        : picture_(picture),
          isOpaque_(picture.isOpaque()),
          png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, this, spring, ignoreWarning)) {}
    PNGWriter(const PNGWriter&) = delete;
    PNGWriter& operator=(const PNGWriter&) = delete;
    ~PNGWriter() { png_destroy_write_struct(&png_, &info_); }

    bool write() {
        if (png_ == nullptr) return false;
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        info_ = png_create_info_struct(png_);
        if (info_ == nullptr) return false;
        png_set_user_limits(png_, Picture::kMostPixels, Picture::kMostPixels);
        png_set_write_fn(png_, this, append, nullptr);
        png_set_IHDR(png_, info_, picture_.width(), picture_.height(), 8,
                     isOpaque_ ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png_, info_);
        if (isOpaque_) png_set_filler(png_, 0, PNG_FILLER_AFTER);
        for (std::uint32_t y = 0; y < picture_.height(); ++y) {
            png_write_row(png_, picture_.row(y).data());
        }
        png_write_end(png_, info_);
        return true;
    }

    Bytes takeBytes() { return std::move(bytes_); }

private:
    static void append(png_structp png, png_bytep bytes, std::size_t count) {
        auto& writer = *static_cast<PNGWriter*>(png_get_io_ptr(png));
        if (!writer.append({bytes, count})) png_error(png, "out of memory");
    }

    bool append(ByteView bytes) noexcept {
        try {
            bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
            return true;
        } catch (const std::bad_alloc&) {  // Must not pass through the library.
            return false;
        }
    }

    const Picture& picture_;
    bool isOpaque_;
    Bytes bytes_;
    png_structp png_;
    png_infop info_ = nullptr;
};

}  // namespace

std::optional<PictureSize> sizeOfPNG(ByteView bytes) { return PNGReader(bytes).size(); }

std::optional<Picture> decodePNG(ByteView bytes) {
    PNGReader reader(bytes);
    const std::optional<PictureSize> size = reader.size();
    if (!size) return std::nullopt;
    Bytes pixels(std::size_t{size->width} * size->height * kBytesPerPixel);
    if (!reader.readPixels(pixels)) return std::nullopt;
    return Picture(*size, std::move(pixels));
}

std::optional<Bytes> encodePNG(const Picture& picture) {
    PNGWriter writer(picture);
    if (!writer.write()) return std::nullopt;
    return writer.takeBytes();
}

}  // namespace vexqt
