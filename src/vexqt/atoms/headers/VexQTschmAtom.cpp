#include "vexqt/atoms/headers/VexQTschmAtom.h"

#include "vexqt/core/codecs.h"

namespace vexqt {

struct VexQTschmAtom::Layout {
    using Atom = VexQTschmAtom;
    static constexpr Field fields[] = {
        field<&Atom::reserved1_, Hex<U32>>("reserved1"),
        field<&Atom::schemaType_, Code>("schemaType"),
        field<&Atom::reserved2_, Hex<U32>>("reserved2"),
    };
    static_assert(wireWidth(fields) == 12, "20 bytes less the header");
};

constinit const AtomClass VexQTschmAtom::kClass = {
    .type = "schm"_os,
    .className = "VexQTschmAtom",
    .atomName = "Schema",
    .nibName = "VexQTschmAtom",
    .accepts = exactly(20),
    .fields = Layout::fields,
    .create = create<VexQTschmAtom>,
};

}  // namespace vexqt
