#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The extension of a sound description that holds what its decoder needs.
///
/// It alone among the containers of this kind keeps a last child that is a bare header: writers end
/// it with an empty terminator atom.
class VEXQT_EXPORT VexQTwaveAtom final : public AtomOf<VexQTwaveAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
