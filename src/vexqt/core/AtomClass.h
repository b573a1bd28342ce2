// What is true of a class of atoms rather than of one atom.
#pragma once

#include <memory>

#include "vexqt/core/field.h"
#include "vexqt/core/os_type.h"

namespace vexqt {

/// The byte counts that a class accepts. It refuses every other.
struct LengthRule {
    std::size_t least = 0;                                       ///< The header is counted.
    std::size_t most = std::numeric_limits<std::size_t>::max();  ///< No limit by itself.

    /// Whether a class with this rule takes so many bytes.
    constexpr bool accepts(std::size_t length) const { return length >= least && length <= most; }
};
/// Takes one length alone.
constexpr LengthRule exactly(std::size_t length) { return {length, length}; }
/// Takes that length and every greater one.
constexpr LengthRule atLeast(std::size_t length) { return {.least = length}; }

/// How a class takes its size and type from the first bytes it is given.
enum class HeaderRule {
    ByteCount,           ///< The size is the number of bytes given; fields begin behind 8 of them.
    None,                ///< As ByteCount, but the fields begin at the first byte.
    Read,                ///< Both are read, in either size form; a size of 0 leaves out the header.
    ReadZeroMeansShort,  ///< As Read, but a size of 0 makes the header 8 bytes whatever was read.
    ReadZeroLeavesEight,  ///< As Read, but a size of 0 leaves out 8 bytes whatever was read.
    ReadExtendedPlusOne,  ///< As ReadZeroLeavesEight, but any extended size is raised by 1.
    ReadSizeField,  ///< The size field as it stands, 0 and 1 too; 1 makes the header 16 bytes.
    Generic,        ///< As ReadZeroMeansShort, but an extended size loses 16.
    GenericFieldsAtEight  ///< As Generic, but the fields begin behind 8 bytes whatever was read.
};

/// What a class writes in front of its fields.
enum class WrittenHeader {
    Short,   ///< Size and type in 8 bytes.
    AsHeld,  ///< In 8 or 16 bytes, as the size calls for. Its length is judged on the old size.
    InRows,  ///< Nothing: the rows begin with the size, which is put right at the end.
    None     ///< Nothing at all.
};

/// What writing does with the size that the atom holds.
enum class SizeRule {
    Recomputed,    ///< It becomes what was written.
    NotStored,     ///< What was written stands in the bytes only.
    NotRecomputed  ///< It is written as it is held, whatever the atom has become.
};

/// The type that is written.
enum class TypeRule {
    OfClass,   ///< The class's own, whatever the atom holds.
    Restored,  ///< The class's own, and the atom holds it again afterwards.
    AsHeld     ///< The one that the atom holds.
};

struct AtomClass;

/// One line of a container's child table. A type that no line names becomes a generic atom.
struct ChildRule {
    const AtomClass* cls = nullptr;  ///< Null: the child is dropped and never written back.
    OSType type = 0;                 ///< 0: the class's own. kAnyType covers every type.
    std::uint64_t minimumSize = 0;   ///< A smaller child stays generic.
};

/// Whether a child that has nothing but a header is read when it is the last.
enum class BareLastChild { IsDropped, IsRead };

/// What a class says of itself; there is one of these for each, in its `kClass`.
struct AtomClass {
    OSType type;                                         ///< The four-character code.
    std::string_view className;                          ///< As in C++ and in JSON.
    std::string_view atomName;                           ///< What people call it: "Movie Header".
    std::string_view nibName = {};                       ///< Empty where there is no view.
    LengthRule accepts = {};                             ///< How many bytes it takes.
    HeaderRule header = HeaderRule::ByteCount;           ///< How it takes its header.
    WrittenHeader writtenHeader = WrittenHeader::Short;  ///< What it writes in front of its fields.
    SizeRule sizeRule = SizeRule::Recomputed;            ///< What becomes of its size.
    TypeRule typeRule = TypeRule::OfClass;               ///< What becomes of its type.
    std::span<const Field> fields = {};                  ///< Its rows, in file order.
    std::span<const ChildRule> children = {};            ///< Which classes its children have.
    BareLastChild bareLastChild = BareLastChild::IsDropped;  ///< How its children end.
    /// Whether a size of 0 in a child's extended size field reaches to the end too.
    bool zeroExtendedSizeReachesEnd = true;
    /// The properties in the order in which people expect them, where that is not file order.
    std::span<const std::string_view> listing = {};
    /// Makes an empty atom.
    std::unique_ptr<VexQTAtom> (*create)();
};

/// An empty atom of a class, for the class's record.
template <class T>
std::unique_ptr<VexQTAtom> create() {
    return std::make_unique<T>();
}

}  // namespace vexqt
