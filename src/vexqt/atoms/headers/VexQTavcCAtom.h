#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The configuration that an AVC decoder needs, kept as raw bytes.
class VEXQT_EXPORT VexQTavcCAtom final : public AtomOf<VexQTavcCAtom> {
public:
    static const AtomClass kClass;

private:
    struct Layout;
};

}  // namespace vexqt
