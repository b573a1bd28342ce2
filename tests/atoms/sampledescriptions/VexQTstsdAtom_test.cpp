#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"

#include <gtest/gtest.h>

#include "atoms/sampledescriptions/entries.h"
#include "testing/reading.h"
#include "vexqt/atoms/sampledescriptions/VexQTsounSampleDescription.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

VexQTstsdAtom& tableIn(const VexQTAtom& media) {
    return dynamic_cast<VexQTstsdAtom&>(
        *std::get<VexQTAtom*>(media.valueForKeyPath("minf.stbl.stsd")));
}

TEST(StsdAtom, ATableWithoutEntriesKeepsItsVersionAndFlags) {
    const Bytes bytes = atom("stsd"_os, {
                                            u8(9), Bytes{1, 2, 3},  // Version, flags.
                                            u32(0),                 // How many entries.
                                        });
    const auto table = VexQTstsdAtom::initWithData(bytes, nullptr, 40);
    EXPECT_EQ(table->version(), 9);
    EXPECT_EQ(table->flags0(), 1);
    EXPECT_EQ(table->flags1(), 2);
    EXPECT_EQ(table->flags2(), 3);
    EXPECT_TRUE(table->children().empty());
    EXPECT_EQ(table->mediaType(), "????"_os);
    EXPECT_EQ(table->offsetInFile(), 40U);
    EXPECT_EQ(table->atomSize(), 16U);
    EXPECT_EQ(table->atomData(), bytes);
}

TEST(StsdAtom, WithoutAMediaEveryEntryIsOfTheBaseAndKeptRaw) {
    const Bytes bytes =
        tableCounting(2, {videoEntry("avc1"_os, 0xFFFF), entry("text"_os, 3, {text("rest")})});
    const auto table = VexQTstsdAtom::initWithData(bytes, nullptr, 0);
    ASSERT_EQ(table->children().size(), 2U);
    for (const auto& entry : table->children()) {
        EXPECT_EQ(entry->atomClass().className, "VexQTSampleDescription");
        EXPECT_EQ(entry->parent(), table.get());
    }
    EXPECT_EQ(table->children()[0]->atomType(), "avc1"_os);
    EXPECT_EQ(table->children()[0]->offsetInFile(), 16U);
    EXPECT_EQ(table->children()[1]->atomType(), "text"_os);
    EXPECT_EQ(table->children()[1]->offsetInFile(), 16U + 86);
    EXPECT_EQ(table->children()[1]->unknownData(), text("rest"));
    EXPECT_EQ(table->atomData(), bytes);
}

TEST(StsdAtom, TheMediaDecidesTheClassAndTheFormatDoesNot) {
    const struct {
        OSType mediaType;
        std::string_view className;
        OSType type;
    } cases[] = {
        {"vide"_os, "VexQTvideSampleDescription", "vide"_os},
        {"soun"_os, "VexQTsounSampleDescription", "soun"_os},
        {"text"_os, "VexQTSampleDescription", "mp4a"_os},
        {"hint"_os, "VexQTSampleDescription", "mp4a"_os},
        {"????"_os, "VexQTSampleDescription", "mp4a"_os},
    };
    const Bytes table = tableCounting(1, {videoEntry("mp4a"_os, 0xFFFF)});
    for (const auto& [mediaType, className, type] : cases) {
        SCOPED_TRACE(textFromCode(mediaType));
        const auto holder = VexQTmdiaAtom::initWithData(media(mediaType, table), nullptr, 1000);
        const VexQTstsdAtom& read = tableIn(*holder);
        EXPECT_EQ(read.mediaType(), mediaType);
        EXPECT_EQ(read.offsetInFile(), 1000 + kTableOffset);
        const auto& entry = dynamic_cast<const VexQTSampleDescription&>(*read.children().at(0));
        EXPECT_EQ(entry.atomClass().className, className);
        EXPECT_EQ(entry.atomType(), type);
        EXPECT_EQ(entry.dataFormat(), "mp4a"_os);
        EXPECT_EQ(entry.parent(), &read);
        EXPECT_EQ(entry.offsetInFile(), 1000 + kTableOffset + 16);
    }
}

