#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The scheme information of a protection: atoms that the scheme alone knows.
class VEXQT_EXPORT VexQTschiAtom final : public AtomOf<VexQTschiAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
