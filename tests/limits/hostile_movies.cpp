#include "limits/hostile_movies.h"

#include "testing/bytes.h"

namespace vexqt::testing {

namespace {

void append(Bytes& all, ByteView part) { all.insert(all.end(), part.begin(), part.end()); }

/// As many as fit.
Bytes repeated(ByteView part, std::size_t length) {
    Bytes all;
    all.reserve(length);
    while (all.size() + part.size() <= length) append(all, part);
    return all;
}

constexpr std::size_t kItemLevel = 40;

/// Items whose values are metadata, of which the item is one whose value is metadata.
Bytes nestedItems(std::size_t items, ByteView innermost) {
    // From the outermost on: put together the other way round it would be copied at every level.
    Bytes all;
    const auto header = [&](std::size_t length, OSType type) {
        append(all, join({u32(static_cast<std::uint32_t>(length)), u32(type)}));
    };
    for (std::size_t item = items; item > 0; --item) {
        const std::size_t length = item * kItemLevel + innermost.size();
        header(length, 1);
        header(length - 8, "data"_os);
        append(all, join({u32(28), u32(0)}));
        header(length - 24, "meta"_os);
        header(length - 32, "ilst"_os);
    }
    append(all, innermost);
    return all;
}

/// A movie with metadata that has these items.
Bytes nest(ByteView items) { return movieOf(atom("meta"_os, {atom("ilst"_os, {items})})); }

/// A movie that holds what a track of a media type has in its sample table.
Bytes movieOfSampleTable(OSType mediaType, ByteView payload) {
    const Bytes handler =
        atom("hdlr"_os, {u32(0), text("mhlr"), u32(mediaType), zeros(4), zeros(8)});
    const Bytes table = atom("minf"_os, {atom("stbl"_os, {payload})});
    return movieOf(atom("trak"_os, {atom("mdia"_os, {handler, table})}));
}

Bytes movieOfUserData(ByteView payload) { return movieOf(atom("udta"_os, {payload})); }

/// Codes that differ from each other and from all that are known.
Bytes countedCode(std::size_t number) {
    return u32(0x80000000 | static_cast<std::uint32_t>(number));
}

// MARK: The families

Bytes wide(std::size_t length) { return movieOf(repeated(atom("abcd"_os), length)); }

Bytes wideOfManyTypes(std::size_t length) {
    Bytes all;
    for (std::size_t i = 0; all.size() + 8 <= length; ++i)
        append(all, join({u32(8), countedCode(i)}));
    return movieOf(all);
}

/// As deep as reading goes, again and again.
Bytes deep(std::size_t length) { return nest(repeated(nestedItems(62, {}), length)); }

/// Many atoms on the last level that is read.
Bytes deepThenWide(std::size_t length) { return nest(nestedItems(62, repeated(atom(2), length))); }

/// Nothing but nesting, most of it deeper than reading goes.
Bytes tooDeep(std::size_t length) { return nest(nestedItems(length / kItemLevel, {})); }

Bytes bareContainers(std::size_t length) {
    return movieOf(repeated(atom("trak"_os, {atom("mdia"_os)}), length));
}

/// Every one is declined, and most are problems that are no more listed.
Bytes declined(std::size_t length) { return movieOf(repeated(atom("mvhd"_os), length)); }

/// Every problem lies under a long path.
Bytes deepProblems(std::size_t length) {
    return nest(nestedItems(61, atom(1, {repeated(atom("data"_os), length)})));
}

/// A size of 0 counts from the container's start, and so reaches past its end.
Bytes zeroSizes(std::size_t length) {
    const Bytes one = atom("trak"_os, {atomClaiming(0, "mdia"_os), zeros(8)});
    return movieOf(repeated(one, length));
}

Bytes sizesPastTheEnd(std::size_t length) {
    return movieOf(
        repeated(atom("trak"_os, {atomClaiming(0xFFFFFFFF, "abcd"_os), zeros(1)}), length));
}

Bytes extendedSizes(std::size_t length) {
    return movieOf(repeated(extendedAtomClaiming(16, "abcd"_os), length));
}

Bytes longText(std::size_t length) {
    const Bytes letters(length, 'x');
    return movieOf(atom("hdlr"_os, {zeros(24), letters}));
}

/// Text of two-byte units that takes three bytes each in UTF-8.
Bytes longWideText(std::size_t length) {
    const Bytes units = repeated(u16(0x20AC), length);
    return movieOfUserData(
        atom("meta"_os,
             {zeros(4), atom("ilst"_os, {atom(1, {atom("data"_os, {u32(2), u32(0), units})})})}));
}

Bytes shortTexts(std::size_t length) {
    return movieOfUserData(repeated(atom("cprt"_os, {u16(4), u16(0), text("abcd")}), length));
}

/// Every table says that it has four thousand million entries.
Bytes hugeCounts(std::size_t length) {
    return movieOfSampleTable(
        "vide"_os, repeated(join({atom("stsz"_os, {u32(0), u32(0), u32(0xFFFFFFFF), u32(7)}),
                                  atom("dref"_os, {u32(0), u32(0xFFFFFFFF)})}),
                            length));
}

Bytes tables(std::size_t length) {
    const std::size_t each = length / 4;
    const auto count = [](std::size_t bytes, std::size_t width) {
        return u32(static_cast<std::uint32_t>(bytes / width));
    };
    const auto entries = [each](std::size_t width) {
        Bytes all(each / width * width);
        for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::uint8_t>(i * 7);
        return all;
    };
    return movieOfSampleTable("vide"_os,
                              join({atom("stts"_os, {u32(0), count(each, 8), entries(8)}),
                                    atom("stsc"_os, {u32(0), count(each, 12), entries(12)}),
                                    atom("stsz"_os, {u32(0), u32(0), count(each, 4), entries(4)}),
                                    atom("co64"_os, {u32(0), count(each, 8), entries(8)})}));
}

Bytes smallTables(std::size_t length) {
    return movieOfSampleTable("vide"_os,
                              repeated(atom("stts"_os, {u32(0), u32(1), u32(1), u32(1)}), length));
}

Bytes keys(std::size_t length) {
    const Bytes entry = join({u32(8), text("mdta")});
    const Bytes entries = repeated(entry, length);
    return movieOfUserData(atom(
        "meta"_os,
        {zeros(4),
         atom("keys"_os,
              {u32(0), u32(static_cast<std::uint32_t>(entries.size() / entry.size())), entries})}));
}

/// Keys of a metadata track, in the order that is the worst to sort.
Bytes keysToSort(std::size_t length) {
    Bytes entries;
    for (std::uint32_t index = 0xFFFFFFFF; entries.size() + 24 <= length; --index)
        append(entries, atom(index, {atom("keyd"_os, {text("mdta"), u32(index)})}));
    const Bytes entry = atom("mebx"_os, {zeros(6), u16(1), atom("keys"_os, {entries})});
    return movieOfSampleTable("meta"_os, atom("stsd"_os, {u32(0), u32(1), entry}));
}

/// The shortest keys that there are.
Bytes shortKeys(std::size_t length) {
    const Bytes keys = repeated(atom(1, {atom("keyd"_os, {text("mdta")})}), length);
    const Bytes entry = atom("mebx"_os, {zeros(6), u16(1), atom("keys"_os, {keys})});
    return movieOfSampleTable("meta"_os, atom("stsd"_os, {u32(0), u32(1), entry}));
}

/// Lists without room for their count: each raises an error of its own.
Bytes raising(std::size_t length) {
    return movieOf(atom("meta"_os, {repeated(atom("keys"_os), length)}));
}

/// Fonts without a name, three bytes each.
Bytes fonts(std::size_t length) {
    const Bytes table = atom("ftab"_os, {u16(1), zeros(3 * 2'000)});
    const Bytes entry = atom("tx3g"_os, {zeros(6), u16(1), zeros(30), table});
    const Bytes entries = repeated(entry, std::max(length, entry.size()));
    return movieOfSampleTable(
        "sbtl"_os,
        atom("stsd"_os,
             {u32(0), u32(static_cast<std::uint32_t>(entries.size() / entry.size())), entries}));
}

Bytes sampleDescriptions(std::size_t length) {
    const Bytes entry = atom("abcd"_os, {zeros(6), u16(1)});
    const Bytes entries = repeated(entry, length);
    return movieOfSampleTable(
        "xxxx"_os,
        atom("stsd"_os,
             {u32(0), u32(static_cast<std::uint32_t>(entries.size() / entry.size())), entries}));
}

Bytes dataReferences(std::size_t length) {
    const Bytes entry = atom("url "_os, {u32(1)});
    const Bytes entries = repeated(entry, length);
    const Bytes table =
        atom("dref"_os,
             {u32(0), u32(static_cast<std::uint32_t>(entries.size() / entry.size())), entries});
    return movieOf(
        atom("trak"_os, {atom("mdia"_os, {atom("minf"_os, {atom("dinf"_os, {table})})})}));
}

Bytes metadataValues(std::size_t length) {
    const Bytes value = atom("data"_os, {u32(1), u32(0)});
    return movieOfUserData(
        atom("meta"_os, {zeros(4), atom("ilst"_os, {atom(1, {repeated(value, length)})})}));
}

Bytes metadataItems(std::size_t length) {
    return movieOfUserData(atom(
        "meta"_os,
        {zeros(4), atom("ilst"_os, {repeated(atom(1, {atom("data"_os, {u32(21), u32(0), u8(7)})}),
                                             length)})}));
}

constexpr HostileFamily kFamilies[] = {
    {.name = "wide", .movie = wide},
    {.name = "wide of many types", .movie = wideOfManyTypes},
    {.name = "deep", .movie = deep},
    {.name = "deep, then wide", .movie = deepThenWide},
    {.name = "bare containers", .movie = bareContainers},
    {.name = "declined", .movie = declined, .isBroken = true},
    {.name = "deep problems", .movie = deepProblems, .isBroken = true},
    {.name = "zero sizes", .movie = zeroSizes},
    {.name = "sizes past the end", .movie = sizesPastTheEnd, .isBroken = true},
    {.name = "extended sizes", .movie = extendedSizes},
    {.name = "long text", .movie = longText},
    {.name = "long wide text", .movie = longWideText},
    {.name = "short texts", .movie = shortTexts},
    {.name = "huge counts", .movie = hugeCounts},
    {.name = "tables", .movie = tables, .isTables = true},
    {.name = "small tables", .movie = smallTables},
    {.name = "keys", .movie = keys},
    {.name = "keys to sort", .movie = keysToSort},
    {.name = "short keys", .movie = shortKeys},
    {.name = "raising", .movie = raising, .isBroken = true},
    {.name = "fonts", .movie = fonts},
    {.name = "sample descriptions", .movie = sampleDescriptions},
    {.name = "data references", .movie = dataReferences},
    {.name = "metadata values", .movie = metadataValues},
    {.name = "metadata items", .movie = metadataItems},
    {.name = "too deep", .movie = tooDeep, .isBroken = true},
};

}  // namespace

Bytes movieOf(ByteView payload) {
    return join(
        {atom("ftyp"_os, {text("qt  "), u32(0x200), text("qt  ")}), atom("moov"_os, {payload})});
}

Bytes nested(std::size_t length) { return tooDeep(length); }

std::span<const HostileFamily> hostileFamilies() { return kFamilies; }

}  // namespace vexqt::testing
