#include "vexqt/atoms/sampletables/VexQTdrefAtom.h"

#include "vexqt/core/ChildMaker.h"
#include "vexqt/core/ContainerAtom.h"
#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

// MARK: The entry

static constexpr std::uint8_t kIsInTheSameFile = 1;

struct VexQTDataReference::Layout {
    using Atom = VexQTDataReference;
    static constexpr Field fields[] = {
        irregular<&Atom::decodePayload, &Atom::encodePayload>(),
    };
};

/// The version byte is passed over.
void VexQTDataReference::decodePayload(AtomReader& in) {
    in.seek(9);
    setFlags0(in.u8());
    setFlags1(in.u8());
    setFlags2(in.u8());
    if (flags2() == kIsInTheSameFile) in.rest();
    keepUnknownDataFrom(in.position());
    in.rest();
}

void VexQTDataReference::encodePayload(ByteWriter& out) const {
    const ByteView payload = unknownBytes().value_or(ByteView());
    if (payload.empty()) {
        out.u32(kIsInTheSameFile);
    } else {
        out.append(payload);
    }
}

std::uint64_t VexQTDataReference::atomSize() const {
    const ByteView payload = unknownBytes().value_or(ByteView());
    return payload.empty() ? 12 : payload.size() + 8;
}

constinit const AtomClass VexQTDataReference::kClass = {
    .type = kAnyType,
    .className = "VexQTDataReference",
    .atomName = "Data Reference Entry",
    .nibName = "VexQTDataReference",
    .header = HeaderRule::GenericFieldsAtEight,
    .writtenHeader = WrittenHeader::AsHeld,
    .sizeRule = SizeRule::NotRecomputed,
    .typeRule = TypeRule::AsHeld,
    .fields = Layout::fields,
    .create = create<VexQTDataReference>,
};

// MARK: The table of entries

struct VexQTdrefAtom::Layout {
    using Atom = VexQTdrefAtom;
    static void keepPayload(Record& record, AtomReader&) {
        auto& atom = static_cast<Atom&>(record);
        atom.keepPayload();
        atom.setAtomType(kClass.type);
    }
    static void decodeEntries(Record& record, AtomReader& in) {
        static_cast<Atom&>(record).decodeEntries(in);
    }
    static void encodeCount(const Record& record, ByteWriter& out) {
        out.u32(static_cast<std::uint32_t>(static_cast<const Atom&>(record).children().size()));
    }
    static bool hasAsManyEntriesAsRead(const Record& record) {
        const auto& atom = static_cast<const Atom&>(record);
        return atom.children().size() == atom.entriesRead_;
    }
    static constexpr Field fields[] = {
        {.decode = keepPayload},
        versionKept,
        flagsNotRead,
        {.width = 4,
         .decode = rows::skip<4>,
         .encode = encodeCount,
         .untouched = hasAsManyEntriesAsRead},
        {.holdsChildren = true, .decode = decodeEntries, .encode = appendChildren},
    };
};

/// The count is no more than an upper bound: entries that are not there are none.
void VexQTdrefAtom::decodeEntries(AtomReader& in) {
    ByteReader before = in;
    before.seek(in.position() - sizeof(std::uint32_t));
    std::uint32_t count = before.u32();
    ChildMaker maker(*this, in);
    for (; count > 0 && in.remaining() >= sizeof(std::uint32_t); --count) {
        ByteReader ahead = in;
        const std::uint32_t size = ahead.u32();
        const OSType type = ahead.remaining() >= sizeof(OSType) ? ahead.u32() : kAnyType;
        maker.add(&VexQTDataReference::kClass, type, size);
    }
    entriesRead_ = children().size();
}

constinit const AtomClass VexQTdrefAtom::kClass = {
    .type = "dref"_os,
    .className = "VexQTdrefAtom",
    .atomName = "Data Reference",
    .nibName = "VexQTdrefAtom",
    .accepts = atLeast(16),
    .header = HeaderRule::GenericFieldsAtEight,
    .fields = Layout::fields,
    .create = create<VexQTdrefAtom>,
};

}  // namespace vexqt
