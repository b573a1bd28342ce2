#pragma once

#include "vexqt/atoms/structure/VexQTtrakAtom.h"

namespace vexqt {

/// The movie: all metadata of a file, track by track.
class VEXQT_EXPORT VexQTmoovAtom final : public AtomOf<VexQTmoovAtom, ContainerAtom> {
public:
    static const AtomClass kClass;

    /// The size in bytes that the atom has in the file, whatever its size has become; 0 for a movie
    /// made in memory.
    std::uint64_t originalSize() const { return originalSize_; }
    void setOriginalSize(std::uint64_t size) { originalSize_ = size; }

    /// The tracks in file order.
    std::vector<VexQTtrakAtom*> allTrackAtoms() const;
    /// The index-th track, from 0, among those whose media is of that type; null for none.
    VexQTtrakAtom* trackAtomForMediaType(OSType mediaType, std::uint32_t index) const;

private:
    struct Layout;

    std::uint64_t originalSize_ = 0;
};

}  // namespace vexqt
