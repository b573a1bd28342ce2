#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The timecode media information: font and colours in which a timecode is drawn.
class VEXQT_EXPORT VexQTtcmiAtom final : public AtomOf<VexQTtcmiAtom> {
public:
    static const AtomClass kClass;

    /// The number of the font; 0 for the one that is named.
    std::uint16_t textFont() const { return textFont_; }
    void setTextFont(std::uint16_t font) { textFont_ = font; }
    /// The style bits: bold, italic, …
    std::uint16_t textFace() const { return textFace_; }
    void setTextFace(std::uint16_t face) { textFace_ = face; }
    /// In points.
    std::uint16_t textSize() const { return textSize_; }
    void setTextSize(std::uint16_t size) { textSize_ = size; }
    /// Neither read nor written.
    std::uint16_t reserved() const { return reserved_; }
    void setReserved(std::uint16_t value) { reserved_ = value; }
    /// Red, green and blue; an absent colour is written as black.
    const std::optional<Color>& textColor() const { return textColor_; }
    void setTextColor(std::optional<Color> color) { textColor_ = color; }
    /// The same of what lies behind the text.
    const std::optional<Color>& backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(std::optional<Color> color) { backgroundColor_ = color; }
    /// ASCII; absent when it does not decode.
    const std::optional<std::string>& fontName() const { return fontName_; }
    void setFontName(std::optional<std::string> name) { fontName_ = std::move(name); }

private:
    struct Layout;
    void decodeFontName(AtomReader& in);
    void encodeFontName(ByteWriter& out) const;

    std::uint16_t textFont_ = 0;
    std::uint16_t textFace_ = 0;
    std::uint16_t textSize_ = 0;
    std::uint16_t reserved_ = 0;
    std::optional<Color> textColor_;
    std::optional<Color> backgroundColor_;
    std::optional<std::string> fontName_;
};

}  // namespace vexqt
