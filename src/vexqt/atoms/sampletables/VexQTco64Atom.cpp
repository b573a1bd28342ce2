#include "vexqt/atoms/sampletables/VexQTco64Atom.h"

#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTco64Atom::Layout {
    using Atom = VexQTco64Atom;
    static constexpr auto columns = numberColumn<Signed<std::int64_t>>("bytes");
    static constexpr Field fields[] = {
        versionKept,
        flagsKept,
        entryCountRead<&Atom::chunkOffsets_, &Atom::numberOfEntries_>("numberOfEntries")
            .in("chunks"),
        table<&Atom::chunkOffsets_, columns, Stop::WhenStartIsPastEnd>("chunkOffsets"),
    };
    static constexpr std::string_view listing[] = {"chunkOffsets", "numberOfEntries"};
};

constinit const AtomClass VexQTco64Atom::kClass = {
    .type = "co64"_os,
    .className = "VexQTco64Atom",
    .atomName = "Chunk Offset Table (64-bit)",
    .nibName = "VexQTco64Atom",
    .accepts = atLeast(16),
    .fields = Layout::fields,
    .listing = Layout::listing,
    .create = create<VexQTco64Atom>,
};

}  // namespace vexqt
