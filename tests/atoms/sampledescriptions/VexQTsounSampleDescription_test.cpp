#include "vexqt/atoms/sampledescriptions/VexQTsounSampleDescription.h"

#include <gtest/gtest.h>

#include "atoms/sampledescriptions/entries.h"
#include "testing/LogLines.h"
#include "testing/reading.h"
#include "vexqt/atoms/sampledescriptions/VexQTchanAtom.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;
using Entry = VexQTsounSampleDescription;

/// The fields of all versions with a value of its own in each.
Bytes sound(std::uint16_t version, std::initializer_list<ByteView> more = {}) {
    return entry("sowt"_os, 0x0102,
                 {
                     u16(version),
                     u16(3),           // Revision level.
                     text("FFMP"),     // Vendor.
                     u16(6),           // Channels.
                     u16(24),          // Sample size.
                     u16(0xFFFE),      // Compression.
                     u16(5),           // Packet size.
                     u32(0xAC448000),  // Sample rate: 44100.5.
                     join(more),
                 });
}

const Bytes kVersion1 = join({
    u32(1024),  // Samples per packet.
    u32(11),    // Bytes per packet.
    u32(22),    // Bytes per frame.
    u32(2),     // Bytes per sample.
});

Bytes version2(std::uint32_t size = 72, std::uint64_t rate = 0x40E7700000000000,
               std::uint32_t word = 0x7F000000) {
    return join({
        u32(size),
        u64(rate),  // Audio sample rate: 48000.
        u32(8),     // Audio channels.
        u32(word),
        u32(25),          // Bits per channel.
        u32(0x80000015),  // Format specific flags.
        u32(33),          // Bytes per packet.
        u32(44),          // Frames per packet.
    });
}

std::unique_ptr<Entry> read(ByteView bytes) { return Entry::initWithData(bytes, nullptr, 0); }

TEST(SounSampleDescription, EveryFieldOfVersion0IsReadAndWritten) {
    VexQTAtom table;
    const auto entry = Entry::initWithData(sound(0), &table, 600);
    EXPECT_EQ(entry->sampleDescriptionSize(), 36U);
    EXPECT_EQ(entry->dataFormat(), "sowt"_os);
    EXPECT_EQ(entry->dataReferenceIndex(), 0x0102);
    EXPECT_EQ(entry->soundVersion(), 0);
    EXPECT_EQ(entry->revisionLevel(), 3);
    EXPECT_EQ(entry->vendor(), "FFMP"_os);
    EXPECT_EQ(entry->numberOfChannels(), 6);
    EXPECT_EQ(entry->sampleSize(), 24);
    EXPECT_EQ(entry->compressionID(), 0xFFFE);
    EXPECT_EQ(entry->packetSize(), 5);
    EXPECT_EQ(entry->sampleRate(), 44100.5F);
    EXPECT_TRUE(entry->hideV1Fields());
    EXPECT_TRUE(entry->hideV2Fields());
    EXPECT_EQ(entry->atomType(), "soun"_os);
    EXPECT_EQ(entry->atomSize(), 36U);
    EXPECT_EQ(entry->parent(), &table);
    EXPECT_EQ(entry->offsetInFile(), 600U);
    EXPECT_EQ(entry->unknownData(), std::nullopt);
    EXPECT_EQ(entry->atomData(), sound(0));
}

TEST(SounSampleDescription, EveryFieldOfVersion1IsReadAndWritten) {
    const auto entry = read(sound(1, {kVersion1}));
    EXPECT_EQ(entry->soundVersion(), 1);
    EXPECT_EQ(entry->samplesPerPacket(), 1024U);
    EXPECT_EQ(entry->bytesPerPacket(), 11U);
    EXPECT_EQ(entry->bytesPerFrame(), 22U);
    EXPECT_EQ(entry->bytesPerSample(), 2U);
    EXPECT_EQ(entry->numAudioChannels(), 0U);
    EXPECT_FALSE(entry->hideV1Fields());
    EXPECT_TRUE(entry->hideV2Fields());
    EXPECT_EQ(entry->atomSize(), 52U);
    EXPECT_EQ(entry->atomData(), sound(1, {kVersion1}));
}

