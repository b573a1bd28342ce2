#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"

#include "vexqt/core/codecs.h"
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

/// The list for those who know it by its name. Looking at it makes no entry that stays.
struct VexQTftabAtom::Fonts {
    using Atom = VexQTftabAtom;
    static constexpr std::span<const Field> columns = VexQTFontTableEntry::Layout::columns;

    static auto& made(Record& owner) { return static_cast<Atom&>(owner).fontTableEntries(); }
    static std::size_t size(const Record& owner) {
        return static_cast<const Atom&>(owner).entryCount();
    }
    static Value cell(const Record& owner, std::size_t row, std::size_t column) {
        const auto& atom = static_cast<const Atom&>(owner);
        if (atom.isMade()) return columns[column].get(atom.fontTableEntries_[row]);
        return columns[column].get(*atom.entryInRow(row));
    }
    static void setCell(Record& owner, std::size_t row, std::size_t column, const Value& value) {
        columns[column].set(made(owner)[row], value);
    }
    static void insertRows(Record& owner, std::size_t row, std::size_t count) {
        auto& entries = made(owner);
        entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(row), count,
                       VexQTFontTableEntry());
    }
    static void removeRows(Record& owner, std::size_t row, std::size_t count) {
        auto& entries = made(owner);
        const auto first = entries.begin() + static_cast<std::ptrdiff_t>(row);
        entries.erase(first, first + static_cast<std::ptrdiff_t>(count));
    }
    static Bytes entryBytes(const Record& owner, std::size_t row) {
        const auto& atom = static_cast<const Atom&>(owner);
        if (!atom.isMade()) return atom.entryInRow(row)->atomData();
        VexQTFontTableEntry entry = atom.fontTableEntries_[row];
        return entry.atomData();
    }
    static constexpr ListAccess access = {.columns = columns,
                                          .size = size,
                                          .cell = cell,
                                          .setCell = setCell,
                                          .insertRows = insertRows,
                                          .removeRows = removeRows,
                                          .entryBytes = entryBytes};
};

struct VexQTftabAtom::Layout {
    using Atom = VexQTftabAtom;
    static constexpr Field fields[] = {
        irregular<&Atom::decodeCount, &Atom::encodeCount>(),
        irregular<&Atom::decodeEntries, &Atom::encodeEntries>(),
        {.name = "fontTableEntries", .kind = ValueKind::List, .list = &Fonts::access},
    };
};

/// The count only says whether there are entries: they are read until the bytes run out.
void VexQTftabAtom::decodeCount(AtomReader& in) { hasEntriesToRead_ = in.u16() != 0; }

void VexQTftabAtom::encodeCount(ByteWriter& out) const {
    out.u16(static_cast<std::uint16_t>(entryCount()));
}

/// What the length byte of the entry at the reader's position says.
static std::size_t nameLengthAhead(ByteReader in) {
    in.seek(in.position() + 2);
    return in.u8();
}

/// An entry whose name runs past the end is left out and ends the table. One byte behind the last
/// entry ends it too; two are taken for the next entry, whose length is missing.
void VexQTftabAtom::decodeEntries(AtomReader& in) {
    if (!hasEntriesToRead_ || in.remaining() < 2) return;
    AtomReader entries = in;
    unmade_.start = in.position();
    while (in.remaining() >= 2) {
        const std::size_t start = in.position();
        const std::size_t length = kBeforeName + nameLengthAhead(in);
        if (length > in.remaining()) break;
        in.skip(length);
        in.noteEntryFrom(start);
        ++unmade_.count;
    }
    unmade_.bytes = entries.takeShared(in.position() - unmade_.start);
}

/// The entry at an offset in the bytes of all entries.
std::unique_ptr<VexQTFontTableEntry> VexQTftabAtom::madeEntry(std::size_t offset) const {
    const ByteReader in(unmade_.bytes.view(), offset);
    ReadContext context;
    auto entry = make(VexQTFontTableEntry::kClass,
                      unmade_.bytes.part(offset, kBeforeName + nameLengthAhead(in)), nullptr,
                      offsetInFile() + unmade_.start + offset, context);
    return std::unique_ptr<VexQTFontTableEntry>(static_cast<VexQTFontTableEntry*>(entry.release()));
}

/// People look at rows from the first to the last, so the way to the next one is short.
std::unique_ptr<VexQTFontTableEntry> VexQTftabAtom::entryInRow(std::size_t row) const {
    if (row < unmade_.row) unmade_.row = unmade_.offset = 0;
    for (; unmade_.row < row; ++unmade_.row)
        unmade_.offset +=
            kBeforeName + nameLengthAhead(ByteReader(unmade_.bytes.view(), unmade_.offset));
    return madeEntry(unmade_.offset);
}

std::vector<VexQTFontTableEntry>& VexQTftabAtom::madeEntries() const {
    if (isMade()) return fontTableEntries_;
    std::vector<VexQTFontTableEntry> entries;
    entries.reserve(unmade_.count);
    ByteWriter ignored;
    for (std::size_t offset = 0; entries.size() < unmade_.count;) {
        const auto entry = madeEntry(offset);
        offset += entry->origin().size();
        if (unmade_.wereWritten) entry->appendTo(ignored);
        entries.push_back(*entry);
    }
    fontTableEntries_ = std::move(entries);
    unmade_ = {};
    return fontTableEntries_;
}

void VexQTftabAtom::encodeEntries(ByteWriter& out) const {
    if (isMade()) {
        for (VexQTFontTableEntry& entry : fontTableEntries_) entry.appendTo(out);
        return;
    }
    for (std::size_t offset = 0; offset < unmade_.bytes.size();) {
        const auto entry = madeEntry(offset);
        entry->appendTo(out);
        offset += entry->origin().size();
    }
    unmade_.wereWritten = true;
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
