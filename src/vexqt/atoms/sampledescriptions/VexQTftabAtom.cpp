#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/list.h"
#include "vexqt/platform/text.h"

namespace vexqt {

// MARK: The entry

/// A font's number and the length of its name, which stand before the name.
static constexpr std::size_t kBeforeName = 3;

struct VexQTFontTableEntry::Layout {
    using Atom = VexQTFontTableEntry;
    static constexpr Field columns[] = {
        property<&Atom::fontID_>("fontID"),
        property<&Atom::fontName_>("fontName"),
    };
    static constexpr Field fields[] = {
        field<&Atom::fontID_, U16>("fontID"),
        irregular<&Atom::decodeName, &Atom::encodeName>(),
        property<&Atom::fontName_>("fontName"),
    };
};

void VexQTFontTableEntry::decodeName(AtomReader& in) {
    setVersion(0);
    setParent(nullptr);
    const std::size_t length = in.u8();
    fontName_ = textFromASCII(upToZero(in.take(length)));
}

/// Of a name's length only the low byte is written, but of the name all.
void VexQTFontTableEntry::encodeName(ByteWriter& out) const {
    const Bytes name = asciiFromText(fontName_.value_or("")).value_or(Bytes());
    out.u8(static_cast<std::uint8_t>(name.size()));
    out.append(name);
}

constinit const AtomClass VexQTFontTableEntry::kClass = {
    .type = kAnyType,
    .className = "VexQTFontTableEntry",
    .atomName = "Font Table Entry",
    .nibName = "VexQTFontTableEntry",
    .header = HeaderRule::None,
    .writtenHeader = WrittenHeader::None,
    .fields = Layout::fields,
    .create = create<VexQTFontTableEntry>,
};

std::unique_ptr<VexQTFontTableEntry> VexQTFontTableEntry::initWithData(ByteView data,
                                                                       VexQTAtom* parent,
                                                                       std::uint64_t offsetInFile) {
    if (data.size() >= kBeforeName && data[2] > data.size() - kBeforeName) return nullptr;
    return AtomOf::initWithData(data, parent, offsetInFile);
}

// MARK: The table

struct VexQTftabAtom::Layout {
    using Atom = VexQTftabAtom;
    static Bytes entryBytes(VexQTFontTableEntry entry) { return entry.atomData(); }
    static constexpr Field fields[] = {
        irregular<&Atom::decodeCount, &Atom::encodeCount>(),
        irregular<&Atom::decodeEntries, &Atom::encodeEntries>(),
        entryList<&Atom::fontTableEntries_, VexQTFontTableEntry::Layout::columns, entryBytes>(
            "fontTableEntries"),
    };
};

/// The count only says whether there are entries: they are read until the bytes run out.
void VexQTftabAtom::decodeCount(AtomReader& in) { hasEntriesToRead_ = in.u16() != 0; }

void VexQTftabAtom::encodeCount(ByteWriter& out) const {
    out.u16(static_cast<std::uint16_t>(fontTableEntries_.size()));
}

/// What the length byte of the entry at the reader's position says.
static std::size_t nameLengthAhead(ByteReader in) {
    in.seek(in.position() + 2);
    return in.u8();
}

/// An entry whose name runs past the end is left out and ends the table.
void VexQTftabAtom::decodeEntries(AtomReader& in) {
    if (!hasEntriesToRead_ || in.remaining() < 2) return;
    ReadContext ofEntries;
    while (in.remaining() != 0) {
        const std::size_t start = in.position();
        const std::uint64_t offsetOfEntry = offsetInFile() + start;
        const std::size_t length = kBeforeName + nameLengthAhead(in);
        if (length > in.remaining()) return;
        const auto entry = make(VexQTFontTableEntry::kClass, in.takeShared(length), nullptr,
                                offsetOfEntry, ofEntries);
        fontTableEntries_.push_back(static_cast<const VexQTFontTableEntry&>(*entry));
        in.noteEntryFrom(start);
    }
}

void VexQTftabAtom::encodeEntries(ByteWriter& out) const {
    for (VexQTFontTableEntry& entry : fontTableEntries_) entry.appendTo(out);
}

constinit const AtomClass VexQTftabAtom::kClass = {
    .type = "ftab"_os,
    .className = "VexQTftabAtom",
    .atomName = "Font Table",
    .nibName = "VexQTftabAtom",
    .accepts = atLeast(10),
    .sizeRule = SizeRule::NotRecomputed,
    .fields = Layout::fields,
    .create = create<VexQTftabAtom>,
};

}  // namespace vexqt
