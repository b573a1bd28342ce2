#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// A movie segment of a fragmented file.
class VEXQT_EXPORT VexQTmoofAtom final : public AtomOf<VexQTmoofAtom, ContainerAtom> {
public:
    static const AtomClass kClass;

    /// The size in bytes that the atom has in the file; 0 for one made in memory.
    std::uint64_t originalSize() const { return originalSize_; }
    void setOriginalSize(std::uint64_t size) { originalSize_ = size; }

private:
    struct Layout;

    std::uint64_t originalSize_ = 0;
};

}  // namespace vexqt
