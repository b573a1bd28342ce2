#include "vexqt/atoms/metadata/VexQTdataAtom.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "testing/bytes.h"
#include "testing/reading.h"
#include "vexqt/atoms/headers/VexQThdlrAtom.h"
#include "vexqt/atoms/metadata/VexQTMetadataItem.h"
#include "vexqt/atoms/metadata/VexQTmetaAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

constexpr OSType kTitleItem = 0xA96E616D;  // ©nam
constexpr std::uint32_t kLocale = 0x0A0B0C0D;

/// A data atom of a type indicator.
Bytes dataOf(std::uint32_t indicator, std::initializer_list<ByteView> value) {
    return atom("data"_os, {u32(indicator), u32(kLocale), join(value)});
}

/// The item that every data atom of these tests is read in.
VexQTMetadataItem& theItem(OSType code) {
    static VexQTMetadataItem item;
    item.setAtomType(code);
    return item;
}
std::unique_ptr<VexQTdataAtom> readIn(OSType item, ByteView bytes) {
    return VexQTdataAtom::initWithData(bytes, &theItem(item), 4096);
}
std::unique_ptr<VexQTdataAtom> read(ByteView bytes) { return readIn(kTitleItem, bytes); }

/// A data atom made in memory.
std::unique_ptr<VexQTdataAtom> made(std::uint32_t indicator, std::string_view kind) {
    auto data = std::make_unique<VexQTdataAtom>();
    data->setDataType(indicator);
    data->setDataLocale(kLocale);
    data->setDataTypeString(std::string(kind));
    return data;
}

/// The units of a text with the mark, in the machine's byte order.
Bytes nativeUTF16(std::initializer_list<char16_t> units) {
    Bytes bytes;
    for (const char16_t unit : units) {
        const auto pair = std::bit_cast<std::array<std::uint8_t, 2>>(unit);
        bytes.insert(bytes.end(), pair.begin(), pair.end());
    }
    return bytes;
}

// MARK: Every kind at every length

enum class Written {
    AsRead,       ///< All the value's bytes.
    Literal,      ///< The bytes of the case.
    TwoByteText,  ///< A mark, and all whole units in the machine's byte order.
    Fails         ///< An EncodingError.
};

struct Case {
    const char* what;
    std::vector<std::uint32_t> indicators;
    std::set<std::size_t> lengths;  ///< Of the whole atom.
    std::string_view kind;          ///< Empty for none.
    std::string_view atomName;
    std::string_view nibName;  ///< Empty for none.
    Written written = Written::AsRead;
    Bytes literal = {};
    std::optional<Number> value = {};
    OSType item = kTitleItem;
};

std::set<std::size_t> from(std::size_t first, std::size_t last) {
    std::set<std::size_t> lengths;
    for (; first <= last; ++first) lengths.insert(first);
    return lengths;
}
std::set<std::size_t> without(std::set<std::size_t> lengths,
                              std::initializer_list<std::size_t> out) {
    for (const std::size_t length : out) lengths.erase(length);
    return lengths;
}
const std::set<std::size_t> kAll = from(16, 32);

/// No zero byte among them, and no two alike.
const Bytes kTextBytes = text("ABCDEFGHIJKLMNOP");
/// The first is no beginning of UTF-8 text here, and negative.
const Bytes kNumberBytes = {0xF1, 0x42, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48,
                            0x49, 0x4A, 0x4B, 0x4C, 0x4D, 0x4E, 0x4F, 0x50};

constexpr std::string_view kInteger = "Metadata Integer Number Item";
constexpr std::string_view kIntegerView = "VexQTMetadataIntegerNumberItem";

/// Values of kTextBytes.
std::vector<Case> textAndPictureAndFloatCases() {
    return {
        {"UTF-8",
         {1, 4},
         kAll,
         "VexQTDataAtomType_UTF8Text",
         "Metadata Text Item",
         "VexQTMetadataTextItem"},
        {"UTF-16, whole units",
         {2, 5},
         {16, 18, 20, 22, 24, 26, 28, 30, 32},
         "VexQTDataAtomType_UTF16Text",
         "Metadata Text Item",
         "VexQTMetadataTextItem",
         Written::TwoByteText},
        {"UTF-16, half a unit",
         {2, 5},
         {17, 19, 21, 23, 25, 27, 29, 31},
         "VexQTDataAtomType_UTF16Text",
         "Metadata Text Item",
         "VexQTMetadataTextItem",
         Written::Literal},
        {"JPEG",
         {13},
         kAll,
         "VexQTDataAtomType_JPEGImage",
         "Metadata Image Item",
         "VexQTMetadataImageItem"},
        {"PNG",
         {14},
         kAll,
         "VexQTDataAtomType_PNGImage",
         "Metadata Image Item",
         "VexQTMetadataImageItem"},
        {"BMP",
         {27},
         kAll,
         "VexQTDataAtomType_BMPImage",
         "Metadata Image Item",
         "VexQTMetadataImageItem"},
        {"single",
         {23},
         {20},
         "VexQTDataAtomType_Float32",
         "Metadata Floating Number Item",
         "VexQTMetadataFloatNumberItem",
         Written::AsRead,
         {},
         Number(0x1.848688p+3F)},
        {"single of another length",
         {23},
         without(kAll, {20}),
         "VexQTDataAtomType_Float32",
         "Metadata Floating Number Item",
         "VexQTMetadataFloatNumberItem",
         Written::Literal,
         zeros(4)},
        {"double",
         {24},
         {24},
         "VexQTDataAtomType_Float64",
         "Metadata Floating Number Item",
         "VexQTMetadataFloatNumberItem",
         Written::Literal,
         {0x41, 0x42, 0x43, 0x44, 0x40, 0, 0, 0},
         Number(2393736.5F)},
        {"double of another length",
         {24},
         without(kAll, {24}),
         "VexQTDataAtomType_Float64",
         "Metadata Floating Number Item",
         "VexQTMetadataFloatNumberItem",
         Written::Literal,
         zeros(8)},
    };
}

