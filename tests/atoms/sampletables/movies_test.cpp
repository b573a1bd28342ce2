// Tables of real movies, against what a different program finds in the same files.

#include <fstream>
#include <sstream>

#include "atoms/sampletables/tables.h"
#include "testing/files.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/atoms/sampletables/VexQTco64Atom.h"
#include "vexqt/atoms/sampletables/VexQTcttsAtom.h"
#include "vexqt/atoms/sampletables/VexQTdrefAtom.h"
#include "vexqt/atoms/sampletables/VexQTelstAtom.h"
#include "vexqt/atoms/sampletables/VexQTstcoAtom.h"
#include "vexqt/atoms/sampletables/VexQTstscAtom.h"
#include "vexqt/atoms/sampletables/VexQTstssAtom.h"
#include "vexqt/atoms/sampletables/VexQTstszAtom.h"
#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"
#include "vexqt/atoms/structure/VexQTmdatAtom.h"
#include "vexqt/atoms/structure/VexQTtrakAtom.h"

namespace vexqt {
namespace {

using namespace testing;

/// A sample as both programs see it.
struct Sample {
    std::int64_t shownAt, decodedAt;
    std::uint64_t size, offset;
    bool isSync;
    friend bool operator==(const Sample&, const Sample&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Sample& sample) {
        return out << sample.shownAt << ' ' << sample.decodedAt << ' ' << sample.size << ' '
                   << sample.offset << (sample.isSync ? " sync" : "");
    }
};

/// What ffprobe finds in a stream, edits left out of account.
std::vector<Sample> samplesByProbe(const std::filesystem::path& movie, const std::string& stream) {
    const Outcome outcome =
        run({"ffprobe", "-v", "error", "-ignore_editlist", "1", "-select_streams", stream,
             "-show_entries", "packet=pts,dts,size,pos,flags", "-of", "csv=p=0", movie.string()});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    std::vector<Sample> samples;
    std::istringstream lines(outcome.output);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        char comma = 0;
        std::string flags;
        Sample sample{};
        words >> sample.shownAt >> comma >> sample.decodedAt >> comma >> sample.size >> comma >>
            sample.offset >> comma >> flags;
        sample.isSync = flags.starts_with('K');
        samples.push_back(sample);
    }
    EXPECT_FALSE(samples.empty());
    return samples;
}

template <class Atom>
Atom& tableOf(VexQTtrakAtom& track) {
    const Value value = track.valueForKeyPath("mdia.minf.stbl");
    VexQTAtom* stbl = std::get<VexQTAtom*>(value);
    return dynamic_cast<Atom&>(*stbl->childWithType(Atom::kClass.type));
}
bool hasTable(VexQTtrakAtom& track, OSType type) {
    const Value value = track.valueForKeyPath("mdia.minf.stbl");
    return std::get<VexQTAtom*>(value)->childWithType(type) != nullptr;
}

/// What the tables of a track say.
std::vector<Sample> samplesByTables(VexQTtrakAtom& track) {
    const auto& sizes = tableOf<VexQTstszAtom>(track);
    std::vector<Sample> samples(sizes.numberOfEntries());
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i].size =
            sizes.globalSampleSize() != 0 ? sizes.globalSampleSize() : sizes.sampleSizes()[i];

    std::int64_t time = 0;
    std::size_t next = 0;
    for (const auto& run : tableOf<VexQTsttsAtom>(track).sampleDurations())
        for (std::uint32_t i = 0; i < run.sampleCount(); ++i) {
            samples.at(next).decodedAt = samples.at(next).shownAt = time;
            time += run.sampleDuration();
            ++next;
        }
    EXPECT_EQ(next, samples.size());

    if (hasTable(track, "ctts"_os)) {
        next = 0;
        for (const auto& run : tableOf<VexQTcttsAtom>(track).compositionOffsets())
            for (std::uint32_t i = 0; i < run.sampleCount(); ++i)
                samples.at(next++).shownAt += static_cast<std::int32_t>(run.compositionOffset());
        EXPECT_EQ(next, samples.size());
    }

    const bool areAllSync = !hasTable(track, "stss"_os);
    for (Sample& sample : samples) sample.isSync = areAllSync;
    if (!areAllSync)
        for (const std::uint32_t number : tableOf<VexQTstssAtom>(track).syncSamples())
            samples.at(number - 1).isSync = true;