TEST(StsdAtom, EntriesOfTwoFormatsInOneSoundTrackAreBothSound) {
    const Bytes table = tableCounting(2, {soundEntry("sowt"_os), soundEntry("mp4a"_os)});
    const auto holder = VexQTmdiaAtom::initWithData(media("soun"_os, table), nullptr, 0);
    VexQTstsdAtom& read = tableIn(*holder);
    ASSERT_EQ(read.children().size(), 2U);
    const auto formatAt = [&](std::size_t index) {
        return dynamic_cast<VexQTsounSampleDescription&>(*read.children()[index]).dataFormat();
    };
    EXPECT_EQ(formatAt(0), "sowt"_os);
    EXPECT_EQ(formatAt(1), "mp4a"_os);
    EXPECT_EQ(read.atomData(), table);
}

TEST(StsdAtom, AHandlerBehindTheMediaInformationComesTooLate) {
    const Bytes table = tableCounting(1, {soundEntry("sowt"_os)});
    const auto holder = VexQTmdiaAtom::initWithData(
        atom("mdia"_os, {mediaInformation(table), handler("soun"_os)}), nullptr, 0);
    const VexQTstsdAtom& read = tableIn(*holder);
    EXPECT_EQ(read.mediaType(), 0U);
    EXPECT_EQ(read.children().at(0)->atomClass().className, "VexQTSampleDescription");
    EXPECT_EQ(read.children()[0]->atomType(), "sowt"_os);
}

TEST(StsdAtom, TheMediaIsFoundAboveAParentMadeInMemory) {
    VexQTmdiaAtom media;
    media.setMediaType("soun"_os);
    VexQTAtom between("stbl"_os, 8, &media, 0);
    const auto table =
        VexQTstsdAtom::initWithData(tableCounting(1, {soundEntry("sowt"_os)}), &between, 0);
    EXPECT_EQ(table->mediaType(), "soun"_os);
    EXPECT_EQ(table->children().at(0)->atomType(), "soun"_os);
}

TEST(StsdAtom, FewerThanSixteenBytesAreRefused) {
    Bytes bytes = tableCounting(0);
    bytes.pop_back();
    EXPECT_EQ(VexQTstsdAtom::initWithData(bytes, nullptr, 0), nullptr);
}

TEST(StsdAtom, BytesBehindTheCountedEntriesAreDropped) {
    const Bytes counted = entry("text"_os, 1);
    const auto table =
        VexQTstsdAtom::initWithData(tableCounting(1, {counted, text("more")}), nullptr, 0);
    EXPECT_EQ(table->atomSize(), 36U);
    EXPECT_EQ(table->atomData(), tableCounting(1, {counted}));
    EXPECT_EQ(table->atomSize(), 32U);
}

TEST(StsdAtom, WhatHasNoEntryToReadIsARangeError) {
    const Bytes whole = entry("text"_os, 1);
    const struct {
        const char* what;
        Bytes bytes;
    } cases[] = {
        {"an entry of size 0", tableCounting(1, {entryClaiming(0, "text"_os, 1)})},
        {"an entry of size 0 counted often", tableCounting(9, {entryClaiming(0, "text"_os, 1)})},
        {"an entry of size 1", tableCounting(1, {entryClaiming(1, "text"_os, 1)})},
        {"an entry of size 7", tableCounting(1, {entryClaiming(7, "text"_os, 1)})},
        {"an entry of size 8", tableCounting(1, {entryClaiming(8, "text"_os, 1)})},
        {"an entry past the end", tableCounting(1, {entryClaiming(17, "text"_os, 1)})},
        {"more entries counted than there are", tableCounting(2, {whole})},
        {"half a header behind an entry", tableCounting(2, {whole, u32(16), text("text")})},
        {"the largest count over nothing", tableCounting(0xFFFFFFFF)},
    };
    for (const auto& [what, bytes] : cases) {
        SCOPED_TRACE(what);
        EXPECT_THROW(VexQTstsdAtom::initWithData(bytes, nullptr, 0), RangeError);
    }
}

