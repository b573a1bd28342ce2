#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The sample table: from sample numbers to times, sizes and places in the file.
class VEXQT_EXPORT VexQTstblAtom final : public AtomOf<VexQTstblAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
