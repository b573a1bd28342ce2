#include "vexqt/atoms/sampletables/VexQTstcoAtom.h"

#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTstcoAtom::Layout {
    using Atom = VexQTstcoAtom;
    static constexpr auto columns = numberColumn<U32>("bytes");
    static constexpr Field fields[] = {
        versionKept,
        flagsDropped,
        entryCount<&Atom::chunkOffsets_>(),
        table<&Atom::chunkOffsets_, columns, Stop::WhenStartIsPastEnd>("chunkOffsets"),
    };
};

constinit const AtomClass VexQTstcoAtom::kClass = {
    .type = "stco"_os,
    .className = "VexQTstcoAtom",
    .atomName = "Chunk Offset Table",
    .nibName = "VexQTstcoAtom",
    .accepts = atLeast(16),
    .fields = Layout::fields,
    .create = create<VexQTstcoAtom>,
};

}  // namespace vexqt
