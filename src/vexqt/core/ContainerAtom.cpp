#include "vexqt/core/ContainerAtom.h"

#include "vexqt/core/ChildMaker.h"

namespace vexqt {

const AtomClass* classOfChild(std::span<const ChildRule> table, OSType type, std::uint64_t size) {
    for (const ChildRule& rule : table) {
        const OSType covered = rule.type != 0 ? rule.type : rule.cls->type;
        const bool covers = covered == type || covered == kAnyType;
        if (covers && size >= rule.minimumSize) return rule.cls;
    }
    return &VexQTAtom::kClass;
}

void ContainerAtom::decodeChildren(AtomReader& in) {
    const AtomClass& cls = atomClass();
    const std::size_t end = in.length() + (cls.bareLastChild == BareLastChild::IsRead ? 1 : 0);
    ChildMaker maker(*this, in);
    while (in.position() + 8 < end) {
        const auto header = maker.peek();
        std::uint64_t size = header.size;
        if (size == 0 && (!header.isExtended || cls.zeroExtendedSizeReachesEnd))
            size = in.length() - 8;
        if (maker.add(classOfChild(cls.children, header.type, size), header.type, size))
            didDecodeChild(*children().back());
    }
}

std::uint32_t childCountBefore(const AtomReader& in) {
    ByteReader before = in;
    before.seek(in.position() - childCount.width);
    return before.u32();
}

void appendChildren(const Record& atom, ByteWriter& out) {
    for (const auto& child : static_cast<const VexQTAtom&>(atom).children()) child->appendTo(out);
}

}  // namespace vexqt
