#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The dimensions of a track in each aperture mode.
class VEXQT_EXPORT VexQTtaptAtom final : public AtomOf<VexQTtaptAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
