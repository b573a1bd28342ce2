#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/table.h"

namespace vexqt {

/// A run of chunks that hold equally many samples of one description. It lasts until the next run
/// begins.
class VEXQT_EXPORT VexQTSampleToChunkEntry : public Record {
public:
    struct Layout;

    VexQTSampleToChunkEntry() = default;
    /// A run with these properties.
    VexQTSampleToChunkEntry(std::uint32_t firstChunk, std::uint32_t samplesPerChunk,
                            std::uint32_t sampleDescriptionID)
        : firstChunk_(firstChunk),
          samplesPerChunk_(samplesPerChunk),
          sampleDescriptionID_(sampleDescriptionID) {}
    /// The same as the constructor.
    static VexQTSampleToChunkEntry sampleToChunkEntryWithFirstChunk(
        std::uint32_t firstChunk, std::uint32_t samplesPerChunk,
        std::uint32_t sampleDescriptionID) {
        return {firstChunk, samplesPerChunk, sampleDescriptionID};
    }

    /// The number of a chunk, from 1 on.
    std::uint32_t firstChunk() const { return firstChunk_; }
    void setFirstChunk(std::uint32_t chunk) { firstChunk_ = chunk; }
    /// How many samples each chunk of the run holds.
    std::uint32_t samplesPerChunk() const { return samplesPerChunk_; }
    void setSamplesPerChunk(std::uint32_t samples) { samplesPerChunk_ = samples; }
    /// The number of a sample description, from 1 on.
    std::uint32_t sampleDescriptionID() const { return sampleDescriptionID_; }
    void setSampleDescriptionID(std::uint32_t description) { sampleDescriptionID_ = description; }

private:
    std::uint32_t firstChunk_ = 0;
    std::uint32_t samplesPerChunk_ = 0;
    std::uint32_t sampleDescriptionID_ = 0;
};

/// Sample-to-chunk: how many samples each chunk holds, and which description they follow.
///
/// A count that promises more entries than there are ends with the last whole one.
class VEXQT_EXPORT VexQTstscAtom final : public AtomOf<VexQTstscAtom> {
public:
    static const AtomClass kClass;

    /// In file order, which is that of the chunks.
    const std::vector<VexQTSampleToChunkEntry>& sampleToChunkEntries() const {
        return sampleToChunkEntries_.rows();
    }
    std::vector<VexQTSampleToChunkEntry>& sampleToChunkEntries() {
        return sampleToChunkEntries_.rows();
    }
    void setSampleToChunkEntries(std::vector<VexQTSampleToChunkEntry> entries) {
        sampleToChunkEntries_.setRows(std::move(entries));
    }

private:
    struct Layout;

    Table<VexQTSampleToChunkEntry> sampleToChunkEntries_;
};

}  // namespace vexqt
