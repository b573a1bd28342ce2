#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/table.h"

namespace vexqt {

/// A run of samples that all last equally long.
class VEXQT_EXPORT VexQTSampleDuration : public Record {
public:
    struct Layout;

    VexQTSampleDuration() = default;
    /// A run with these properties.
    VexQTSampleDuration(std::uint32_t sampleCount, std::uint32_t sampleDuration)
        : sampleCount_(sampleCount), sampleDuration_(sampleDuration) {}

    /// How many samples the run has.
    std::uint32_t sampleCount() const { return sampleCount_; }
    void setSampleCount(std::uint32_t count) { sampleCount_ = count; }
    /// In units of the media's time scale.
    std::uint32_t sampleDuration() const { return sampleDuration_; }
    void setSampleDuration(std::uint32_t duration) { sampleDuration_ = duration; }

private:
    std::uint32_t sampleCount_ = 0;
    std::uint32_t sampleDuration_ = 0;
};

/// Time-to-sample: how long each sample lasts, run by run.
class VEXQT_EXPORT VexQTsttsAtom final : public AtomOf<VexQTsttsAtom> {
public:
    static const AtomClass kClass;

    /// In file order.
    const std::vector<VexQTSampleDuration>& sampleDurations() const {
        return sampleDurations_.rows();
    }
    std::vector<VexQTSampleDuration>& sampleDurations() { return sampleDurations_.rows(); }
    void setSampleDurations(std::vector<VexQTSampleDuration> runs) {
        sampleDurations_.setRows(std::move(runs));
    }

private:
    struct Layout;

    Table<VexQTSampleDuration> sampleDurations_;
};

}  // namespace vexqt
