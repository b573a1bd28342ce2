#include "vexqt/atoms/sampletables/VexQTstszAtom.h"

#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTstszAtom::Layout {
    using Atom = VexQTstszAtom;
    static constexpr auto columns = numberColumn<U32>("bytes");
    static constexpr Field fields[] = {
        versionKept,
        flagsKept,
        field<&Atom::globalSampleSize_, U32>("globalSampleSize").in("bytes"),
        field<&Atom::numberOfEntries_, U32>("numberOfEntries").in("samples"),
        when<&Atom::hasSizes>(
            table<&Atom::sampleSizes_, columns, Stop::WhenEntryDoesNotFit>("sampleSizes")),
    };
};

constinit const AtomClass VexQTstszAtom::kClass = {
    .type = "stsz"_os,
    .className = "VexQTstszAtom",
    .atomName = "Sample Size",
    .nibName = "VexQTstszAtom",
    .accepts = atLeast(20),
    .fields = Layout::fields,
    .create = create<VexQTstszAtom>,
};

}  // namespace vexqt
