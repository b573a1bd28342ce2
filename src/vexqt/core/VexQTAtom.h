#pragma once

#include <vector>

#include "vexqt/core/AtomClass.h"
#include "vexqt/core/Rare.h"
#include "vexqt/core/ReadContext.h"
#include "vexqt/core/ValueCodecs.h"
#include "vexqt/core/hex.h"
#include "vexqt/export.h"

namespace vexqt {

/// Where an atom's bytes lie in the file.
struct Extent {
    std::uint64_t start = 0;       ///< The first header byte.
    std::size_t headerLength = 8;  ///< 8, or 16 with an extended size.
    std::uint64_t length = 0;      ///< Header included; what was there of an atom cut short.
};

/// The base of every atom and, used directly, the generic atom: any type, a raw payload.
///
/// An atom owns its children. It does not own its parent, and the parent of a child is whatever the
/// child was made or told with: adding a child does not change it.
class VEXQT_EXPORT VexQTAtom : public Record, public ValueCodecs {
public:
    static const AtomClass kClass;

    /// An empty generic atom of type "????".
    VexQTAtom() : VexQTAtom(kClass) {}
    /// An empty generic atom made in memory.
    VexQTAtom(OSType type, std::uint32_t size, VexQTAtom* parent, std::uint64_t offsetInFile);
    /// A generic atom from the complete bytes of one atom, header included.
    ///
    /// A size field of 0 counts what follows the header; an extended size loses 16.
    /// \throws RangeError when the bytes are shorter than the header.
    static std::unique_ptr<VexQTAtom> initWithData(ByteView data, VexQTAtom* parent,
                                                   std::uint64_t offsetInFile);
    virtual ~VexQTAtom() = default;

    /// Decodes the complete bytes of one atom of a class. Null when the class refuses their number.
    static std::unique_ptr<VexQTAtom> make(const AtomClass& cls, const SharedBytes& bytes,
                                           VexQTAtom* parent, std::uint64_t offsetInFile,
                                           ReadContext& context);
    /// The same outside of a reading, strictly and from bytes that the atom copies.
    static std::unique_ptr<VexQTAtom> make(const AtomClass& cls, ByteView data, VexQTAtom* parent,
                                           std::uint64_t offsetInFile);
    /// A generic atom that holds bytes which a class declined, and writes them back unchanged.
    static std::unique_ptr<VexQTAtom> makeDeclined(const AtomClass& declinedBy, std::string reason,
                                                   OSType type, const SharedBytes& bytes,
                                                   VexQTAtom* parent, std::uint64_t offsetInFile);

    // The tree.

    /// What the atom was told to lie in; null for none.
    VexQTAtom* parent() const { return parent_; }
    void setParent(VexQTAtom* parent) { parent_ = parent; }
    /// In file order.
    const std::vector<std::unique_ptr<VexQTAtom>>& children() const { return children_; }
    std::vector<std::unique_ptr<VexQTAtom>>& children() { return children_; }
    /// Appends. Neither this atom's size nor the child's parent changes.
    /// \throws InsertionError for a null child.
    void addChild(std::unique_ptr<VexQTAtom> child);
    /// Inserts behind the first child of that type, or at the end where there is none.
    /// \throws InsertionError for a null child.
    void insertChild(std::unique_ptr<VexQTAtom> child, OSType afterChildWithType);
    /// Removes every child of that type. No size changes.
    void removeChildrenWithType(OSType type);
    /// Takes a child out and lowers the size of this atom and of all above it by the child's.
    /// Null when it is no child of this atom; the sizes are lowered all the same.
    std::unique_ptr<VexQTAtom> removeChild(const VexQTAtom* child);
    /// The first child of that type, null for none.
    VexQTAtom* childWithType(OSType type) const;
    /// Adds to the size of this atom and of all above it, wrapping.
    void increaseSizeBy(std::int64_t amount);

    // Bytes.

    /// The atom's header, of 16 bytes where the size needs it.
    Bytes headerData() const;
    /// The atom's complete bytes, children included, as its class writes them. Stores the new size,
    /// where the class does. Empty for atoms that are never written.
    Bytes atomData();
    /// Appends what atomData gives.
    virtual void appendTo(ByteWriter& out);
    /// Called last with the bytes that the atom was decoded from. It does nothing.
    virtual void verifyCalculatedDataWithOriginalData(ByteView) {}

    // What people are shown.

