#include "vexqt/atoms/headers/VexQTmvhdAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"
#include "vexqt/core/matrix.h"

namespace vexqt {

struct VexQTmvhdAtom::Layout {
    using Atom = VexQTmvhdAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsKept,
        field<&Atom::creationDateTime_, MacDate>("creationDateTime"),
        field<&Atom::modificationDateTime_, MacDate>("modificationDateTime"),
        field<&Atom::timeScale_, U32>("timeScale").in("time units a second"),
        field<&Atom::duration_, U32>("duration").in("time units"),
        field<&Atom::preferredRate_, SignedFixed1616>("preferredRate"),
        field<&Atom::preferredVolume_, UnsignedFixed88>("preferredVolume"),
        reserved<10>(),
        matrixRow<MovieMatrix>(),
        field<&Atom::previewTime_, U32>("previewTime").in("time units"),
        field<&Atom::previewDuration_, U32>("previewDuration").in("time units"),
        field<&Atom::posterTime_, U32>("posterTime").in("time units"),
        field<&Atom::selectionTime_, U32>("selectionTime").in("time units"),
        field<&Atom::selectionDuration_, U32>("selectionDuration").in("time units"),
        field<&Atom::currentTime_, U32>("currentTime").in("time units"),
        field<&Atom::nextTrackID_, U32>("nextTrackID"),
    };
    static_assert(wireWidth(fields) == 100, "108 bytes less the header");
};

constinit const AtomClass VexQTmvhdAtom::kClass = {
    .type = "mvhd"_os,
    .className = "VexQTmvhdAtom",
    .atomName = "Movie Header",
    .nibName = "VexQTmvhdAtom",
    .accepts = exactly(108),
    .sizeRule = SizeRule::NotStored,
    .fields = Layout::fields,
    .create = create<VexQTmvhdAtom>,
};

}  // namespace vexqt
