#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/table.h"

namespace vexqt {

/// Chunk offsets of 64 bits: where in a file beyond 4 GiB each chunk begins. Nothing ever shifts
/// them.
class VEXQT_EXPORT VexQTco64Atom final : public AtomOf<VexQTco64Atom> {
public:
    static const AtomClass kClass;

    /// In bytes from the start of the file.
    const std::vector<std::int64_t>& chunkOffsets() const { return chunkOffsets_.rows(); }
    std::vector<std::int64_t>& chunkOffsets() { return chunkOffsets_.rows(); }
    void setChunkOffsets(std::vector<std::int64_t> offsets) {
        chunkOffsets_.setRows(std::move(offsets));
    }
    /// The count that was read, whatever has become of the list. It is not what is written.
    std::uint32_t numberOfEntries() const { return numberOfEntries_; }

private:
    struct Layout;

    std::uint32_t numberOfEntries_ = 0;
    Table<std::int64_t> chunkOffsets_;
};

}  // namespace vexqt
