// Writes what the fuzzers begin with: a folder of inputs for each, and a dictionary of the
// four-character codes that the format has.
//
//   make_seeds FOLDER
#include <filesystem>
#include <fstream>
#include <set>

#include "atoms/all_classes.h"
#include "testing/made_movies.h"
#include "testing/small_movie.h"

namespace {

using namespace vexqt;
using namespace vexqt::testing;

class SeedFolder {
public:
    explicit SeedFolder(const std::filesystem::path& folder) : folder_(folder) {
        std::filesystem::create_directories(folder);
    }
    void add(std::string_view name, ByteView bytes) const {
        std::ofstream out(folder_ / name, std::ios::binary);
        for (const std::uint8_t byte : bytes) out.put(static_cast<char>(byte));
    }

private:
    std::filesystem::path folder_;
};

Bytes movieWith(ByteView root) {
    return join({atom("ftyp"_os, {text("qt  "), u32(0x200), text("qt  ")}), root,
                 atom("mdat"_os, {text("DATA")})});
}

void writeDictionary(const std::filesystem::path& path) {
    std::set<OSType> codes;
    for (const AtomClass* cls : kAllClasses) {
        codes.insert(cls->type);
        for (const ChildRule& rule : cls->children) codes.insert(rule.type);
    }
    for (const OSType brand : VexQTAsset::acceptedMajorBrands()) codes.insert(brand);
    for (const OSType code :
         {"soun"_os, "vide"_os, "text"_os, "tmcd"_os, "sbtl"_os, "clcp"_os, "meta"_os, "mdta"_os,
          "mdir"_os, "nclc"_os, "nclx"_os, "prof"_os, "avc1"_os, "mp4a"_os, "lpcm"_os, "mebx"_os,
          "alis"_os, "url "_os, "mean"_os, "name"_os, "key "_os, "keyd"_os})
        codes.insert(code);
    std::ofstream out(path);
    for (const OSType code : codes) {
        out << '"';
        for (int shift = 24; shift >= 0; shift -= 8) {
            static constexpr char kDigits[] = "0123456789ABCDEF";
            const std::uint32_t byte = code >> shift & 0xFF;
            out << "\\x" << kDigits[byte >> 4] << kDigits[byte & 15];
        }
        out << "\"\n";
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    writeDictionary(folder / "codes.dict");

    const SeedFolder atoms(folder / "atom");
    std::uint8_t number = 0;
    for (const AtomClass* cls : kAllClasses) {
        atoms.add(cls->className, join({u8(number++), defaultAtom(*cls)}));
        const Bytes movie = movieWith(defaultAtomInPlace(*cls));
        for (const char* name : {"movie", "json", "edit", "save"})
            SeedFolder(folder / name).add(cls->className, movie);
    }
    for (const char* name : {"movie", "json", "edit", "save"})
        SeedFolder(folder / name).add("small", smallMovie());

    const SeedFolder paths(folder / "path");
    for (const char* path :
         {"moov.mvhd.timeScale", "moov.trak[1].tkhd.matrix", "moov.trak[vide].mdia.mdhd.language",
          "ftyp.compatibleBrands[1]", "moov.0xA96E616D", "moov.trak[soun:0].tkhd.layer"}) {
        const std::string_view name = path;
        paths.add(name, join({u8(static_cast<std::uint8_t>(name.size())), text(name), text("7")}));
    }
}
