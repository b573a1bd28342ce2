// Prints the samples of a track as comma-separated values: when each is decoded and how long it
// lasts, in the media's time units, and where its bytes are.
//
//     sample_table MOVIE TRACK > samples.csv      tracks are counted from 0
#include <vexqt/vexqt.h>

#include <cstdio>

using namespace vexqt;

namespace {

void printSamples(const VexQTAtom& tables) {
    const auto* durations = dynamic_cast<VexQTsttsAtom*>(tables.childWithType("stts"_os));
    const auto* sizes = dynamic_cast<VexQTstszAtom*>(tables.childWithType("stsz"_os));
    const auto* chunks = dynamic_cast<VexQTstscAtom*>(tables.childWithType("stsc"_os));
    std::vector<std::int64_t> offsets;
    if (const auto* near = dynamic_cast<VexQTstcoAtom*>(tables.childWithType("stco"_os)))
        offsets.assign(near->chunkOffsets().begin(), near->chunkOffsets().end());
    if (const auto* far = dynamic_cast<VexQTco64Atom*>(tables.childWithType("co64"_os)))
        offsets = far->chunkOffsets();
    if (durations == nullptr || sizes == nullptr || chunks == nullptr) return;

    const auto& runs = chunks->sampleToChunkEntries();
    const auto& stretches = durations->sampleDurations();
    const std::uint32_t oneSize = sizes->globalSampleSize();
    const std::size_t count = oneSize != 0 ? sizes->numberOfEntries() : sizes->sampleSizes().size();
    std::size_t sample = 0, run = 0, stretch = 0, inStretch = 0;
    std::uint64_t time = 0;
    std::puts("sample,time,duration,offset,size");
    for (std::size_t chunk = 0; chunk < offsets.size() && run < runs.size(); ++chunk) {
        // A run of chunks holds until the next one begins; chunks are counted from 1.
        if (run + 1 < runs.size() && runs[run + 1].firstChunk() == chunk + 1) ++run;
        auto offset = static_cast<std::uint64_t>(offsets[chunk]);
        for (std::uint32_t i = 0; i < runs[run].samplesPerChunk(); ++i, ++sample, ++inStretch) {
            while (stretch < stretches.size() && inStretch == stretches[stretch].sampleCount())
                ++stretch, inStretch = 0;
            if (stretch == stretches.size() || sample == count) return;
            const std::uint32_t duration = stretches[stretch].sampleDuration();
            const std::uint32_t size = oneSize != 0 ? oneSize : sizes->sampleSizes()[sample];
            std::printf("%zu,%llu,%u,%llu,%u\n", sample + 1, 0ULL + time, duration, 0ULL + offset,
                        size);
            time += duration;
            offset += size;
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::error_code error;
    if (argc != 3) return 2;
    const auto asset = VexQTAsset::initWithURL(argv[1], error, {.tolerant = true});
    if (asset == nullptr) return 1;
    const AtomPath path("moov.trak[" + std::string(argv[2]) + "].mdia.minf.stbl");
    printSamples(path.atomIn(asset->rootAtoms()));
}
