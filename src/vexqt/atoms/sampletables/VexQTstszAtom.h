#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/table.h"

namespace vexqt {

/// Sample sizes: one for all samples, or one for each.
///
/// Who adds or removes sizes sets the number of entries too: it is written as it stands. Fewer
/// sizes in the file than it promises are no error.
class VEXQT_EXPORT VexQTstszAtom final : public AtomOf<VexQTstszAtom> {
public:
    static const AtomClass kClass;

    /// In bytes. 0 means that each sample has a size of its own; any other leaves the list unread
    /// and unwritten.
    std::uint32_t globalSampleSize() const { return globalSampleSize_; }
    void setGlobalSampleSize(std::uint32_t size) { globalSampleSize_ = size; }
    /// How many samples there are.
    std::uint32_t numberOfEntries() const { return numberOfEntries_; }
    void setNumberOfEntries(std::uint32_t number) { numberOfEntries_ = number; }
    /// In bytes.
    const std::vector<std::uint32_t>& sampleSizes() const { return sampleSizes_.rows(); }
    std::vector<std::uint32_t>& sampleSizes() { return sampleSizes_.rows(); }
    void setSampleSizes(std::vector<std::uint32_t> sizes) {
        sampleSizes_.setRows(std::move(sizes));
    }

private:
    struct Layout;
    bool hasSizes() const { return globalSampleSize_ == 0; }

    std::uint32_t globalSampleSize_ = 0;
    std::uint32_t numberOfEntries_ = 0;
    Table<std::uint32_t> sampleSizes_;
};

}  // namespace vexqt
