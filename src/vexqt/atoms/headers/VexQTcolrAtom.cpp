#include "vexqt/atoms/headers/VexQTcolrAtom.h"

#include "vexqt/core/codecs.h"

namespace vexqt {

struct VexQTcolrAtom::Layout {
    using Atom = VexQTcolrAtom;

    static void dropRangeByte(Record& record, AtomReader& in) {
        static_cast<Atom&>(record).setAtomSize(in.position());
        in.rest();
    }
    static constexpr Field fields[] = {
        field<&Atom::colorParameterType_, Code>("colorParameterType"),
        field<&Atom::primariesIndex_, U16>("primariesIndex"),
        field<&Atom::transferFunctionIndex_, U16>("transferFunctionIndex"),
        field<&Atom::matrixIndex_, U16>("matrixIndex"),
        {.decode = dropRangeByte},
    };
    static_assert(wireWidth(fields) == 10, "18 bytes less the header");
};

constinit const AtomClass VexQTcolrAtom::kClass = {
    .type = "colr"_os,
    .className = "VexQTcolrAtom",
    .atomName = "Color Parameter",
    .nibName = "VexQTcolrAtom",
    .accepts = {.least = 18, .most = 19},
    .fields = Layout::fields,
    .create = create<VexQTcolrAtom>,
};

}  // namespace vexqt
