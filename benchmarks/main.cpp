// Runs every benchmark and sets the times side by side: each question against what nobody can do
// without, in the same run on the same machine.

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <map>
#include <optional>
#include <set>

#include "movies.h"
#include "peak.h"

namespace vexqt::benchmarks {

namespace {

/// Keeps the shortest processor time of every benchmark: whatever else the machine does only adds
/// to it.
class ShortestTimes : public benchmark::ConsoleReporter {
public:
    using ConsoleReporter::ConsoleReporter;

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            const double time = run.GetAdjustedCPUTime();
            const auto [known, isNew] = times_.emplace(run.benchmark_name(), time);
            if (!isNew) known->second = std::min(known->second, time);
            Save& save = saves_[run.benchmark_name()];
            save.time = save.time == 0 ? run.GetAdjustedRealTime()
                                       : std::min(save.time, run.GetAdjustedRealTime());
            const auto counted = [&](const char* name) {
                const auto counter = run.counters.find(name);
                return counter != run.counters.end() ? counter->second.value : 0;
            };
            save.written = counted("written");
            save.kept = counted("kept");
        }
    }

    /// What is measured by a clock on the wall.
    struct Save {
        double time = 0;               ///< In milliseconds.
        double written = 0, kept = 0;  ///< Bytes of the movie, and old bytes kept in a journal.
    };
    std::optional<Save> saveOf(const std::string& question) const {
        const auto known = saves_.find(question + "/real_time");
        return known != saves_.end() ? std::optional(known->second) : std::nullopt;
    }

    /// In milliseconds; absent where it was not run.
    std::optional<double> of(const std::string& question, std::int64_t sampleCount) const {
        const auto known = times_.find(question + "/" + std::to_string(sampleCount));
        return known != times_.end() ? std::optional(known->second) : std::nullopt;
    }

private:
    std::map<std::string, double> times_;
    std::map<std::string, Save> saves_;
};

struct Question {
    const char* what;
    const char* benchmark;
    const char* floor;  ///< What its time is measured by.
    double limit;       ///< How many times the floor it may take; 0 for no limit.
};
constexpr Question kQuestions[] = {
    {"open", "Open", "Read", 1.3},
    {"open, every row decoded", "OpenAndDecode", "ReadAndSwap", 1.6},
    {"outline of an open movie", "Outline", "Open", 0.01},
    {"serialise", "Serialise", "Swap", 1.5},
    {"serialise edited rows", "SerialiseEdited", "Swap", 1.5},
    {"save in place", "SaveInPlace", "SwapAndWrite", 0},
    {"JSON", "Json", "Digits", 2},
    {"JSON on one line", "JsonOnOneLine", "Digits", 2},
};
constexpr double kMostGrowth = 11;
constexpr std::int64_t kMany = 10'000'000, kFewer = 1'000'000;

/// A number in a column; empty for one that is not known.
std::string cell(std::optional<double> number, int digits) {
    if (!number) return "";
    char text[32];
    std::snprintf(text, sizeof(text), "%.*f", digits, *number);
    return text;
}
std::optional<double> ratio(std::optional<double> time, std::optional<double> floor) {
    if (!time || !floor) return std::nullopt;
    return *time / *floor;
}
std::string verdict(std::optional<double> measured, double limit) {
    if (!measured || limit == 0) return "";
    return *measured <= limit ? "reached" : "MISSED";
}

