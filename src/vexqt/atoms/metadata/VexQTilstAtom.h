#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The item list: every child is a metadata item, whatever its code.
class VEXQT_EXPORT VexQTilstAtom final : public AtomOf<VexQTilstAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
