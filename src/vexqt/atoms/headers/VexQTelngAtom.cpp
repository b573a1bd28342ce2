#include "vexqt/atoms/headers/VexQTelngAtom.h"

#include "vexqt/core/full_atom.h"
#include "vexqt/platform/text.h"

namespace vexqt {

struct VexQTelngAtom::Layout {
    using Atom = VexQTelngAtom;

    /// Hosts know an atom that was read by this type, its second and third letters exchanged.
    static void exchangeLettersOfType(Record& record, AtomReader&) {
        static_cast<Atom&>(record).setAtomType("enlg"_os);
    }
    static constexpr Field fields[] = {
        {.decode = exchangeLettersOfType},
        versionKept,
        flagsKept,
        irregular<&Atom::decodeTag, &Atom::encodeTag>(),
        property<&Atom::languageTagString_>("languageTagString"),
    };
};

void VexQTelngAtom::decodeTag(AtomReader& in) {
    languageTagString_ = textFromASCII(upToZero(in.rest()));
}

void VexQTelngAtom::encodeTag(ByteWriter& out) const {
    if (languageTagString_) out.append(asciiFromText(*languageTagString_).value_or(Bytes()));
    out.u8(0);
}

constinit const AtomClass VexQTelngAtom::kClass = {
    .type = "elng"_os,
    .className = "VexQTelngAtom",
    .atomName = "Extended Language Tag",
    .nibName = "VexQTelngAtom",
    .accepts = atLeast(13),
    .fields = Layout::fields,
    .create = create<VexQTelngAtom>,
};

}  // namespace vexqt
