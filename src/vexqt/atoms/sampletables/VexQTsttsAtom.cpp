#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"

#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTSampleDuration::Layout {
    using Entry = VexQTSampleDuration;
    static constexpr auto columns =
        tableColumns(column<&Entry::sampleCount_, U32>("sampleCount").in("samples"),
                     column<&Entry::sampleDuration_, U32>("sampleDuration").in("time units"));
};

struct VexQTsttsAtom::Layout {
    using Atom = VexQTsttsAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsNotRead,
        entryCount<&Atom::sampleDurations_>(),
        table<&Atom::sampleDurations_, VexQTSampleDuration::Layout::columns,
              Stop::WhenStartIsPastEnd>("sampleDurations"),
    };
};

constinit const AtomClass VexQTsttsAtom::kClass = {
    .type = "stts"_os,
    .className = "VexQTsttsAtom",
    .atomName = "Time-to-Sample",
    .nibName = "VexQTsttsAtom",
    .accepts = atLeast(16),
    .sizeRule = SizeRule::NotStored,
    .fields = Layout::fields,
    .create = create<VexQTsttsAtom>,
};

}  // namespace vexqt
