#include "vexqt/atoms/headers/VexQTcslgAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTcslgAtom::Layout {
    using Atom = VexQTcslgAtom;
    static constexpr Field fields[] = {
        versionWrittenAsZero,
        flagsNotRead,
        field<&Atom::compositionOffsetToDisplayOffsetShift_, U32>(
            "compositionOffsetToDisplayOffsetShift")
            .in("media time units"),
        field<&Atom::leastDisplayOffset_, U32>("leastDisplayOffset").in("media time units"),
        field<&Atom::greatestDisplayOffset_, U32>("greatestDisplayOffset").in("media time units"),
        field<&Atom::displayStartTime_, U32>("displayStartTime").in("media time units"),
        field<&Atom::displayEndTime_, U32>("displayEndTime").in("media time units"),
    };
    static_assert(wireWidth(fields) == 24, "32 bytes less the header");
};

constinit const AtomClass VexQTcslgAtom::kClass = {
    .type = "cslg"_os,
    .className = "VexQTcslgAtom",
    .atomName = "Composition Shift Least Greatest",
    .nibName = "VexQTcslgAtom",
    .accepts = exactly(32),
    .fields = Layout::fields,
    .create = create<VexQTcslgAtom>,
};

}  // namespace vexqt
