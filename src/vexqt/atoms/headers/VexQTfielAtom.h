#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// How the fields of an interlaced picture lie.
///
/// Bytes behind the two properties are dropped and not counted.
class VEXQT_EXPORT VexQTfielAtom final : public AtomOf<VexQTfielAtom> {
public:
    static const AtomClass kClass;

    /// 1 for progressive pictures, 2 for interlaced ones.
    std::uint8_t numberOfFields() const { return numberOfFields_; }
    void setNumberOfFields(std::uint8_t count) { numberOfFields_ = count; }
    /// Which of two fields comes first, in time and in the file.
    std::uint8_t fieldDominance() const { return fieldDominance_; }
    void setFieldDominance(std::uint8_t dominance) { fieldDominance_ = dominance; }

private:
    struct Layout;

    std::uint8_t numberOfFields_ = 0;
    std::uint8_t fieldDominance_ = 0;
};

}  // namespace vexqt