/// Values of kNumberBytes.
std::vector<Case> integerAndRawCases() {
    return {
        {"signed, 1",
         {21},
         {17},
         "VexQTDataAtomType_SInt8",
         kInteger,
         kIntegerView,
         Written::AsRead,
         {},
         Number(-15)},
        {"signed, 2",
         {21},
         {18},
         "VexQTDataAtomType_SInt16",
         kInteger,
         kIntegerView,
         Written::AsRead,
         {},
         Number(61762)},
        {"signed, 4",
         {21},
         {20},
         "VexQTDataAtomType_SInt32",
         kInteger,
         kIntegerView,
         Written::AsRead,
         {},
         Number(-247315644)},
        {"signed, 8",
         {21},
         {24},
         "VexQTDataAtomType_SInt64",
         kInteger,
         kIntegerView,
         Written::AsRead,
         {},
         Number(std::int64_t{-1062212601606944952})},
        {"unsigned, 1",
         {22},
         {17},
         "VexQTDataAtomType_UInt8",
         kInteger,
         kIntegerView,
         Written::AsRead,
         {},
         Number(241U)},
        {"unsigned, 2",
         {22},
         {18},
         "VexQTDataAtomType_UInt16",
         kInteger,
         kIntegerView,
         Written::AsRead,
         {},
         Number(61762U)},
        {"unsigned, 4",
         {22},
         {20},
         "VexQTDataAtomType_UInt32",
         kInteger,
         kIntegerView,
         Written::AsRead,
         {},
         Number(4047651652U)},
        {"unsigned, 8",
         {22},
         {24},
         "VexQTDataAtomType_UInt64",
         kInteger,
         kIntegerView,
         Written::AsRead,
         {},
         Number(std::uint64_t{17384531472102606664U})},
        {"integer of no length",
         {21, 22},
         without(kAll, {17, 18, 20, 24}),
         "",
         "Metadata Data Item",
         kIntegerView,
         Written::Literal},

        {"metadata without room for a child",
         {28},
         from(24, 32),
         "VexQTDataAtomType_QTMetadata",
         "QuickTime Metadata",
         "",
         Written::Fails},

        {"implicit, 1",
         {0},
         {17},
         "VexQTDataAtomType_SInt8",
         kInteger,
         "VexQTMetadata1ByteHexItem",
         Written::AsRead,
         {},
         Number(-15)},
        {"implicit, 2",
         {0},
         {18},
         "VexQTDataAtomType_SInt16",
         kInteger,
         "VexQTMetadata2ByteHexItem",
         Written::AsRead,
         {},
         Number(-3774)},
        {"implicit, 3",
         {0},
         {19},
         "VexQTDataAtomType_SInt32",
         kInteger,
         "VexQTMetadata4ByteHexItem",
         Written::Literal,
         {0x42, 0x43, 0, 0},
         Number(0x42430000)},
        {"implicit, 4",
         {0},
         {20},
         "VexQTDataAtomType_SInt32",
         kInteger,
         "VexQTMetadata4ByteHexItem",
         Written::AsRead,
         {},
         Number(-247315644)},
        {"implicit, any other",
         {0},
         without(kAll, {17, 18, 19, 20}),
         "VexQTDataAtomType_Reserved",
         "Metadata Data Item",
         "VexQTAtom"},

        {"track, 1",
         {0},
         {17},
         "VexQTDataAtomType_SInt8",
         kInteger,
         "VexQTMetadata1ByteHexItem",
         Written::AsRead,
         {},
         Number(-15),
         "trkn"_os},
        {"track, 2",
         {0},
         {18},
         "VexQTDataAtomType_SInt16",
         kInteger,
         "VexQTMetadata2ByteHexItem",
         Written::AsRead,
         {},
         Number(-3774),
         "trkn"_os},
        {"track, 3",
         {0},
         {19},
         "VexQTDataAtomType_SInt32",
         kInteger,
         "VexQTMetadata4ByteHexItem",
         Written::Literal,
         {0x42, 0x43, 0, 0},
         Number(0x42430000),
         "trkn"_os},
        {"track, 4",
         {0},
         {20},
         "VexQTDataAtomType_SInt32",
         kInteger,
         "VexQTMetadata4ByteHexItem",
         Written::AsRead,
         {},
         Number(-247315644),
         "trkn"_os},
        {"track",
         {0},
         from(24, 32),
         "VexQTDataAtomType_TrackNumber",
         "Metadata Track Number Item",
         "VexQTMetadataTrackNumberItem",
         Written::Literal,
         {0xF1, 0x42, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48},
         {},
         "trkn"_os},

        {"disk, 1",
         {0},
         {17},
         "VexQTDataAtomType_SInt8",
         kInteger,
         "VexQTMetadata1ByteHexItem",
         Written::AsRead,
         {},
         Number(-15),
         "disk"_os},
        {"disk, 2",
         {0},
         {18},
         "VexQTDataAtomType_SInt16",
         kInteger,
         "VexQTMetadata2ByteHexItem",
         Written::AsRead,
         {},
         Number(-3774),
         "disk"_os},
        {"disk, 3",
         {0},
         {19},
         "VexQTDataAtomType_SInt32",
         kInteger,
         "VexQTMetadata4ByteHexItem",
         Written::Literal,
         {0x42, 0x43, 0, 0},
         Number(0x42430000),
         "disk"_os},
        {"disk, 4",
         {0},
         {20},
         "VexQTDataAtomType_SInt32",
         kInteger,
         "VexQTMetadata4ByteHexItem",
         Written::AsRead,
         {},
         Number(-247315644),
         "disk"_os},
        {"disk",
         {0},
         from(22, 32),
         "VexQTDataAtomType_DiskNumber",
         "Metadata Disk Number Item",
         "VexQTMetadataDiskNumberItem",
         Written::Literal,
         {0, 0, 0x43, 0x44, 0x45, 0x46},
         {},
         "disk"_os},

        {"no known type",
         {3,   6,        7,         8,         9,         10,         11,        12, 15,
          16,  17,       18,        19,        20,        25,         26,        29, 30,
          255, 0xFFFFFF, 0x1000000, 0x1000001, 0x1000015, 0x80000000, 0xFFFFFFFF},
         kAll,
         "VexQTDataAtomType_Unknown",
         "Metadata Data Item",
         "VexQTAtom"},
        {"no known type of a track",
         {3},
         kAll,
         "VexQTDataAtomType_Unknown",
         "Metadata Data Item",
         "VexQTAtom",
         Written::AsRead,
         {},
         {},
         "trkn"_os},
    };
}

