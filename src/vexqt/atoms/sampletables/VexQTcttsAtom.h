#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/table.h"

namespace vexqt {

/// A run of samples that are all shown equally long after they are decoded.
class VEXQT_EXPORT VexQTCompositionOffset : public Record {
public:
    struct Layout;

    VexQTCompositionOffset() = default;
    /// A run with these properties.
    VexQTCompositionOffset(std::uint32_t sampleCount, std::uint32_t compositionOffset)
        : sampleCount_(sampleCount), compositionOffset_(compositionOffset) {}

    /// How many samples the run has.
    std::uint32_t sampleCount() const { return sampleCount_; }
    void setSampleCount(std::uint32_t count) { sampleCount_ = count; }
    /// In units of the media's time scale: the file's 32 bits, never taken for a signed number,
    /// although tables of version 1 hold signed ones.
    std::uint32_t compositionOffset() const { return compositionOffset_; }
    void setCompositionOffset(std::uint32_t offset) { compositionOffset_ = offset; }

private:
    std::uint32_t sampleCount_ = 0;
    std::uint32_t compositionOffset_ = 0;
};

/// Composition offsets: from the times at which samples are decoded to those at which they are
/// shown, run by run.
class VEXQT_EXPORT VexQTcttsAtom final : public AtomOf<VexQTcttsAtom> {
public:
    static const AtomClass kClass;

    /// In file order.
    const std::vector<VexQTCompositionOffset>& compositionOffsets() const {
        return compositionOffsets_.rows();
    }
    std::vector<VexQTCompositionOffset>& compositionOffsets() { return compositionOffsets_.rows(); }
    void setCompositionOffsets(std::vector<VexQTCompositionOffset> runs) {
        compositionOffsets_.setRows(std::move(runs));
    }

private:
    struct Layout;

    Table<VexQTCompositionOffset> compositionOffsets_;
};

}  // namespace vexqt
