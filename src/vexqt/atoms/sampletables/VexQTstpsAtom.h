#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/table.h"

namespace vexqt {

/// Partial sync samples: those from which decoding can start although samples shown before them
/// stay broken, such as the first picture of an open group.
class VEXQT_EXPORT VexQTstpsAtom final : public AtomOf<VexQTstpsAtom> {
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
