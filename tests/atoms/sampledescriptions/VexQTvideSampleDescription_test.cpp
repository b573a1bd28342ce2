#include "vexqt/atoms/sampledescriptions/VexQTvideSampleDescription.h"

#include <gtest/gtest.h>

#include "atoms/sampledescriptions/entries.h"
#include "testing/LogLines.h"
#include "testing/reading.h"
#include "vexqt/atoms/headers/VexQTcolrAtom.h"
#include "vexqt/atoms/headers/VexQTpaspAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;
using Entry = VexQTvideSampleDescription;

Bytes nameField(std::uint8_t length, std::string_view name) {
    return join({u8(length), text(name), zeros(31 - name.size())});
}

/// The fixed part with a value of its own in every field.
Bytes fixedPart(std::initializer_list<ByteView> more = {}) {
    return entry("avc1"_os, 0x0102,
                 {
                     u16(3),                     // Version.
                     u16(4),                     // Revision level.
                     text("FFMP"),               // Vendor.
                     u32(0x200),                 // Temporal quality.
                     u32(0x3FF),                 // Spatial quality.
                     u16(1920),                  // Width.
                     u16(1080),                  // Height.
                     u32(0x00480000),            // Horizontal resolution.
                     u32(0x00960000),            // Vertical resolution.
                     zeros(4),                   // Data size.
                     u16(5),                     // Frame count.
                     nameField(9, "H.264 abc"),  // Compressor name.
                     u16(24),                    // Depth.
                     u16(0xFFFF),                // Colour table.
                     join(more),
                 });
}

Bytes withName(ByteView field) {
    Bytes bytes = videoEntry("avc1"_os, 0xFFFF);
    std::ranges::copy(field, bytes.begin() + 50);
    return bytes;
}

std::unique_ptr<Entry> read(ByteView bytes) { return Entry::initWithData(bytes, nullptr, 0); }

TEST(VideSampleDescription, EveryFieldIsReadAndWritten) {
    VexQTAtom table;
    const auto entry = Entry::initWithData(fixedPart(), &table, 600);
    EXPECT_EQ(entry->sampleDescriptionSize(), 86U);
    EXPECT_EQ(entry->dataFormat(), "avc1"_os);
    EXPECT_EQ(entry->dataReferenceIndex(), 0x0102);
    EXPECT_EQ(entry->videoVersion(), 3);
    EXPECT_EQ(entry->revisionLevel(), 4);
    EXPECT_EQ(entry->vendor(), "FFMP"_os);
    EXPECT_EQ(entry->temporalQuality(), 0x200U);
    EXPECT_EQ(entry->spatialQuality(), 0x3FFU);
    EXPECT_EQ(entry->width(), 1920);
    EXPECT_EQ(entry->height(), 1080);
    EXPECT_EQ(entry->horizontalResolution(), 72U);
    EXPECT_EQ(entry->verticalResolution(), 150U);
    EXPECT_EQ(entry->frameCount(), 5);
    EXPECT_EQ(entry->compressorName(), "H.264 abc");
    EXPECT_EQ(entry->depth(), 24);
    EXPECT_EQ(entry->colorTableID(), -1);
    EXPECT_FALSE(entry->appendZeroWord());
    EXPECT_TRUE(entry->children().empty());
    EXPECT_EQ(entry->atomType(), "vide"_os);
    EXPECT_EQ(entry->atomSize(), 86U);
    EXPECT_EQ(entry->parent(), &table);
    EXPECT_EQ(entry->offsetInFile(), 600U);
    EXPECT_EQ(entry->unknownData(), std::nullopt);
    EXPECT_EQ(entry->atomData(), fixedPart());
}

TEST(VideSampleDescription, EditsOfOneMadeInMemoryAreWritten) {
    Entry entry;
    entry.setDataFormat("avc1"_os);
    entry.setDataReferenceIndex(0x0102);
    entry.setVideoVersion(3);
    entry.setRevisionLevel(4);
    entry.setVendor("FFMP"_os);
    entry.setTemporalQuality(0x200);
    entry.setSpatialQuality(0x3FF);
    entry.setWidth(1920);
    entry.setHeight(1080);
    entry.setHorizontalResolution(72);
    entry.setVerticalResolution(150);
    entry.setFrameCount(5);
    entry.setCompressorName("H.264 abc");
    entry.setDepth(24);
    entry.setValueForKey(-1, "colorTableID");
    EXPECT_EQ(entry.atomData(), fixedPart());
    entry.setAppendZeroWord(true);
    EXPECT_EQ(entry.atomData().size(), 90U);
    EXPECT_EQ(entry.atomSize(), 90U);
}

