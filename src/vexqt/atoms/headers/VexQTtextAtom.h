#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The text media information: a matrix and nothing else, not even a version.
class VEXQT_EXPORT VexQTtextAtom final : public AtomOf<VexQTtextAtom> {
public:
    static const AtomClass kClass;

private:
    struct Layout;
};

}  // namespace vexqt
