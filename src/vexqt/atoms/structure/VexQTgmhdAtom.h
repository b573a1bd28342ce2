#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The media information header of a media that is neither video nor sound.
class VEXQT_EXPORT VexQTgmhdAtom final : public AtomOf<VexQTgmhdAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
