// The font table of a timed text, and its entries.
#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// A font of a font table: the number by which styles name it, and its name.
///
/// It is an atom without a header and without a place in the tree: its table holds it by value, and
/// it has no parent.
class VEXQT_EXPORT VexQTFontTableEntry final : public AtomOf<VexQTFontTableEntry> {
public:
    static const AtomClass kClass;

    /// Null when the name does not fit the bytes. \throws RangeError for fewer than three.
    static std::unique_ptr<VexQTFontTableEntry> initWithData(ByteView data, VexQTAtom* parent,
                                                             std::uint64_t offsetInFile);

    /// From 1 on.
    std::uint16_t fontID() const { return fontID_; }
    void setFontID(std::uint16_t fontID) { fontID_ = fontID; }
    /// ASCII; absent when it does not decode.
    const std::optional<std::string>& fontName() const { return fontName_; }
    void setFontName(std::optional<std::string> name) { fontName_ = std::move(name); }

private:
    friend class VexQTftabAtom;
    struct Layout;
    void decodeName(AtomReader& in);
    void encodeName(ByteWriter& out) const;

    std::uint16_t fontID_ = 0;
    std::optional<std::string> fontName_;
};

/// The font table.
///
/// Its size is written as it is held: whoever makes a name longer adds to it with increaseSizeBy.
class VEXQT_EXPORT VexQTftabAtom final : public AtomOf<VexQTftabAtom> {
public:
    static const AtomClass kClass;

    /// In file order.
    const std::vector<VexQTFontTableEntry>& fontTableEntries() const { return fontTableEntries_; }
    std::vector<VexQTFontTableEntry>& fontTableEntries() { return fontTableEntries_; }
    void setFontTableEntries(std::vector<VexQTFontTableEntry> entries) {
        fontTableEntries_ = std::move(entries);
    }

private:
    struct Layout;
    void decodeCount(AtomReader& in);
    void encodeCount(ByteWriter& out) const;
    void decodeEntries(AtomReader& in);
    void encodeEntries(ByteWriter& out) const;

    bool hasEntriesToRead_ = false;
    mutable std::vector<VexQTFontTableEntry> fontTableEntries_;  ///< Writing one stores its size.
};

}  // namespace vexqt