TEST(SounSampleDescription, EveryFieldOfVersion2IsReadAndWritten) {
    const auto entry = read(sound(2, {version2()}));
    EXPECT_EQ(entry->soundVersion(), 2);
    EXPECT_EQ(entry->sizeOfStructOnly(), 72U);
    EXPECT_EQ(entry->audioSampleRate(), 48000.0F);
    EXPECT_EQ(entry->numAudioChannels(), 8U);
    EXPECT_EQ(entry->constBitsPerChannel(), 25U);
    EXPECT_EQ(entry->formatSpecificFlags(), 0x80000015U);
    EXPECT_EQ(entry->constBytesPerAudioPacket(), 33U);
    EXPECT_EQ(entry->constLPCMFramesPerAudioPacket(), 44U);
    EXPECT_EQ(entry->samplesPerPacket(), 0U);
    EXPECT_TRUE(entry->hideV1Fields());
    EXPECT_FALSE(entry->hideV2Fields());
    EXPECT_EQ(entry->atomSize(), 72U);
    EXPECT_EQ(entry->atomData(), sound(2, {version2()}));
}

TEST(SounSampleDescription, AnyOtherVersionHasTheFieldsOfVersion0) {
    const Bytes bytes = sound(3, {atom("wave"_os, {atom("frma"_os, {text("sowt")})})});
    const auto entry = read(bytes);
    EXPECT_EQ(entry->children().at(0)->atomClass().className, "VexQTwaveAtom");
    EXPECT_TRUE(entry->hideV1Fields());
    EXPECT_TRUE(entry->hideV2Fields());
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(SounSampleDescription, TheSizeOfTheStructureIsWrittenAs72) {
    const auto entry = read(sound(2, {version2(96)}));
    EXPECT_EQ(entry->sizeOfStructOnly(), 96U);
    EXPECT_EQ(entry->atomData(), sound(2, {version2(72)}));
}

TEST(SounSampleDescription, TheConstantWordIsWrittenWhateverWasThere) {
    const auto entry = read(sound(2, {version2(72, 0x40E7700000000000, 0x12345678)}));
    EXPECT_EQ(entry->atomData(), sound(2, {version2()}));
}

TEST(SounSampleDescription, AnAudioSampleRateIsNarrowedToSinglePrecision) {
    const struct {
        double read;
        float held;
        double written;
    } cases[] = {
        {48000.0, 48000.0F, 48000.0},
        {44100.5, 44100.5F, 44100.5},
        {96000.123456789, 96000.125F, 96000.125},
    };
    for (const auto& [rate, held, written] : cases) {
        SCOPED_TRACE(rate);
        const auto entry = read(sound(2, {version2(72, std::bit_cast<std::uint64_t>(rate))}));
        EXPECT_EQ(entry->audioSampleRate(), held);
        EXPECT_EQ(entry->atomData(),
                  sound(2, {version2(72, std::bit_cast<std::uint64_t>(written))}));
    }
}

TEST(SounSampleDescription, ASampleRateKeepsTheBitsOfSinglePrecision) {
    Bytes bytes = sound(0);
    std::ranges::copy(u32(0xAC440001), bytes.begin() + 32);  // 44100 and 1/65536.
    const auto entry = read(bytes);
    EXPECT_EQ(entry->sampleRate(), 44100.0F);
    const Bytes written = entry->atomData();
    EXPECT_EQ(Bytes(written.begin() + 32, written.end()), u32(0xAC440000));
}

TEST(SounSampleDescription, ReservedBytesAreWrittenAsZero) {
    Bytes bytes = sound(0);
    bytes[8] = bytes[13] = 0xEE;
    EXPECT_EQ(read(bytes)->atomData(), sound(0));
}

TEST(SounSampleDescription, OneMadeInMemoryIsEmpty) {
    Entry made;
    EXPECT_EQ(made.atomType(), "soun"_os);
    EXPECT_EQ(made.vendor(), "????"_os);
    EXPECT_EQ(made.atomData(), entry("????"_os, 0, {zeros(4), text("????"), zeros(12)}));
}

TEST(SounSampleDescription, EditsOfOneMadeInMemoryAreWritten) {
    Entry entry;
    entry.setDataFormat("sowt"_os);
    entry.setDataReferenceIndex(0x0102);
    entry.setRevisionLevel(3);
    entry.setVendor("FFMP"_os);
    entry.setNumberOfChannels(6);
    entry.setSampleSize(24);
    entry.setCompressionID(0xFFFE);
    entry.setPacketSize(5);
    entry.setSampleRate(44100.5F);
    entry.setSamplesPerPacket(1024);
    entry.setBytesPerPacket(11);
    entry.setBytesPerFrame(22);
    entry.setBytesPerSample(2);
    entry.setSizeOfStructOnly(99);
    entry.setAudioSampleRate(48000);
    entry.setNumAudioChannels(8);
    entry.setConstBitsPerChannel(25);
    entry.setFormatSpecificFlags(0x80000015);
    entry.setConstBytesPerAudioPacket(33);
    entry.setConstLPCMFramesPerAudioPacket(44);
    EXPECT_EQ(entry.atomData(), sound(0));
    EXPECT_EQ(entry.atomSize(), 36U);
    entry.setSoundVersion(1);
    EXPECT_EQ(entry.atomData(), sound(1, {kVersion1}));
    EXPECT_EQ(entry.atomSize(), 52U);
    entry.setSoundVersion(2);
    EXPECT_EQ(entry.atomData(), sound(2, {version2()}));
    EXPECT_EQ(entry.atomSize(), 72U);
}

TEST(SounSampleDescription, HasItsNames) {
    const Entry entry;
    EXPECT_EQ(entry.atomName(), "Sound Sample Description");
    EXPECT_EQ(entry.atomNibName(), "VexQTsounAtom");
}

TEST(SounSampleDescription, ListsTheCommonPropertiesFirstAndTheDerivedOnesLast) {
    std::vector<std::string_view> names;
    for (const Field* property : Entry().properties()) names.push_back(property->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{
                         "dataFormat",
                         "dataReferenceIndex",
                         "sampleDescriptionSize",
                         "soundVersion",
                         "revisionLevel",
                         "vendor",
                         "numberOfChannels",
                         "sampleSize",
                         "compressionID",
                         "packetSize",
                         "sampleRate",
                         "samplesPerPacket",
                         "bytesPerPacket",
                         "bytesPerFrame",
                         "bytesPerSample",
                         "sizeOfStructOnly",
                         "audioSampleRate",
                         "numAudioChannels",
                         "constBitsPerChannel",
                         "formatSpecificFlags",
                         "constBytesPerAudioPacket",
                         "constLPCMFramesPerAudioPacket",
                         "hideV1Fields",
                         "hideV2Fields",
                     }));
}

