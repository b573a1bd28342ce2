#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The byte order of samples.
class VEXQT_EXPORT VexQTendaAtom final : public AtomOf<VexQTendaAtom> {
public:
    static const AtomClass kClass;

    /// Whether the least significant byte comes first. The field is 1 or 0.
    bool littleEndian() const { return littleEndian_; }
    void setLittleEndian(bool littleEndian) { littleEndian_ = littleEndian; }

private:
    struct Layout;

    bool littleEndian_ = false;
};

}  // namespace vexqt
