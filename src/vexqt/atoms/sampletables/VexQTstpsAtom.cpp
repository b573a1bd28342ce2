#include "vexqt/atoms/sampletables/VexQTstpsAtom.h"

#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTstpsAtom::Layout {
    using Atom = VexQTstpsAtom;
    static constexpr auto columns = numberColumn<U32>();
    static constexpr Field fields[] = {
        versionKept,
        flagsNotRead,
        entryCount<&Atom::syncSamples_>(),
        table<&Atom::syncSamples_, columns, Stop::WhenStartIsPastEnd>("syncSamples"),
    };
};

constinit const AtomClass VexQTstpsAtom::kClass = {
    .type = "stps"_os,
    .className = "VexQTstpsAtom",
    .atomName = "Partial Sync Sample",
    .nibName = "VexQTstpsAtom",
    .accepts = atLeast(16),
    .fields = Layout::fields,
    .create = create<VexQTstpsAtom>,
};

}  // namespace vexqt
