#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The protection information of a sample description.
class VEXQT_EXPORT VexQTsinfAtom final : public AtomOf<VexQTsinfAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
