// A movie of two tracks, put together by hand, every field with a value of its own.
#pragma once

#include "testing/bytes.h"

namespace vexqt::testing {

/// 108 bytes.
inline Bytes movieHeader() {
    return atom("mvhd"_os, {
                               u32(0x00010203),                           // version, flags
                               u32(3061152000), u32(3061152060),          // created, modified
                               u32(600),        u32(1200),                // time scale, duration
                               u32(0x00018000), u16(0x0080),              // rate 1.5, volume 0.5
                               zeros(10),                                 // reserved
                               u32(0x00010000), u32(0x00020000), u32(0),  // matrix
                               u32(0x00030000), u32(0x00040000), u32(0),  u32(0x00050000),
                               u32(0x00060000), u32(0x40000000), u32(11), u32(12),
                               u32(13),         u32(14),         u32(15), u32(16),
                               u32(3),  // next track
                           });
}

/// 92 bytes; the layer is minus the number of the track.
inline Bytes trackHeader(std::uint32_t number) {
    return atom("tkhd"_os,
                {
                    u32(0x0000000F), u32(3061152001), u32(3061152002),
                    u32(number),     u32(0),          u32(1200),
                    u32(0),          u32(0),          u16(static_cast<std::uint16_t>(0 - number)),
                    u16(7),          u16(0x0100),     u16(0),
                    u32(0x00010000), u32(0),          u32(0),
                    u32(0),          u32(0x00010000), u32(0),
                    u32(0),          u32(0),          u32(0x40000000),
                    u32(320 << 16),  u32(240 << 16),
                });
}

inline Bytes handler(OSType subtype, std::string_view name) {
    return atom("hdlr"_os, {u32(0), text("mhlr"), u32(subtype), text("abcd"), u32(0), u32(0),
                            u8(static_cast<std::uint8_t>(name.size())), text(name)});
}

inline Bytes track(std::uint32_t number, OSType mediaType) {
    return atom("trak"_os,
                {trackHeader(number),
                 atom("mdia"_os, {atom("mdhd"_os, {u32(0), u32(3061152003), u32(3061152004),
                                                   u32(48000), u32(96000), u16(0x55C4), u16(9)}),
                                  handler(mediaType, "Handler")})});
}

/// 24 bytes of file type, 12 of media data, and the movie at 36. Its atoms behind the tracks have
/// codes that paths write in hexadecimal.
inline Bytes smallMovie() {
    return join({atom("ftyp"_os, {text("qt  "), u32(0x20050300), text("qt  mp42")}),
                 atom("mdat"_os, {text("DATA")}),
                 atom("moov"_os, {movieHeader(), track(1, "vide"_os), track(2, "soun"_os),
                                  atom("a.b]"_os), atom(0xA96E616D, {text("name")})})});
}

}  // namespace vexqt::testing
