#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// User data: free-form annotations of a movie or a track.
class VEXQT_EXPORT VexQTudtaAtom final : public AtomOf<VexQTudtaAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