    /// The outline of the subtree, two spaces an ancestor, lines parted by "\r\n".
    std::string description() const;
    /// Appends that. An outline is put together once, not once for every level.
    virtual void appendDescriptionTo(std::string& outline) const;
    /// "Movie Header ('mvhd')".
    virtual std::string atomDescription() const;
    /// The type as four characters.
    virtual std::string atomTypeString() const { return stringWithOSType(type_); }
    /// What the atom is called in the format: "Movie Header".
    virtual std::string atomName() const { return std::string(class_.atomName); }
    /// The name of the view that shows this atom; absent where there is none.
    virtual std::optional<std::string> atomNibName() const;
    /// In bytes, header included, as last read or computed.
    virtual std::uint64_t atomSize() const { return size_; }
    /// atomSize() in decimal digits.
    std::string atomSizeString() const;
    /// The four-character code; what setAtomType sets is not always what is written.
    OSType atomType() const { return type_; }
    void setAtomType(OSType type) { type_ = type; }
    /// Two digits and a space for every byte of the raw remainder; absent where there is none.
    std::optional<std::string> hexRepresentation() const;

    // Fields that every atom has.

    /// The payload bytes that the class does not decode. Present and empty is not absent.
    std::optional<Bytes> unknownData() const;
    /// The same without a copy, as long as the atom lives.
    std::optional<ByteView> unknownBytes() const;
    /// Where the file readers say that the atom lies; off by the header for some root atoms.
    std::uint64_t offsetInFile() const { return offsetInFile_; }
    /// Where the atom's bytes truly lie in the file; all zero for one made in memory.
    Extent extent() const;
    void setExtent(const Extent& extent) { extras_.made().extent.made() = extent; }
    /// True for an atom whose bytes were not read and are never written, but stay where they are:
    /// media data, free space, and what is too long to be metadata.
    bool isLeftInFile() const { return origin_.size() == 0 && extent().length != 0; }

    /// The first byte behind the header of a full atom, which others have not; 1 for one made in
    /// memory.
    std::uint8_t version() const { return version_; }
    void setVersion(std::uint8_t version) { version_ = version; }
    /// The most significant of the three bytes of flags.
    std::uint8_t flags0() const { return flags_[0]; }
    /// The byte in the middle.
    std::uint8_t flags1() const { return flags_[1]; }
    /// The least significant one.
    std::uint8_t flags2() const { return flags_[2]; }
    void setFlags0(std::uint8_t flags) { flags_[0] = flags; }
    void setFlags1(std::uint8_t flags) { flags_[1] = flags; }
    void setFlags2(std::uint8_t flags) { flags_[2] = flags; }
    /// 0 for an index that is not 0, 1 or 2.
    std::uint8_t flagAtIndex(std::int32_t index) const;

    /// The transformation of a movie, a track or a text medium; zeros for what has none.
    const Matrix& matrix() const;
    void setMatrix(const Matrix& matrix) { ownMatrix() = matrix; }
    /// Row 1, column 1 of the matrix: the horizontal scale.
    double matrixAValue() const { return matrix()[0]; }
    /// Row 1, column 2: the vertical shear.
    double matrixBValue() const { return matrix()[1]; }
    /// Row 1, column 3: 0 by rights.
    double matrixUValue() const { return matrix()[2]; }
    /// Row 2, column 1: the horizontal shear.
    double matrixCValue() const { return matrix()[3]; }
    /// Row 2, column 2: the vertical scale.
    double matrixDValue() const { return matrix()[4]; }
    /// Row 2, column 3: 0 by rights.
    double matrixVValue() const { return matrix()[5]; }
    /// Row 3, column 1: pixels to the right.
    double matrixXValue() const { return matrix()[6]; }
    /// Row 3, column 2: pixels down.
    double matrixYValue() const { return matrix()[7]; }
    /// Row 3, column 3: 1 by rights.
    double matrixWValue() const { return matrix()[8]; }
    void setMatrixAValue(double value) { ownMatrix()[0] = value; }
    void setMatrixBValue(double value) { ownMatrix()[1] = value; }
    void setMatrixUValue(double value) { ownMatrix()[2] = value; }
    void setMatrixCValue(double value) { ownMatrix()[3] = value; }
    void setMatrixDValue(double value) { ownMatrix()[4] = value; }
    void setMatrixVValue(double value) { ownMatrix()[5] = value; }
    void setMatrixXValue(double value) { ownMatrix()[6] = value; }
    void setMatrixYValue(double value) { ownMatrix()[7] = value; }
    void setMatrixWValue(double value) { ownMatrix()[8] = value; }

    // Access by name.

