// How long does a save take that nothing can destroy a movie by, and how much does it write?
//
// The movie atom is the longest of those that all benchmarks have, and its media are 2 GiB, a hole
// that costs no disk. Times are those of a clock on the wall, because a save waits for the disk.

#include <filesystem>
#include <stdexcept>

#include "movies.h"
#include "vexqt/saving/SafeSave.h"
#include "vexqt/vexqt.h"

namespace vexqt::benchmarks {
namespace {

constexpr std::int64_t kSamples = 10'000'000;
constexpr std::uint64_t kMediaLength = std::uint64_t{1} << 31;
constexpr std::uint64_t kExtendedHeader = 16;

enum class MoviePosition { InFrontOfMedia, BehindMedia };
enum class Timed { SaveAlone, OpeningToo };

void check(const std::error_code& error) {
    if (error) throw std::runtime_error(error.message());
}

/// A movie with 2 GiB of media, there as long as this object is.
class MovieWithMedia {
public:
    explicit MovieWithMedia(MoviePosition position)
        : path_(movieWith(kSamples).string() + ".saved"), position_(position) {
        const MoviePlace& place = placeOfMovieWith(kSamples);
        const auto movie = readMovieWith(kSamples);
        std::error_code error;
        const auto file = systemFiles().create(path_, IfExists::Replace, error);
        check(error);
        ByteWriter fileType, media;
        VexQTftypAtom().appendTo(fileType);
        media.u32(1);
        media.u32("mdat"_os);
        media.u64(kMediaLength + kExtendedHeader);
        const bool isFirst = position == MoviePosition::InFrontOfMedia;
        movieStart_ = fileType.length() + (isFirst ? 0 : kExtendedHeader + kMediaLength);
        mediaEnd_ =
            fileType.length() + kExtendedHeader + kMediaLength + (isFirst ? place.length : 0);
        file->truncate(mediaEnd_, error);
        check(error);
        file->writeAt(0, fileType.view(), error);
        check(error);
        file->writeAt(fileType.length() + (isFirst ? place.length : 0), media.view(), error);
        check(error);
        file->writeAt(movieStart_, ByteView(movie.get(), place.length), error);
        check(error);
        file->flush(error);
        check(error);
    }
    ~MovieWithMedia() { std::filesystem::remove(path_); }
    MovieWithMedia(const MovieWithMedia&) = delete;
    MovieWithMedia& operator=(const MovieWithMedia&) = delete;

    std::unique_ptr<VexQTAsset> open() const {
        std::error_code error;
        auto asset = VexQTAsset::initWithURL(path_, error, {.tolerant = true});
        check(error);
        return asset;
    }
    /// A movie that was moved behind its media gets its old place again.
    void moveBack() const {
        if (position_ != MoviePosition::InFrontOfMedia) return;
        std::error_code error;
        const auto file = systemFiles().openForWriting(path_, error);
        check(error);
        file->truncate(mediaEnd_, error);
        check(error);
        static constexpr std::uint8_t kType[] = {'m', 'o', 'o', 'v'};
        file->writeAt(movieStart_ + 4, kType, error);
        check(error);
    }

private:
    std::filesystem::path path_;
    MoviePosition position_;
    std::uint64_t movieStart_ = 0, mediaEnd_ = 0;
};

/// One more second in the time scale of the movie: the bytes of one field.
void editOneField(VexQTAsset& asset) {
    auto& header = *asset.moovAtom()->childWithType("mvhd"_os);
    const auto scale = integerFrom(header.valueForKey("timeScale")).value_or(0);
    header.setValueForKey(static_cast<std::uint32_t>(scale + 1), "timeScale");
}

/// A few bytes more in the movie atom, so that all of it lies elsewhere.
void editLength(VexQTAsset& asset) {
    ByteWriter note;
    note.u32(32);
    note.u32("note"_os);
    note.zeros(24);
    auto atom = VexQTAtom::initWithData(note.view(), asset.moovAtom(), 0);
    asset.moovAtom()->insertChild(std::move(atom), "mvhd"_os);
}

template <class Edit>
void save(benchmark::State& state, MoviePosition position, SavePlan::Way way, Edit edit,
          Timed timed) {
    const MovieWithMedia movie(position);
    std::uint64_t written = 0, handled = 0;
    SaveOptions options;
    options.force = true;  // To play from a network later is no reason to stop here.
    options.progress = [&](std::uint64_t, std::uint64_t total) { handled = total; };
    for (auto _ : state) {
        if (timed == Timed::SaveAlone) state.PauseTiming();
        const auto asset = movie.open();
        edit(*asset);
        if (timed == Timed::SaveAlone) state.ResumeTiming();
        const SaveResult result = saveInPlace(*asset, options);
        state.PauseTiming();
        if (result.outcome != SaveResult::Outcome::Saved || result.plan.way() != way)
            throw std::runtime_error(result.failure ? result.failure->what : "saved otherwise");
        written = result.plan.change().bytesWritten();
        movie.moveBack();
        state.ResumeTiming();
    }
    state.counters["written"] = static_cast<double>(written);
    state.counters["kept"] = static_cast<double>(handled - written);
}

void SavePatch(benchmark::State& state) {
    save(state, MoviePosition::BehindMedia, SavePlan::Way::Patch, editOneField, Timed::SaveAlone);
}
void OpenAndSavePatch(benchmark::State& state) {
    save(state, MoviePosition::BehindMedia, SavePlan::Way::Patch, editOneField, Timed::OpeningToo);
}
void SaveInOldPlace(benchmark::State& state) {
    save(state, MoviePosition::BehindMedia, SavePlan::Way::InOldPlace, editLength,
         Timed::SaveAlone);
}
void SaveMove(benchmark::State& state) {
    save(state, MoviePosition::InFrontOfMedia, SavePlan::Way::Move, editLength, Timed::SaveAlone);
}
/// What no save can do without.
void ReadMovie(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(readMovieWith(kSamples));
}

BENCHMARK(ReadMovie)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SavePatch)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(OpenAndSavePatch)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SaveInOldPlace)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SaveMove)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vexqt::benchmarks
