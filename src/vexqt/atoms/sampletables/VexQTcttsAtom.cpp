#include "vexqt/atoms/sampletables/VexQTcttsAtom.h"

#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTCompositionOffset::Layout {
    using Entry = VexQTCompositionOffset;
    static constexpr auto columns =
        tableColumns(column<&Entry::sampleCount_, U32>("sampleCount").in("samples"),
                     column<&Entry::compositionOffset_, U32>("compositionOffset").in("time units"));
};

struct VexQTcttsAtom::Layout {
    using Atom = VexQTcttsAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsDropped,
        entryCount<&Atom::compositionOffsets_>(),
        table<&Atom::compositionOffsets_, VexQTCompositionOffset::Layout::columns,
              Stop::WhenStartIsPastEnd>("compositionOffsets"),
    };
};

constinit const AtomClass VexQTcttsAtom::kClass = {
    .type = "ctts"_os,
    .className = "VexQTcttsAtom",
    .atomName = "Composition Offset",
    .nibName = "VexQTcttsAtom",
    .accepts = atLeast(16),
    .sizeRule = SizeRule::NotStored,
    .fields = Layout::fields,
    .create = create<VexQTcttsAtom>,
};

}  // namespace vexqt
