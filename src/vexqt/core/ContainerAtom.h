#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/export.h"

namespace vexqt {

/// An atom that holds nothing but other atoms. Its class's child table says which.
class VEXQT_EXPORT ContainerAtom : public VexQTAtom {
public:
    /// Reads every child from the reader's position on. A type that the table does not name becomes
    /// a generic atom; a size of 0 counts from the container's start, not from the child's.
    void decodeChildren(AtomReader& in);

protected:
    using VexQTAtom::VexQTAtom;

    /// Called with every child as soon as it has been added, before the next one is read.
    virtual void didDecodeChild(const VexQTAtom&) {}
};

/// The class that a child table gives to a child: the generic one when no line covers it, null when
/// it is to be dropped.
VEXQT_EXPORT const AtomClass* classOfChild(std::span<const ChildRule> table, OSType type,
                                           std::uint64_t size);

/// The children of an atom, one after another, as they are written whatever way they were read.
VEXQT_EXPORT void appendChildren(const Record& atom, ByteWriter& out);

/// The row of a container's children.
inline constexpr Field childAtoms = {
    .holdsChildren = true,
    .decode = [](Record& record,
                 AtomReader& in) { static_cast<ContainerAtom&>(record).decodeChildren(in); },
    .encode = appendChildren};

/// The row of children that a class reads in a way of its own.
template <auto Decode>
constexpr Field childAtomsReadBy() {
    using Owner = decltype(ownerOf(Decode));
    Field row = {.holdsChildren = true, .encode = appendChildren};
    row.decode = [](Record& record, AtomReader& in) { (static_cast<Owner&>(record).*Decode)(in); };
    return row;
}

/// The row of how many children there are. Whether the number that is read bounds them is for the
/// row of the children to say, which stands next.
inline constexpr Field childCount = {
    .width = 4,
    .decode = [](Record&, AtomReader& in) { in.skip(4); },
    .encode =
        [](const Record& atom, ByteWriter& out) {
            out.u32(
                static_cast<std::uint32_t>(static_cast<const VexQTAtom&>(atom).children().size()));
        }};
/// The number in the row childCount, for the row that stands next.
VEXQT_EXPORT std::uint32_t childCountBefore(const AtomReader& in);

/// All the rows of a plain container.
inline constexpr Field kOnlyChildAtoms[] = {childAtoms};

}  // namespace vexqt
