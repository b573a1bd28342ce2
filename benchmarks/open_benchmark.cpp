// How long does it take to open a movie, and to have every row of its tables?

#include "movies.h"

namespace vexqt::benchmarks {
namespace {

void setRate(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<std::int64_t>(placeOfMovieWith(state.range(0)).length) *
                            state.iterations());
}

void Read(benchmark::State& state) {
    placeOfMovieWith(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(readMovieWith(state.range(0)));
    setRate(state);
}
BENCHMARK(Read)->Apply(withEveryMovie);

void ReadAndSwap(benchmark::State& state) {
    const MoviePlace& place = placeOfMovieWith(state.range(0));
    for (auto _ : state) {
        const auto movie = readMovieWith(state.range(0));
        benchmark::DoNotOptimize(nativeTables(place, movie.get()));
    }
    setRate(state);
}
BENCHMARK(ReadAndSwap)->Apply(withEveryMovie);

void Open(benchmark::State& state) {
    movieWith(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(openMovieWith(state.range(0)));
    setRate(state);
}
BENCHMARK(Open)->Apply(withEveryMovie);

void OpenAndDecode(benchmark::State& state) {
    movieWith(state.range(0));
    for (auto _ : state) {
        const auto asset = openMovieWith(state.range(0));
        benchmark::DoNotOptimize(decodeEveryRow(*asset->moovAtom()));
    }
    setRate(state);
}
BENCHMARK(OpenAndDecode)->Apply(withEveryMovie);

void Outline(benchmark::State& state) {
    const auto asset = openMovieWith(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(asset->moovAtom()->description());
}
BENCHMARK(Outline)->Apply(withEveryMovie);

}  // namespace
}  // namespace vexqt::benchmarks
