#include "limits/full_movie.h"

#include "testing/bytes.h"
#include "testing/small_movie.h"

namespace vexqt::testing {

namespace {

Bytes mediaTrack(std::uint32_t number, OSType mediaType, ByteView sampleTable) {
    return atom(
        "trak"_os,
        {trackHeader(number),
         atom("edts"_os, {atom("elst"_os, {u32(0), u32(1), u32(600), u32(0), u32(0x00010000)})}),
         atom(
             "mdia"_os,
             {handler(mediaType, "A handler whose name is long enough for the heap"),
              atom("minf"_os,
                   {atom("dinf"_os, {atom("dref"_os, {u32(0), u32(1), atom("url "_os, {u32(1)})})}),
                    atom("stbl"_os, {sampleTable})})})});
}

Bytes tables() {
    return join({
        atom("stts"_os, {u32(0), u32(2), u32(1), u32(10), u32(2), u32(20)}),
        atom("ctts"_os, {u32(0), u32(1), u32(3), u32(5)}),
        atom("stss"_os, {u32(0), u32(2), u32(1), u32(3)}),
        atom("stsc"_os, {u32(0), u32(1), u32(1), u32(3), u32(1)}),
        atom("stsz"_os, {u32(0), u32(0), u32(3), u32(100), u32(200), u32(300)}),
        atom("stco"_os, {u32(0), u32(1), u32(36)}),
        atom("co64"_os, {u32(0), u32(1), u64(36)}),
    });
}

Bytes descriptions(ByteView entry) { return atom("stsd"_os, {u32(0), u32(1), entry}); }

Bytes videoDescription() {
    return atom("avc1"_os, {zeros(6), u16(1), zeros(16), u16(320), u16(240), u32(0x00480000),
                            u32(0x00480000), u32(0), u16(1), u8(7), text("Example"), zeros(24),
                            u16(24), u16(0xFFFF), atom("pasp"_os, {u32(1), u32(1)})});
}

Bytes metadataTrackDescription() {
    const auto key = [](std::uint32_t index, std::string_view name) {
        return atom(index, {atom("keyd"_os, {text("mdta"), text(name)}),
                            atom("dtyp"_os, {u32(0), u32(1)})});
    };
    return atom("mebx"_os, {zeros(6), u16(1),
                            atom("keys"_os, {key(1, "com.example.the second of the keys"),
                                             key(2, "com.example.the first of the keys")})});
}

Bytes metadata() {
    const auto key = [](std::string_view name) {
        return join({u32(static_cast<std::uint32_t>(name.size() + 8)), text("mdta"), text(name)});
    };
    const auto value = [](std::uint32_t kind, ByteView bytes) {
        return atom("data"_os, {u32(kind), u32(0), bytes});
    };
    return atom(
        "meta"_os,
        {atom("hdlr"_os, {zeros(8), text("mdta"), zeros(12)}),
         atom("keys"_os, {u32(0), u32(2), key("com.example.title of a movie"), key("short")}),
         atom("ilst"_os,
              {atom(1, {value(1, text("a text that is long enough to lie on the heap"))}),
               atom(2, {value(21, u32(77)), value(2, join({u16(0x48), u16(0x20AC)})),
                        value(23, u32(0x3F800000)), value(0, text("raw")),
                        value(13, text("no picture at all"))})})});
}

Bytes movieWith(ByteView more) {
    return join({
        atom("ftyp"_os, {text("qt  "), u32(0x20050300), text("qt  mp42")}),
        atom("mdat"_os, {text("DATA"), zeros(200)}),
        atom("moov"_os,
             {movieHeader(),
              mediaTrack(1, "vide"_os, join({descriptions(videoDescription()), tables()})),
              mediaTrack(2, "meta"_os, descriptions(metadataTrackDescription())),
              atom("udta"_os,
                   {atom("cprt"_os, {u16(30), u16(0), text("a right that is claimed here..")})}),
              metadata(), sampleAtom(), more}),
        atom("free"_os, {zeros(16)}),
    });
}

}  // namespace

Bytes sampleAtom() { return atom("abcd"_os, {text("bytes that no class decodes")}); }

Bytes fullMovie() { return movieWith({}); }

Bytes brokenMovie() {
    return movieWith(join({
        atom("mvhd"_os, {zeros(3)}),
        atom("trak"_os, {atom("tkhd"_os), atom("tkhd"_os, {zeros(90)})}),
        atom("trak"_os, {atomClaiming(4, "mdia"_os), zeros(8)}),
        atom("udta"_os, {atom("cprt"_os, {u16(300), u16(0), zeros(12)}),
                         atom("cprt"_os, {u16(300), u16(0), zeros(12)})}),
        atom("trak"_os, {atomClaiming(1000, "mdia"_os), zeros(8)}),
    }));
}

}  // namespace vexqt::testing