    std::vector<std::uint64_t> chunks;
    if (hasTable(track, "co64"_os)) {
        for (const std::int64_t offset : tableOf<VexQTco64Atom>(track).chunkOffsets())
            chunks.push_back(static_cast<std::uint64_t>(offset));
    } else {
        const auto& offsets = tableOf<VexQTstcoAtom>(track).chunkOffsets();
        chunks.assign(offsets.begin(), offsets.end());
    }
    const auto& runs = tableOf<VexQTstscAtom>(track).sampleToChunkEntries();
    next = 0;
    for (std::size_t chunk = 0, run = 0; chunk < chunks.size(); ++chunk) {
        while (run + 1 < runs.size() && runs[run + 1].firstChunk() <= chunk + 1) ++run;
        std::uint64_t offset = chunks[chunk];
        for (std::uint32_t i = 0; i < runs.at(run).samplesPerChunk(); ++i) {
            samples.at(next).offset = offset;
            offset += samples.at(next).size;
            ++next;
        }
    }
    EXPECT_EQ(next, samples.size());
    return samples;
}

std::unique_ptr<VexQTAsset> open(const std::filesystem::path& movie) {
    std::error_code error;
    auto asset = VexQTAsset::initWithURL(movie, error);
    EXPECT_TRUE(asset) << error.message();
    return asset;
}

VexQTtrakAtom& track(const VexQTAsset& asset, std::size_t index) {
    return *asset.moovAtom()->allTrackAtoms().at(index);
}

const std::vector<VexQTEditListEntry>& editsOf(VexQTtrakAtom& track) {
    const Value value = track.valueForKeyPath("edts.elst");
    return dynamic_cast<const VexQTelstAtom&>(*std::get<VexQTAtom*>(value)).editListEntries();
}

void expectTheBytesBack(VexQTAtom& atom) {
    const Bytes before(atom.origin().view().begin(), atom.origin().view().end());
    EXPECT_EQ(atom.atomData(), before) << atom.atomTypeString();
}

TEST(TablesOfMovies, OfPicturesOutOfOrderTellWhenEachIsShown) {
    const TemporaryFolder folder;
    const auto movie = makeMovie(folder, "b-frames.mov",
                                 {"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=25:duration=4",
                                  "-c:v", "libx264", "-bf", "3", "-g", "20", "-b_strategy", "0"});
    const auto asset = open(movie);
    VexQTtrakAtom& video = track(*asset, 0);
    EXPECT_EQ(samplesByTables(video), samplesByProbe(movie, "v:0"));

    const auto& offsets = std::as_const(tableOf<VexQTcttsAtom>(video)).compositionOffsets();
    EXPECT_GT(offsets.size(), 10u);
    // The edit begins where the first picture is shown.
    ASSERT_EQ(editsOf(video).size(), 1u);
    EXPECT_EQ(editsOf(video)[0].mediaTime(), offsets[0].compositionOffset());
    EXPECT_GT(editsOf(video)[0].mediaTime(), 0u);
    EXPECT_GT(tableOf<VexQTstssAtom>(video).syncSamples().size(), 1u);
    expectTheBytesBack(tableOf<VexQTcttsAtom>(video));
    expectTheBytesBack(tableOf<VexQTsttsAtom>(video));
    expectTheBytesBack(tableOf<VexQTstssAtom>(video));
    expectTheBytesBack(tableOf<VexQTstszAtom>(video));
}

TEST(TablesOfMovies, OfManyChunksTellWhereEachSampleLies) {
    const TemporaryFolder folder;
    const auto movie = makeMovie(
        folder, "interleaved.mov",
        {"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=25:duration=8", "-f", "lavfi", "-i",
         "sine=frequency=440:sample_rate=44100:duration=8", "-c:v", "mpeg4", "-c:a", "aac"});
    const auto asset = open(movie);
    for (const std::size_t index : {0u, 1u}) {
        SCOPED_TRACE(index);
        VexQTtrakAtom& its = track(*asset, index);
        EXPECT_EQ(samplesByTables(its), samplesByProbe(movie, std::to_string(index)));
        EXPECT_GT(tableOf<VexQTstcoAtom>(its).chunkOffsets().size(), 8u);
        expectTheBytesBack(tableOf<VexQTstscAtom>(its));
        expectTheBytesBack(tableOf<VexQTstcoAtom>(its));
        const Value value = its.valueForKeyPath("mdia.minf.dinf.dref");
        auto& references = dynamic_cast<VexQTdrefAtom&>(*std::get<VexQTAtom*>(value));
        ASSERT_EQ(references.children().size(), 1u);
        EXPECT_EQ(references.children()[0]->flags2(), 1);
        expectTheBytesBack(references);
    }
}

