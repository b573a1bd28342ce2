#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// An annotation that is nothing but text up to its end.
class VEXQT_EXPORT VexQTUserDataDirectTextItem final : public AtomOf<VexQTUserDataDirectTextItem> {
public:
    static const AtomClass kClass;

    /// Absent when there is none or it does not decode.
    const std::optional<std::string>& text() const { return text_; }
    void setText(std::optional<std::string> text) { text_ = std::move(text); }

private:
    struct Layout;
    void decodeText(AtomReader& in);
    void encodeText(ByteWriter& out) const;

    std::optional<std::string> text_;
};

}  // namespace vexqt
