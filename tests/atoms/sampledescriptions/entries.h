// Bytes of sample description tables and of the media around them.
#pragma once

#include "testing/bytes.h"

namespace vexqt::testing {

/// The 16 bytes that every entry begins with.
inline Bytes entryClaiming(std::uint32_t size, OSType format, std::uint16_t dataReferenceIndex) {
    return join({u32(size), u32(format), zeros(6), u16(dataReferenceIndex)});
}
/// An entry whose size field tells its length.
inline Bytes entry(OSType format, std::uint16_t dataReferenceIndex,
                   std::initializer_list<ByteView> payload = {}) {
    const Bytes body = join(payload);
    const auto size = static_cast<std::uint32_t>(16 + body.size());
    return join({entryClaiming(size, format, dataReferenceIndex), body});
}
/// A table of entries, version and flags 0.
inline Bytes tableCounting(std::uint32_t count, std::initializer_list<ByteView> entries = {}) {
    return atom("stsd"_os, {zeros(4), u32(count), join(entries)});
}

inline Bytes handler(OSType mediaType) {
    return atom("hdlr"_os, {zeros(4), text("mhlr"), u32(mediaType), zeros(12)});
}
inline Bytes mediaInformation(ByteView table) {
    return atom("minf"_os, {atom("stbl"_os, {table})});
}
/// A media of a type with a sample description table, which lies kTableOffset behind its start.
inline Bytes media(OSType mediaType, ByteView table) {
    return atom("mdia"_os, {handler(mediaType), mediaInformation(table)});
}
inline constexpr std::uint64_t kTableOffset = 8 + 32 + 8 + 8;

/// The 86 bytes of a video entry up to its extension atoms, and what follows them.
inline Bytes videoEntry(OSType format, std::uint16_t colorTableID,
                        std::initializer_list<ByteView> more = {}) {
    return entry(format, 1,
                 {
                     zeros(16),  // Versions, vendor, qualities.
                     u16(640),
                     u16(480),
                     zeros(8),  // Width, height, resolutions.
                     zeros(4),  // Data size.
                     u16(1),
                     zeros(32),  // Frame count, name.
                     u16(24),
                     u16(colorTableID),  // Depth.
                     join(more),
                 });
}
/// The 36 bytes of a sound entry of version 0 up to its extension atoms, and what follows them.
inline Bytes soundEntry(OSType format, std::initializer_list<ByteView> more = {}) {
    return entry(format, 1,
                 {
                     zeros(8),  // Versions, vendor.
                     u16(2),
                     u16(16),          // Channels, sample size.
                     zeros(4),         // Compression, packet size.
                     u32(0xAC440000),  // Sample rate: 44100.
                     join(more),
                 });
}

}  // namespace vexqt::testing
