#pragma once

#include "vexqt/atoms/headers/ApertureDimensionsAtom.h"

namespace vexqt {

/// The dimensions of a track with the clean aperture.
class VEXQT_EXPORT VexQTclefAtom final : public AtomOf<VexQTclefAtom, ApertureDimensionsAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
