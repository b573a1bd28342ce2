#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/table.h"

namespace vexqt {

/// Sync samples: the samples that can be decoded without others. A track without this table has
/// nothing but sync samples.
class VEXQT_EXPORT VexQTstssAtom final : public AtomOf<VexQTstssAtom> {
public:
    static const AtomClass kClass;

    /// Numbers of samples, from 1 on. They are kept as they stand, in whatever order.
    const std::vector<std::uint32_t>& syncSamples() const { return syncSamples_.rows(); }
    std::vector<std::uint32_t>& syncSamples() { return syncSamples_.rows(); }
    void setSyncSamples(std::vector<std::uint32_t> samples) {
        syncSamples_.setRows(std::move(samples));
    }

private:
    struct Layout;

    Table<std::uint32_t> syncSamples_;
};

}  // namespace vexqt