void expectCase(const Case& tested, std::uint32_t indicator, std::size_t length,
                const Bytes& allBytes) {
    const ByteView value(allBytes.data(), length - 16);
    const Bytes bytes = atom("data"_os, {u32(indicator), u32(kLocale), value});
    const auto data = readIn(tested.item, bytes);
    ASSERT_TRUE(data);
    EXPECT_EQ(data->atomSize(), length);
    EXPECT_EQ(data->dataType(), indicator);
    EXPECT_EQ(data->dataLocale(), kLocale);
    EXPECT_EQ(data->dataTypeString().value_or(""), tested.kind);
    EXPECT_EQ(data->dataTypeString().has_value(), !tested.kind.empty());
    EXPECT_EQ(data->atomName(), tested.atomName);
    EXPECT_EQ(data->atomNibName().value_or(""), tested.nibName);
    EXPECT_EQ(data->atomNibName().has_value(), !tested.nibName.empty());
    EXPECT_EQ(data->value(), tested.value);
    const bool isRaw = tested.nibName == "VexQTAtom";
    EXPECT_EQ(data->unknownData(),
              isRaw ? std::optional(Bytes(value.begin(), value.end())) : std::nullopt);
    const bool isPicture = tested.nibName == "VexQTMetadataImageItem";
    EXPECT_EQ(data->rawImageData(),
              isPicture ? std::optional(Bytes(value.begin(), value.end())) : std::nullopt);
    EXPECT_EQ(data->children().size(), tested.written == Written::Fails ? 1U : 0U);

    if (tested.written == Written::Fails) {
        EXPECT_THROW(data->atomData(), EncodingError);
        return;
    }
    Bytes written = tested.literal;
    if (tested.written == Written::AsRead) written.assign(value.begin(), value.end());
    if (tested.written == Written::TwoByteText) {
        written = nativeUTF16({0xFEFF});
        for (std::size_t i = 0; i + 1 < value.size(); i += 2) {
            const auto unit = static_cast<char16_t>(value[i] << 8 | value[i + 1]);
            written = join({written, nativeUTF16({unit})});
        }
    }
    EXPECT_EQ(data->atomData(), dataOf(indicator, {written}));
    EXPECT_EQ(data->atomSize(), length);
}

void expectCases(const std::vector<Case>& cases, const Bytes& value) {
    for (const Case& tested : cases) {
        for (const std::uint32_t indicator : tested.indicators) {
            for (const std::size_t length : tested.lengths) {
                SCOPED_TRACE(std::string(tested.what) + ": type " + std::to_string(indicator) +
                             ", " + std::to_string(length) + " bytes");
                expectCase(tested, indicator, length, value);
            }
        }
    }
}

