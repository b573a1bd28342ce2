#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The extended language tag of a media: "en-US".
///
/// An atom that was read answers the type 'enlg', its second and third letters exchanged, so it is
/// not found under 'elng'. What is written is 'elng' all the same.
class VEXQT_EXPORT VexQTelngAtom final : public AtomOf<VexQTelngAtom> {
public:
    static const AtomClass kClass;

    /// ASCII; absent when it does not decode.
    const std::optional<std::string>& languageTagString() const { return languageTagString_; }
    void setLanguageTagString(std::optional<std::string> tag) {
        languageTagString_ = std::move(tag);
    }

private:
    struct Layout;
    void decodeTag(AtomReader& in);
    void encodeTag(ByteWriter& out) const;

    std::optional<std::string> languageTagString_;
};

}  // namespace vexqt
