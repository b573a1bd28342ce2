// The library for JPEG reports errors by longjmp, which must not pass over a destructor. So every
// method that calls it and sets a trap has nothing but plain locals, and what owns memory lies in
// the reader, the writer or their callers.
#include <cstddef>
#include <cstdio>
// The library's header wants the two above.
#include <jerror.h>
#include <jpeglib.h>

#include <array>
#include <csetjmp>
#include <new>
#include <utility>

#include "vexqt/platform/picture_formats.h"

namespace vexqt {

namespace {

struct Trap {
    jpeg_error_mgr errors = {};
    std::jmp_buf jump = {};
};

[[noreturn]] void spring(j_common_ptr info) {
    std::longjmp(static_cast<Trap*>(info->client_data)->jump, 1);
}

void hearWarning(j_common_ptr info, int level) {
    // Other damage gives a picture with a flaw; this one is a file that was cut short and ended
    // properly afterwards.
    if (level < 0 && info->err->msg_code == JWRN_HIT_MARKER) spring(info);
}

/// Makes the library's errors jump to the trap and keeps it from printing.
template <class Info>
void set(Trap& trap, Info& info) {
    info.err = jpeg_std_error(&trap.errors);
    info.client_data = &trap;
    trap.errors.error_exit = spring;
    trap.errors.emit_message = hearWarning;
    trap.errors.output_message = [](j_common_ptr) {};
}

std::uint8_t scaled(int component, int by) {
    return static_cast<std::uint8_t>((component * by + 127) / 255);
}

class JPEGReader {
public:
    explicit JPEGReader(ByteView bytes) : bytes_(bytes) { set(trap_, info_); }
    JPEGReader(const JPEGReader&) = delete;
    JPEGReader& operator=(const JPEGReader&) = delete;
    ~JPEGReader() { jpeg_destroy_decompress(&info_); }

    std::optional<PictureSize> size() {
        if (!readHeader()) return std::nullopt;
        return plausibleSize(info_.image_width, info_.image_height, bytes_.size());
    }

    /// After the size was asked for.
    bool readPixels(std::span<std::uint8_t> pixels) {
        if (setjmp(trap_.jump) != 0) return false;
        progress_.progress_monitor = limitScans;
        info_.progress = &progress_;
        info_.out_color_space = isCMYK() ? JCS_CMYK : JCS_EXT_RGBA;
        jpeg_start_decompress(&info_);
        const std::size_t stride = info_.image_width * kBytesPerPixel;
        while (info_.output_scanline < info_.output_height) {
            JSAMPROW row = pixels.subspan(info_.output_scanline * stride, stride).data();
            jpeg_read_scanlines(&info_, &row, 1);
        }
        jpeg_finish_decompress(&info_);
        if (isCMYK()) convertFromCMYK(pixels);
        return true;
    }

private:
    bool readHeader() {
        if (setjmp(trap_.jump) != 0) return false;
        jpeg_create_decompress(&info_);
        source_.next_input_byte = bytes_.data();
        source_.bytes_in_buffer = bytes_.size();
        source_.init_source = [](j_decompress_ptr) {};
        source_.fill_input_buffer = [](j_decompress_ptr info) -> boolean { endOfBytes(info); };
        source_.skip_input_data = skip;
        source_.resync_to_restart = jpeg_resync_to_restart;
        source_.term_source = [](j_decompress_ptr) {};
        info_.src = &source_;
        jpeg_read_header(&info_, TRUE);
        // With arithmetic coding a few bytes could ask for any amount of work, and next to nobody
        // writes it.
        return info_.jpeg_color_space != JCS_UNKNOWN && info_.arith_code == FALSE;
    }

    [[noreturn]] static void endOfBytes(j_decompress_ptr info) {
        spring(reinterpret_cast<j_common_ptr>(info));
    }

    static void skip(j_decompress_ptr info, long count) {
        if (count <= 0) return;
        const auto wanted = static_cast<std::size_t>(count);
        if (wanted > info->src->bytes_in_buffer) endOfBytes(info);
        info->src->next_input_byte += wanted;
        info->src->bytes_in_buffer -= wanted;
    }

    /// Each scan of a progressive picture goes over all of it, and real ones have about ten.
    static void limitScans(j_common_ptr info) {
        constexpr int mostScans = 64;
        if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > mostScans) spring(info);
    }

    bool isCMYK() const {
        return info_.jpeg_color_space == JCS_CMYK || info_.jpeg_color_space == JCS_YCCK;
    }