TEST(DataAtom, TypeAndLengthDecideTheKindOfTextPicturesAndFloats) {
    expectCases(textAndPictureAndFloatCases(), kTextBytes);
}

TEST(DataAtom, TypeLengthAndItemDecideTheKindOfIntegersAndRawValues) {
    expectCases(integerAndRawCases(), kNumberBytes);
}

TEST(DataAtom, LengthsThatHoldNoWholeNumberPairOrHeaderAreRangeErrors) {
    struct Short {
        std::uint32_t indicator;
        OSType item;
        std::set<std::size_t> lengths;
    };
    const Short cases[] = {
        {0, "trkn"_os, {16, 21, 22, 23}},
        {0, "disk"_os, {16, 21}},
        {28, kTitleItem, {16, 17, 18, 19, 20, 21, 22, 23}},
    };
    for (const Short& tested : cases) {
        for (const std::size_t length : tested.lengths) {
            SCOPED_TRACE(std::to_string(tested.indicator) + ", " + std::to_string(length));
            const ByteView value(kNumberBytes.data(), length - 16);
            const Bytes bytes = atom("data"_os, {u32(tested.indicator), u32(kLocale), value});
            EXPECT_THROW(readIn(tested.item, bytes), RangeError);
        }
    }
}

/// The tables and the range errors together leave no length of any known type out.
TEST(DataAtomTables, CoverEveryKnownTypeAtEveryLengthOnce) {
    std::map<std::pair<std::uint32_t, OSType>, std::multiset<std::size_t>> covered;
    for (const auto& cases : {textAndPictureAndFloatCases(), integerAndRawCases()})
        for (const Case& tested : cases)
            for (const std::uint32_t indicator : tested.indicators)
                for (const std::size_t length : tested.lengths)
                    covered[{indicator, tested.item}].insert(length);
    for (const std::size_t length : {16, 21, 22, 23}) covered[{0, "trkn"_os}].insert(length);
    for (const std::size_t length : {16, 21}) covered[{0, "disk"_os}].insert(length);
    for (const std::size_t length : from(16, 23)) covered[{28, kTitleItem}].insert(length);

    for (std::uint32_t indicator = 0; indicator <= 30; ++indicator)
        EXPECT_TRUE(covered.contains({indicator, kTitleItem})) << indicator;
    for (const auto& [which, lengths] : covered)
        EXPECT_EQ(lengths, std::multiset(kAll.begin(), kAll.end())) << which.first;
}

// MARK: Reading

TEST(DataAtom, FewerThanSixteenBytesGiveNoObject) {
    for (std::size_t length = 0; length < 16; ++length) {
        const Bytes bytes = dataOf(1, {});
        EXPECT_EQ(read(ByteView(bytes).first(length)), nullptr) << length;
    }
}

TEST(DataAtom, KeepsTheGivenPlaceAndCountsTheGivenBytes) {
    const auto data = read(atomClaiming(999, "xxxx"_os, {u32(1), u32(2), text("abc")}));
    EXPECT_EQ(data->parent(), &theItem(kTitleItem));
    EXPECT_EQ(data->offsetInFile(), 4096U);
    EXPECT_EQ(data->atomSize(), 19U);
    EXPECT_EQ(data->atomTypeString(), "data");
    EXPECT_EQ(data->dataType(), 1U);
    EXPECT_EQ(data->dataLocale(), 2U);
    EXPECT_EQ(data->text(), "abc");
}

TEST(DataAtom, OneMadeInMemoryHasNoValueAndNoKind) {
    const VexQTdataAtom data;
    EXPECT_EQ(data.atomTypeString(), "data");
    EXPECT_EQ(data.dataType(), 0U);
    EXPECT_EQ(data.dataLocale(), 0U);
    EXPECT_EQ(data.dataTypeString(), std::nullopt);
    EXPECT_EQ(data.text(), std::nullopt);
    EXPECT_EQ(data.image(), std::nullopt);
    EXPECT_EQ(data.value(), std::nullopt);
    EXPECT_EQ(data.intValue(), 0);
    EXPECT_EQ(data.atomNibName(), std::nullopt);
    EXPECT_EQ(data.rawImageData(), std::nullopt);
    EXPECT_EQ(data.trackNumber(), 0U);
    EXPECT_EQ(data.totalTracks(), 0U);
    EXPECT_EQ(data.diskNumber(), 0);
    EXPECT_EQ(data.totalDisks(), 0);
    EXPECT_EQ(data.atomName(), "Metadata Data Item");
    EXPECT_EQ(VexQTdataAtom().atomData(), atom("data"_os, {u32(0), u32(0)}));
}

TEST(DataAtom, UTF8TextEndsAtTheFirstZeroByteAndIsWrittenWithoutTheRest) {
    const auto data = read(dataOf(1, {text("Caf\xC3\xA9"), u8(0), text("lost")}));
    EXPECT_EQ(data->text(), "Café");
    EXPECT_EQ(data->atomData(), dataOf(1, {text("Caf\xC3\xA9")}));
    EXPECT_EQ(data->atomSize(), 26U);
}

