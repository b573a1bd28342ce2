// Gives a movie another time scale and rewrites every time that counts in it.
//
//     set_time_scale MOVIE UNITS COPY      for instance: set_time_scale clip.mov 600 fixed.mov
#include <vexqt/vexqt.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

using namespace vexqt;

namespace {

template <class Atom>
Atom* childOf(const VexQTAtom* atom, OSType type) {
    return atom == nullptr ? nullptr : dynamic_cast<Atom*>(atom->childWithType(type));
}

void setTimeScale(VexQTmoovAtom& movie, VexQTmvhdAtom& header, std::uint32_t units) {
    const double factor = double(units) / header.timeScale();
    const auto scaled = [&](std::uint32_t time) {
        return static_cast<std::uint32_t>(std::llround(time * factor));
    };
    header.setTimeScale(units);
    header.setDuration(scaled(header.duration()));
    // The properties of times are reached by name here, to have one line for all of them.
    for (const char* key : {"previewTime", "previewDuration", "posterTime", "selectionTime",
                            "selectionDuration", "currentTime"})
        header.setValueForKey(
            scaled(static_cast<std::uint32_t>(*integerFrom(header.valueForKey(key)))), key);
    for (const VexQTtrakAtom* track : movie.allTrackAtoms()) {
        if (auto* trackHeader = childOf<VexQTtkhdAtom>(track, "tkhd"_os))
            trackHeader->setDuration(scaled(trackHeader->duration()));
        // Where in the media a stretch begins is counted in the media's own time scale.
        if (auto* edits = childOf<VexQTelstAtom>(track->childWithType("edts"_os), "elst"_os))
            for (VexQTEditListEntry& entry : edits->editListEntries())
                entry.setTrackDuration(scaled(entry.trackDuration()));
    }
}

}  // namespace

int main(int argc, char** argv) {
    const long units = argc == 4 ? std::strtol(argv[2], nullptr, 10) : 0;
    if (units <= 0) {
        std::fprintf(stderr, "usage: set_time_scale MOVIE UNITS COPY\n");
        return 2;
    }
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(argv[1], error, {.tolerant = true});
    auto* header = asset ? childOf<VexQTmvhdAtom>(asset->moovAtom(), "mvhd"_os) : nullptr;
    if (header == nullptr || header->timeScale() == 0) return 1;
    setTimeScale(*asset->moovAtom(), *header, static_cast<std::uint32_t>(units));
    const SaveResult result = saveCopy(*asset, argv[3]);
    return result.outcome == SaveResult::Outcome::Saved ? 0 : 1;
}
