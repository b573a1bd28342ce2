#include "vexqt/atoms/headers/VexQTmdhdAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTmdhdAtom::Layout {
    using Atom = VexQTmdhdAtom;
    static constexpr Field fields[] = {
        versionWrittenAsZero,
        flagsNotRead,
        field<&Atom::creationDateTime_, MacDate>("creationDateTime"),
        field<&Atom::modificationDateTime_, MacDate>("modificationDateTime"),
        field<&Atom::timeScale_, U32>("timeScale").in("time units a second"),
        field<&Atom::duration_, U32>("duration").in("time units"),
        field<&Atom::language_, U16>("language"),
        field<&Atom::quality_, U16>("quality"),
    };
    static_assert(wireWidth(fields) == 24, "32 bytes less the header");
};

constinit const AtomClass VexQTmdhdAtom::kClass = {
    .type = "mdhd"_os,
    .className = "VexQTmdhdAtom",
    .atomName = "Media Header",
    .nibName = "VexQTmdhdAtom",
    .accepts = exactly(32),
    .fields = Layout::fields,
    .create = create<VexQTmdhdAtom>,
};

}  // namespace vexqt
