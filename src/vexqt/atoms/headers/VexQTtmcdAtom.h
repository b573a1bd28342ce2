#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The timecode media information header, which holds how a timecode is drawn.
class VEXQT_EXPORT VexQTtmcdAtom final : public AtomOf<VexQTtmcdAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
