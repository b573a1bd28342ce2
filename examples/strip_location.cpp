// Copies a movie without what tells where it was recorded: the classic annotations, and the items
// of keyed metadata whose keys speak of a location.
//
//     strip_location MOVIE COPY
#include <vexqt/vexqt.h>

#include <cstdio>

using namespace vexqt;

namespace {

/// Removes what lies below an atom, and says how much that was.
int strip(VexQTAtom& atom) {
    int removed = 0;
    if (auto* keys = dynamic_cast<VexQTkeysAtom*>(&atom)) {
        // From the end, so that what is still to be looked at keeps its place.
        for (std::size_t row = keys->keys().size(); row-- > 0;) {
            const auto& name = keys->keys()[row].value();
            if (name && name->find("location") != std::string::npos)
                removeKey(*keys, row), ++removed;
        }
        return removed;
    }
    for (std::size_t i = atom.children().size(); i-- > 0;) {
        VexQTAtom* child = atom.children()[i].get();
        const OSType type = child->atomType();
        if (type == codeFromText("\u00A9xyz") || type == "loci"_os) {
            // Lowers the sizes of all atoms above it by its own.
            atom.removeChild(child);
            ++removed;
        } else {
            removed += strip(*child);
        }
    }
    return removed;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(argv[1], error, {.tolerant = true});
    if (asset == nullptr || asset->moovAtom() == nullptr) return 1;
    const int removed = strip(*asset->moovAtom());
    const SaveResult result = saveCopy(*asset, argv[2]);
    if (result.failure) std::fprintf(stderr, "%s\n", result.failure->what.c_str());
    std::printf("%d removed\n", removed);
    return result.outcome == SaveResult::Outcome::Refused ||
           result.outcome == SaveResult::Outcome::Failed;
}
