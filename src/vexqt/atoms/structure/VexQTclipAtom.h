#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The clipping of a movie or a track.
class VEXQT_EXPORT VexQTclipAtom final : public AtomOf<VexQTclipAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
