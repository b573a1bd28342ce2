#include "vexqt/atoms/sampledescriptions/VexQTtmcdSampleDescription.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

constexpr OSType kTimecode = "tmcd"_os;

Bytes beforeSource(std::uint32_t size, OSType format = kTimecode) {
    return join({
        u32(size), u32(format),  //
        zeros(6),                // reserved
        u16(0x0102),             // data reference index
        u32(0x03040506),         // first flags
        u32(0x8708090A),         // timecode flags
        u32(0x0B0C0D0E),         // time scale
        u32(0x0F101112),         // frame duration
        u8(0x13),                // frames
        u8(0),                   // reserved
    });
}

Bytes named(std::string_view name) {
    return join({
        beforeSource(static_cast<std::uint32_t>(46 + name.size())),  //
        u32(static_cast<std::uint32_t>(12 + name.size())),
        text("name"),                                  //
        u16(static_cast<std::uint16_t>(name.size())),  //
        u16(0x1415),                                   // language
        text(name),
    });
}

std::unique_ptr<VexQTtmcdSampleDescription> read(ByteView bytes) {
    return VexQTtmcdSampleDescription::initWithData(bytes, nullptr, 0);
}

TEST(TmcdSampleDescription, ReadsEveryField) {
    VexQTAtom parent;
    const auto entry = VexQTtmcdSampleDescription::initWithData(named("Tape 007"), &parent, 777);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->parent(), &parent);
    EXPECT_EQ(entry->offsetInFile(), 777U);
    EXPECT_EQ(entry->atomSize(), 54U);
    EXPECT_EQ(entry->atomTypeString(), "tmcd");
    EXPECT_EQ(entry->dataFormat(), "tmcd"_os);
    EXPECT_EQ(entry->dataReferenceIndex(), 0x0102);
    EXPECT_EQ(entry->sampleDescriptionSize(), 54U);
    EXPECT_EQ(entry->firstFlags(), 0x03040506U);
    EXPECT_EQ(entry->tcFlags(), 0x8708090AU);
    EXPECT_EQ(entry->timeScale(), 0x0B0C0D0EU);
    EXPECT_EQ(entry->frameDuration(), 0x0F101112U);
    EXPECT_EQ(entry->numFrames(), 0x13);
    EXPECT_EQ(entry->languageCode(), 0x1415);
    EXPECT_EQ(entry->sourceName(), "Tape 007");
    EXPECT_EQ(entry->unknownData(), std::nullopt);
    EXPECT_EQ(entry->atomData(), named("Tape 007"));
}

TEST(TmcdSampleDescription, WritesEveryField) {
    VexQTtmcdSampleDescription entry;
    entry.setDataFormat("tmcd"_os);
    entry.setDataReferenceIndex(0x0102);
    entry.setFirstFlags(0x03040506);
    entry.setTcFlags(0x8708090A);
    entry.setTimeScale(0x0B0C0D0E);
    entry.setFrameDuration(0x0F101112);
    entry.setNumFrames(0x13);
    entry.setLanguageCode(0x1415);
    entry.setSourceName("Tape 007");
    EXPECT_EQ(entry.atomData(), named("Tape 007"));
    EXPECT_EQ(entry.atomSize(), 54U);
}

TEST(TmcdSampleDescription, BeginsWithZerosAndNoSource) {
    VexQTtmcdSampleDescription entry;
    EXPECT_EQ(entry.atomTypeString(), "tmcd");
    EXPECT_EQ(entry.firstFlags(), 0U);
    EXPECT_EQ(entry.tcFlags(), 0U);
    EXPECT_EQ(entry.timeScale(), 0U);
    EXPECT_EQ(entry.frameDuration(), 0U);
    EXPECT_EQ(entry.numFrames(), 0);
    EXPECT_EQ(entry.languageCode(), 0);
    EXPECT_EQ(entry.sourceName(), std::nullopt);
    EXPECT_EQ(entry.atomName(), "Timecode Sample Description");
    EXPECT_EQ(entry.atomNibName(), "VexQTtmcdAtom");
}

