// A movie in which every class of atoms stands where it stands in the movies of the world.
#pragma once

#include "testing/bytes.h"
#include "vexqt/vexqt.h"

namespace vexqt::testing {

/// The bytes of an atom whose properties all have values of their own.
class FilledAtoms {
public:
    Bytes operator()(const AtomClass& cls) {
        const auto atom = cls.create();
        for (const Field* property : atom->properties()) {
            if (property->list != nullptr) {
                fillList(*property->list, *atom);
            } else if (property->set != nullptr) {
                if (const auto value = valueFor(property->kind, property->bits))
                    property->set(*atom, *value);
            }
        }
        return atom->atomData();
    }

private:
    std::optional<Value> valueFor(ValueKind kind, std::uint8_t bits) {
        ++number_;
        switch (kind) {
            case ValueKind::Unsigned:
                return Value(number_ & (bits == 8 ? 0x7FU : 0x7FFFU));
            case ValueKind::Signed:
                return Value(static_cast<std::int64_t>(number_ & 0x7F));
            case ValueKind::Floating:
                return Value(static_cast<double>(number_ % 100) + 0.5);
            case ValueKind::Instant:
                return Value(Date(std::chrono::seconds(1'000'000'000 + number_)));
            case ValueKind::Transformation:
                return Value(Matrix{1, 2, 0, 3, 4, 0, static_cast<double>(number_ % 100), 6, 1});
            case ValueKind::Text:
                return Value("text " + std::to_string(number_));
            default:
                return std::nullopt;
        }
    }
    void fillList(const ListAccess& list, Record& owner) {
        list.insertRows(owner, 0, 3);
        for (std::size_t row = 0; row < 3; ++row)
            for (std::size_t column = 0; column < list.columns.size(); ++column)
                if (const auto value =
                        valueFor(list.columns[column].kind, list.columns[column].bits))
                    list.setCell(owner, row, column, *value);
    }

    std::uint64_t number_ = 1;
};

class MovieOfAllClasses {
public:
    /// The movie is the last atom.
    Bytes bytes() {
        return join({atom("ftyp"_os, {text("qt  "), u32(0x20050300), text("qt  mp42isom")}),
                     atom("free"_os, {zeros(5)}), atom("uuid"_os, {text("some user's bytes")}),
                     atom("mdat"_os, {Bytes(64, 0xDA)}),
                     atom("moof"_os, {atom("mfhd"_os, {u32(0), u32(1)})}), movie()});
    }

private:
    Bytes movie() {
        return atom("moov"_os, {leaf_(VexQTmvhdAtom::kClass), keyedMetadata(), videoTrack(),
                                soundTrack(), timecodeTrack(), subtitleTrack(), captionTrack(),
                                timedMetadataTrack(), otherTrack(), userData()});
    }

    // Tracks.

    static Bytes handler(std::string_view component, std::string_view subtype) {
        return atom("hdlr"_os, {u32(0), text(component), text(subtype), text("abcd"), u32(5),
                                u32(6), u8(4), text("Name")});
    }
    static Bytes dataReferences() {
        return atom("dref"_os, {u32(0), u32(2), atom("alis"_os, {u32(1)}),
                                atom("url "_os, {u32(0), text("file:///b.mov")})});
    }
    Bytes track(std::string_view mediaType, ByteView mediaHeader,
                std::initializer_list<ByteView> entries, ByteView moreOfTrack = {},
                ByteView moreOfTable = {}) {
        const Bytes descriptions = atom(
            "stsd"_os, {u32(0), u32(static_cast<std::uint32_t>(entries.size())), join(entries)});
        const Bytes table =
            atom("stbl"_os, {descriptions, leaf_(VexQTsttsAtom::kClass), moreOfTable});
        const Bytes information = atom("minf"_os, {mediaHeader, handler("dhlr", "alis"),
                                                   atom("dinf"_os, {dataReferences()}), table});
        return atom(
            "trak"_os,
            {leaf_(VexQTtkhdAtom::kClass), moreOfTrack,
             atom("mdia"_os, {leaf_(VexQTmdhdAtom::kClass), handler("mhlr", mediaType),
                              atom("elng"_os, {u32(0), text("en-US"), u8(0)}), information})});
    }
    /// An entry of a sample description, with the 8 bytes that all of them have behind the header.
    static Bytes entry(std::string_view format, std::initializer_list<ByteView> fields) {
        const Bytes all = join({text(format), zeros(6), u16(1), join(fields)});
        return join({u32(static_cast<std::uint32_t>(all.size() + 4)), all});
    }

    Bytes videoTrack() {
        const Bytes protection =
            atom("sinf"_os, {leaf_(VexQTfrmaAtom::kClass), leaf_(VexQTschmAtom::kClass),
                             atom("schi"_os, {atom("abcd"_os, {u32(7)})})});
        const Bytes description = entry("avc1", {u16(1),
                                                 u16(2),
                                                 text("vend"),
                                                 u32(3),
                                                 u32(4),
                                                 u16(320),
                                                 u16(240),
                                                 u32(72 << 16),
                                                 u32(73 << 16),
                                                 u32(0),
                                                 u16(1),
                                                 u8(4),
                                                 text("Name"),
                                                 zeros(27),
                                                 u16(24),
                                                 u16(0xFFFF),
                                                 atom("avcC"_os, {text("\1\2\3\4")}),
                                                 leaf_(VexQTclapAtom::kClass),
                                                 leaf_(VexQTcolrAtom::kClass),
                                                 atom("fiel"_os, {u8(2), u8(9)}),
                                                 leaf_(VexQTpaspAtom::kClass),
                                                 protection,
                                                 zeros(4)});
        const Bytes ofTrack = join(
            {atom("tapt"_os, {leaf_(VexQTclefAtom::kClass), leaf_(VexQTprofAtom::kClass),
                              leaf_(VexQTenofAtom::kClass)}),
             atom("edts"_os, {leaf_(VexQTelstAtom::kClass)}),
             atom("clip"_os, {atom("crgn"_os, {u16(18), u64(0x0102030405060708), text("region")})}),
             atom("prfl"_os, {u32(1)})});
        const Bytes sizes = atom("stsz"_os, {u32(0), u32(0), u32(3), u32(100), u32(200), u32(300)});
        const Bytes ofTable =
            join({leaf_(VexQTcttsAtom::kClass), leaf_(VexQTcslgAtom::kClass),
                  leaf_(VexQTstssAtom::kClass), leaf_(VexQTstpsAtom::kClass),
                  leaf_(VexQTstscAtom::kClass), sizes, leaf_(VexQTco64Atom::kClass)});
        return track("vide", leaf_(VexQTvmhdAtom::kClass), {description}, ofTrack, ofTable);
    }

    Bytes soundTrack() {
        const auto sound = [](std::uint16_t version) {
            return join({u16(version), u16(2), text("vend"), u16(3), u16(16), u16(4), u16(5),
                         u32(48000U << 16)});
        };
        const Bytes channels =
            atom("chan"_os, {u32(0), u32(0x00650002), u32(3), u32(2), channel(1), channel(2)});
        const Bytes noChannels =
            atom("chan"_os, {u32(0), u32(0x00650002), u32(0), u32(0), zeros(20)});
        const Bytes wave = atom("wave"_os, {leaf_(VexQTfrmaAtom::kClass), atom("enda"_os, {u16(1)}),
                                            atom("esds"_os, {u32(9)})});
        const Bytes version1 = join({u32(11), u32(12), u32(13), u32(14)});
        const Bytes version2 = join({u32(72), u64(std::bit_cast<std::uint64_t>(48000.0)), u32(2),
                                     u32(0x7F000000), u32(24), u32(25), u32(26), u32(27)});
        const Bytes sizes = atom("stsz"_os, {u32(0), u32(4), u32(900)});
        return track(
            "soun", leaf_(VexQTsmhdAtom::kClass),
            {entry("sowt", {sound(0), channels}), entry("mp4a", {sound(1), version1, wave}),
             entry("lpcm", {sound(2), version2, noChannels})},
            {}, join({sizes, leaf_(VexQTstcoAtom::kClass)}));
    }
    static Bytes channel(std::uint32_t label) {
        return join({u32(label), u32(2), u32(0x3F800000), u32(0x40000000), u32(0x40400000)});
    }

    Bytes timecodeTrack() {
        const Bytes description =
            entry("tmcd", {u32(1), u32(2), u32(25000), u32(1000), u8(25), u8(0), u32(16),
                           text("name"), u16(4), u16(5), text("Tape")});
        const Bytes information = atom(
            "tcmi"_os, {u32(0), u16(1), u16(2), u16(12), u16(0), u16(0x1000), u16(0x2000),
                        u16(0x3000), u16(0x4000), u16(0x5000), u16(0x6000), u8(4), text("Font")});
        return track("tmcd", generalHeader({atom("tmcd"_os, {information})}), {description});
    }
    Bytes generalHeader(std::initializer_list<ByteView> more) {
        const Bytes all = join(more);
        return atom("gmhd"_os, {leaf_(VexQTgminAtom::kClass), leaf_(VexQTtextAtom::kClass), all});
    }

    Bytes subtitleTrack() {
        const Bytes fonts = atom("ftab"_os, {u16(2), u16(1), u8(15), text("Sans or a serif"),
                                             u16(2), u8(10), text("Monospaced")});
        const Bytes description =
            atom("tx3g"_os,
                 {zeros(6), u16(1), u32(2), u8(1), u8(2), u32(0x11223344), u16(5), u16(6), u16(7),
                  u16(8), u16(9), u16(10), u16(1), u8(3), u8(18), u32(0x55667788), fonts});
        return track("sbtl", generalHeader({}), {description});
    }
    Bytes captionTrack() {
        return track("clcp", generalHeader({}),
                     {entry("c608", {atom("sinf"_os, {leaf_(VexQTfrmaAtom::kClass)})})});
    }
    Bytes timedMetadataTrack() {
        const auto key = [](std::uint32_t index, std::string_view name) {
            return atom(index, {atom("keyd"_os, {text("mdta"), text(name)}),
                                atom("dtyp"_os, {u32(0), u32(20 + index)})});
        };
        return track("meta", generalHeader({}),
                     {entry("mebx", {atom("keys"_os, {key(1, "a.first"), key(2, "b.second")})})});
    }
    Bytes otherTrack() {
        return track("abcd", generalHeader({}), {entry("efgh", {text("its own bytes")})});
    }

    // Metadata.

    static Bytes value(std::uint32_t kind, ByteView bytes) {
        return atom("data"_os, {u32(kind), u32(3), bytes});
    }
    static Bytes keyedMetadata() {
        const std::initializer_list<Bytes> values = {
            value(1, text("a text")),
            value(2, text("\xFF\xFE\x2D\x4E\x87\x65")),
            value(13, text("no picture")),
            value(14, text("none either")),
            value(21, u8(1)),
            value(21, u16(2)),
            value(21, u32(3)),
            value(21, u64(4)),
            value(22, u8(5)),
            value(22, u16(6)),
            value(22, u32(7)),
            value(22, u64(8)),
            value(23, u32(std::bit_cast<std::uint32_t>(1.5F))),
            value(24, u64(std::bit_cast<std::uint64_t>(2.5))),
            value(0, u8(9)),
            value(0, u16(10)),
            value(0, u32(11)),
            value(0, text("raw bytes")),
            value(77, text("unknown")),
            value(28, atom("meta"_os, {handler("mhlr", "mdta")})),
        };
        Bytes keys, items;
        std::uint32_t index = 0;
        for (const Bytes& each : values) {
            const std::string name = "com.example.key" + std::to_string(++index);
            const Bytes key =
                join({u32(static_cast<std::uint32_t>(8 + name.size())), text("mdta"), text(name)});
            keys.insert(keys.end(), key.begin(), key.end());
            const Bytes item = atom(index, {each});
            items.insert(items.end(), item.begin(), item.end());
        }
        return atom("meta"_os,
                    {handler("mhlr", "mdta"), atom("keys"_os, {u32(0), u32(index), keys}),
                     atom("ilst"_os, {items})});
    }
    static Bytes userData() {
        const Bytes items =
            atom("ilst"_os, {atom("trkn"_os, {value(0, join({u32(3), u32(12)}))}),
                             atom("disk"_os, {value(0, join({u16(0), u16(1), u16(2)}))}),
                             atom(0xA96E616D, {value(1, text("a title"))})});
        return atom("udta"_os, {atom(0xA96E616D, {u16(5), u16(0x15C7), text("title")}),
                                atom("XMP_"_os, {text("<some packet/>")}),
                                atom("meta"_os, {u32(0), handler("mhlr", "mdir"), items})});
    }

    FilledAtoms leaf_;
};

}  // namespace vexqt::testing
