#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"

#include <gtest/gtest.h>

#include "atoms/sampledescriptions/entries.h"
#include "testing/reading.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes textEntry(ByteView reserved, ByteView rest) {
    const auto size = static_cast<std::uint32_t>(16 + rest.size());
    return join({u32(size), text("text"), reserved, u16(0x0102), rest});
}

TEST(SampleDescription, EveryCommonFieldIsReadAndTheRestKept) {
    VexQTAtom table;
    const auto entry = VexQTSampleDescription::initWithData(textEntry(zeros(6), text("rest")),
                                                            "text"_os, &table, 77);
    EXPECT_EQ(entry->sampleDescriptionSize(), 20U);
    EXPECT_EQ(entry->dataFormat(), "text"_os);
    EXPECT_EQ(entry->dataReferenceIndex(), 0x0102);
    EXPECT_EQ(entry->unknownData(), text("rest"));
    EXPECT_EQ(entry->atomType(), "text"_os);
    EXPECT_EQ(entry->atomSize(), 20U);
    EXPECT_EQ(entry->parent(), &table);
    EXPECT_EQ(entry->offsetInFile(), 77U);
    EXPECT_TRUE(entry->children().empty());
}

TEST(SampleDescription, ReservedBytesAreWrittenAsZero) {
    const auto entry = VexQTSampleDescription::initWithData(
        textEntry(Bytes{1, 2, 3, 4, 5, 6}, text("rest")), "text"_os, nullptr, 0);
    EXPECT_EQ(entry->atomData(), textEntry(zeros(6), text("rest")));
}

TEST(SampleDescription, TheGivenFormatBecomesTheTypeAndTheReadOneIsWritten) {
    const Bytes bytes = textEntry(zeros(6), text("rest"));
    const auto entry = VexQTSampleDescription::initWithData(bytes, "abcd"_os, nullptr, 0);
    EXPECT_EQ(entry->atomType(), "abcd"_os);
    EXPECT_EQ(entry->dataFormat(), "text"_os);
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(SampleDescription, ASizeFieldThatLiesIsShownAndPutRight) {
    const auto entry = VexQTSampleDescription::initWithData(
        join({entryClaiming(999, "text"_os, 1), text("rest")}), "text"_os, nullptr, 0);
    EXPECT_EQ(entry->sampleDescriptionSize(), 999U);
    EXPECT_EQ(entry->atomSize(), 20U);
    EXPECT_EQ(entry->atomData(), join({entryClaiming(20, "text"_os, 1), text("rest")}));
    EXPECT_EQ(entry->sampleDescriptionSize(), 999U);
}

TEST(SampleDescription, SixteenBytesKeepARestThatIsEmptyAndNotAbsent) {
    const Bytes bytes = entry("text"_os, 1);
    const auto entry = VexQTSampleDescription::initWithData(bytes, "text"_os, nullptr, 0);
    EXPECT_EQ(entry->unknownData(), Bytes());
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(SampleDescription, FewerThanSixteenBytesAreARangeError) {
    Bytes bytes = entry("text"_os, 1);
    while (!bytes.empty()) {
        bytes.pop_back();
        SCOPED_TRACE(bytes.size());
        EXPECT_THROW(VexQTSampleDescription::initWithData(bytes, "text"_os, nullptr, 0),
                     RangeError);
    }
}

TEST(SampleDescription, AnErrorNamesTheEntryByItsFormat) {
    EXPECT_EQ(errorOf<RangeError>([] {
                  VexQTSampleDescription::initWithData(join({u32(12), text("text"), zeros(4)}),
                                                       "text"_os, nullptr, 50);
              }),
              "text at 50: 6 bytes wanted at 8, 12 there");
}

TEST(SampleDescription, OneMadeInMemoryIsEmpty) {
    VexQTSampleDescription unknown;
    EXPECT_EQ(unknown.atomType(), "????"_os);
    EXPECT_EQ(unknown.dataFormat(), "????"_os);
    EXPECT_EQ(unknown.sampleDescriptionSize(), 0U);
    EXPECT_EQ(unknown.dataReferenceIndex(), 0);
    EXPECT_EQ(unknown.unknownData(), std::nullopt);

    VexQTSampleDescription text("text"_os);
    EXPECT_EQ(text.atomType(), "text"_os);
    EXPECT_EQ(text.dataFormat(), "text"_os);
    EXPECT_EQ(text.atomData(), entry("text"_os, 0));
    EXPECT_EQ(text.atomSize(), 16U);
}

TEST(SampleDescription, EditsAreWrittenAndASizeThatIsSetIsNot) {
    VexQTSampleDescription edited;
    edited.setDataFormat("mp4s"_os);
    edited.setDataReferenceIndex(0x0203);
    edited.setSampleDescriptionSize(5000);
    EXPECT_EQ(edited.atomData(), entry("mp4s"_os, 0x0203));
    EXPECT_EQ(edited.sampleDescriptionSize(), 5000U);
    EXPECT_EQ(edited.atomType(), "????"_os);
}

TEST(SampleDescription, HasTheNamesOfAGenericAtom) {
    const VexQTSampleDescription entry;
    EXPECT_EQ(entry.atomName(), "Generic Atom");
    EXPECT_EQ(entry.atomNibName(), "VexQTAtom");
    EXPECT_EQ(entry.atomClass().className, "VexQTSampleDescription");
}

TEST(SampleDescription, ListsTheFormatFirst) {
    std::vector<std::string_view> names;
    for (const Field* property : VexQTSampleDescription().properties())
        names.push_back(property->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{"dataFormat", "dataReferenceIndex",
                                                    "sampleDescriptionSize"}));
}

}  // namespace
}  // namespace vexqt