TEST(DataAtom, UTF8TextThatDoesNotDecodeIsAbsentAndWrittenAsNothing) {
    const auto data = read(dataOf(4, {text("caf\xE9")}));
    EXPECT_EQ(data->text(), std::nullopt);
    EXPECT_EQ(data->dataTypeString(), "VexQTDataAtomType_UTF8Text");
    EXPECT_EQ(data->atomData(), dataOf(4, {}));
}

TEST(DataAtom, UTF16TextIsCutAtItsFirstZeroByte) {
    struct Text {
        const char* what;
        Bytes bytes;
        std::optional<std::string> text;
        Bytes written;
    };
    const Bytes mark = nativeUTF16({0xFEFF});
    const Text cases[] = {
        {"a Latin letter", {0x00, 0x41}, "", mark},
        {"a mark and a Latin letter", {0xFE, 0xFF, 0x00, 0x41}, "", mark},
        {"a Latin letter, low byte first", {0x41, 0x00}, std::nullopt, {}},
        {"letters without zero bytes",
         {0x30, 0x42, 0x30, 0x44},
         "あい",
         nativeUTF16({0xFEFF, 0x3042, 0x3044})},
        {"low byte first, as the mark says",
         {0xFF, 0xFE, 0x42, 0x30},
         "あ",
         nativeUTF16({0xFEFF, 0x3042})},
        {"a pair", {0xD8, 0x3D, 0xDE, 0x42}, "🙂", nativeUTF16({0xFEFF, 0xD83D, 0xDE42})},
        {"half a pair", {0xD8, 0x3D, 0x30, 0x42}, std::nullopt, {}},
    };
    for (const Text& tested : cases) {
        SCOPED_TRACE(tested.what);
        const auto data = read(dataOf(2, {tested.bytes}));
        EXPECT_EQ(data->text(), tested.text);
        EXPECT_EQ(data->atomData(), dataOf(2, {tested.written}));
    }
}

TEST(DataAtom, ImplicitThreeBytesReadInTheUpperHalfAndGrowToFour) {
    const auto data = read(dataOf(0, {Bytes{0x00, 0x01, 0x02}}));
    EXPECT_EQ(data->value(), Number(0x01020000));
    EXPECT_EQ(data->atomData(), dataOf(0, {Bytes{0x01, 0x02, 0x00, 0x00}}));
    EXPECT_EQ(read(dataOf(0, {Bytes{0x01, 0x80, 0x00}}))->intValue(),
              std::numeric_limits<std::int32_t>::min());
}

TEST(DataAtom, TwoExplicitlySignedBytesAreNeverNegativeButImplicitOnesAre) {
    const Bytes bytes = {0xFF, 0xFE};
    const auto explicitly = read(dataOf(21, {bytes}));
    EXPECT_EQ(explicitly->intValue(), 65534);
    EXPECT_EQ(explicitly->atomData(), dataOf(21, {bytes}));
    const auto implicitly = read(dataOf(0, {bytes}));
    EXPECT_EQ(implicitly->intValue(), -2);
    EXPECT_EQ(implicitly->atomData(), dataOf(0, {bytes}));
}

TEST(DataAtom, DoublesAreHeldAsSingles) {
    const auto data = read(dataOf(24, {u64(0x3FB999999999999A)}));  // 0.1
    EXPECT_EQ(data->value(), Number(0.1F));
    EXPECT_EQ(data->atomData(), dataOf(24, {u64(0x3FB99999A0000000)}));
}

TEST(DataAtom, DoublesBeyondAllSinglesAreInfinite) {
    const auto data = read(dataOf(24, {u64(0x7FE0000000000000)}));
    EXPECT_EQ(data->value(), Number(std::numeric_limits<float>::infinity()));
    EXPECT_EQ(data->atomData(), dataOf(24, {u64(0x7FF0000000000000)}));
}

TEST(DataAtom, TrackNumberTakesWholeWords) {
    const Bytes bytes = dataOf(0, {Bytes{0x00, 0x00, 0x00, 0x03}, Bytes{0x00, 0x0C, 0x00, 0x00}});
    const auto data = readIn("trkn"_os, bytes);
    EXPECT_EQ(data->trackNumber(), 3U);
    EXPECT_EQ(data->totalTracks(), 786432U);
    EXPECT_EQ(data->value(), std::nullopt);
    EXPECT_EQ(data->atomData(), bytes);
}

TEST(DataAtom, DiskNumberDropsWhatFollowsItsCount) {
    const auto data =
        readIn("disk"_os, dataOf(0, {u16(0x0102), u16(0x0304), u16(0x0506), u16(0x0708)}));
    EXPECT_EQ(data->diskNumber(), 0x0304);
    EXPECT_EQ(data->totalDisks(), 0x0506);
    EXPECT_EQ(data->atomData(), dataOf(0, {u16(0), u16(0x0304), u16(0x0506)}));
}

TEST(DataAtom, TheCodeOfTheParentDecidesWhateverItsClass) {
    VexQTAtom generic("trkn"_os, 8, nullptr, 0);
    const Bytes bytes = dataOf(0, {u32(1), u32(2)});
    EXPECT_EQ(VexQTdataAtom::initWithData(bytes, &generic, 0)->dataTypeString(),
              "VexQTDataAtomType_TrackNumber");
    EXPECT_EQ(VexQTdataAtom::initWithData(bytes, nullptr, 0)->dataTypeString(),
              "VexQTDataAtomType_Reserved");
}

