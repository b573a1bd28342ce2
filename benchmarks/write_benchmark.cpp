// How long does it take to serialise a movie, and to save it in place?

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

#include "movies.h"

namespace vexqt::benchmarks {
namespace {

void setRate(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<std::int64_t>(placeOfMovieWith(state.range(0)).length) *
                            state.iterations());
}

template <class T>
std::uint8_t* putSwapped(const std::vector<T>& numbers, std::uint8_t* to) {
    for (const T number : numbers) {
        storeBigEndian(to, number);
        to += sizeof(T);
    }
    return to;
}

std::unique_ptr<std::uint8_t[]> swapped(const std::vector<NativeTable>& tables,
                                        std::size_t length) {
    auto bytes = std::make_unique_for_overwrite<std::uint8_t[]>(length);
    std::uint8_t* to = bytes.get();
    for (const NativeTable& table : tables)
        to = putSwapped(table.wide, putSwapped(table.narrow, to));
    return bytes;
}

void Swap(benchmark::State& state) {
    const MoviePlace& place = placeOfMovieWith(state.range(0));
    const auto tables = nativeTables(place, readMovieWith(state.range(0)).get());
    for (auto _ : state) benchmark::DoNotOptimize(swapped(tables, place.length));
    setRate(state);
}
BENCHMARK(Swap)->Apply(withEveryMovie);

void Serialise(benchmark::State& state) {
    const auto asset = openMovieWith(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(asset->moovAtom()->atomData());
    setRate(state);
}
BENCHMARK(Serialise)->Apply(withEveryMovie);

void SerialiseEdited(benchmark::State& state) {
    const auto asset = openMovieWith(state.range(0));
    decodeEveryRowForEditing(*asset->moovAtom());
    for (auto _ : state) benchmark::DoNotOptimize(asset->moovAtom()->atomData());
    setRate(state);
}
BENCHMARK(SerialiseEdited)->Apply(withEveryMovie);

/// What saving cannot do without.
void SwapAndWrite(benchmark::State& state) {
    const MoviePlace& place = placeOfMovieWith(state.range(0));
    const auto movie = readMovieWith(state.range(0));
    const auto tables = nativeTables(place, movie.get());
    const auto path = movieWith(state.range(0)).string() + ".written";
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT, 0600);
    for (auto _ : state) {
        const auto bytes = swapped(tables, place.length);
        if (::pwrite(file, bytes.get(), place.length, 0) != static_cast<ssize_t>(place.length))
            throw std::runtime_error("a movie cannot be written");
    }
    ::close(file);
    ::unlink(path.c_str());
    setRate(state);
}
BENCHMARK(SwapAndWrite)->Apply(withEveryMovie);

void SaveInPlace(benchmark::State& state) {
    const auto asset = openMovieWith(state.range(0));
    for (auto _ : state) {
        std::error_code error;
        if (!asset->writeInPlaceWithError(error)) throw std::runtime_error(error.message());
    }
    setRate(state);
}
BENCHMARK(SaveInPlace)->Apply(withEveryMovie);

}  // namespace
}  // namespace vexqt::benchmarks
