#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The edits: which stretches of the media the track plays, and when.
class VEXQT_EXPORT VexQTedtsAtom final : public AtomOf<VexQTedtsAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
