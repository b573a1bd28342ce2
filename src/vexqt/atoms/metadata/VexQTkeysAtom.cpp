#include "vexqt/atoms/metadata/VexQTkeysAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"
#include "vexqt/core/list.h"
#include "vexqt/platform/text.h"

namespace vexqt {

struct VexQTKeyEntry::Layout {
    using Entry = VexQTKeyEntry;
    static constexpr Field columns[] = {
        property<&Entry::index_>("index"),
        property<&Entry::nameSpace_>("nameSpace").as(Display::Code),
        accessors<&Entry::value, &Entry::setValue>("value"),
    };
};

/// The size and the namespace of an entry.
static constexpr std::uint32_t kEntryHeader = 8;

Bytes VexQTKeyEntry::atomData() const {
    const Bytes text = asciiFromText(value().value_or("")).value_or(Bytes());
    ByteWriter out;
    out.u32(static_cast<std::uint32_t>(text.size() + kEntryHeader));
    out.u32(nameSpace_);
    out.append(text);
    return out.release();
}

struct VexQTkeysAtom::Layout {
    using Atom = VexQTkeysAtom;

    /// The payload is kept beside the list, although it is never written.
    static void keepPayload(Record& record, AtomReader&) {
        auto& atom = static_cast<Atom&>(record);
        atom.keepPayload();
        atom.setAtomType(kClass.type);
    }
    static constexpr Field fields[] = {
        {.decode = keepPayload},
        versionKept,
        flagsKept,
        irregular<&Atom::decodeKeys, &Atom::encodeKeys>(),
        entryList<&Atom::keys_, VexQTKeyEntry::Layout::columns, &VexQTKeyEntry::atomData>("keys"),
    };
};

/// How many of the keys that should be there begin in the bytes.
static std::size_t keysThere(ByteReader in, std::uint32_t count) {
    std::size_t there = 0;
    while (there < count && in.remaining() >= kEntryHeader) {
        ++there;
        const std::uint32_t size = in.u32();
        if (size < kEntryHeader || size - sizeof(size) > in.remaining()) break;
        in.skip(size - sizeof(size));
    }
    return there;
}

void VexQTkeysAtom::decodeKeys(AtomReader& in) {
    const std::uint32_t count = in.u32();
    keys_.reserve(keysThere(in, count));
    for (std::int64_t index = 1; index <= count; ++index) {
        const std::size_t start = in.position();
        const std::uint32_t size = in.u32();
        const OSType nameSpace = in.u32();
        if (size < kEntryHeader)
            throw RangeError("a key of " + std::to_string(size) + " bytes, " +
                                 std::to_string(kEntryHeader) + " wanted at least",
                             start, size, in.length());
        keys_.emplace_back(index, nameSpace, textFromASCII(upToZero(in.take(size - kEntryHeader))));
        in.noteEntryFrom(start);
    }
}

void VexQTkeysAtom::encodeKeys(ByteWriter& out) const {
    out.u32(static_cast<std::uint32_t>(keys_.size()));
    for (const VexQTKeyEntry& key : keys_) out.append(key.atomData());
}

constinit const AtomClass VexQTkeysAtom::kClass = {
    .type = "keys"_os,
    .className = "VexQTkeysAtom",
    .atomName = "Metadata Keys",
    .nibName = "VexQTkeysAtom",
    .header = HeaderRule::GenericFieldsAtEight,
    .typeRule = TypeRule::AsHeld,
    .fields = Layout::fields,
    .create = create<VexQTkeysAtom>,
};

}  // namespace vexqt
