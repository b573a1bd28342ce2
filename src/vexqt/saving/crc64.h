// The checksum of journals: CRC-64 as xz uses it (the polynomial of ECMA-182, reflected).
//
// It decides whether bytes are written over somebody's movie, so 32 bits are too few for comfort.
// It is meant for torn and damaged files, not for forged ones: whoever can put a journal beside a
// movie is trusted with the movie.
#pragma once

#include <string>
#include <string_view>

#include "vexqt/platform/bytes_types.h"

namespace vexqt {

class Crc64 {
public:
    void add(ByteView bytes);
    std::uint64_t value() const { return ~state_; }

    static std::uint64_t of(ByteView bytes) {
        Crc64 crc;
        crc.add(bytes);
        return crc.value();
    }

private:
    std::uint64_t state_ = ~std::uint64_t{0};
};

/// The checksum of a text in sixteen hexadecimal digits, for names of files.
std::string digestOf(std::string_view text);

}  // namespace vexqt
