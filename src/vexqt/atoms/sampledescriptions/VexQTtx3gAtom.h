#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The description of timed text: where and how it is drawn, and the fonts that it uses.
///
/// Its size is written as it is held: whoever makes a font's name longer adds to it with
/// increaseSizeBy.
class VEXQT_EXPORT VexQTtx3gAtom final : public AtomOf<VexQTtx3gAtom> {
public:
    static const AtomClass kClass;

    /// Counted from 1.
    std::uint16_t dataReferenceIndex() const { return dataReferenceIndex_; }
    void setDataReferenceIndex(std::uint16_t index) { dataReferenceIndex_ = index; }
    /// How the text scrolls and is drawn.
    std::uint32_t displayFlags() const { return displayFlags_; }
    void setDisplayFlags(std::uint32_t flags) { displayFlags_ = flags; }
    /// 0 is left, 1 the middle, 0xFF right.
    std::uint8_t horizontalJustification() const { return horizontalJustification_; }
    void setHorizontalJustification(std::uint8_t value) { horizontalJustification_ = value; }
    /// 0 is top, 1 the middle, 0xFF bottom.
    std::uint8_t verticalJustification() const { return verticalJustification_; }
    void setVerticalJustification(std::uint8_t value) { verticalJustification_ = value; }

    /// A grey-level colour, which the background of a new description is, cannot be written.
    const Color& backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(Color color) { backgroundColor_ = color; }
    /// Red, green, blue and alpha, each in a byte of the file.
    const Color& fontColor() const { return fontColor_; }
    void setFontColor(Color color) { fontColor_ = color; }

    /// In pixels; only the low 16 bits are written.
    std::int32_t textBoxTop() const { return textBoxTop_; }
    void setTextBoxTop(std::int32_t top) { textBoxTop_ = top; }
    /// In pixels.
    std::int32_t textBoxBottom() const { return textBoxBottom_; }
    void setTextBoxBottom(std::int32_t bottom) { textBoxBottom_ = bottom; }
    /// In pixels.
    std::int32_t textBoxLeft() const { return textBoxLeft_; }
    void setTextBoxLeft(std::int32_t left) { textBoxLeft_ = left; }
    /// In pixels.
    std::int32_t textBoxRight() const { return textBoxRight_; }
    void setTextBoxRight(std::int32_t right) { textBoxRight_ = right; }

    /// The first character that the default style covers.
    std::uint16_t startChar() const { return startChar_; }
    void setStartChar(std::uint16_t index) { startChar_ = index; }
    /// The character behind the last one that it covers.
    std::uint16_t endChar() const { return endChar_; }
    void setEndChar(std::uint16_t index) { endChar_ = index; }
    /// Of a font in the font table.
    std::uint16_t fontID() const { return fontID_; }
    void setFontID(std::uint16_t fontID) { fontID_ = fontID; }
    /// The style bits: bold, italic, underlined.
    std::uint8_t fontFace() const { return fontFace_; }
    void setFontFace(std::uint8_t face) { fontFace_ = face; }
    /// In pixels.
    std::uint8_t fontSize() const { return fontSize_; }
    void setFontSize(std::uint8_t size) { fontSize_ = size; }

private:
    struct Layout;
    void decodeFontTable(AtomReader& in);
    void encodeFontTable(ByteWriter& out) const;

    std::uint16_t dataReferenceIndex_ = 0;
    std::uint32_t displayFlags_ = 0;
    std::uint8_t horizontalJustification_ = 0;
    std::uint8_t verticalJustification_ = 0;
    Color backgroundColor_ = Color::grey(0);
    Color fontColor_ = Color::rgb(1, 1, 1);
    std::int32_t textBoxTop_ = 0;
    std::int32_t textBoxBottom_ = 0;
    std::int32_t textBoxLeft_ = 0;
    std::int32_t textBoxRight_ = 0;
    std::uint16_t startChar_ = 0;
    std::uint16_t endChar_ = 0;
    std::uint16_t fontID_ = 0;
    std::uint8_t fontFace_ = 0;
    std::uint8_t fontSize_ = 0;
};

}  // namespace vexqt