    void convertFromCMYK(std::span<std::uint8_t> pixels) const {
        // Files with an Adobe marker hold how much light is left, the others how much ink there is.
        const std::uint8_t ink = info_.saw_Adobe_marker != FALSE ? 0x00 : 0xFF;
        for (std::size_t i = 0; i + kBytesPerPixel <= pixels.size(); i += kBytesPerPixel) {
            const int black = pixels[i + 3] ^ ink;
            for (std::size_t j = i; j < i + 3; ++j) pixels[j] = scaled(pixels[j] ^ ink, black);
            pixels[i + 3] = 0xFF;
        }
    }

    ByteView bytes_;
    Trap trap_;
    jpeg_decompress_struct info_ = {};
    jpeg_source_mgr source_ = {};
    jpeg_progress_mgr progress_ = {};
};

class JPEGWriter {
public:
    explicit JPEGWriter(const Picture& picture)
        : picture_(picture), row_(std::size_t{picture.width()} * 3) {
        set(trap_, info_);
    }
    JPEGWriter(const JPEGWriter&) = delete;
    JPEGWriter& operator=(const JPEGWriter&) = delete;
    ~JPEGWriter() { jpeg_destroy_compress(&info_); }

    bool write() {
        if (setjmp(trap_.jump) != 0) return false;
        jpeg_create_compress(&info_);
        target_.writer = this;
        target_.manager.init_destination = [](j_compress_ptr info) { emptyBuffer(*info); };
        target_.manager.empty_output_buffer = [](j_compress_ptr info) -> boolean {
            take(*info, kBufferLength);
            return TRUE;
        };
        target_.manager.term_destination = [](j_compress_ptr info) {
            take(*info, kBufferLength - info->dest->free_in_buffer);
        };
        info_.dest = &target_.manager;
        info_.image_width = picture_.width();
        info_.image_height = picture_.height();
        info_.input_components = 3;
        info_.in_color_space = JCS_RGB;
        jpeg_set_defaults(&info_);
        jpeg_start_compress(&info_, TRUE);
        while (info_.next_scanline < info_.image_height) {
            layOverWhite(picture_.row(info_.next_scanline));
            JSAMPROW row = row_.data();
            jpeg_write_scanlines(&info_, &row, 1);
        }
        jpeg_finish_compress(&info_);
        return true;
    }

    Bytes takeBytes() { return std::move(bytes_); }

private:
    static constexpr std::size_t kBufferLength = 16'384;

    struct Target {
        jpeg_destination_mgr manager = {};
        JPEGWriter* writer = nullptr;
    };

    static JPEGWriter& writerOf(jpeg_compress_struct& info) {
        return *reinterpret_cast<Target*>(info.dest)->writer;
    }

    static void emptyBuffer(jpeg_compress_struct& info) {
        info.dest->next_output_byte = writerOf(info).buffer_.data();
        info.dest->free_in_buffer = kBufferLength;
    }

    static void take(jpeg_compress_struct& info, std::size_t count) {
        if (!writerOf(info).append(count)) spring(reinterpret_cast<j_common_ptr>(&info));
        emptyBuffer(info);
    }

    bool append(std::size_t count) noexcept {
        try {
            bytes_.insert(bytes_.end(), buffer_.data(), buffer_.data() + count);
            return true;
        } catch (const std::bad_alloc&) {  // Must not pass through the library.
            return false;
        }
    }

    void layOverWhite(ByteView pixels) {
        for (std::size_t x = 0; x < picture_.width(); ++x) {
            const ByteView pixel = pixels.subspan(x * kBytesPerPixel, kBytesPerPixel);
            for (std::size_t i = 0; i < 3; ++i) {
                row_[x * 3 + i] =
                    static_cast<std::uint8_t>(0xFF - scaled(0xFF - pixel[i], pixel[3]));
            }
        }
    }

    const Picture& picture_;
    Bytes row_, bytes_;
    std::array<std::uint8_t, kBufferLength> buffer_ = {};
    Trap trap_;
    jpeg_compress_struct info_ = {};
    Target target_;
};

}  // namespace

std::optional<PictureSize> sizeOfJPEG(ByteView bytes) { return JPEGReader(bytes).size(); }

std::optional<Picture> decodeJPEG(ByteView bytes) {
    JPEGReader reader(bytes);
    const std::optional<PictureSize> size = reader.size();
    if (!size) return std::nullopt;
    Bytes pixels(std::size_t{size->width} * size->height * kBytesPerPixel);
    if (!reader.readPixels(pixels)) return std::nullopt;
    return Picture(*size, std::move(pixels));
}

std::optional<Bytes> encodeJPEG(const Picture& picture) {
    JPEGWriter writer(picture);
    if (!writer.write()) return std::nullopt;
    return writer.takeBytes();
}

}  // namespace vexqt
