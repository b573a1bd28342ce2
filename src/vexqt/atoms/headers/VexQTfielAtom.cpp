#include "vexqt/atoms/headers/VexQTfielAtom.h"

#include "vexqt/core/codecs.h"

namespace vexqt {

struct VexQTfielAtom::Layout {
    using Atom = VexQTfielAtom;

    static void dropRest(Record& record, AtomReader& in) {
        static_cast<Atom&>(record).setAtomSize(in.position());
        in.rest();
    }
    static constexpr Field fields[] = {
        field<&Atom::numberOfFields_, U8>("numberOfFields").in("fields"),
        field<&Atom::fieldDominance_, U8>("fieldDominance"),
        {.decode = dropRest},
    };
    static_assert(wireWidth(fields) == 2, "10 bytes less the header");
};

constinit const AtomClass VexQTfielAtom::kClass = {
    .type = "fiel"_os,
    .className = "VexQTfielAtom",
    .atomName = "Field Dominance",
    .nibName = "VexQTfielAtom",
    .accepts = atLeast(10),
    .fields = Layout::fields,
    .create = create<VexQTfielAtom>,
};

}  // namespace vexqt
