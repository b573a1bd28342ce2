#include "vexqt/atoms/sampletables/VexQTstscAtom.h"

#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTSampleToChunkEntry::Layout {
    using Entry = VexQTSampleToChunkEntry;
    static constexpr auto columns =
        tableColumns(column<&Entry::firstChunk_, U32>("firstChunk"),
                     column<&Entry::samplesPerChunk_, U32>("samplesPerChunk").in("samples"),
                     column<&Entry::sampleDescriptionID_, U32>("sampleDescriptionID"));
};

struct VexQTstscAtom::Layout {
    using Atom = VexQTstscAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsNotRead,
        entryCount<&Atom::sampleToChunkEntries_>(),
        table<&Atom::sampleToChunkEntries_, VexQTSampleToChunkEntry::Layout::columns,
              Stop::WhenEntryDoesNotFit>("sampleToChunkEntries"),
    };
};

constinit const AtomClass VexQTstscAtom::kClass = {
    .type = "stsc"_os,
    .className = "VexQTstscAtom",
    .atomName = "Sample-to-Chunk",
    .nibName = "VexQTstscAtom",
    .accepts = atLeast(16),
    .fields = Layout::fields,
    .create = create<VexQTstscAtom>,
};

}  // namespace vexqt
