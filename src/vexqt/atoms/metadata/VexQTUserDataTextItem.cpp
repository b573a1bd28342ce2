#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"

#include "vexqt/core/codecs.h"
#include "vexqt/platform/text.h"

namespace vexqt {

struct VexQTUserDataTextItem::Layout {
    using Atom = VexQTUserDataTextItem;
    static constexpr Field fields[] = {
        irregular<&Atom::skipTextLength, &Atom::encodeTextLength>(),
        field<&Atom::languageCode_, U16>("languageCode"),
        irregular<&Atom::decodeText, &Atom::encodeText>(),
        property<&Atom::text_>("text"),
    };
};

static constexpr std::size_t kTextLengthOffset = 8;

Bytes VexQTUserDataTextItem::textBytes() const {
    return asciiFromText(text_.value_or("")).value_or(Bytes());
}

/// The length stands before the language and is read with the text, behind it.
void VexQTUserDataTextItem::skipTextLength(AtomReader& in) { in.skip(2); }

void VexQTUserDataTextItem::encodeTextLength(ByteWriter& out) const {
    out.u16(static_cast<std::uint16_t>(textBytes().size()));
}

/// One text is read, whatever follows it.
void VexQTUserDataTextItem::decodeText(AtomReader& in) {
    ByteReader length = in;
    length.seek(kTextLengthOffset);
    text_ = textFromASCII(upToZero(in.take(length.u16())));
    in.rest();
}

void VexQTUserDataTextItem::encodeText(ByteWriter& out) const { out.append(textBytes()); }

constinit const AtomClass VexQTUserDataTextItem::kClass = {
    .type = kAnyType,
    .className = "VexQTUserDataTextItem",
    .atomName = "User Data Text Item",
    .nibName = "VexQTUserDataTextItem",
    .accepts = atLeast(16),
    .typeRule = TypeRule::AsHeld,
    .fields = Layout::fields,
    .create = create<VexQTUserDataTextItem>,
};

}  // namespace vexqt
