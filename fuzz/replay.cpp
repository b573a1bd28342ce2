// Runs a fuzzer's claims once on each of the files that are named, or that lie in the folders that
// are named: on inputs that once broke one, and on those that fuzzing begins with.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "vexqt/platform/bytes_types.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

static int replay(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const vexqt::Bytes bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    try {
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", file.c_str(), error.what());
        return 1;
    }
}

int main(int argc, char** argv) {
    int count = 0, broken = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path = argv[i];
        if (!std::filesystem::is_directory(path)) {
            ++count;
            broken += replay(path);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(path)) {
            ++count;
            broken += replay(entry.path());
        }
    }
    std::printf("%d inputs, %d break a claim\n", count, broken);
    return broken == 0 && count > 0 ? 0 : 1;
}
