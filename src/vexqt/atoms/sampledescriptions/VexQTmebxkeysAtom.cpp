#include "vexqt/atoms/sampledescriptions/VexQTmebxkeysAtom.h"

#include "vexqt/core/list.h"
#include "vexqt/platform/text.h"

namespace vexqt {

static constexpr std::size_t kHeaderLength = 8;

// MARK: The entry

struct VexQTmebxkeyEntry::Layout {
    using Entry = VexQTmebxkeyEntry;
    static constexpr Field columns[] = {
        property<&Entry::index_>("index"),
        property<&Entry::nameSpace_>("nameSpace").as(Display::Code),
        property<&Entry::value_>("value"),
        property<&Entry::dataType_>("dataType").as(Display::Hexadecimal),
        accessors<&Entry::key, &Entry::setKey>("key"),
    };
};

Bytes VexQTmebxkeyEntry::keyData() const {
    const Bytes text = utf8FromText(value_.value_or("")).value_or(Bytes());
    const auto length = static_cast<std::uint32_t>(text.size());
    ByteWriter out;
    out.u32(length + 36);
    out.u32(index_);
    out.u32(length + 12);
    out.u32("keyd"_os);
    out.u32(nameSpace_);
    out.append(text);
    out.u32(16);
    out.u32("dtyp"_os);
    out.u64(dataType_);
    return out.release();
}

// MARK: The table

struct VexQTmebxkeysAtom::Layout {
    using Atom = VexQTmebxkeysAtom;
    static constexpr Field fields[] = {
        irregular<&Atom::decodeKeys, &Atom::encodeKeys>(),
        entryList<&Atom::keys_, VexQTmebxkeyEntry::Layout::columns, &VexQTmebxkeyEntry::keyData>(
            "keys"),
    };
};

/// The key that the records inside a key's record make; absent when none names it, or the last that
/// does is no text.
static std::optional<VexQTmebxkeyEntry> keyFrom(std::uint32_t index, ByteReader records) {
    VexQTmebxkeyEntry key;
    key.setIndex(index);
    while (records.remaining() >= kHeaderLength) {
        const std::uint32_t size = records.u32();
        const OSType code = records.u32();
        if (size < kHeaderLength || size - kHeaderLength > records.remaining()) break;
        ByteReader record(records.take(size - kHeaderLength));
        if (code == "keyd"_os && record.length() >= 4) {
            key.setNameSpace(record.u32());
            key.setValue(textFromUTF8(upToZero(record.rest())));
        } else if (code == "dtyp"_os && record.length() >= 8) {
            key.setDataType(record.u64());
        }
    }
    if (!key.value()) return std::nullopt;
    return key;
}

/// How many records are long enough to name a key. An upper bound of the keys that they make.
static std::size_t keysAtMost(ByteReader in) {
    constexpr std::size_t kLeast = kHeaderLength + kHeaderLength + sizeof(OSType);
    std::size_t count = 0;
    while (in.remaining() >= kHeaderLength) {
        const std::uint32_t size = ByteReader(in).u32();
        if (size < kHeaderLength) break;
        if (size >= kLeast) ++count;
        in.skip(std::min<std::size_t>(size, in.remaining()));
    }
    return count;
}

/// A record that is shorter than its header ends the table, one that runs past the end is cut.
void VexQTmebxkeysAtom::decodeKeys(AtomReader& in) {
    keys_.reserve(keysAtMost(in));
    while (in.remaining() >= kHeaderLength) {
        const std::size_t start = in.position();
        ByteReader ahead = in;
        const std::uint32_t size = ahead.u32();
        const std::uint32_t index = ahead.u32();
        if (size < kHeaderLength) return;
        ByteReader record(in.take(std::min<std::size_t>(size, in.remaining())), kHeaderLength);
        auto key = keyFrom(index, record);
        if (!key) continue;
        keys_.push_back(*std::move(key));
        in.noteEntryFrom(start);
    }
}

void VexQTmebxkeysAtom::encodeKeys(ByteWriter& out) const {
    std::vector<const VexQTmebxkeyEntry*> sorted;
    for (const VexQTmebxkeyEntry& key : keys_) sorted.push_back(&key);
    const auto name = [](const VexQTmebxkeyEntry* key) {
        return key->value() ? std::string_view(*key->value()) : std::string_view();
    };
    std::ranges::stable_sort(sorted, [&](const auto* left, const auto* right) {
        return compareNaturally(name(left), name(right)) < 0;
    });
    for (const VexQTmebxkeyEntry* key : sorted) out.append(key->keyData());
}

constinit const AtomClass VexQTmebxkeysAtom::kClass = {
    .type = "keys"_os,
    .className = "VexQTmebxkeysAtom",
    .atomName = "Metadata Keys",
    .nibName = "VexQTkeysAtom",
    .fields = Layout::fields,
    .create = create<VexQTmebxkeysAtom>,
};

}  // namespace vexqt