TEST(VideSampleDescription, OneMadeInMemoryIsEmpty) {
    Entry made;
    EXPECT_EQ(made.atomType(), "vide"_os);
    EXPECT_EQ(made.dataFormat(), "????"_os);
    EXPECT_EQ(made.vendor(), "????"_os);
    EXPECT_EQ(made.compressorName(), std::nullopt);
    EXPECT_EQ(made.colorTableID(), 0);
    EXPECT_FALSE(made.appendZeroWord());
    EXPECT_EQ(made.atomData(), entry("????"_os, 0, {zeros(4), text("????"), zeros(62)}));
}

TEST(VideSampleDescription, HasItsNames) {
    const Entry entry;
    EXPECT_EQ(entry.atomName(), "Video Sample Description");
    EXPECT_EQ(entry.atomNibName(), "VexQTvideAtom");
}

TEST(VideSampleDescription, ListsTheCommonPropertiesFirst) {
    std::vector<std::string_view> names;
    for (const Field* property : Entry().properties()) names.push_back(property->name);
    EXPECT_EQ(names,
              (std::vector<std::string_view>{
                  "dataFormat", "dataReferenceIndex", "sampleDescriptionSize", "videoVersion",
                  "revisionLevel", "vendor", "temporalQuality", "spatialQuality", "width", "height",
                  "horizontalResolution", "verticalResolution", "frameCount", "compressorName",
                  "depth", "colorTableID", "appendZeroWord"}));
}

TEST(VideSampleDescription, WhatIsNotKeptIsWrittenAsZero) {
    Bytes bytes = fixedPart();
    for (const std::size_t offset : {8, 13, 44, 47, 60, 81}) bytes[offset] = 0xEE;
    EXPECT_EQ(read(bytes)->atomData(), fixedPart());
}

TEST(VideSampleDescription, AFractionOfAResolutionIsCutOff) {
    Bytes bytes = fixedPart();
    bytes[38] = 0x80;  // Horizontal: 72.5.
    bytes[42] = 0xFF;  // Vertical: 150 and nearly 1.
    const auto entry = read(bytes);
    EXPECT_EQ(entry->horizontalResolution(), 72U);
    EXPECT_EQ(entry->verticalResolution(), 150U);
    EXPECT_EQ(entry->atomData(), fixedPart());
}

TEST(VideSampleDescription, AResolutionKeepsTheLowSixteenBitsOfItsWhole) {
    Entry entry;
    entry.setHorizontalResolution(0xFFFF);
    entry.setVerticalResolution(0x10007);
    const Bytes written = entry.atomData();
    EXPECT_EQ(Bytes(written.begin() + 36, written.begin() + 44),
              join({u32(0xFFFF0000), u32(0x00070000)}));
}

TEST(VideSampleDescription, ANameIsReadByItsLengthByte) {
    const std::string thirtyOne = "0123456789012345678901234567890";
    const struct {
        const char* what;
        Bytes field;
        std::optional<std::string> name;
    } cases[] = {
        {"none", nameField(0, "abc"), ""},
        {"part of the field", nameField(2, "abc"), "ab"},
        {"all of the field", nameField(31, thirtyOne), thirtyOne},
        {"one more than the field", nameField(32, thirtyOne), thirtyOne},
        {"more than the field", nameField(40, thirtyOne), thirtyOne},
        {"the most", nameField(255, thirtyOne), thirtyOne},
        {"a zero byte within", nameField(3, std::string_view("a\0b", 3)), std::string("a\0b", 3)},
        {"not ASCII", nameField(2, "\xC3\xA4"), std::nullopt},
    };
    for (const auto& [what, field, name] : cases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(read(withName(field))->compressorName(), name);
    }
}

TEST(VideSampleDescription, ANameIsWrittenWhereItFitsWithAZeroByte) {
    const std::string thirty = "012345678901234567890123456789";
    const struct {
        const char* what;
        std::optional<std::string> name;
        Bytes field;
    } cases[] = {
        {"absent", std::nullopt, nameField(0, "")},
        {"empty", "", nameField(0, "")},
        {"short", "abc", nameField(3, "abc")},
        {"30 characters", thirty, nameField(30, thirty)},
        {"31 characters", thirty + "a", nameField(31, "")},
        {"40 characters", thirty + "0123456789", nameField(40, "")},
        {"258 characters", std::string(258, 'x'), nameField(2, "")},
        {"not ASCII", "\xC3\xA4", nameField(0, "")},
    };
    for (const auto& [what, name, field] : cases) {
        SCOPED_TRACE(what);
        const auto entry = read(videoEntry("avc1"_os, 0xFFFF));
        entry->setCompressorName(name);
        EXPECT_EQ(entry->atomData(), withName(field));
    }
}

TEST(VideSampleDescription, FewerThan86BytesAreARangeError) {
    Bytes bytes = videoEntry("avc1"_os, 0xFFFF);
    while (!bytes.empty()) {
        bytes.pop_back();
        SCOPED_TRACE(bytes.size());
        EXPECT_THROW(read(bytes), RangeError);
    }
}