    /// The named property; for any other key what valueForUndefinedKey gives.
    Value valueForKey(std::string_view key) const;
    /// Follows keys parted by points through child atoms to a property.
    Value valueForKeyPath(std::string_view keyPath) const;
    /// \throws UndefinedKeyError for a key that names no property which can be set.
    /// \throws ValueError for a value of the wrong kind.
    void setValueForKey(const Value& value, std::string_view key);
    /// Sets a number to 0, anything else to absent.
    void setNilValueForKey(std::string_view key);
    /// The first child whose type string is the key, else an absent value.
    Value valueForUndefinedKey(std::string_view key) const;

    /// What the class says of its atoms.
    const AtomClass& atomClass() const { return class_; }
    /// The row of a property, one of the class's own or one that every atom has; null for none.
    const Field* propertyNamed(std::string_view key) const;
    /// The properties that the class adds, in the order in which people expect them.
    std::vector<const Field*> properties() const;
    /// The properties that every atom has, such as version, flags0 and unknownData.
    static std::span<const Field> commonProperties();

    // What a tolerant reading and careful saving need.

    /// The class that declined the bytes which this generic atom holds; absent for every other.
    std::optional<std::string> declinedClass() const;
    /// Why it declined them, for people; empty where it did not.
    std::string declinedReason() const;
    /// The bytes that the atom was read from; empty for one made in memory.
    const SharedBytes& origin() const { return origin_; }

protected:
    /// An empty atom of a class, for that class's constructor.
    explicit VexQTAtom(const AtomClass& cls) : class_(cls), type_(cls.type) {}
    /// For entries that are atoms and stand by value in a list: everything but the children.
    VexQTAtom(const VexQTAtom& other);
    /// The same for one that is there already.
    VexQTAtom& operator=(const VexQTAtom& other);

    /// The size to write before an atom of that many bytes. Overridden where the two differ.
    virtual std::uint64_t declaredSize(std::uint64_t byteCount) const { return byteCount; }

    /// In bytes, header included; nothing else changes.
    void setAtomSize(std::uint64_t size) { size_ = size; }
    /// In bytes from the start of the file; nothing else changes.
    void setOffsetInFile(std::uint64_t offset) { offsetInFile_ = offset; }
    /// Keeps what follows an offset in the bytes read as the raw remainder.
    void keepUnknownDataFrom(std::size_t offset) { unknownFrom_ = offset; }
    /// The raw remainder becomes absent.
    void dropUnknownData() { unknownFrom_ = kAbsent; }
    /// Keeps all that follows the header as the raw remainder, as a generic atom does, wherever the
    /// fields begin.
    void keepPayload();
    // For the row of a raw remainder: everything that is left.
    /// Keeps the bytes from the reader's position on.
    void keepRest(AtomReader& in);
    /// Writes the raw remainder, if there is one.
    void appendRest(ByteWriter& out) const;

private:
    friend class ChildMaker;
    struct Layout;
    struct Extras {
        Rare<Matrix> matrix;
        Rare<Extent> extent;
        const AtomClass* declinedBy = nullptr;
        OSType declinedType = 0;  ///< The type that the atom was read with.
        std::string declinedReason;
    };

    static constexpr std::size_t kAbsent = std::numeric_limits<std::size_t>::max();

    Matrix& ownMatrix() { return extras_.made().matrix.made(); }
    void decode(const SharedBytes& bytes, ReadContext& context);
    void appendRows(ByteWriter& out);
    /// How many children of its parent lie before this one and have its type; 0 where it is none.
    std::size_t siblingsBefore() const;
    void appendWithHeaderAsHeld(ByteWriter& out);

    const AtomClass& class_;
    std::vector<std::unique_ptr<VexQTAtom>> children_;
    VexQTAtom* parent_ = nullptr;
    std::uint64_t size_ = 8;
    std::uint64_t offsetInFile_ = 0;
    SharedBytes origin_;
    std::size_t unknownFrom_ = kAbsent;  ///< Where the raw remainder begins in the origin.
    Rare<Extras> extras_;
    OSType type_;
    std::uint8_t version_ = 1;
    std::array<std::uint8_t, 3> flags_{};
};

/// What every atom class has besides its properties.
template <class Self, class Base = VexQTAtom>
class AtomOf : public Base {
public:
    AtomOf() : Base(Self::kClass) {}

    /// From the complete bytes of one atom, header included. Null when the class refuses their
    /// number.
    static std::unique_ptr<Self> initWithData(ByteView data, VexQTAtom* parent,
                                              std::uint64_t offsetInFile) {
        auto atom = VexQTAtom::make(Self::kClass, data, parent, offsetInFile);
        return std::unique_ptr<Self>(static_cast<Self*>(atom.release()));
    }
};

}  // namespace vexqt