TEST(StsdAtom, AnErrorNamesTheEntryByTheTypeItHasInTheTree) {
    const Bytes table = tableCounting(2, {soundEntry("sowt"_os), entry("mp4a"_os, 1)});
    EXPECT_EQ(errorOf<RangeError>(
                  [&] { VexQTmdiaAtom::initWithData(media("soun"_os, table), nullptr, 0); }),
              "mdia.minf.stbl.stsd.soun[1] at 108: 2 bytes wanted at 16, 16 there");
}

TEST(StsdAtom, EntriesThatAreAddedAreCounted) {
    VexQTstsdAtom table;
    EXPECT_EQ(table.mediaType(), "????"_os);
    table.setVersion(0);
    table.addChild(std::make_unique<VexQTSampleDescription>("text"_os));
    table.addChild(std::make_unique<VexQTSampleDescription>("mp4s"_os));
    EXPECT_EQ(table.atomData(), tableCounting(2, {entry("text"_os, 0), entry("mp4s"_os, 0)}));
    EXPECT_EQ(table.atomSize(), 48U);
}

TEST(StsdAtom, HasItsNames) {
    VexQTstsdAtom table;
    EXPECT_EQ(table.atomName(), "Sample Description");
    EXPECT_EQ(table.atomNibName(), "VexQTstsdAtom");
    EXPECT_EQ(table.atomType(), "stsd"_os);
    table.setMediaType("vide"_os);
    EXPECT_EQ(table.valueForKey("mediaType"), Value("vide"_os));
    EXPECT_EQ(table.propertyNamed("mediaType")->display, Display::Code);
}

TEST(StsdAtom, ReadTolerantlyKeepsAnEntryThatCannotBeReadAsRawBytes) {
    const Bytes table = tableCounting(
        3, {soundEntry("sowt"_os), entry("mp4a"_os, 7, {u16(1)}), soundEntry("ulaw"_os)});
    const Bytes bytes = media("soun"_os, table);
    const auto reading = readTolerantly<VexQTmdiaAtom>(bytes);
    const VexQTstsdAtom& read = tableIn(*reading.atom);
    ASSERT_EQ(read.children().size(), 3U);
    EXPECT_EQ(read.children()[0]->declinedClass(), std::nullopt);
    EXPECT_EQ(read.children()[1]->declinedClass(), "VexQTsounSampleDescription");
    EXPECT_EQ(read.children()[1]->atomType(), "mp4a"_os);
    EXPECT_EQ(read.children()[2]->declinedClass(), std::nullopt);
    ASSERT_EQ(reading.problems.size(), 1U);
    EXPECT_EQ(reading.problems[0].path, "mdia.minf.stbl.stsd.mp4a");
    EXPECT_EQ(reading.problems[0].offsetInFile, kTableOffset + 16 + 36);
    EXPECT_EQ(reading.atom->atomData(), bytes);
}

TEST(StsdAtom, ReadTolerantlyKeepsAnEntryPastTheEndAsFarAsItGoes) {
    const Bytes bytes = media(
        "soun"_os, tableCounting(1, {entryClaiming(500, "sowt"_os, 1), zeros(20), text("tail")}));
    const auto reading = readTolerantly<VexQTmdiaAtom>(bytes);
    const VexQTAtom& kept = *tableIn(*reading.atom).children().at(0);
    EXPECT_EQ(kept.atomType(), "soun"_os);
    EXPECT_EQ(kept.atomSize(), 40U);
    ASSERT_EQ(reading.problems.size(), 1U);
    EXPECT_EQ(reading.problems[0].path, "mdia.minf.stbl.stsd.soun");
}

TEST(StsdAtom, ReadTolerantlyKeepsATableThatCountsTooManyAsRawBytes) {
    const Bytes bytes = media("soun"_os, tableCounting(2, {soundEntry("sowt"_os)}));
    const auto reading = readTolerantly<VexQTmdiaAtom>(bytes);
    const auto* table = std::get<VexQTAtom*>(reading.atom->valueForKeyPath("minf.stbl.stsd"));
    EXPECT_EQ(table->declinedClass(), "VexQTstsdAtom");
    EXPECT_EQ(reading.problems.size(), 1U);
    EXPECT_EQ(reading.atom->atomData(), bytes);
}

}  // namespace
}  // namespace vexqt
