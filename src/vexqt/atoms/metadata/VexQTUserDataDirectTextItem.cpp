#include "vexqt/atoms/metadata/VexQTUserDataDirectTextItem.h"

#include "vexqt/platform/text.h"

namespace vexqt {

struct VexQTUserDataDirectTextItem::Layout {
    using Atom = VexQTUserDataDirectTextItem;
    static constexpr Field fields[] = {
        irregular<&Atom::decodeText, &Atom::encodeText>(),
        property<&Atom::text_>("text"),
    };
};

/// Only the low 16 bits of the length count: a longer text is cut to the remainder.
void VexQTUserDataDirectTextItem::decodeText(AtomReader& in) {
    text_ = textFromUTF8(upToZero(in.take(static_cast<std::uint16_t>(in.remaining()))));
    in.rest();
}

void VexQTUserDataDirectTextItem::encodeText(ByteWriter& out) const {
    out.append(utf8FromText(text_.value_or("")).value_or(Bytes()));
}

constinit const AtomClass VexQTUserDataDirectTextItem::kClass = {
    .type = kAnyType,
    .className = "VexQTUserDataDirectTextItem",
    .atomName = "User Data Text Item",
    .nibName = "VexQTUserDataDirectTextItem",
    .accepts = atLeast(16),
    .typeRule = TypeRule::AsHeld,
    .fields = Layout::fields,
    .create = create<VexQTUserDataDirectTextItem>,
};

}  // namespace vexqt
