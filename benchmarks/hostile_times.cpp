// How does the time grow when a hostile movie does?
//
//   hostile_times [MIB]   reads, shows and plans to save movies of up to that many mebibytes, 64
//                         where nothing is said, and prints the processor time of each (user
//                         mode) and how much longer twice the length took at most

#include <malloc.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "apps/vexqt/json_document.h"
#include "limits/hostile_movies.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/SavePlan.h"
#include "vexqt/vexqt.h"

namespace vexqt::benchmarks {

namespace {

class DroppingOutput final : public cli::Output {
    void send(std::string_view) override {}
};

constexpr double kMostGrowth = 2.3;

/// What the program itself has used of its processor, in milliseconds. What the system takes to
/// hand out pages is left out: it depends on who used the memory before.
double timeUsed() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return 1e3 * static_cast<double>(usage.ru_utime.tv_sec) +
           1e-3 * static_cast<double>(usage.ru_utime.tv_usec);
}

/// The shortest time of a few calls, in milliseconds; of more of them where they are short.
template <class Work>
double timeOf(Work&& work) {
    constexpr double kEnough = 500;
    double shortest = 1e9, all = 0;
    for (int i = 0; all < (i < 3 ? 4 * kEnough : kEnough); ++i) {
        const double before = timeUsed();
        work();
        const double time = timeUsed() - before;
        shortest = std::min(shortest, time);
        all += time;
    }
    return shortest;
}

struct Times {
    double read, outline, json, plan;
};

Times timesOf(const Bytes& movie) {
    Times times{};
    times.read = timeOf([&] { VexQTAsset::initWithData(movie, {.tolerant = true}); });
    const auto asset = VexQTAsset::initWithData(movie, {.tolerant = true});
    times.outline = timeOf([&] {
        for (const auto& root : asset->rootAtoms()) root->description();
    });
    times.json = timeOf([&] {
        DroppingOutput out;
        cli::JsonWriter json(out, cli::JsonWriter::Layout::OneLine);
        cli::writeDocument(json, "movie.mov", *asset);
    });
    MemoryFileSystem files;
    files.put("movie.mov", movie);
    std::error_code error;
    const auto file = files.openForReading("movie.mov", error);
    times.plan = timeOf([&] { SavePlan::of(*asset, *file, SaveForm::Surgical); });
    return times;
}

}  // namespace

static void printFamily(const testing::HostileFamily& family, std::size_t most) {
    Times before{};
    double growth = 0;
    std::size_t length = std::min<std::size_t>(most, std::size_t{8} << 20);
    for (; length <= most; length *= 2) {
        const Bytes movie = family.movie(length);
        const Times now = timesOf(movie);
        std::printf("%-20.*s %8.1f %10.2f %10.2f %10.2f %10.2f\n",
                    static_cast<int>(family.name.size()), family.name.data(),
                    static_cast<double>(movie.size()) / (1 << 20), now.read, now.outline, now.json,
                    now.plan);
        for (const auto part : {&Times::read, &Times::outline, &Times::json, &Times::plan})
            if (before.*part > 1) growth = std::max(growth, now.*part / before.*part);
        before = now;
        std::fflush(stdout);
    }
    std::printf("%-20s %8s growth %.2f %s\n", "", "", growth,
                growth <= kMostGrowth ? "reached" : "MISSED");
}

}  // namespace vexqt::benchmarks

int main(int argc, char** argv) {
    // Memory is given back to the system and fetched anew, so that no run uses that of another.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    const std::size_t most = (argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 64) << 20;
    std::printf("%-20s %8s %10s %10s %10s %10s\n", "processor time in ms", "MiB", "read", "outline",
                "JSON", "plan");
    for (const auto& family : vexqt::testing::hostileFamilies())
        vexqt::benchmarks::printFamily(family, most);
}