TEST(SounSampleDescription, FewerBytesThanTheVersionHasAreARangeError) {
    for (const Bytes& whole : {sound(0), sound(1, {kVersion1}), sound(2, {version2()}), sound(7)}) {
        for (Bytes bytes = whole; !bytes.empty();) {
            bytes.pop_back();
            SCOPED_TRACE(bytes.size());
            EXPECT_THROW(read(bytes), RangeError);
        }
    }
}

// MARK: Extension atoms

const Bytes kLayout =
    atom("chan"_os, {zeros(4), u32(0x00640001), u32(0), u32(1), u32(42), zeros(16)});

TEST(SounSampleDescription, ExtensionAtomsHaveTheirClassesAndNoParent) {
    const Bytes extensions = join({
        atom("wave"_os, {atom("frma"_os, {text("mp4a")}), atom("enda"_os, {u16(1)}), atom(0)}),
        atom("sinf"_os, {atom("frma"_os, {text("mp4a")})}),
        kLayout,
        atom("esds"_os, {u32(7)}),
        atom("pasp"_os, {u32(7)}),
    });
    const struct {
        const char* what;
        Bytes bytes;
        std::uint64_t start;
    } versions[] = {
        {"version 0", sound(0, {extensions}), 36},
        {"version 1", sound(1, {kVersion1, extensions}), 52},
        {"version 2", sound(2, {version2(), extensions}), 72},
    };
    for (const auto& [what, bytes, start] : versions) {
        SCOPED_TRACE(what);
        const auto entry = Entry::initWithData(bytes, nullptr, 1000);
        const struct {
            std::string_view className;
            std::uint64_t offset;
        } expected[] = {{"VexQTwaveAtom", 0},
                        {"VexQTsinfAtom", 38},
                        {"VexQTchanAtom", 58},
                        {"VexQTAtom", 102},
                        {"VexQTAtom", 114}};
        ASSERT_EQ(entry->children().size(), std::size(expected));
        for (std::size_t i = 0; i < std::size(expected); ++i) {
            const VexQTAtom& extension = *entry->children()[i];
            EXPECT_EQ(extension.atomClass().className, expected[i].className);
            EXPECT_EQ(extension.offsetInFile(), 1000 + start + expected[i].offset);
            EXPECT_EQ(extension.parent(), nullptr);
        }
        EXPECT_EQ(entry->atomData(), bytes);
        EXPECT_EQ(entry->description().find("\r\n "), entry->description().find("\r\n"));
    }
}

