#include "vexqt/atoms/headers/VexQTvmhdAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTvmhdAtom::Layout {
    using Atom = VexQTvmhdAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsKept,
        field<&Atom::graphicsMode_, Hex<U16>>("graphicsMode"),
        field<&Atom::opColor0_, U16>("opColor0"),
        field<&Atom::opColor1_, U16>("opColor1"),
        field<&Atom::opColor2_, U16>("opColor2"),
    };
    static_assert(wireWidth(fields) == 12, "20 bytes less the header");
};

constinit const AtomClass VexQTvmhdAtom::kClass = {
    .type = "vmhd"_os,
    .className = "VexQTvmhdAtom",
    .atomName = "Video Media Information Header",
    .nibName = "VexQTvmhdAtom",
    .accepts = exactly(20),
    .fields = Layout::fields,
    .create = create<VexQTvmhdAtom>,
};

}  // namespace vexqt