// MARK: Colour table 0

TEST(VideSampleDescription, TheBytesBehindColourTable0AreSkippedAndNotWritten) {
    const auto entry =
        read(videoEntry("rle "_os, 0, {u32(0xABCDEF01), atom("pasp"_os, {u32(4), u32(3)})}));
    EXPECT_EQ(entry->colorTableID(), 0);
    ASSERT_EQ(entry->children().size(), 1U);
    EXPECT_EQ(entry->children()[0]->offsetInFile(), 90U);
    EXPECT_EQ(entry->sampleDescriptionSize(), 106U);
    EXPECT_EQ(entry->atomData(), videoEntry("rle "_os, 0, {atom("pasp"_os, {u32(4), u32(3)})}));
    EXPECT_EQ(entry->atomSize(), 102U);
}

TEST(VideSampleDescription, ColourTable0WithoutBytesToSkipIsARangeError) {
    for (std::size_t more = 0; more < 4; ++more) {
        SCOPED_TRACE(more);
        EXPECT_THROW(read(videoEntry("rle "_os, 0, {zeros(more)})), RangeError);
        EXPECT_FALSE(read(videoEntry("rle "_os, 1, {zeros(more)}))->appendZeroWord());
    }
    const auto entry = read(videoEntry("rle "_os, 0, {zeros(4)}));
    EXPECT_FALSE(entry->appendZeroWord());
    EXPECT_EQ(entry->atomData(), videoEntry("rle "_os, 0));
}

// MARK: Extension atoms

