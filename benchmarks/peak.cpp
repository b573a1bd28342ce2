#include "peak.h"

#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "apps/vexqt/json_document.h"
#include "movies.h"

namespace vexqt::benchmarks {

namespace {

class DroppingOutput final : public cli::Output {
    void send(std::string_view) override {}
};

/// What the system counts for this process since its program was started.
std::uint64_t peakOfThisProcess() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::stoull(line.substr(6)) * 1024;
    throw std::runtime_error("the system does not tell how much memory was used");
}

}  // namespace

std::uint64_t peakHere(const std::string& thing, const std::filesystem::path& movie) {
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(movie, error);
    if (!asset) throw std::runtime_error(error.message());
    if (thing == "decode") decodeEveryRow(*asset->moovAtom());
    if (thing == "json") {
        DroppingOutput out;
        cli::JsonWriter writer(out, cli::JsonWriter::Layout::Indented);
        cli::writeDocument(writer, movie.string(), *asset);
        out.flush();
    }
    return peakOfThisProcess();
}

std::uint64_t peakOf(const std::string& thing, const std::filesystem::path& movie) {
    const auto self = std::filesystem::read_symlink("/proc/self/exe").string();
    const std::string command = "'" + self + "' --peak-of " + thing + " '" + movie.string() + "'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> answer(popen(command.c_str(), "r"),
                                                                 pclose);
    char line[32] = {};
    if (!answer || std::fgets(line, sizeof(line), answer.get()) == nullptr)
        throw std::runtime_error("cannot run " + command);
    return std::stoull(line);
}

}  // namespace vexqt::benchmarks
