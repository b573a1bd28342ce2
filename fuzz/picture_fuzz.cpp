// Pictures from files that nobody vouches for: decoding gives a picture or none, in bounded memory,
// and what was decoded can be encoded in every format and decoded again to the same size.
#include <cstdlib>

#include "vexqt/platform/Picture.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using vexqt::Picture;
    const vexqt::ByteView bytes(data, size);
    const auto sizeFirst = Picture::sizeOf(bytes);
    const auto picture = Picture::decode(bytes);
    if (!picture) return 0;
    require(Picture::formatOf(bytes).has_value());
    require(sizeFirst && sizeFirst->width == picture->width() &&
            sizeFirst->height == picture->height());
    if (std::uint64_t{picture->width()} * picture->height() > 65536) return 0;
    for (const auto format :
         {vexqt::PictureFormat::JPEG, vexqt::PictureFormat::PNG, vexqt::PictureFormat::BMP}) {
        const auto encoded = picture->encode(format);
        require(encoded.has_value());
        const auto again = Picture::decode(*encoded);
        require(again && again->width() == picture->width() &&
                again->height() == picture->height());
    }
    return 0;
}
