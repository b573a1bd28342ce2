#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The bounds of the composition offsets and of the times that they lead to.
///
/// Offsets and times are kept unsigned: negative ones wrap.
class VEXQT_EXPORT VexQTcslgAtom final : public AtomOf<VexQTcslgAtom> {
public:
    static const AtomClass kClass;

    /// Added to composition offsets it makes them all positive. In units of the media's time scale.
    std::uint32_t compositionOffsetToDisplayOffsetShift() const {
        return compositionOffsetToDisplayOffsetShift_;
    }
    void setCompositionOffsetToDisplayOffsetShift(std::uint32_t shift) {
        compositionOffsetToDisplayOffsetShift_ = shift;
    }
    /// The smallest composition offset, in the same units.
    std::uint32_t leastDisplayOffset() const { return leastDisplayOffset_; }
    void setLeastDisplayOffset(std::uint32_t offset) { leastDisplayOffset_ = offset; }
    /// The greatest composition offset, in the same units.
    std::uint32_t greatestDisplayOffset() const { return greatestDisplayOffset_; }
    void setGreatestDisplayOffset(std::uint32_t offset) { greatestDisplayOffset_ = offset; }
    /// When the first sample is shown, in the same units.
    std::uint32_t displayStartTime() const { return displayStartTime_; }
    void setDisplayStartTime(std::uint32_t time) { displayStartTime_ = time; }
    /// When the last sample has been shown, in the same units.
    std::uint32_t displayEndTime() const { return displayEndTime_; }
    void setDisplayEndTime(std::uint32_t time) { displayEndTime_ = time; }

private:
    struct Layout;

    std::uint32_t compositionOffsetToDisplayOffsetShift_ = 0;
    std::uint32_t leastDisplayOffset_ = 0;
    std::uint32_t greatestDisplayOffset_ = 0;
    std::uint32_t displayStartTime_ = 0;
    std::uint32_t displayEndTime_ = 0;
};

}  // namespace vexqt
