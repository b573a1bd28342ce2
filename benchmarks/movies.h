// What every benchmark starts from: big movies on disk, and their tables as a program without a
// library would hold them.
#pragma once

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "vexqt/asset/VexQTAsset.h"

namespace vexqt::benchmarks {

/// How many samples the movies have.
inline constexpr std::int64_t kSampleCounts[] = {100'000, 1'000'000, 10'000'000};

/// Every benchmark is run with each of the movies.
inline void withEveryMovie(benchmark::internal::Benchmark* question) {
    for (const std::int64_t count : kSampleCounts) question->Arg(count);
    question->Unit(benchmark::kMillisecond);
}

/// A movie of that many samples, written when it is first asked for and gone with the program.
const std::filesystem::path& movieWith(std::int64_t sampleCount);
std::unique_ptr<VexQTAsset> openMovieWith(std::int64_t sampleCount);

/// The longest tables of a movie's atom: where their entries lie in its bytes, and how wide the
/// numbers are of which they consist.
struct TablePlace {
    std::size_t offset, length;
    std::size_t numberWidth;
};
struct MoviePlace {
    std::uint64_t offset, length;
    std::vector<TablePlace> tables;
};
const MoviePlace& placeOfMovieWith(std::int64_t sampleCount);

/// The movie atom's bytes, read by plain means.
std::unique_ptr<std::uint8_t[]> readMovieWith(std::int64_t sampleCount);

/// A table as a list of native numbers; one of the two lists is empty.
struct NativeTable {
    std::vector<std::uint32_t> narrow;
    std::vector<std::uint64_t> wide;
};
/// Swaps every table into lists of its own.
std::vector<NativeTable> nativeTables(const MoviePlace& place, const std::uint8_t* movie);

/// Decodes every row of every table below an atom and gives their number.
std::size_t decodeEveryRow(VexQTAtom& atom);
/// The same by way of the lists that are there for editing.
std::size_t decodeEveryRowForEditing(VexQTAtom& atom);

}  // namespace vexqt::benchmarks
