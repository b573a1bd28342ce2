#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The sound media information header: the balance between the two sides.
class VEXQT_EXPORT VexQTsmhdAtom final : public AtomOf<VexQTsmhdAtom> {
public:
    static const AtomClass kClass;

    /// 0 is the middle, negative values lean to the left.
    float balance() const { return balance_; }
    void setBalance(float balance) { balance_ = balance; }

private:
    struct Layout;

    float balance_ = 0;
};

}  // namespace vexqt