TEST(DataAtom, ATypeWithItsTopByteSetIsNotUnderstood) {
    const Bytes bytes = dataOf(0x01000001, {text("abc")});
    const auto data = read(bytes);
    EXPECT_EQ(data->dataTypeString(), "VexQTDataAtomType_Unknown");
    EXPECT_EQ(data->text(), std::nullopt);
    EXPECT_EQ(data->unknownData(), text("abc"));
    EXPECT_EQ(data->atomData(), bytes);
}

TEST(DataAtom, HoldsMetadataOfItsOwnThatCannotBeWritten) {
    const Bytes handler = atom("hdlr"_os, {u32(0), u32(0), text("mdta"), u32(1), u32(2), u32(3)});
    const auto data = read(dataOf(28, {atom("meta"_os, {handler})}));
    ASSERT_EQ(data->children().size(), 1U);
    const VexQTAtom& metadata = *data->children()[0];
    EXPECT_NE(dynamic_cast<const VexQTmetaAtom*>(&metadata), nullptr);
    EXPECT_EQ(metadata.parent(), data.get());
    EXPECT_EQ(metadata.offsetInFile(), 4096U + 16U);
    EXPECT_EQ(metadata.atomSize(), 40U);
    ASSERT_EQ(metadata.children().size(), 1U);
    EXPECT_NE(dynamic_cast<const VexQThdlrAtom*>(metadata.children()[0].get()), nullptr);
    EXPECT_THROW(data->atomData(), EncodingError);
}

TEST(DataAtom, MetadataWithoutChildrenIsWrittenAsItsHeader) {
    EXPECT_EQ(made(28, VexQTDataAtomType_QTMetadata)->atomData(), dataOf(28, {}));
}

TEST(DataAtom, ATolerantReadingKeepsMetadataThatCannotBeRead) {
    const auto [data, problems] =
        readTolerantly<VexQTdataAtom>(dataOf(28, {text("abc")}), 4096, &theItem(kTitleItem));
    ASSERT_EQ(data->children().size(), 1U);
    EXPECT_EQ(data->children()[0]->declinedClass(), "VexQTmetaAtom");
    EXPECT_EQ(data->children()[0]->atomData(), text("abc"));
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].path, "data.meta");
    EXPECT_EQ(problems[0].offsetInFile, 4096U + 16U);
}

// MARK: Writing

TEST(DataAtom, TheKindAloneDecidesHowAValueIsWritten) {
    const auto data = read(dataOf(1, {text("abc")}));
    data->setDataType(21);
    EXPECT_EQ(data->atomData(), dataOf(21, {text("abc")}));
    data->setDataTypeString(std::string("VexQTDataAtomType_SInt8"));
    EXPECT_EQ(data->atomData(), dataOf(21, {u8(0)}));
    data->setDataTypeString(std::string("no kind at all"));
    EXPECT_EQ(data->atomData(), dataOf(21, {}));
    data->setDataTypeString(std::nullopt);
    EXPECT_EQ(data->atomData(), dataOf(21, {}));
}

TEST(DataAtom, IntegersAreWrittenWithTheLowBytesOfTheirValue) {
    struct Width {
        std::string_view kind;
        Bytes written;
    };
    const Width cases[] = {
        {"VexQTDataAtomType_SInt8", {0x88}},
        {"VexQTDataAtomType_SInt16", {0x77, 0x88}},
        {"VexQTDataAtomType_SInt32", {0x55, 0x66, 0x77, 0x88}},
        {"VexQTDataAtomType_SInt64", {0x91, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}},
        {"VexQTDataAtomType_UInt8", {0x88}},
        {"VexQTDataAtomType_UInt16", {0x77, 0x88}},
        {"VexQTDataAtomType_UInt32", {0x55, 0x66, 0x77, 0x88}},
        {"VexQTDataAtomType_UInt64", {0x91, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}},
    };
    for (const Width& tested : cases) {
        SCOPED_TRACE(tested.kind);
        const auto data = made(5, tested.kind);
        data->setValue(Number(std::uint64_t{0x9122334455667788}));
        EXPECT_EQ(data->atomData(), dataOf(5, {tested.written}));
    }
}

TEST(DataAtom, AnAbsentNumberIsWrittenAsZeroOfItsWidth) {
    struct Width {
        std::string_view kind;
        std::size_t width;
    };
    const Width cases[] = {
        {"VexQTDataAtomType_SInt8", 1},   {"VexQTDataAtomType_SInt16", 2},
        {"VexQTDataAtomType_SInt32", 4},  {"VexQTDataAtomType_SInt64", 8},
        {"VexQTDataAtomType_UInt8", 1},   {"VexQTDataAtomType_UInt16", 2},
        {"VexQTDataAtomType_UInt32", 4},  {"VexQTDataAtomType_UInt64", 8},
        {"VexQTDataAtomType_Float32", 4}, {"VexQTDataAtomType_Float64", 8},
    };
    for (const Width& tested : cases) {
        SCOPED_TRACE(tested.kind);
        EXPECT_EQ(made(5, tested.kind)->atomData(), dataOf(5, {zeros(tested.width)}));
    }
}

