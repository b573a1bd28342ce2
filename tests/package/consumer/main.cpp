// Opens the movie that it is given and says how many atoms stand at its top level. Strict reading
// is enough to need the library's code, its headers and everything that it links.
#include <vexqt/vexqt.h>

#include <cstdio>
#include <system_error>

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    std::error_code error;
    const auto asset = vexqt::VexQTAsset::initWithURL(argv[1], error);
    if (!asset) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.message().c_str());
        return 1;
    }
    std::printf("%zu\n", asset->rootAtoms().size());
    return 0;
}
