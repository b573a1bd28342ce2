#pragma once

#include "vexqt/atoms/headers/ApertureDimensionsAtom.h"

namespace vexqt {

/// The dimensions of a track as its picture is encoded, pixels taken for square.
class VEXQT_EXPORT VexQTenofAtom final : public AtomOf<VexQTenofAtom, ApertureDimensionsAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