TEST(DataAtom, FloatsOfIntegersAreTheirValue) {
    const auto data = made(23, VexQTDataAtomType_Float32);
    data->setIntValue(-2);
    EXPECT_EQ(data->atomData(), dataOf(23, {u32(0xC0000000)}));
    data->setDataTypeString(std::string(VexQTDataAtomType_Float64));
    EXPECT_EQ(data->atomData(), dataOf(23, {u64(0xC000000000000000)}));
}

TEST(DataAtom, IntegersOfFloatsAreCutTowardZero) {
    const auto data = made(21, VexQTDataAtomType_SInt16);
    data->setValue(Number(-2.75F));
    EXPECT_EQ(data->intValue(), -2);
    EXPECT_EQ(data->atomData(), dataOf(21, {u16(0xFFFE)}));
}

TEST(DataAtom, AbsentTextIsWrittenAsNothingAndEmptyTextAsTheMark) {
    const auto data = made(2, VexQTDataAtomType_UTF16Text);
    EXPECT_EQ(data->atomData(), dataOf(2, {}));
    data->setText("");
    EXPECT_EQ(data->atomData(), dataOf(2, {nativeUTF16({0xFEFF})}));
    data->setText("A🙂");
    EXPECT_EQ(data->atomData(), dataOf(2, {nativeUTF16({0xFEFF, 0x41, 0xD83D, 0xDE42})}));
    data->setText("\xFF");
    EXPECT_EQ(data->atomData(), dataOf(2, {}));
}

TEST(DataAtom, NumbersOfTracksAndDisksAreWrittenWhole) {
    const auto track = made(0, VexQTDataAtomType_TrackNumber);
    track->setTrackNumber(0x01020304);
    track->setTotalTracks(0x05060708);
    EXPECT_EQ(track->atomData(), dataOf(0, {u32(0x01020304), u32(0x05060708)}));
    const auto disk = made(0, VexQTDataAtomType_DiskNumber);
    disk->setDiskNumber(0x0102);
    disk->setTotalDisks(0x0304);
    EXPECT_EQ(disk->atomData(), dataOf(0, {u16(0), u16(0x0102), u16(0x0304)}));
}

TEST(DataAtom, WritingRestoresTheCodeButNotTheSize) {
    const auto data = read(dataOf(1, {text("abc")}));
    data->setAtomType("xxxx"_os);
    data->setText("a longer text");
    EXPECT_EQ(data->atomData(), dataOf(1, {text("a longer text")}));
    EXPECT_EQ(data->atomTypeString(), "data");
    EXPECT_EQ(data->atomSize(), 19U);
}

// MARK: Pictures

/// Two pixels, red and a half-transparent blue.
Picture redAndBlue() { return Picture({2, 1}, {0xFF, 0x00, 0x00, 0xFF, 0x00, 0x00, 0xFF, 0x80}); }

TEST(DataAtom, PicturesOfEveryFormatDecodeAndAreWrittenAsTheyWere) {
    struct Format {
        std::uint32_t indicator;
        Bytes bytes;
    };
    const Format cases[] = {
        {13, VexQTdataAtom::JPEGDataWithImage(redAndBlue())},
        {14, VexQTdataAtom::PNGDataWithImage(redAndBlue())},
        {27, VexQTdataAtom::BMPDataWithImage(redAndBlue())},
    };
    for (const Format& tested : cases) {
        SCOPED_TRACE(tested.indicator);
        // What follows the picture's own end stays too.
        const Bytes bytes = dataOf(tested.indicator, {tested.bytes, text("end")});
        const auto data = read(bytes);
        const auto image = data->image();
        ASSERT_TRUE(image);
        EXPECT_EQ(image->size(), (PictureSize{2, 1}));
        EXPECT_EQ(data->rawImageData(), join({tested.bytes, text("end")}));
        EXPECT_EQ(data->atomData(), bytes);
    }
}

TEST(DataAtom, PicturesThatDoNotDecodeAreAbsentAndKeepTheirBytes) {
    const Bytes bytes = dataOf(14, {text("no picture")});
    const auto data = read(bytes);
    EXPECT_EQ(data->image(), std::nullopt);
    EXPECT_EQ(data->rawImageData(), text("no picture"));
    EXPECT_EQ(data->atomData(), bytes);
}

TEST(DataAtom, ASetPictureDropsTheBytesAndIsEncodedInTheFormatOfTheKind) {
    const auto data = read(dataOf(14, {text("no picture")}));
    data->setImage(redAndBlue());
    EXPECT_EQ(data->rawImageData(), std::nullopt);
    EXPECT_EQ(data->image(), redAndBlue());
    EXPECT_EQ(data->atomData(), dataOf(14, {VexQTdataAtom::PNGDataWithImage(redAndBlue())}));
    data->setDataTypeString(std::string(VexQTDataAtomType_BMPImage));
    EXPECT_EQ(data->atomData(), dataOf(14, {VexQTdataAtom::BMPDataWithImage(redAndBlue())}));
    data->setDataTypeString(std::string(VexQTDataAtomType_JPEGImage));
    EXPECT_EQ(data->atomData(), dataOf(14, {VexQTdataAtom::JPEGDataWithImage(redAndBlue())}));
}

