#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/table.h"

namespace vexqt {

/// Chunk offsets of 32 bits: where in the file each chunk begins. Nothing ever shifts them.
class VEXQT_EXPORT VexQTstcoAtom final : public AtomOf<VexQTstcoAtom> {
public:
    static const AtomClass kClass;

    /// In bytes from the start of the file.
    const std::vector<std::uint32_t>& chunkOffsets() const { return chunkOffsets_.rows(); }
    std::vector<std::uint32_t>& chunkOffsets() { return chunkOffsets_.rows(); }
    void setChunkOffsets(std::vector<std::uint32_t> offsets) {
        chunkOffsets_.setRows(std::move(offsets));
    }

private:
    struct Layout;

    Table<std::uint32_t> chunkOffsets_;
};

}  // namespace vexqt
