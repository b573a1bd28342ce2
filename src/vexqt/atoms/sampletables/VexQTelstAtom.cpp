#include "vexqt/atoms/sampletables/VexQTelstAtom.h"

#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTEditListEntry::Layout {
    using Entry = VexQTEditListEntry;
    static constexpr auto columns =
        tableColumns(column<&Entry::trackDuration_, U32>("trackDuration").in("time units"),
                     column<&Entry::mediaTime_, U32>("mediaTime").in("time units"),
                     column<&Entry::mediaRate_, SignedFixed1616>("mediaRate"));
};

std::unique_ptr<VexQTEditListEntry> VexQTEditListEntry::initWithData(ByteView data) {
    if (data.size() != Layout::columns.width) return nullptr;
    return std::make_unique<VexQTEditListEntry>(Layout::columns.decode(BytePlace(data)));
}

Bytes VexQTEditListEntry::atomData() const {
    ByteWriter out;
    Layout::columns.encode(*this, out);
    return out.release();
}

struct VexQTelstAtom::Layout {
    using Atom = VexQTelstAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsNotRead,
        entryCount<&Atom::editListEntries_>(),
        table<&Atom::editListEntries_, VexQTEditListEntry::Layout::columns,
              Stop::WhenStartIsPastEndOfWholeEntries>("editListEntries"),
    };
};

constinit const AtomClass VexQTelstAtom::kClass = {
    .type = "elst"_os,
    .className = "VexQTelstAtom",
    .atomName = "Edit List",
    .nibName = "VexQTelstAtom",
    .accepts = atLeast(16),
    .fields = Layout::fields,
    .create = create<VexQTelstAtom>,
};

}  // namespace vexqt
