#include "vexqt/saving/crc64.h"

#include <array>

namespace vexqt {

namespace {

constexpr std::size_t kSlices = 8;
using Table = std::array<std::uint64_t, 256>;

/// The first table takes one byte further; the others take a byte over 1 to 7 more, so that eight
/// bytes are taken in one step.
consteval std::array<Table, kSlices> makeTables() {
    std::array<Table, kSlices> tables{};
    for (std::size_t byte = 0; byte < 256; ++byte) {
        std::uint64_t state = byte;
        for (int bit = 0; bit < 8; ++bit)
            state = (state >> 1) ^ ((state & 1) != 0 ? 0xC96C5795D7870F42 : 0);
        tables[0][byte] = state;
    }
    for (std::size_t slice = 1; slice < kSlices; ++slice)
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint64_t before = tables[slice - 1][byte];
            tables[slice][byte] = (before >> 8) ^ tables[0][before & 0xFF];
        }
    return tables;
}

constexpr std::array<Table, kSlices> kTables = makeTables();

}  // namespace

void Crc64::add(ByteView bytes) {
    for (; bytes.size() >= kSlices; bytes = bytes.subspan(kSlices)) {
        std::uint64_t next = 0;
        for (std::size_t i = 0; i < kSlices; ++i)
            next ^= kTables[kSlices - 1 - i][((state_ >> (8 * i)) ^ bytes[i]) & 0xFF];
        state_ = next;
    }
    for (const std::uint8_t byte : bytes)
        state_ = (state_ >> 8) ^ kTables[0][(state_ ^ byte) & 0xFF];
}

std::string digestOf(std::string_view text) {
    Crc64 crc;
    for (const char character : text) crc.add(Bytes{static_cast<std::uint8_t>(character)});
    std::string digits;
    for (int shift = 60; shift >= 0; shift -= 4)
        digits += "0123456789abcdef"[(crc.value() >> shift) & 15];
    return digits;
}

}  // namespace vexqt