TEST(TablesOfMovies, OfEditsTellWhatIsLeftEmptyAndWhatIsPlayed) {
    const TemporaryFolder folder;
    const auto movie =
        makeMovie(folder, "late.mov",
                  {"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=25:duration=2", "-itsoffset", "1",
                   "-f", "lavfi", "-i", "sine=frequency=440:sample_rate=44100:duration=1", "-c:v",
                   "mpeg4", "-c:a", "aac"});
    const auto asset = open(movie);
    const auto& entries = editsOf(track(*asset, 1));
    ASSERT_EQ(entries.size(), 2u);
    // The movie counts in thousandths.
    EXPECT_NEAR(entries[0].trackDuration(), 1000, 30);
    EXPECT_EQ(entries[0].mediaTime(), 0xFFFFFFFF);
    EXPECT_EQ(entries[0].mediaRate(), 1.0);
    EXPECT_NEAR(entries[1].trackDuration(), 1000, 30);
    EXPECT_EQ(entries[1].mediaTime(), 0u);
    EXPECT_EQ(entries[1].mediaRate(), 1.0);
    const Value value = track(*asset, 1).valueForKeyPath("edts.elst");
    expectTheBytesBack(*std::get<VexQTAtom*>(value));
}

/// The same movie with its media data at the end of a media atom of more than 5 GiB, which takes
/// no room on a disk that leaves out what is not written.
std::filesystem::path movedPast4GiB(const TemporaryFolder& folder,
                                    const std::filesystem::path& movie) {
    constexpr std::uint64_t kHole = 5ull << 30;
    const auto asset = open(movie);
    const Bytes bytes = readFile(movie);
    const VexQTAtom* media = nullptr;
    for (const auto& root : asset->rootAtoms())
        if (root->atomType() == "mdat"_os) media = root.get();
    const ByteView samples =
        ByteView(bytes).subspan(media->offsetInFile() + 8).first(media->atomSize() - 8);

    const Bytes fileType = atom("ftyp"_os, {text("qt  "), u32(0x200), text("qt  ")});
    const std::uint64_t samplesAt = fileType.size() + 16 + kHole;
    VexQTtrakAtom& video = track(*asset, 0);
    VexQTAtom& stbl = *tableOf<VexQTstcoAtom>(video).parent();
    std::vector<std::int64_t> offsets;
    for (const std::uint32_t offset : tableOf<VexQTstcoAtom>(video).chunkOffsets())
        offsets.push_back(
            static_cast<std::int64_t>(samplesAt + offset - (media->offsetInFile() + 8)));
    auto wide = std::make_unique<VexQTco64Atom>();
    wide->setVersion(0);
    wide->setChunkOffsets(std::move(offsets));
    stbl.removeChildrenWithType("stco"_os);
    stbl.addChild(std::move(wide));

    const auto path = folder / "moved.mov";
    std::ofstream file(path, std::ios::binary);
    const auto write = [&file](ByteView part) {
        for (const std::uint8_t byte : part) file.put(static_cast<char>(byte));
    };
    write(fileType);
    write(extendedAtomClaiming(16 + kHole + samples.size(), "mdat"_os));
    file.seekp(static_cast<std::streamoff>(samplesAt));
    write(samples);
    write(asset->moovAtom()->atomData());
    EXPECT_TRUE(file.good());
    return path;
}

TEST(TablesOfMovies, ReachPast4GiB) {
    const TemporaryFolder folder;
    const auto small = makeMovie(folder, "small.mov",
                                 {"-f", "lavfi", "-i", "testsrc2=size=64x48:rate=25:duration=2",
                                  "-c:v", "mpeg4", "-video_track_timescale", "600"});
    const auto movie = movedPast4GiB(folder, small);
    EXPECT_EQ(decodedDigest(movie), decodedDigest(small));

    const auto asset = open(movie);
    VexQTtrakAtom& video = track(*asset, 0);
    EXPECT_GT(tableOf<VexQTco64Atom>(video).chunkOffsets()[0], std::int64_t{5} << 30);
    EXPECT_EQ(samplesByTables(video), samplesByProbe(movie, "v:0"));
    expectTheBytesBack(tableOf<VexQTco64Atom>(video));

    // An edit of a table, saved in place behind the five gibibytes.
    tableOf<VexQTsttsAtom>(video).sampleDurations()[0].setSampleDuration(48);
    std::error_code error;
    EXPECT_TRUE(asset->writeInPlaceWithError(error)) << error.message();
    const auto saved = samplesByProbe(movie, "v:0");
    EXPECT_EQ(saved[1].decodedAt, 48);
    EXPECT_EQ(samplesByTables(track(*open(movie), 0)), saved);
}

}  // namespace
}  // namespace vexqt
