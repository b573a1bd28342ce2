// Bytes of atoms as they lie in a file, put together by hand.
#pragma once

#include <initializer_list>
#include <string_view>

#include "vexqt/core/VexQTAtom.h"

namespace vexqt::testing {

inline Bytes join(std::initializer_list<ByteView> parts) {
    Bytes all;
    for (const ByteView part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

template <std::unsigned_integral T>
Bytes big(T value) {
    Bytes bytes(sizeof(T));
    for (std::size_t i = 0; i < sizeof(T); ++i)
        bytes[sizeof(T) - 1 - i] = static_cast<std::uint8_t>(value >> (8 * i));
    return bytes;
}
inline Bytes u8(std::uint8_t value) { return big(value); }
inline Bytes u16(std::uint16_t value) { return big(value); }
inline Bytes u32(std::uint32_t value) { return big(value); }
inline Bytes u64(std::uint64_t value) { return big(value); }
/// The characters of a text, one byte each.
inline Bytes text(std::string_view characters) { return {characters.begin(), characters.end()}; }
inline Bytes zeros(std::size_t count) { return Bytes(count); }

/// An atom whose size field tells its length.
inline Bytes atom(OSType type, std::initializer_list<ByteView> payload = {}) {
    const Bytes body = join(payload);
    return join({u32(static_cast<std::uint32_t>(body.size() + 8)), u32(type), body});
}
/// An atom whose size field says whatever it is given.
inline Bytes atomClaiming(std::uint32_t size, OSType type,
                          std::initializer_list<ByteView> payload = {}) {
    return join({u32(size), u32(type), join(payload)});
}
/// An atom with an extended size, which says whatever it is given.
inline Bytes extendedAtomClaiming(std::uint64_t size, OSType type,
                                  std::initializer_list<ByteView> payload = {}) {
    return join({u32(1), u32(type), u64(size), join(payload)});
}

}  // namespace vexqt::testing