TEST(SounSampleDescription, Version0WithAChannelLayoutIsWrittenBack) {
    const auto entry = read(sound(0, {kLayout}));
    const auto& layout = dynamic_cast<const VexQTchanAtom&>(*entry->children().at(0));
    EXPECT_EQ(layout.channelLayoutTag(), 0x00640001U);
    EXPECT_EQ(layout.children().size(), 1U);
    EXPECT_EQ(entry->atomData(), sound(0, {kLayout}));
}

TEST(SounSampleDescription, ASizeOutside8To65535EndsTheWalkAndTheRestIsLost) {
    for (const std::uint32_t size : {0U, 1U, 4U, 7U, 65536U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(size);
        const auto entry = read(sound(0, {kLayout, atomClaiming(size, "esds"_os), kLayout}));
        EXPECT_EQ(entry->children().size(), 1U);
        EXPECT_EQ(entry->atomData(), sound(0, {kLayout}));
    }
}

TEST(SounSampleDescription, ExtensionsOf8AndOf65535BytesAreRead) {
    const Bytes bytes = sound(0, {atom("esds"_os), atom("uuid"_os, {zeros(65527)})});
    const auto entry = read(bytes);
    EXPECT_EQ(entry->children().size(), 2U);
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(SounSampleDescription, BytesBehindTheLastExtensionAreLost) {
    for (const std::size_t count : {1U, 4U, 7U}) {
        SCOPED_TRACE(count);
        EXPECT_EQ(read(sound(0, {kLayout, zeros(count)}))->atomData(), sound(0, {kLayout}));
        EXPECT_EQ(read(sound(0, {zeros(count)}))->atomData(), sound(0));
    }
}

TEST(SounSampleDescription, AnExtensionPastTheEndIsARangeError) {
    EXPECT_EQ(errorOf<RangeError>([] { read(sound(0, {atomClaiming(9, "esds"_os)})); }),
              "soun.esds at 36: 9 bytes wanted at 36, 44 there");
}

TEST(SounSampleDescription, ADeclinedChannelLayoutIsAnInsertionErrorWithoutALine) {
    const LogLines log;
    EXPECT_EQ(errorOf<InsertionError>([] { read(sound(0, {atom("chan"_os, {zeros(15)})})); }),
              "soun.chan at 36: VexQTchanAtom declines 23 bytes");
    EXPECT_TRUE(log.lines.empty());
}

TEST(SounSampleDescription, ReadTolerantlyKeepsADeclinedChannelLayoutAsRawBytes) {
    const Bytes bytes = sound(1, {kVersion1, atom("chan"_os, {zeros(15)}), atom("esds"_os)});
    const auto reading = readTolerantly<Entry>(bytes, 500);
    ASSERT_EQ(reading.atom->children().size(), 2U);
    EXPECT_EQ(reading.atom->children()[0]->declinedClass(), "VexQTchanAtom");
    ASSERT_EQ(reading.problems.size(), 1U);
    EXPECT_EQ(reading.problems[0].path, "soun.chan");
    EXPECT_EQ(reading.problems[0].offsetInFile, 552U);
    EXPECT_EQ(reading.atom->atomData(), bytes);
}

TEST(SounSampleDescription, ReadTolerantlyNamesAProblemInsideByThePathInTheTree) {
    const Bytes table =
        tableCounting(2, {soundEntry("sowt"_os),
                          soundEntry("mp4a"_os, {atom("wave"_os, {atom("frma"_os, {u16(1)})})})});
    const Bytes bytes = media("soun"_os, table);
    const auto reading = readTolerantly<VexQTmdiaAtom>(bytes);
    ASSERT_EQ(reading.problems.size(), 1U);
    EXPECT_EQ(reading.problems[0].path, "mdia.minf.stbl.stsd.soun[1].wave.frma");
    EXPECT_EQ(reading.atom->atomData(), bytes);
}

TEST(SounSampleDescription, ReadTolerantlyKeepsAnExtensionPastTheEndAsFarAsItGoes) {
    const auto reading =
        readTolerantly<Entry>(sound(0, {kLayout, atomClaiming(100, "esds"_os, {text("tail")})}));
    ASSERT_EQ(reading.atom->children().size(), 2U);
    EXPECT_EQ(reading.atom->children()[1]->unknownData(), text("tail"));
    EXPECT_EQ(reading.problems.size(), 1U);
}

}  // namespace
}  // namespace vexqt
