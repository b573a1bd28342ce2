#include "vexqt/atoms/headers/VexQTclapAtom.h"

#include "vexqt/core/codecs.h"

namespace vexqt {

struct VexQTclapAtom::Layout {
    using Atom = VexQTclapAtom;
    static constexpr Field fields[] = {
        field<&Atom::apertureWidth_N_, U32>("apertureWidth_N"),
        field<&Atom::apertureWidth_D_, U32>("apertureWidth_D"),
        field<&Atom::apertureHeight_N_, U32>("apertureHeight_N"),
        field<&Atom::apertureHeight_D_, U32>("apertureHeight_D"),
        field<&Atom::horizOff_N_, U32>("horizOff_N"),
        field<&Atom::horizOff_D_, U32>("horizOff_D"),
        field<&Atom::vertOff_N_, U32>("vertOff_N"),
        field<&Atom::vertOff_D_, U32>("vertOff_D"),
    };
    static_assert(wireWidth(fields) == 32, "40 bytes less the header");
};

constinit const AtomClass VexQTclapAtom::kClass = {
    .type = "clap"_os,
    .className = "VexQTclapAtom",
    .atomName = "Clean Aperture",
    .nibName = "VexQTclapAtom",
    .accepts = exactly(40),
    .fields = Layout::fields,
    .create = create<VexQTclapAtom>,
};

}  // namespace vexqt
