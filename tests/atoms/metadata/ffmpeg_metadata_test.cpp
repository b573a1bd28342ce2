// Metadata that another writer wrote: read, edited, saved in place, and read back by another
// reader.
#include <gtest/gtest.h>

#include "testing/files.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"
#include "vexqt/atoms/metadata/keyed_items.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

constexpr OSType kTitle = 0xA96E616D;   // ©nam
constexpr OSType kArtist = 0xA9415254;  // ©ART

std::filesystem::path makeTagged(const TemporaryFolder& folder, const std::string& name,
                                 const std::vector<std::string>& tags,
                                 const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments = {
        "-f", "lavfi", "-i", "testsrc=size=64x48:rate=10:duration=1", "-c:v", "mpeg4"};
    for (const std::string& tag : tags) arguments.insert(arguments.end(), {"-metadata", tag});
    arguments.insert(arguments.end(), options.begin(), options.end());
    return makeMovie(folder, name, arguments);
}

std::unique_ptr<VexQTAsset> open(const std::filesystem::path& path) {
    std::error_code error;
    auto asset = VexQTAsset::initWithURL(path, error);
    EXPECT_FALSE(error) << error.message();
    return asset;
}

/// Follows types from the movie atom down to an atom.
template <class T>
T& atomAt(const VexQTAsset& asset, std::initializer_list<OSType> types) {
    VexQTAtom* atom = asset.moovAtom();
    for (const OSType type : types) {
        atom = atom->childWithType(type);
        if (atom == nullptr) throw std::runtime_error("no '" + textFromCode(type) + "'");
    }
    return dynamic_cast<T&>(*atom);
}

void saveInPlace(VexQTAsset& asset) {
    std::error_code error;
    ASSERT_TRUE(asset.writeInPlaceWithError(error)) << error.message();
}

/// The tags but for those of the file type, a line each.
std::vector<std::string> tagsOf(const std::filesystem::path& movie) {
    std::istringstream lines(probe(movie, "format_tags"));
    std::vector<std::string> tags;
    for (std::string line; std::getline(lines, line);) {
        const bool isOfFile = line.find("brand") != std::string::npos ||
                              line.find("minor_version") != std::string::npos ||
                              line.find("encoder") != std::string::npos;
        if (!isOfFile) tags.push_back(line);
    }
    std::ranges::sort(tags);
    return tags;
}
using Tags = std::vector<std::string>;

TEST(FfmpegUserData, TextsAreReadEditedAndFoundAgain) {
    const TemporaryFolder folder;
    const auto path = makeTagged(folder, "texts.mov", {"title=A title", "artist=Somebody"});
    ASSERT_EQ(tagsOf(path), (Tags{"TAG:artist=Somebody", "TAG:title=A title"}));
    const std::string frames = decodedDigest(path);

    const auto asset = open(path);
    auto& title = atomAt<VexQTUserDataTextItem>(*asset, {"udta"_os, kTitle});
    EXPECT_EQ(title.text(), "A title");
    EXPECT_EQ(title.languageCode(), 0x55C4);
    title.setText("Quite another title");
    atomAt<VexQTUserDataTextItem>(*asset, {"udta"_os, kArtist}).setText("Nobody");
    saveInPlace(*asset);

    EXPECT_EQ(tagsOf(path), (Tags{"TAG:artist=Nobody", "TAG:title=Quite another title"}));
    EXPECT_EQ(decodedDigest(path), frames);
    EXPECT_EQ(atomAt<VexQTUserDataTextItem>(*open(path), {"udta"_os, kTitle}).text(),
              "Quite another title");
}

TEST(FfmpegKeyedItems, AreReadEditedAndFoundAgain) {
    const TemporaryFolder folder;
    const auto path = makeTagged(folder, "keys.mov", {"title=A title", "com.example.place=Here"},
                                 {"-movflags", "use_metadata_tags"});
    ASSERT_EQ(tagsOf(path), (Tags{"TAG:com.example.place=Here", "TAG:title=A title"}));
    const std::string frames = decodedDigest(path);

    const auto asset = open(path);
    auto& items = atomAt<VexQTilstAtom>(*asset, {"udta"_os, "meta"_os, "ilst"_os});
    VexQTMetadataItem* place = itemWithKey(items, "com.example.place");
    ASSERT_NE(place, nullptr);
    auto& value = dynamic_cast<VexQTdataAtom&>(*place->childWithType("data"_os));
    EXPECT_EQ(value.dataTypeString(), "VexQTDataAtomType_UTF8Text");
    EXPECT_EQ(value.text(), "Here");
    value.setText("Zürich");
    saveInPlace(*asset);

    EXPECT_EQ(tagsOf(path), (Tags{"TAG:com.example.place=Zürich", "TAG:title=A title"}));
    EXPECT_EQ(decodedDigest(path), frames);
}

