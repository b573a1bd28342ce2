#include "vexqt/atoms/headers/VexQTfrmaAtom.h"

#include "vexqt/core/codecs.h"

namespace vexqt {

struct VexQTfrmaAtom::Layout {
    using Atom = VexQTfrmaAtom;
    static constexpr Field fields[] = {
        field<&Atom::format_, Code>("format"),
    };
    static_assert(wireWidth(fields) == 4, "12 bytes less the header");
};

constinit const AtomClass VexQTfrmaAtom::kClass = {
    .type = "frma"_os,
    .className = "VexQTfrmaAtom",
    .atomName = "Format",
    .nibName = "VexQTfrmaAtom",
    .accepts = exactly(12),
    .fields = Layout::fields,
    .create = create<VexQTfrmaAtom>,
};

}  // namespace vexqt
