#include "vexqt/atoms/headers/VexQTtextAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/matrix.h"

namespace vexqt {

struct VexQTtextAtom::Layout {
    static constexpr Field fields[] = {matrixRow<MovieMatrix>()};
    static_assert(wireWidth(fields) == 36, "44 bytes less the header");
};

constinit const AtomClass VexQTtextAtom::kClass = {
    .type = "text"_os,
    .className = "VexQTtextAtom",
    .atomName = "Text Media Information",
    .accepts = exactly(44),
    .fields = Layout::fields,
    .create = create<VexQTtextAtom>,
};

}  // namespace vexqt
