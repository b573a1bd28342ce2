// How much longer than its digits takes a movie as JSON?

#include <charconv>

#include "apps/vexqt/json_document.h"
#include "movies.h"

namespace vexqt::benchmarks {
namespace {

/// Takes everything and keeps nothing.
class DroppingOutput final : public cli::Output {
    void send(std::string_view bytes) override { benchmark::DoNotOptimize(bytes.data()); }
};

template <class T>
void putDigits(const std::vector<T>& numbers, std::span<char> buffer) {
    char* to = buffer.data();
    char* const last = buffer.data() + buffer.size();
    for (const T number : numbers) {
        if (last - to < 20) to = buffer.data();
        to = std::to_chars(to, last, number).ptr;
    }
    benchmark::DoNotOptimize(to);
}

void Digits(benchmark::State& state) {
    const MoviePlace& place = placeOfMovieWith(state.range(0));
    const auto tables = nativeTables(place, readMovieWith(state.range(0)).get());
    std::vector<char> buffer(cli::Output::kCapacity);
    for (auto _ : state)
        for (const NativeTable& table : tables) {
            putDigits(table.narrow, buffer);
            putDigits(table.wide, buffer);
        }
}
BENCHMARK(Digits)->Apply(withEveryMovie);

void json(benchmark::State& state, cli::JsonWriter::Layout layout) {
    const auto asset = openMovieWith(state.range(0));
    for (auto _ : state) {
        DroppingOutput out;
        cli::JsonWriter writer(out, layout);
        cli::writeDocument(writer, "movie.mov", *asset);
        out.flush();
    }
}
void Json(benchmark::State& state) { json(state, cli::JsonWriter::Layout::Indented); }
BENCHMARK(Json)->Apply(withEveryMovie);
void JsonOnOneLine(benchmark::State& state) { json(state, cli::JsonWriter::Layout::OneLine); }
BENCHMARK(JsonOnOneLine)->Apply(withEveryMovie);

}  // namespace
}  // namespace vexqt::benchmarks