void printTimes(const ShortestTimes& times) {
    std::printf("\n%-26s %9s %9s %9s %7s  %7s %7s  %-14s %6s %6s\n", "processor time in ms",
                "100 000", "1 000 000", "10000 000", "growth", "/read", "/swap", "/floor", "",
                "limit");
    std::set<std::string> floors;
    const auto printRow = [&](const char* what, const char* benchmark, const Question* question) {
        const auto many = times.of(benchmark, kMany);
        const auto growth = ratio(many, times.of(benchmark, kFewer));
        std::printf("%-26s %9s %9s %9s %7s  %7s %7s", what,
                    cell(times.of(benchmark, kSampleCounts[0]), 2).c_str(),
                    cell(times.of(benchmark, kFewer), 2).c_str(), cell(many, 1).c_str(),
                    cell(growth, 1).c_str(), cell(ratio(many, times.of("Read", kMany)), 2).c_str(),
                    cell(ratio(many, times.of("ReadAndSwap", kMany)), 2).c_str());
        if (question != nullptr) {
            const auto measured = ratio(many, times.of(question->floor, kMany));
            std::printf("  %-14s %6s %6s %s", question->floor, cell(measured, 3).c_str(),
                        question->limit != 0 ? cell(question->limit, 2).c_str() : "",
                        verdict(measured, question->limit).c_str());
            if (growth && *growth > kMostGrowth) std::printf(", growth MISSED");
        }
        std::printf("\n");
    };
    for (const Question& question : kQuestions) {
        if (floors.insert(question.floor).second && std::string(question.floor) != "Open")
            printRow(question.floor, question.floor, nullptr);
        printRow(question.what, question.benchmark, &question);
    }
}

void printSaves(const ShortestTimes& times) {
    static constexpr std::pair<const char*, const char*> kSaves[] = {
        {"read the movie atom once", "ReadMovie"},
        {"one field, patched", "SavePatch"},
        {"the same, opened first", "OpenAndSavePatch"},
        {"longer, in the old place", "SaveInOldPlace"},
        {"longer, moved behind media", "SaveMove"},
    };
    std::printf("\n%-26s %9s %9s %12s %12s\n", "saves of a 240 MB movie", "ms", "/read", "written",
                "kept before");
    const auto floor = times.saveOf(kSaves[0].second);
    for (const auto& [what, benchmark] : kSaves) {
        const auto save = times.saveOf(benchmark);
        if (!save) continue;
        std::printf("%-26s %9.1f %9.2f %12.0f %12.0f\n", what, save->time,
                    floor ? save->time / floor->time : 0.0, save->written, save->kept);
    }
}

void printPeaks() {
    const auto& movie = movieWith(kMany);
    const auto length = static_cast<double>(placeOfMovieWith(kMany).length);
    constexpr double kMiB = 1024.0 * 1024.0;
    const auto open = static_cast<double>(peakOf("open", movie));
    const auto decode = static_cast<double>(peakOf("decode", movie));
    const auto json = static_cast<double>(peakOf("json", movie));
    const struct {
        const char* what;
        double measured, limit;
    } rows[] = {
        {"open", open, 1.1 * length + 16 * kMiB},
        {"open, every row decoded", decode, 2.2 * length},
        {"JSON beyond open", json - open, 8 * kMiB},
    };
    std::printf("\n%-26s %9s %9s\n", "peak memory in MiB", "10000 000", "limit");
    std::printf("%-26s %9.1f\n", "the movie atom", length / kMiB);
    for (const auto& [what, measured, limit] : rows)
        std::printf("%-26s %9.1f %9.1f %s\n", what, measured / kMiB, limit / kMiB,
                    verdict(measured, limit).c_str());
}

}  // namespace

}  // namespace vexqt::benchmarks

int main(int argc, char** argv) {
    using namespace vexqt::benchmarks;
    if (argc == 4 && std::string(argv[1]) == "--peak-of") {
        std::cout << peakHere(argv[2], argv[3]) << "\n";
        return 0;
    }
    // A program opens a movie once, in memory that it has not used before. Without this, blocks of
    // the smaller movies would be used again and again, and only the largest would pay for fresh
    // pages.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    ShortestTimes times(benchmark::ConsoleReporter::OO_None);
    benchmark::RunSpecifiedBenchmarks(&times);
    printTimes(times);
    printSaves(times);
    printPeaks();
}