TEST(FfmpegKeyedItems, AreAddedAndRemovedTogetherWithTheirKeys) {
    const TemporaryFolder folder;
    const auto path =
        makeTagged(folder, "keys.mov", {"title=A title", "album=An album", "genre=Noise"},
                   {"-movflags", "use_metadata_tags"});
    const auto asset = open(path);
    auto& metadata = atomAt<VexQTmetaAtom>(*asset, {"udta"_os, "meta"_os});
    auto& keys = atomAt<VexQTkeysAtom>(*asset, {"udta"_os, "meta"_os, "keys"_os});
    const auto album =
        std::ranges::find(keys.keys(), std::optional<std::string>("album"), &VexQTKeyEntry::value);
    ASSERT_NE(album, keys.keys().end());
    removeKey(keys, static_cast<std::size_t>(album - keys.keys().begin()));
    addKeyedItem(metadata, kKeyNameSpace, "com.example.mood", dataAtomWithText("calm"));
    saveInPlace(*asset);

    EXPECT_EQ(tagsOf(path),
              (Tags{"TAG:com.example.mood=calm", "TAG:genre=Noise", "TAG:title=A title"}));
}

TEST(FfmpegItemList, ValuesOfEverySortAreReadEditedAndFoundAgain) {
    const TemporaryFolder folder;
    const auto path = makeMovie(folder, "items.mp4",
                                {"-f",
                                 "lavfi",
                                 "-i",
                                 "testsrc=size=64x48:rate=10:duration=1",
                                 "-f",
                                 "lavfi",
                                 "-i",
                                 "color=red:size=16x16:rate=1:duration=1",
                                 "-map",
                                 "0",
                                 "-map",
                                 "1",
                                 "-c:v:0",
                                 "mpeg4",
                                 "-c:v:1",
                                 "png",
                                 "-disposition:v:1",
                                 "attached_pic",
                                 "-metadata",
                                 "title=Títle",
                                 "-metadata",
                                 "track=3/12",
                                 "-metadata",
                                 "disc=1/2",
                                 "-metadata",
                                 "compilation=1"});
    ASSERT_EQ(tagsOf(path),
              (Tags{"TAG:compilation=1", "TAG:disc=1/2", "TAG:title=Títle", "TAG:track=3/12"}));

    const auto asset = open(path);
    const auto valueOf = [&](OSType item) -> VexQTdataAtom& {
        return atomAt<VexQTdataAtom>(*asset, {"udta"_os, "meta"_os, "ilst"_os, item, "data"_os});
    };
    EXPECT_EQ(valueOf(kTitle).text(), "Títle");
    valueOf(kTitle).setText("Another");
    EXPECT_EQ(valueOf("trkn"_os).trackNumber(), 3U);
    EXPECT_EQ(valueOf("trkn"_os).totalTracks(), 12U * 65536U);
    valueOf("trkn"_os).setTrackNumber(4);
    EXPECT_EQ(valueOf("disk"_os).diskNumber(), 1);
    EXPECT_EQ(valueOf("disk"_os).totalDisks(), 2);
    valueOf("disk"_os).setTotalDisks(5);
    EXPECT_EQ(valueOf("cpil"_os).value(), Number(1));
    valueOf("cpil"_os).setIntValue(0);
    auto& cover = valueOf("covr"_os);
    EXPECT_EQ(cover.dataTypeString(), "VexQTDataAtomType_PNGImage");
    ASSERT_TRUE(cover.image());
    EXPECT_EQ(cover.image()->size(), (PictureSize{16, 16}));
    cover.setImage(Picture({3, 2}, Bytes(24, 0xFF)));
    saveInPlace(*asset);

    EXPECT_EQ(tagsOf(path),
              (Tags{"TAG:compilation=0", "TAG:disc=1/5", "TAG:title=Another", "TAG:track=4/12"}));
    const std::string streams = probe(path, "stream=codec_name,width,height");
    EXPECT_NE(streams.find("codec_name=png\nwidth=3\nheight=2\n"), std::string::npos) << streams;
}

}  // namespace
}  // namespace vexqt
