// What stays of the bytes of sample descriptions when only some of them were edited.
#include <gtest/gtest.h>

#include "atoms/sampledescriptions/entries.h"
#include "vexqt/atoms/headers/VexQTcrgnAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTchanAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTsounSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTvideSampleDescription.h"
#include "vexqt/saving/ExactWriting.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes saved(VexQTAtom& atom, std::vector<Edit>* edits = nullptr) {
    Surgery surgery;
    const SharedBytes flat = surgery.written(atom).flat();
    if (edits) *edits = surgery.edits();
    return Bytes(flat.view().begin(), flat.view().end());
}

Bytes replaced(Bytes bytes, std::size_t offset, ByteView with) {
    std::ranges::copy(with, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    return bytes;
}

const Bytes kPixels = atom("pasp"_os, {u32(40), u32(33)});
const Bytes kLayout =
    atom("chan"_os, {zeros(4), u32(0x00640001), u32(0), u32(1), u32(42), zeros(16)});

TEST(CarefulSavingOfEntries, LeavesWhatNobodyEditedHoweverItsClassWouldWriteIt) {
    const struct {
        const char* what;
        const AtomClass& cls;
        Bytes bytes;
    } cases[] = {
        {"a table with bytes behind its entries", VexQTstsdAtom::kClass,
         tableCounting(1, {entry("text"_os, 1, {text("rest")}), text("more")})},
        {"a base entry with reserved bytes", VexQTSampleDescription::kClass,
         join({u32(20), text("text"), Bytes{1, 2, 3, 4, 5, 6}, u16(1), text("rest")})},
        {"a base entry whose size lies", VexQTSampleDescription::kClass,
         join({entryClaiming(999, "text"_os, 1), text("rest")})},
        {"a video entry with all that is not kept", VexQTvideSampleDescription::kClass,
         replaced(videoEntry("avc1"_os, 0xFFFF, {kPixels, u32(0xABCDEF01)}), 44, u32(7))},
        {"a video entry with a long name", VexQTvideSampleDescription::kClass,
         replaced(videoEntry("avc1"_os, 0xFFFF), 50, join({u8(40), Bytes(31, 'x')}))},
        {"a video entry with colour table 0", VexQTvideSampleDescription::kClass,
         videoEntry("rle "_os, 0, {u32(0xABCDEF01), kPixels})},
        {"a video entry with a stop and what follows it", VexQTvideSampleDescription::kClass,
         videoEntry("avc1"_os, 0xFFFF, {kPixels, atomClaiming(0, "colr"_os), kPixels})},
        {"a video entry with a colour range", VexQTvideSampleDescription::kClass,
         videoEntry("avc1"_os, 0xFFFF, {atom("colr"_os, {text("nclx"), zeros(6), u8(0x80)})})},
        {"a sound entry with bytes behind it", VexQTsounSampleDescription::kClass,
         soundEntry("sowt"_os, {kLayout, text("more")})},
        {"a layout that counts too few", VexQTchanAtom::kClass,
         atom("chan"_os, {zeros(12), u32(1), Bytes(40, 5), text("part")})},
        {"a layout that counts none", VexQTchanAtom::kClass,
         atom("chan"_os, {zeros(12), u32(0), Bytes(25, 5)})},
        {"fonts with a byte behind them", VexQTftabAtom::kClass,
         atom("ftab"_os, {u16(1), u16(7), u8(5), text("Serif"), u8(0xEE)})},
        {"a clipping region", VexQTcrgnAtom::kClass,
         atom("crgn"_os, {u16(0x000A), u64(0x0102030405060708)})},
    };
    for (const auto& [what, cls, bytes] : cases) {
        SCOPED_TRACE(what);
        const auto atom = VexQTAtom::make(cls, bytes, nullptr, 0);
        std::vector<Edit> edits;
        EXPECT_EQ(saved(*atom, &edits), bytes);
        EXPECT_TRUE(edits.empty());
    }
}

TEST(CarefulSavingOfEntries, ChangesTheBytesOfOneField) {
    const Bytes bytes = replaced(videoEntry("avc1"_os, 0xFFFF, {kPixels, u32(0xABCDEF01)}), 44,
                                 u32(7));  // A data size that would be written as 0.
    const auto entry = VexQTvideSampleDescription::initWithData(bytes, nullptr, 0);
    entry->setWidth(0x0123);
    entry->children()[0]->setValueForKey(0x01020304, "vSpacing");
    EXPECT_EQ(saved(*entry), replaced(replaced(bytes, 32, u16(0x0123)), 98, u32(0x01020304)));
}

TEST(CarefulSavingOfEntries, TheSizeOfAnEntryFollowsItsLengthAndNotItsProperty) {
    const auto entry = VexQTsounSampleDescription::initWithData(
        soundEntry("sowt"_os, {kLayout, text("more")}), nullptr, 0);
    entry->setSampleDescriptionSize(9);
    EXPECT_EQ(saved(*entry), soundEntry("sowt"_os, {kLayout, text("more")}));
    entry->children().clear();
    EXPECT_EQ(saved(*entry), soundEntry("sowt"_os, {text("more")}));
}

TEST(CarefulSavingOfEntries, AnotherVersionBringsItsFieldsInAndThrowsThemOut) {
    const Bytes version0 = soundEntry("sowt"_os, {kLayout});
    const auto entry = VexQTsounSampleDescription::initWithData(version0, nullptr, 0);
    entry->setSoundVersion(1);
    entry->setBytesPerFrame(4);
    const Bytes version1 =
        replaced(soundEntry("sowt"_os, {u32(0), u32(0), u32(4), u32(0), kLayout}), 16, u16(1));
    EXPECT_EQ(saved(*entry), version1);

    const auto back = VexQTsounSampleDescription::initWithData(version1, nullptr, 0);
    back->setSoundVersion(0);
    EXPECT_EQ(saved(*back), version0);
}

TEST(CarefulSavingOfEntries, EntriesThatAreAddedOrRemovedAreCounted) {
    const Bytes text1 = entry("text"_os, 1, {text("rest")});
    const Bytes text2 = entry("text"_os, 2);
    const auto table = VexQTstsdAtom::initWithData(tableCounting(2, {text1, text2}), nullptr, 0);
    table->addChild(std::make_unique<VexQTSampleDescription>("mp4s"_os));
    EXPECT_EQ(saved(*table), tableCounting(3, {text1, text2, entry("mp4s"_os, 0)}));
    table->children().erase(table->children().begin());
    table->children().pop_back();
    EXPECT_EQ(saved(*table), tableCounting(1, {text2}));
}

TEST(CarefulSavingOfEntries, DescriptionsThatAreAddedOrRemovedAreCounted) {
    const auto layout = [](std::uint32_t count, std::initializer_list<ByteView> more) {
        return atom("chan"_os, {zeros(12), u32(count), join(more)});
    };
    const Bytes first = Bytes(20, 1), second = Bytes(20, 2);
    const auto two = VexQTchanAtom::initWithData(layout(7, {first, second}), nullptr, 0);
    two->children().pop_back();
    EXPECT_EQ(saved(*two), layout(1, {first}));

    const auto none = VexQTchanAtom::initWithData(layout(0, {zeros(20)}), nullptr, 0);
    none->addChild(VexQTChannelDescription::initWithData(second, nullptr, 0));
    EXPECT_EQ(saved(*none), layout(1, {second}));
}

TEST(CarefulSavingOfEntries, AByteBehindTheFontsStaysWhenOneIsEdited) {
    const auto fonts = [](std::string_view name) {
        return atom("ftab"_os, {u16(1), u16(7), u8(static_cast<std::uint8_t>(name.size())),
                                text(name), u8(0xEE)});
    };
    const auto table = VexQTftabAtom::initWithData(fonts("Serif"), nullptr, 0);
    table->fontTableEntries()[0].setFontName("Sans-Serif");
    EXPECT_EQ(saved(*table), fonts("Sans-Serif"));
}

TEST(ExactWritingOfEntries, FindsNothingInWhatComesBack) {
    const auto table = VexQTstsdAtom::initWithData(
        tableCounting(2, {entry("text"_os, 1, {text("rest")}), entry("text"_os, 2)}), nullptr, 0);
    EXPECT_TRUE(exactWritingFindings(*table, "stsd").empty());
    const auto entry = VexQTvideSampleDescription::initWithData(
        videoEntry("avc1"_os, 0xFFFF, {kPixels, zeros(4)}), nullptr, 0);
    EXPECT_TRUE(exactWritingFindings(*entry, "vide").empty());
}

TEST(ExactWritingOfEntries, FindsWhatAClassDoesNotKeep) {
    const auto entry = VexQTvideSampleDescription::initWithData(
        videoEntry("rle "_os, 0, {u32(0xABCDEF01), kPixels}), nullptr, 0);
    const auto findings = exactWritingFindings(*entry, "vide");
    const auto found = std::ranges::find(findings, "atom-dropped", &Finding::id);
    ASSERT_NE(found, findings.end());
    EXPECT_EQ(found->path, "vide");
}

}  // namespace
}  // namespace vexqt
