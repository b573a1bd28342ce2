#include "BigMovie.h"

#include <fstream>

#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"
#include "vexqt/vexqt.h"

namespace vexqt::benchmarks {

namespace {

/// The same numbers in every run and on every machine, as unlike each other as those of a movie.
class Numbers {
public:
    std::uint32_t between(std::uint32_t least, std::uint32_t most) {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return least + static_cast<std::uint32_t>(state_ >> 33) % (most - least + 1);
    }

private:
    std::uint64_t state_ = 1;
};

template <class Atom>
std::unique_ptr<Atom> newTable() {
    auto table = std::make_unique<Atom>();
    table->setVersion(0);
    return table;
}

/// A track around a sample table.
std::unique_ptr<VexQTAtom> newTrack(OSType mediaType, std::unique_ptr<VexQTAtom> sampleTable) {
    ByteWriter sameFile;
    sameFile.u32(12);
    sameFile.u32("alis"_os);
    sameFile.u32(1);
    auto references = newTable<VexQTdrefAtom>();
    references->addChild(VexQTDataReference::initWithData(sameFile.view(), nullptr, 0));
    auto data = std::make_unique<VexQTdinfAtom>();
    data->addChild(std::move(references));
    auto information = std::make_unique<VexQTminfAtom>();
    information->addChild(std::move(data));
    information->addChild(std::move(sampleTable));

    auto handler = std::make_unique<VexQThdlrAtom>();
    handler->setComponentType("mhlr"_os);
    handler->setComponentSubType(mediaType);
    auto header = std::make_unique<VexQTmdhdAtom>();
    header->setTimeScale(25'000);
    auto media = std::make_unique<VexQTmdiaAtom>();
    media->addChild(std::move(header));
    media->addChild(std::move(handler));
    media->addChild(std::move(information));

    auto edits = newTable<VexQTelstAtom>();
    edits->setEditListEntries({VexQTEditListEntry()});
    auto edit = std::make_unique<VexQTedtsAtom>();
    edit->addChild(std::move(edits));
    auto track = std::make_unique<VexQTtrakAtom>();
    track->addChild(std::make_unique<VexQTtkhdAtom>());
    track->addChild(std::move(edit));
    track->addChild(std::move(media));
    return track;
}

/// Pictures, each with its own duration, offset and size. Moves the place of the media data on.
std::unique_ptr<VexQTAtom> newPictures(std::uint32_t sampleCount, std::uint64_t& place) {
    Numbers numbers;
    auto durations = newTable<VexQTsttsAtom>();
    auto offsets = newTable<VexQTcttsAtom>();
    auto syncs = newTable<VexQTstssAtom>();
    auto runs = newTable<VexQTstscAtom>();
    auto sizes = newTable<VexQTstszAtom>();
    auto chunks = newTable<VexQTco64Atom>();
    sizes->setNumberOfEntries(sampleCount);
    std::uint32_t left = 0;
    for (std::uint32_t sample = 1; sample <= sampleCount; ++sample) {
        if (left == 0) {
            left = numbers.between(9, 11);
            chunks->chunkOffsets().push_back(static_cast<std::int64_t>(place));
            const auto chunk = static_cast<std::uint32_t>(chunks->chunkOffsets().size());
            runs->sampleToChunkEntries().emplace_back(chunk, left, 1);
        }
        --left;
        const std::uint32_t size = numbers.between(200, 1800);
        place += size;
        sizes->sampleSizes().push_back(size);
        durations->sampleDurations().emplace_back(1, numbers.between(950, 1050));
        offsets->compositionOffsets().emplace_back(1, 1000 * numbers.between(0, 3));
        if (sample % 2 == 1) syncs->syncSamples().push_back(sample);
    }
    auto table = std::make_unique<VexQTstblAtom>();
    table->addChild(newTable<VexQTstsdAtom>());
    table->addChild(std::move(durations));
    table->addChild(std::move(offsets));
    table->addChild(std::move(syncs));
    table->addChild(std::move(runs));
    table->addChild(std::move(sizes));
    table->addChild(std::move(chunks));
    return table;
}

/// Sound, all of its samples equally long, and its chunks where 32 bits reach.
std::unique_ptr<VexQTAtom> newSound(std::uint32_t sampleCount) {
    auto durations = newTable<VexQTsttsAtom>();
    durations->sampleDurations().emplace_back(sampleCount, 1024);
    auto runs = newTable<VexQTstscAtom>();
    runs->sampleToChunkEntries().emplace_back(1, 100, 1);
    auto sizes = newTable<VexQTstszAtom>();
    sizes->setGlobalSampleSize(4);
    sizes->setNumberOfEntries(sampleCount);
    auto chunks = newTable<VexQTstcoAtom>();
    for (std::uint32_t chunk = 0; chunk < sampleCount / 100; ++chunk)
        chunks->chunkOffsets().push_back(64 + chunk * 400);
    auto table = std::make_unique<VexQTstblAtom>();
    table->addChild(newTable<VexQTstsdAtom>());
    table->addChild(std::move(durations));
    table->addChild(std::move(runs));
    table->addChild(std::move(sizes));
    table->addChild(std::move(chunks));
    return table;
}

}  // namespace

void writeBigMovie(const std::filesystem::path& path, std::uint32_t sampleCount) {
    ByteWriter head;
    VexQTftypAtom().appendTo(head);
    const std::size_t mediaStart = head.length();
    constexpr std::size_t kExtendedHeader = 16;

    std::uint64_t mediaEnd = mediaStart + kExtendedHeader;
    VexQTmoovAtom movie;
    movie.addChild(std::make_unique<VexQTmvhdAtom>());
    movie.addChild(newTrack("vide"_os, newPictures(sampleCount, mediaEnd)));
    movie.addChild(newTrack("soun"_os, newSound(sampleCount)));

    head.u32(1);
    head.u32("mdat"_os);
    head.u64(mediaEnd - mediaStart);
    std::ofstream file(path, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    const auto write = [&file](ByteView bytes) {
        const std::string text(bytes.begin(), bytes.end());
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
    };
    write(head.view());
    file.seekp(static_cast<std::streamoff>(mediaEnd));
    write(movie.atomData());
}

}  // namespace vexqt::benchmarks