TEST(DataAtom, AnAbsentPictureIsWrittenAsNothing) {
    const auto data = read(dataOf(14, {text("no picture")}));
    data->setImage(std::nullopt);
    EXPECT_EQ(data->rawImageData(), std::nullopt);
    EXPECT_EQ(data->atomData(), dataOf(14, {}));
}

TEST(DataAtom, SetBytesAreWrittenAndLeaveThePicture) {
    const auto data = read(dataOf(14, {VexQTdataAtom::PNGDataWithImage(redAndBlue())}));
    data->setRawImageData(text("other"));
    EXPECT_EQ(data->rawImageData(), text("other"));
    EXPECT_EQ(data->image(), redAndBlue());
    EXPECT_EQ(data->atomData(), dataOf(14, {text("other")}));
}

TEST(DataAtom, EncodesNothingForNoPictureOrOneThatTheFormatCannotHold) {
    EXPECT_EQ(VexQTdataAtom::dataWithImage(std::nullopt, PictureFormat::PNG), Bytes());
    const Picture wide({65501, 1}, zeros(4 * 65501));
    EXPECT_EQ(VexQTdataAtom::JPEGDataWithImage(wide), Bytes());
    EXPECT_EQ(Picture::formatOf(VexQTdataAtom::JPEGDataWithImage(redAndBlue())),
              PictureFormat::JPEG);
    EXPECT_EQ(Picture::formatOf(VexQTdataAtom::PNGDataWithImage(redAndBlue())), PictureFormat::PNG);
    EXPECT_EQ(Picture::formatOf(VexQTdataAtom::BMPDataWithImage(redAndBlue())), PictureFormat::BMP);
}

// MARK: By name

TEST(DataAtom, ListsItsPropertiesInOrder) {
    std::vector<std::string> names;
    for (const Field* property : VexQTdataAtom().properties()) names.emplace_back(property->name);
    EXPECT_EQ(names,
              (std::vector<std::string>{"dataType", "dataLocale", "dataTypeString", "text", "image",
                                        "value", "nibName", "rawImageData", "trackNumber",
                                        "totalTracks", "diskNumber", "totalDisks"}));
}

TEST(DataAtom, EveryPropertyIsReachedByName) {
    VexQTdataAtom data;
    data.setValueForKey(21, "dataType");
    data.setValueForKey(22, "dataLocale");
    data.setValueForKey("VexQTDataAtomType_SInt8", "dataTypeString");
    data.setValueForKey("words", "text");
    data.setValueForKey(redAndBlue(), "image");
    data.setValueForKey(Number(23), "value");
    data.setValueForKey("SomeView", "nibName");
    data.setValueForKey(text("raw"), "rawImageData");
    data.setValueForKey(24, "trackNumber");
    data.setValueForKey(25, "totalTracks");
    data.setValueForKey(26, "diskNumber");
    data.setValueForKey(27, "totalDisks");

    EXPECT_EQ(data.dataType(), 21U);
    EXPECT_EQ(data.dataLocale(), 22U);
    EXPECT_EQ(data.dataTypeString(), "VexQTDataAtomType_SInt8");
    EXPECT_EQ(data.text(), "words");
    EXPECT_EQ(data.image(), redAndBlue());
    EXPECT_EQ(data.value(), Number(23));
    EXPECT_EQ(data.atomNibName(), "SomeView");
    EXPECT_EQ(data.rawImageData(), text("raw"));
    EXPECT_EQ(data.trackNumber(), 24U);
    EXPECT_EQ(data.totalTracks(), 25U);
    EXPECT_EQ(data.diskNumber(), 26);
    EXPECT_EQ(data.totalDisks(), 27);

    EXPECT_EQ(data.valueForKey("image"), Value(redAndBlue()));
    EXPECT_EQ(data.valueForKey("value"), Value(Number(23)));
    EXPECT_EQ(data.valueForKey("intValue"), Value(23));
    EXPECT_EQ(data.valueForKey("totalDisks"), Value(27));
    data.setValueForKey(-5, "intValue");
    EXPECT_EQ(data.value(), Number(-5));
}

TEST(DataAtom, AnySortOfNumberSetsTheValue) {
    VexQTdataAtom data;
    data.setValueForKey(-7, "value");
    EXPECT_EQ(data.value(), Number(-7));
    data.setValueForKey(7U, "value");
    EXPECT_EQ(data.value(), Number(7U));
    data.setValueForKey(0.5, "value");
    EXPECT_EQ(data.value(), Number(0.5F));
    EXPECT_THROW(data.setValueForKey("seven", "value"), ValueError);
    data.setNilValueForKey("value");
    EXPECT_EQ(data.value(), std::nullopt);
}

}  // namespace
}  // namespace vexqt
