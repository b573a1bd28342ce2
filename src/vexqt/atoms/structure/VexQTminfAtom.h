#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The media information: how the media is presented, where its data lies, and its sample table.
class VEXQT_EXPORT VexQTminfAtom final : public AtomOf<VexQTminfAtom, ContainerAtom> {
public:
    static const AtomClass kClass;
};

}  // namespace vexqt
