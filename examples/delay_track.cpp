// Shifts a track's edit list: the track begins later, behind an empty stretch.
//
//     delay_track MOVIE TRACK MILLISECONDS      changes the file; tracks are counted from 0
#include <vexqt/vexqt.h>

#include <cstdio>
#include <cstdlib>

using namespace vexqt;

namespace {

/// The media time of a stretch in which nothing is played.
constexpr std::uint32_t kEmpty = 0xFFFFFFFF;

void delay(VexQTelstAtom& edits, std::uint32_t time) {
    auto& entries = edits.editListEntries();
    if (entries.empty() || entries.front().mediaTime() != kEmpty) {
        VexQTEditListEntry empty;
        empty.setMediaTime(kEmpty);
        empty.setMediaRate(1);
        entries.insert(entries.begin(), empty);
        edits.increaseSizeBy(12);
    }
    entries.front().setTrackDuration(entries.front().trackDuration() + time);
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 4) return 2;
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(argv[1], error, {.tolerant = true});
    if (asset == nullptr) return std::fprintf(stderr, "%s\n", error.message().c_str()), 1;
    const auto& roots = asset->rootAtoms();
    const std::string track = "moov.trak[" + std::string(argv[2]) + "]";
    const auto find = [&](const std::string& path) -> VexQTAtom& {
        return AtomPath(path).atomIn(roots);
    };
    auto& movie = dynamic_cast<VexQTmvhdAtom&>(find("moov.mvhd"));
    auto& header = dynamic_cast<VexQTtkhdAtom&>(find(track + ".tkhd"));
    const auto time =
        static_cast<std::uint32_t>(std::strtod(argv[3], nullptr) / 1000 * movie.timeScale());

    delay(dynamic_cast<VexQTelstAtom&>(find(track + ".edts.elst")), time);
    header.setDuration(header.duration() + time);
    movie.setDuration(std::max(movie.duration(), header.duration()));
    const SaveResult result = saveInPlace(*asset);
    if (result.failure) std::fprintf(stderr, "%s\n", result.failure->what.c_str());
    return result.outcome != SaveResult::Outcome::Saved;
} catch (const Error& wrong) {
    std::fprintf(stderr, "%s\n", wrong.what());
    return 1;
}
