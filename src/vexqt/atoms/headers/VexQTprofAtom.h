#pragma once

#include "vexqt/atoms/headers/ApertureDimensionsAtom.h"

namespace vexqt {

/// The dimensions of a track with the whole picture.
class VEXQT_EXPORT VexQTprofAtom final : public AtomOf<VexQTprofAtom, ApertureDimensionsAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