TEST(TmcdSampleDescription, ComesBackWithoutASource) {
    const Bytes bytes = beforeSource(34);
    ASSERT_EQ(bytes.size(), 34U);
    const auto entry = read(bytes);
    EXPECT_EQ(entry->sourceName(), std::nullopt);
    EXPECT_EQ(entry->languageCode(), 0);
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(TmcdSampleDescription, WritesNeitherSourceNorLanguageForAnEmptyName) {
    const auto entry = read(named("Tape 007"));
    entry->setSourceName("");
    EXPECT_EQ(entry->atomData(), beforeSource(34));
    EXPECT_EQ(entry->atomSize(), 34U);
    entry->setSourceName(std::nullopt);
    EXPECT_EQ(entry->atomData(), beforeSource(34));
}

TEST(TmcdSampleDescription, CutsANameThatClaimsMoreThanThereIs) {
    Bytes bytes = named("");
    bytes[43] = 10;
    ASSERT_EQ(bytes.size(), 46U);
    const auto entry = read(bytes);
    EXPECT_EQ(entry->sourceName(), "");
    EXPECT_EQ(entry->languageCode(), 0x1415);
    EXPECT_EQ(entry->atomData(), beforeSource(34));

    Bytes longer = named("Tape");
    longer[42] = 0xFF;
    EXPECT_EQ(read(longer)->sourceName(), "Tape");
}

TEST(TmcdSampleDescription, DoesNotLookAtTheSizeAndTypeOfTheSourceRecord) {
    Bytes bytes = named("Tape");
    for (std::size_t i = 34; i < 42; ++i) bytes[i] = 0xAB;
    EXPECT_EQ(read(bytes)->sourceName(), "Tape");
    EXPECT_EQ(read(bytes)->atomData(), named("Tape"));
}

TEST(TmcdSampleDescription, EndsANameAtAZeroByte) {
    EXPECT_EQ(read(named(std::string_view("Ta\0pe", 5)))->sourceName(), "Ta");
}

TEST(TmcdSampleDescription, DropsWhatFollowsTheName) {
    const auto entry = read(join({named("Tape"), text("more")}));
    EXPECT_EQ(entry->sourceName(), "Tape");
    EXPECT_EQ(entry->atomSize(), 54U);
    EXPECT_EQ(entry->atomData(), named("Tape"));
}

TEST(TmcdSampleDescription, DropsASourceRecordThatIsCutShort) {
    const Bytes bytes = join({beforeSource(45), ByteView(named("Tape")).subspan(34, 11)});
    ASSERT_EQ(bytes.size(), 45U);
    const auto entry = read(bytes);
    EXPECT_EQ(entry->sourceName(), std::nullopt);
    EXPECT_EQ(entry->languageCode(), 0);
    EXPECT_EQ(entry->atomData(), beforeSource(34));
}

TEST(TmcdSampleDescription, WritesARecordWithoutANameForOneThatIsNotASCII) {
    const auto entry = read(named("Tape"));
    entry->setSourceName("B\u00E4nd");
    EXPECT_EQ(entry->atomData(), named(""));
    EXPECT_EQ(entry->atomSize(), 46U);
}

TEST(TmcdSampleDescription, HasNoNameThatIsNotASCII) {
    EXPECT_EQ(read(named("T\xE4pe"))->sourceName(), std::nullopt);
}

TEST(TmcdSampleDescription, WritesTheLowSixteenBitsOfALongNamesLength) {
    VexQTtmcdSampleDescription entry;
    entry.setSourceName(std::string(65539, 'n'));
    const Bytes written = entry.atomData();
    ASSERT_EQ(written.size(), 46U + 65539);
    EXPECT_EQ(Bytes(written.begin() + 34, written.begin() + 46),
              join({u32(12 + 65539), text("name"), u16(3), u16(0)}));
}

TEST(TmcdSampleDescription, WritesReservedBytesAsZeroAndTheFormatAsItWasRead) {
    Bytes bytes = beforeSource(34, "abcd"_os);
    for (const std::size_t reserved : {8U, 13U, 33U}) bytes[reserved] = 0xAB;
    const auto entry = read(bytes);
    EXPECT_EQ(entry->atomTypeString(), "tmcd");
    EXPECT_EQ(entry->atomData(), beforeSource(34, "abcd"_os));
}

TEST(TmcdSampleDescription, TakesItsSizeFromItsBytes) {
    const auto entry = read(beforeSource(99));
    EXPECT_EQ(entry->atomSize(), 34U);
    EXPECT_EQ(entry->sampleDescriptionSize(), 99U);
    EXPECT_EQ(entry->atomData(), beforeSource(34));
    EXPECT_EQ(entry->sampleDescriptionSize(), 99U);
}

TEST(TmcdSampleDescription, RaisesForFewerThanThirtyFourBytes) {
    const Bytes bytes = beforeSource(34);
    for (std::size_t length = 0; length < 34; ++length)
        EXPECT_THROW(read(ByteView(bytes).first(length)), RangeError) << length;
}

TEST(TmcdSampleDescription, ListsTheCommonPropertiesFirst) {
    std::vector<std::string_view> names;
    for (const Field* property : VexQTtmcdSampleDescription().properties())
        names.push_back(property->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{"dataFormat", "dataReferenceIndex",
                                                    "sampleDescriptionSize", "firstFlags",
                                                    "tcFlags", "timeScale", "frameDuration",
                                                    "numFrames", "languageCode", "sourceName"}));
}

TEST(TmcdSampleDescription, DescribesEveryEntryOfATimecodeTrack) {
    VexQTmdiaAtom media;
    media.setMediaType("tmcd"_os);
    const Bytes bytes =
        atom("stsd"_os, {u32(0), u32(2), beforeSource(34, "abcd"_os), named("Tape")});
    const auto table = VexQTstsdAtom::initWithData(bytes, &media, 100);
    ASSERT_EQ(table->children().size(), 2U);
    for (const auto& child : table->children())
        EXPECT_TRUE(dynamic_cast<VexQTtmcdSampleDescription*>(child.get()));
    EXPECT_EQ(table->children()[1]->offsetInFile(), 150U);
    EXPECT_EQ(table->children()[1]->parent(), table.get());
    EXPECT_EQ(table->atomData(), bytes);
}

TEST(TmcdSampleDescription, KeepsWhatFollowsTheNameWhenTheNameIsEditedCarefully) {
    const auto entry = read(
        join({beforeSource(58), u32(16), text("name"), u16(4), u16(0x1415), text("Tapemore1234")}));
    entry->setSourceName("Reel 2");
    const SharedBytes written = Surgery().written(*entry).flat();
    EXPECT_TRUE(
        std::ranges::equal(written.view(), join({beforeSource(60), u32(18), text("name"), u16(6),
                                                 u16(0x1415), text("Reel 2more1234")})));
}

}  // namespace
}  // namespace vexqt
