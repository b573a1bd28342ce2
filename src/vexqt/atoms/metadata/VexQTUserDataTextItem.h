#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// A classic annotation: one counted text in one language.
class VEXQT_EXPORT VexQTUserDataTextItem final : public AtomOf<VexQTUserDataTextItem> {
public:
    static const AtomClass kClass;

    /// A packed language code or a classic numeric one.
    std::uint16_t languageCode() const { return languageCode_; }
    void setLanguageCode(std::uint16_t code) { languageCode_ = code; }
    /// ASCII; absent when there is none or it does not decode. What is not ASCII is written as an
    /// empty text.
    const std::optional<std::string>& text() const { return text_; }
    void setText(std::optional<std::string> text) { text_ = std::move(text); }

private:
    struct Layout;
    Bytes textBytes() const;
    void skipTextLength(AtomReader& in);
    void encodeTextLength(ByteWriter& out) const;
    void decodeText(AtomReader& in);
    void encodeText(ByteWriter& out) const;

    std::uint16_t languageCode_ = 0;
    std::optional<std::string> text_;
};

}  // namespace vexqt
