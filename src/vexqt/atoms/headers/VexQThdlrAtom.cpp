#include "vexqt/atoms/headers/VexQThdlrAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"
#include "vexqt/platform/text.h"

namespace vexqt {

struct VexQThdlrAtom::Layout {
    using Atom = VexQThdlrAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsKept,
        field<&Atom::componentType_, Code>("componentType"),
        field<&Atom::componentSubType_, Code>("componentSubType"),
        field<&Atom::componentManufacturer_, Code>("componentManufacturer"),
        field<&Atom::componentFlags_, Hex<U32>>("componentFlags"),
        field<&Atom::componentFlagsMask_, Hex<U32>>("componentFlagsMask"),
        irregular<&Atom::decodeName, &Atom::encodeName>(),
        property<&Atom::componentName_>("componentName"),
        property<&Atom::componentNameIsCString_>("componentNameIsCString"),
        property<&Atom::appendEmptyStringLength_>("appendEmptyStringLength"),
    };
    static_assert(wireWidth(fields) == 24, "32 bytes less the header; the name follows");
};

void VexQThdlrAtom::decodeName(AtomReader& in) {
    if (in.remaining() == 0) return;  // No name at all.

    ByteReader counted = in;
    const std::size_t count = counted.u8();
    appendEmptyStringLength_ = count == 0;
    if (!appendEmptyStringLength_) {
        componentNameIsCString_ = count != counted.remaining();
        componentName_ = componentNameIsCString_ ? textFromASCII(upToZero(ByteReader(in).rest()))
                                                 : textFromASCII(counted.rest());
    }
    in.rest();
}

void VexQThdlrAtom::encodeName(ByteWriter& out) const {
    if (!componentName_) {
        if (appendEmptyStringLength_) out.zeros(2);  // Two, also where one was read.
        return;
    }
    const Bytes name = asciiFromText(*componentName_).value_or(Bytes());
    if (!componentNameIsCString_) out.u8(static_cast<std::uint8_t>(name.size()));
    out.append(name);
    if (componentNameIsCString_) out.u8(0);
}

/// Keeps only the low byte of the name's length, and takes an empty name for an absent one.
std::uint64_t VexQThdlrAtom::declaredSize(std::uint64_t) const {
    if (!componentName_ || componentName_->empty()) return appendEmptyStringLength_ ? 34 : 32;
    return 33 + asciiFromText(*componentName_).value_or(Bytes()).size() % 256;
}

constinit const AtomClass VexQThdlrAtom::kClass = {
    .type = "hdlr"_os,
    .className = "VexQThdlrAtom",
    .atomName = "Handler Reference",
    .nibName = "VexQThdlrAtom",
    .accepts = atLeast(32),
    .fields = Layout::fields,
    .create = create<VexQThdlrAtom>,
};

}  // namespace vexqt
