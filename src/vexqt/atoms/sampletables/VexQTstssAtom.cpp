#include "vexqt/atoms/sampletables/VexQTstssAtom.h"

#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTstssAtom::Layout {
    using Atom = VexQTstssAtom;
    static constexpr auto columns = numberColumn<U32>();
    static constexpr Field fields[] = {
        versionKept,
        flagsNotRead,
        entryCount<&Atom::syncSamples_>(),
        table<&Atom::syncSamples_, columns, Stop::WhenStartIsPastEnd>("syncSamples"),
    };
};

constinit const AtomClass VexQTstssAtom::kClass = {
    .type = "stss"_os,
    .className = "VexQTstssAtom",
    .atomName = "Sync Sample",
    .nibName = "VexQTstssAtom",
    .accepts = atLeast(16),
    .fields = Layout::fields,
    .create = create<VexQTstssAtom>,
};

}  // namespace vexqt
