#include "movies.h"

#include <fcntl.h>
#include <unistd.h>

#include <map>
#include <stdexcept>

#include "BigMovie.h"
#include "vexqt/vexqt.h"

namespace vexqt::benchmarks {

namespace {

class Folder {
public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "vexqt-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// Calls back with every table atom below an atom.
template <class Visit>
void eachTable(VexQTAtom& atom, Visit visit) {
    for (const auto& child : atom.children()) eachTable(*child, visit);
    if (auto* stts = dynamic_cast<VexQTsttsAtom*>(&atom)) visit(*stts);
    if (auto* ctts = dynamic_cast<VexQTcttsAtom*>(&atom)) visit(*ctts);
    if (auto* stss = dynamic_cast<VexQTstssAtom*>(&atom)) visit(*stss);
    if (auto* stsc = dynamic_cast<VexQTstscAtom*>(&atom)) visit(*stsc);
    if (auto* stsz = dynamic_cast<VexQTstszAtom*>(&atom)) visit(*stsz);
    if (auto* stco = dynamic_cast<VexQTstcoAtom*>(&atom)) visit(*stco);
    if (auto* co64 = dynamic_cast<VexQTco64Atom*>(&atom)) visit(*co64);
}

template <class Atom>
auto& rowsOf(Atom& atom) {
    if constexpr (requires { atom.sampleDurations(); }) return atom.sampleDurations();
    if constexpr (requires { atom.compositionOffsets(); }) return atom.compositionOffsets();
    if constexpr (requires { atom.syncSamples(); }) return atom.syncSamples();
    if constexpr (requires { atom.sampleToChunkEntries(); }) return atom.sampleToChunkEntries();
    if constexpr (requires { atom.sampleSizes(); }) return atom.sampleSizes();
    if constexpr (requires { atom.chunkOffsets(); }) return atom.chunkOffsets();
}

template <class T>
std::vector<T> nativeNumbers(std::span<const std::uint8_t> bytes) {
    std::vector<T> numbers(bytes.size() / sizeof(T));
    const std::uint8_t* at = bytes.data();
    for (T& number : numbers) {
        number = loadBigEndian<T>(at);
        at += sizeof(T);
    }
    return numbers;
}

}  // namespace

const std::filesystem::path& movieWith(std::int64_t sampleCount) {
    static const Folder folder;
    static std::map<std::int64_t, std::filesystem::path> movies;
    auto& path = movies[sampleCount];
    if (path.empty()) {
        path = folder.path() / (std::to_string(sampleCount) + ".mov");
        writeBigMovie(path, static_cast<std::uint32_t>(sampleCount));
    }
    return path;
}

std::unique_ptr<VexQTAsset> openMovieWith(std::int64_t sampleCount) {
    std::error_code error;
    auto asset = VexQTAsset::initWithURL(movieWith(sampleCount), error);
    if (!asset || asset->moovAtom() == nullptr) throw std::runtime_error(error.message());
    return asset;
}

const MoviePlace& placeOfMovieWith(std::int64_t sampleCount) {
    static std::map<std::int64_t, MoviePlace> places;
    MoviePlace& place = places[sampleCount];
    if (place.length != 0) return place;
    const auto asset = openMovieWith(sampleCount);
    VexQTmoovAtom& movie = *asset->moovAtom();
    place.offset = movie.extent().start;
    place.length = movie.extent().length;
    eachTable(movie, [&](auto& table) {
        const std::size_t head = table.atomType() == "stsz"_os ? 20 : 16;
        if (table.origin().size() == head) return;
        place.tables.push_back(
            {.offset = *movie.origin().offsetOf(table.origin()) + head,
             .length = table.origin().size() - head,
             .numberWidth = table.atomType() == "co64"_os ? std::size_t{8} : std::size_t{4}});
    });
    return place;
}

std::unique_ptr<std::uint8_t[]> readMovieWith(std::int64_t sampleCount) {
    const MoviePlace& place = placeOfMovieWith(sampleCount);
    auto bytes = std::make_unique_for_overwrite<std::uint8_t[]>(place.length);
    const int file = ::open(movieWith(sampleCount).c_str(), O_RDONLY);
    std::size_t filled = 0;
    while (filled < place.length) {
        const ssize_t count = ::pread(file, bytes.get() + filled, place.length - filled,
                                      static_cast<off_t>(place.offset + filled));
        if (count <= 0) throw std::runtime_error("a movie cannot be read");
        filled += static_cast<std::size_t>(count);
    }
    ::close(file);
    return bytes;
}

std::vector<NativeTable> nativeTables(const MoviePlace& place, const std::uint8_t* movie) {
    std::vector<NativeTable> tables;
    for (const TablePlace& table : place.tables) {
        const std::span bytes(movie + table.offset, table.length);
        NativeTable& native = tables.emplace_back();
        if (table.numberWidth == 8) {
            native.wide = nativeNumbers<std::uint64_t>(bytes);
        } else {
            native.narrow = nativeNumbers<std::uint32_t>(bytes);
        }
    }
    return tables;
}

std::size_t decodeEveryRow(VexQTAtom& atom) {
    std::size_t count = 0;
    eachTable(atom, [&](const auto& table) { count += rowsOf(table).size(); });
    return count;
}

std::size_t decodeEveryRowForEditing(VexQTAtom& atom) {
    std::size_t count = 0;
    eachTable(atom, [&](auto& table) { count += rowsOf(table).size(); });
    return count;
}

}  // namespace vexqt::benchmarks