TEST(VideSampleDescription, ExtensionAtomsHaveTheirClassesAndNoParent) {
    const Bytes bytes = fixedPart({
        atom("avcC"_os, {Bytes{1, 2, 3}}),
        atom("clap"_os, {zeros(32)}),
        atom("colr"_os, {text("nclc"), u16(1), u16(2), u16(3)}),
        atom("fiel"_os, {u8(2), u8(9)}),
        atom("pasp"_os, {u32(40), u32(33)}),
        atom("sinf"_os, {atom("frma"_os, {text("avc1")})}),
        atom("btrt"_os, {u32(7)}),
        atom("wave"_os, {u32(8)}),
    });
    const auto entry = Entry::initWithData(bytes, nullptr, 1000);
    const struct {
        std::string_view className;
        std::uint64_t offset;
    } expected[] = {
        {"VexQTavcCAtom", 1086}, {"VexQTclapAtom", 1097}, {"VexQTcolrAtom", 1137},
        {"VexQTfielAtom", 1155}, {"VexQTpaspAtom", 1165}, {"VexQTsinfAtom", 1181},
        {"VexQTAtom", 1201},     {"VexQTAtom", 1213},
    };
    ASSERT_EQ(entry->children().size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const VexQTAtom& extension = *entry->children()[i];
        SCOPED_TRACE(extension.atomTypeString());
        EXPECT_EQ(extension.atomClass().className, expected[i].className);
        EXPECT_EQ(extension.offsetInFile(), expected[i].offset);
        EXPECT_EQ(extension.parent(), nullptr);
    }
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(VideSampleDescription, OutlinesOfExtensionAtomsAreNotIndented) {
    VexQTAtom table;
    const auto entry =
        Entry::initWithData(fixedPart({atom("pasp"_os, {u32(1), u32(1)})}), &table, 0);
    EXPECT_EQ(entry->description(), "   'vide' (102)\r\n 'pasp' (16)");
}

TEST(VideSampleDescription, FourBytesThatAreLeftOverAreAZeroWordWhateverTheyHold) {
    const Bytes pixels = atom("pasp"_os, {u32(40), u32(33)});
    const struct {
        const char* what;
        Bytes read, written;
        bool append;
    } cases[] = {
        {"zeros behind an extension", fixedPart({pixels, zeros(4)}), fixedPart({pixels, zeros(4)}),
         true},
        {"others behind an extension", fixedPart({pixels, u32(0xABCDEF01)}),
         fixedPart({pixels, zeros(4)}), true},
        {"without an extension", fixedPart({zeros(4)}), fixedPart({zeros(4)}), true},
        {"three bytes", fixedPart({pixels, zeros(3)}), fixedPart({pixels}), false},
        {"five bytes", fixedPart({pixels, zeros(5)}), fixedPart({pixels}), false},
        {"no bytes", fixedPart({pixels}), fixedPart({pixels}), false},
    };
    for (const auto& [what, bytes, written, append] : cases) {
        SCOPED_TRACE(what);
        const auto entry = read(bytes);
        EXPECT_EQ(entry->appendZeroWord(), append);
        EXPECT_EQ(entry->atomData(), written);
    }
}

TEST(VideSampleDescription, ASizeOf0OrAbove65535EndsTheWalkAndTheRestIsLost) {
    const Bytes pixels = atom("pasp"_os, {u32(40), u32(33)});
    const struct {
        const char* what;
        Bytes stop;
    } cases[] = {
        {"size 0", atomClaiming(0, "colr"_os)},
        {"size 0 and four more bytes", atomClaiming(0, "colr"_os, {zeros(4)})},
        {"size 65536", atomClaiming(65536, "uuid"_os, {zeros(65528)})},
        {"the largest size", atomClaiming(0xFFFFFFFF, "uuid"_os)},
    };
    for (const auto& [what, stop] : cases) {
        SCOPED_TRACE(what);
        const auto entry = read(fixedPart({pixels, stop, pixels}));
        EXPECT_EQ(entry->children().size(), 1U);
        EXPECT_FALSE(entry->appendZeroWord());
        EXPECT_EQ(entry->atomData(), fixedPart({pixels}));
    }
}

TEST(VideSampleDescription, AnExtensionOf65535BytesIsRead) {
    const Bytes bytes = fixedPart({atom("uuid"_os, {zeros(65527)})});
    const auto entry = read(bytes);
    EXPECT_EQ(entry->children().size(), 1U);
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(VideSampleDescription, AnExtensionShorterThanAHeaderOrPastTheEndIsARangeError) {
    for (std::uint32_t size = 1; size < 8; ++size) {
        SCOPED_TRACE(size);
        EXPECT_THROW(read(fixedPart({atomClaiming(size, "uuid"_os, {zeros(8)})})), RangeError);
    }
    EXPECT_THROW(read(fixedPart({atomClaiming(9, "uuid"_os)})), RangeError);
}

TEST(VideSampleDescription, ADeclinedExtensionIsLoggedAndAnInsertionError) {
    const LogLines log;
    EXPECT_EQ(errorOf<InsertionError>([] { read(fixedPart({atom("pasp"_os, {u32(1)})})); }),
              "vide.pasp at 86: VexQTpaspAtom declines 12 bytes");
    EXPECT_THROW(read(fixedPart({atomClaiming(7, "avcC"_os)})), InsertionError);
    EXPECT_EQ(log.lines, (std::vector<std::string>{"newAtom == nil", "newAtom == nil"}));
}

TEST(VideSampleDescription, AChangedOrAddedExtensionIsWritten) {
    const auto entry = read(fixedPart({atom("pasp"_os, {u32(40), u32(33)})}));
    dynamic_cast<VexQTpaspAtom&>(*entry->children()[0]).setHSpacing(64);
    auto colours = std::make_unique<VexQTcolrAtom>();
    colours->setColorParameterType("nclc"_os);
    entry->addChild(std::move(colours));
    EXPECT_EQ(entry->atomData(), fixedPart({
                                     atom("pasp"_os, {u32(64), u32(33)}),
                                     atom("colr"_os, {text("nclc"), zeros(6)}),
                                 }));
}

TEST(VideSampleDescription, ReadTolerantlyKeepsADeclinedExtensionAsRawBytes) {
    const Bytes bytes = fixedPart({atom("pasp"_os, {u32(1)}), atom("fiel"_os, {u16(0x0201)})});
    const auto reading = readTolerantly<Entry>(bytes, 500);
    ASSERT_EQ(reading.atom->children().size(), 2U);
    EXPECT_EQ(reading.atom->children()[0]->declinedClass(), "VexQTpaspAtom");
    EXPECT_EQ(reading.atom->children()[0]->parent(), nullptr);
    EXPECT_EQ(reading.atom->children()[1]->declinedClass(), std::nullopt);
    ASSERT_EQ(reading.problems.size(), 1U);
    EXPECT_EQ(reading.problems[0].path, "vide.pasp");
    EXPECT_EQ(reading.problems[0].offsetInFile, 586U);
    EXPECT_EQ(reading.atom->atomData(), bytes);
}

TEST(VideSampleDescription, ReadTolerantlyKeepsAnExtensionPastTheEndAsFarAsItGoes) {
    const Bytes pixels = atom("pasp"_os, {u32(40), u32(33)});
    for (const std::uint32_t size : {3U, 100U}) {
        SCOPED_TRACE(size);
        const Bytes bytes = fixedPart({pixels, atomClaiming(size, "uuid"_os, {text("tail")})});
        const auto reading = readTolerantly<Entry>(bytes);
        ASSERT_EQ(reading.atom->children().size(), 2U);
        EXPECT_EQ(reading.atom->children()[1]->unknownData(), text("tail"));
        EXPECT_FALSE(reading.atom->appendZeroWord());
        EXPECT_EQ(reading.problems.size(), 1U);
    }
}

}  // namespace
}  // namespace vexqt
