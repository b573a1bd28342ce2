// Lists the tracks of a movie: number, kind of media, length, and the formats of the samples.
//
//     list_tracks MOVIE
#include <vexqt/vexqt.h>

#include <cstdio>

using namespace vexqt::literals;

namespace {

/// The formats of a track's samples: "avc1", or "mp4a, ac-3".
std::string formatsOf(const vexqt::VexQTtrakAtom& track) {
    std::string formats;
    const vexqt::VexQTAtom* atom = &track;
    for (const vexqt::OSType type : {"mdia"_os, "minf"_os, "stbl"_os, "stsd"_os})
        if (atom != nullptr) atom = atom->childWithType(type);
    if (atom == nullptr) return formats;
    for (const auto& child : atom->children()) {
        const auto* entry = dynamic_cast<const vexqt::VexQTSampleDescription*>(child.get());
        if (entry == nullptr) continue;
        if (!formats.empty()) formats += ", ";
        formats += vexqt::textFromCode(entry->dataFormat());
    }
    return formats;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: list_tracks MOVIE\n");
        return 2;
    }
    std::error_code error;
    const auto movie = vexqt::VexQTAsset::initWithURL(argv[1], error, {.tolerant = true});
    if (movie == nullptr) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.message().c_str());
        return 1;
    }
    if (movie->moovAtom() == nullptr) return 0;
    for (const vexqt::VexQTtrakAtom* track : movie->moovAtom()->allTrackAtoms()) {
        // A field by its name, which needs no class; one that is not there is absent.
        const vexqt::Value trackID = track->valueForKeyPath("tkhd.trackID");
        const auto* media = dynamic_cast<vexqt::VexQTmdiaAtom*>(track->childWithType("mdia"_os));
        if (media == nullptr) continue;
        // And the same by its class.
        const auto* header = dynamic_cast<vexqt::VexQTmdhdAtom*>(media->childWithType("mdhd"_os));
        const double seconds = header == nullptr || header->timeScale() == 0
                                   ? 0
                                   : double(header->duration()) / header->timeScale();
        std::printf(
            "%d: %s, %.3f s, %s\n", static_cast<int>(vexqt::integerFrom(trackID).value_or(0)),
            vexqt::textFromCode(media->mediaType()).c_str(), seconds, formatsOf(*track).c_str());
    }
}
