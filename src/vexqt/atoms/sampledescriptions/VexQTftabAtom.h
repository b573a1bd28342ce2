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
///
/// An entry of three bytes is an atom of a hundred and more, so the entries are made when somebody
/// first asks for the list. Until then they are read one at a time where they lie.
class VEXQT_EXPORT VexQTftabAtom final : public AtomOf<VexQTftabAtom> {
public:
    static const AtomClass kClass;

    /// In file order.
    const std::vector<VexQTFontTableEntry>& fontTableEntries() const { return madeEntries(); }
    std::vector<VexQTFontTableEntry>& fontTableEntries() { return madeEntries(); }
    void setFontTableEntries(std::vector<VexQTFontTableEntry> entries) {
        unmade_ = {};
        fontTableEntries_ = std::move(entries);
    }

private:
    struct Fonts;
    struct Layout;
    void decodeCount(AtomReader& in);
    void encodeCount(ByteWriter& out) const;
    void decodeEntries(AtomReader& in);
    void encodeEntries(ByteWriter& out) const;

    /// The entries as they were read.
    struct Unmade {
        SharedBytes bytes;
        std::size_t start = 0;  ///< Where they begin in the atom.
        std::size_t count = 0;
        bool wereWritten = false;
        /// Where the last one lies that was looked at.
        mutable std::size_t row = 0, offset = 0;
    };
    std::vector<VexQTFontTableEntry>& madeEntries() const;
    std::unique_ptr<VexQTFontTableEntry> madeEntry(std::size_t offset) const;
    std::unique_ptr<VexQTFontTableEntry> entryInRow(std::size_t row) const;
    std::size_t entryCount() const { return isMade() ? fontTableEntries_.size() : unmade_.count; }
    bool isMade() const { return unmade_.count == 0; }

    bool hasEntriesToRead_ = false;
    mutable Unmade unmade_;
    mutable std::vector<VexQTFontTableEntry> fontTableEntries_;  ///< Writing one stores its size.
};

}  // namespace vexqt
