#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The data information: where a track's media data lives.
class VEXQT_EXPORT VexQTdinfAtom final : public AtomOf<VexQTdinfAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
