#include "vexqt/atoms/metadata/VexQTudtaAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/metadata/VexQTUserDataDirectTextItem.h"
#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"
#include "vexqt/atoms/metadata/VexQTmetaAtom.h"
#include "vexqt/atoms/structure/VexQTmoofAtom.h"
#include "vexqt/atoms/structure/VexQTmoovAtom.h"
#include "vexqt/atoms/structure/VexQTtrakAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

constexpr OSType kTitle = 0xA96E616D;  // ©nam

Bytes textItem(OSType code, std::string_view characters) {
    return atom(
        code, {u16(static_cast<std::uint16_t>(characters.size())), u16(0x55C4), text(characters)});
}

std::unique_ptr<VexQTudtaAtom> read(ByteView bytes) {
    return VexQTudtaAtom::initWithData(bytes, nullptr, 4096);
}

TEST(UdtaAtom, IsNamedAndHasNoView) {
    const VexQTudtaAtom userData;
    EXPECT_EQ(userData.atomDescription(), "User Data ('udta')");
    EXPECT_EQ(userData.atomNibName(), std::nullopt);
    EXPECT_EQ(VexQTudtaAtom().atomData(), atom("udta"_os));
}

TEST(UdtaAtom, TheCodeDecidesTheClassOfAChild) {
    struct Code {
        OSType code;
        std::string_view className;
    };
    const Code cases[] = {
        {0xA9415254, "VexQTUserDataTextItem"},  // ©ART
        {0xA9616C62, "VexQTUserDataTextItem"},  // ©alb
        {0xA9637079, "VexQTUserDataTextItem"},  // ©cpy
        {0xA9646179, "VexQTUserDataTextItem"},  // ©day
        {0xA967656E, "VexQTUserDataTextItem"},  // ©gen
        {0xA96E616D, "VexQTUserDataTextItem"},  // ©nam
        {"EXTC"_os, "VexQTUserDataTextItem"},
        {"MOVI"_os, "VexQTUserDataTextItem"},
        {"aART"_os, "VexQTUserDataTextItem"},
        {"apID"_os, "VexQTUserDataTextItem"},
        {"cprt"_os, "VexQTUserDataTextItem"},
        {"desc"_os, "VexQTUserDataTextItem"},
        {"flvr"_os, "VexQTUserDataTextItem"},
        {"ldes"_os, "VexQTUserDataTextItem"},
        {"mean"_os, "VexQTUserDataTextItem"},
        {"purd"_os, "VexQTUserDataTextItem"},
        {"sdes"_os, "VexQTUserDataTextItem"},
        {"soal"_os, "VexQTUserDataTextItem"},
        {"tven"_os, "VexQTUserDataTextItem"},
        {"tves"_os, "VexQTUserDataTextItem"},
        {"tvnn"_os, "VexQTUserDataTextItem"},
        {"tvsh"_os, "VexQTUserDataTextItem"},
        {"tvsn"_os, "VexQTUserDataTextItem"},
        {"xid "_os, "VexQTUserDataTextItem"},
        {"MCPS"_os, "VexQTUserDataDirectTextItem"},
        {"XMP_"_os, "VexQTUserDataDirectTextItem"},
        {"meta"_os, "VexQTmetaAtom"},
        {0xA9746F6F, "VexQTAtom"},  // ©too
        {"xid\0"_os, "VexQTAtom"},
        {"XMP "_os, "VexQTAtom"},
        {"name"_os, "VexQTAtom"},
        {"udta"_os, "VexQTAtom"},
        {"????"_os, "VexQTAtom"},
    };
    for (const Code& tested : cases) {
        SCOPED_TRACE(textFromCode(tested.code));
        const Bytes bytes = atom("udta"_os, {textItem(tested.code, "title")});
        const auto userData = read(bytes);
        ASSERT_EQ(userData->children().size(), 1U);
        const VexQTAtom& child = *userData->children()[0];
        EXPECT_EQ(child.atomClass().className, tested.className);
        EXPECT_EQ(child.atomType(), tested.code);
        EXPECT_EQ(child.parent(), userData.get());
        EXPECT_EQ(child.offsetInFile(), 4096U + 8U);
    }
}

TEST(UdtaAtom, WritesChildrenBackInOrder) {
    const Bytes bytes =
        atom("udta"_os, {textItem(kTitle, "title"), atom("name"_os, {u8(0xFF), u8(0)}),
                         atom("XMP_"_os, {text("<x:xmpmeta/>")})});
    const auto userData = read(bytes);
    EXPECT_EQ(userData->children().size(), 3U);
    EXPECT_EQ(userData->atomSize(), bytes.size());
    EXPECT_EQ(userData->atomData(), bytes);
}

TEST(UdtaAtom, AChildWithAnotherCodeIsKeptAsItIs) {
    const Bytes bytes = atom("udta"_os, {atom("WLOC"_os, {u16(0x0102), u16(0x0304)})});
    const auto userData = read(bytes);
    EXPECT_EQ(userData->children().at(0)->unknownData(), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(userData->atomData(), bytes);
}

TEST(UdtaAtom, MetadataBelowItIsAFullAtom) {
    const Bytes handler = atom("hdlr"_os, {zeros(24)});
    const Bytes bytes = atom("udta"_os, {atom("meta"_os, {Bytes{7, 8, 9, 10}, handler})});
    const auto userData = read(bytes);
    const VexQTAtom& metadata = *userData->children().at(0);
    EXPECT_NE(dynamic_cast<const VexQTmetaAtom*>(&metadata), nullptr);
    EXPECT_EQ(metadata.version(), 7);
    EXPECT_EQ(metadata.flags2(), 10);
    EXPECT_EQ(metadata.children().at(0)->offsetInFile(), 4096U + 8U + 12U);
    EXPECT_EQ(userData->atomData(), bytes);
}

TEST(UdtaAtom, ItsSizeFieldIsHeldAsItStands) {
    const Bytes child = textItem(kTitle, "title");
    struct Size {
        const char* what;
        Bytes bytes;
        std::uint64_t held;
        std::uint64_t firstChild;
    };
    const Size cases[] = {
        {"0", atomClaiming(0, "udta"_os, {child}), 0, 8},
        {"wrong", atomClaiming(77, "udta"_os, {child}), 77, 8},
        {"1 for an extended size", extendedAtomClaiming(33, "udta"_os, {child}), 1, 16},
    };
    for (const Size& tested : cases) {
        SCOPED_TRACE(tested.what);
        const auto userData = read(tested.bytes);
        EXPECT_EQ(userData->atomSize(), tested.held);
        ASSERT_EQ(userData->children().size(), 1U);
        EXPECT_EQ(userData->children()[0]->offsetInFile(), 4096U + tested.firstChild);
        EXPECT_EQ(userData->atomData(), atom("udta"_os, {child}));
        EXPECT_EQ(userData->atomSize(), 25U);
    }
}

TEST(UdtaAtom, AnExtendedSizeCutShortMeansNoChildren) {
    const auto userData = read(join({u32(1), text("udta"), u16(0)}));
    EXPECT_TRUE(userData->children().empty());
    EXPECT_EQ(userData->atomData(), atom("udta"_os));
    EXPECT_THROW(read(Bytes{0, 0, 0, 8, 'u', 'd', 't'}), RangeError);
}

TEST(UdtaAtom, TheZeroBytesThatEndItAreDropped) {
    const Bytes child = textItem(kTitle, "title");
    EXPECT_EQ(read(atom("udta"_os, {child, u32(0)}))->atomData(), atom("udta"_os, {child}));
    EXPECT_EQ(read(atom("udta"_os, {u32(0)}))->atomData(), atom("udta"_os));
}

TEST(UdtaAtom, AChildOfEightBytesAtTheEndIsDropped) {
    const auto userData = read(atom("udta"_os, {textItem(kTitle, "title"), atom("name"_os)}));
    EXPECT_EQ(userData->children().size(), 1U);
}

TEST(UdtaAtom, ChildrenMayHaveSizesOfAnyForm) {
    const auto extended = read(
        atom("udta"_os, {extendedAtomClaiming(17, "name"_os, {u8(1)}), textItem(kTitle, "title")}));
    ASSERT_EQ(extended->children().size(), 2U);
    EXPECT_EQ(extended->children()[0]->unknownData(), Bytes{1});
    const auto toTheEnd = read(atom("udta"_os, {atomClaiming(0, "name"_os, {u8(1)})}));
    EXPECT_EQ(toTheEnd->children().at(0)->unknownData(), Bytes{1});
    EXPECT_THROW(
        read(atom("udta"_os, {textItem(kTitle, "title"), atomClaiming(0, "name"_os, {u8(1)})})),
        RangeError);
}

TEST(UdtaAtom, AnItemWithAnEmptyTextEndsTheReading) {
    const Bytes empty = textItem(kTitle, "");
    EXPECT_EQ(empty.size(), 12U);
    EXPECT_THROW(read(atom("udta"_os, {empty})), InsertionError);
    EXPECT_THROW(
        VexQTmoovAtom::initWithData(
            atom("moov"_os, {atom("udta"_os, {empty, textItem(kTitle, "x")})}), nullptr, 0),
        InsertionError);
}

TEST(UdtaAtom, WritingRestoresTheCode) {
    const auto userData = read(atom("xxxx"_os, {textItem(kTitle, "title")}));
    EXPECT_EQ(userData->atomTypeString(), "xxxx");
    EXPECT_EQ(userData->atomData(), atom("udta"_os, {textItem(kTitle, "title")}));
    EXPECT_EQ(userData->atomTypeString(), "udta");
}

TEST(UdtaAtom, IsFoundInMoviesSegmentsAndTracks) {
    const Bytes userData = atom("udta"_os, {textItem(kTitle, "title")});
    const auto movie = VexQTmoovAtom::initWithData(atom("moov"_os, {userData}), nullptr, 0);
    const auto segment = VexQTmoofAtom::initWithData(atom("moof"_os, {userData}), nullptr, 0);
    const auto track = VexQTtrakAtom::initWithData(atom("trak"_os, {userData}), nullptr, 0);
    for (const VexQTAtom* holder :
         {static_cast<const VexQTAtom*>(movie.get()), static_cast<const VexQTAtom*>(segment.get()),
          static_cast<const VexQTAtom*>(track.get())}) {
        EXPECT_EQ(holder->children().at(0)->atomClass().className, "VexQTudtaAtom");
    }
}

TEST(UdtaAtom, BelowATrackItHasSixteenBytesAtLeast) {
    const auto generic =
        VexQTtrakAtom::initWithData(atom("trak"_os, {atom("udta"_os, {u32(0)})}), nullptr, 0);
    EXPECT_EQ(generic->children().at(0)->atomClass().className, "VexQTAtom");
    EXPECT_EQ(generic->atomData(), atom("trak"_os, {atom("udta"_os, {u32(0)})}));
    const auto whole =
        VexQTtrakAtom::initWithData(atom("trak"_os, {atom("udta"_os, {zeros(8)})}), nullptr, 0);
    EXPECT_EQ(whole->children().at(0)->atomClass().className, "VexQTudtaAtom");
    // A movie reads one of any size.
    const auto movie =
        VexQTmoovAtom::initWithData(atom("moov"_os, {atom("udta"_os, {u32(0)})}), nullptr, 0);
    EXPECT_EQ(movie->children().at(0)->atomClass().className, "VexQTudtaAtom");
}

// MARK: Text items

std::unique_ptr<VexQTUserDataTextItem> readText(ByteView bytes) {
    return VexQTUserDataTextItem::initWithData(bytes, nullptr, 4096);
}

TEST(UserDataTextItem, ComesBackByteForByte) {
    const Bytes bytes = atom(kTitle, {u16(5), u16(0x55C4), text("title")});
    const auto item = readText(bytes);
    EXPECT_EQ(item->atomType(), kTitle);
    EXPECT_EQ(item->languageCode(), 0x55C4);
    EXPECT_EQ(item->text(), "title");
    EXPECT_EQ(item->atomSize(), 17U);
    EXPECT_EQ(item->atomName(), "User Data Text Item");
    EXPECT_EQ(item->atomNibName(), "VexQTUserDataTextItem");
    EXPECT_EQ(item->atomData(), bytes);
}

TEST(UserDataTextItem, ANewOneHasNoTextAndNoLanguage) {
    const VexQTUserDataTextItem item;
    EXPECT_EQ(item.languageCode(), 0);
    EXPECT_EQ(item.text(), std::nullopt);
    EXPECT_EQ(VexQTUserDataTextItem().atomData(), atom("????"_os, {u16(0), u16(0)}));
}

TEST(UserDataTextItem, FewerThanSixteenBytesGiveNoObject) {
    for (std::size_t length = 0; length < 16; ++length) {
        const Bytes bytes = atom(kTitle, {u16(0), u16(1), zeros(4)});
        EXPECT_EQ(readText(ByteView(bytes).first(length)), nullptr) << length;
    }
    EXPECT_NE(readText(atom(kTitle, {u16(0), u16(1), zeros(4)})), nullptr);
}

TEST(UserDataTextItem, ItsSizeIsThatOfTheBytesGiven) {
    EXPECT_EQ(readText(atomClaiming(99, kTitle, {u16(4), u16(0), text("abcd")}))->atomSize(), 16U);
}

TEST(UserDataTextItem, ALengthPastTheEndIsARangeError) {
    EXPECT_THROW(readText(atom(kTitle, {u16(5), u16(0), text("abcd")})), RangeError);
}

TEST(UserDataTextItem, OneTextIsReadAndOnlyThatIsWritten) {
    const auto item =
        readText(atom(kTitle, {u16(2), u16(0), text("ab"), u16(2), u16(1), text("cd")}));
    EXPECT_EQ(item->text(), "ab");
    EXPECT_EQ(item->atomData(), atom(kTitle, {u16(2), u16(0), text("ab")}));
    EXPECT_EQ(item->atomSize(), 14U);
}

TEST(UserDataTextItem, TextEndsAtTheFirstZeroByte) {
    const auto item = readText(atom(kTitle, {u16(5), u16(1), text("ab"), u8(0), text("cd")}));
    EXPECT_EQ(item->text(), "ab");
    EXPECT_EQ(item->atomData(), atom(kTitle, {u16(2), u16(1), text("ab")}));
}

TEST(UserDataTextItem, TextThatIsNotASCIIIsAbsentAndWrittenAsNothing) {
    const auto item = readText(atom(kTitle, {u16(4), u16(1), text("caf\xE9")}));
    EXPECT_EQ(item->text(), std::nullopt);
    EXPECT_EQ(item->atomData(), atom(kTitle, {u16(0), u16(1)}));
    EXPECT_EQ(item->atomSize(), 12U);
}

TEST(UserDataTextItem, ATextThatIsSetToOtherThanASCIIIsWrittenEmpty) {
    const auto item = readText(atom(kTitle, {u16(5), u16(0x55C4), text("title")}));
    item->setText("Café");
    EXPECT_EQ(item->atomData(), atomClaiming(12, kTitle, {u16(0), u16(0x55C4)}));
    EXPECT_EQ(item->text(), "Café");
}

TEST(UserDataTextItem, TheLengthOfALongTextWraps) {
    VexQTUserDataTextItem item;
    item.setAtomType(kTitle);
    item.setText(std::string(65541, 'a'));
    EXPECT_EQ(item.atomData(), atom(kTitle, {u16(5), u16(0), text(std::string(65541, 'a'))}));
}

TEST(UserDataTextItem, ItsPropertiesAreReachedByName) {
    VexQTUserDataTextItem item;
    item.setValueForKey(0x1234, "languageCode");
    item.setValueForKey("words", "text");
    EXPECT_EQ(item.languageCode(), 0x1234);
    EXPECT_EQ(item.text(), "words");
    EXPECT_EQ(item.valueForKey("languageCode"), Value(0x1234));
    EXPECT_EQ(item.valueForKey("text"), Value("words"));
    ASSERT_EQ(item.properties().size(), 2U);
    EXPECT_EQ(item.properties()[0]->name, "languageCode");
    EXPECT_EQ(item.properties()[1]->name, "text");
}

// MARK: Direct text items

std::unique_ptr<VexQTUserDataDirectTextItem> readDirect(ByteView bytes) {
    return VexQTUserDataDirectTextItem::initWithData(bytes, nullptr, 4096);
}

TEST(UserDataDirectTextItem, IsTextUpToItsEnd) {
    const Bytes bytes = atom("XMP_"_os, {text("<x>Caf\xC3\xA9</x>")});
    const auto item = readDirect(bytes);
    EXPECT_EQ(item->text(), "<x>Café</x>");
    EXPECT_EQ(item->atomType(), "XMP_"_os);
    EXPECT_EQ(item->atomSize(), bytes.size());
    EXPECT_EQ(item->atomName(), "User Data Text Item");
    EXPECT_EQ(item->atomNibName(), "VexQTUserDataDirectTextItem");
    EXPECT_EQ(item->atomData(), bytes);
    item->setValueForKey("other", "text");
    EXPECT_EQ(item->atomData(), atom("XMP_"_os, {text("other")}));
    EXPECT_EQ(item->atomSize(), 13U);
}

TEST(UserDataDirectTextItem, ANewOneHasNoText) {
    VexQTUserDataDirectTextItem item;
    EXPECT_EQ(item.text(), std::nullopt);
    EXPECT_EQ(item.atomData(), atom("????"_os));
}

TEST(UserDataDirectTextItem, FewerThanSixteenBytesGiveNoObject) {
    EXPECT_EQ(readDirect(atom("MCPS"_os, {zeros(7)})), nullptr);
    EXPECT_NE(readDirect(atom("MCPS"_os, {zeros(8)})), nullptr);
}

TEST(UserDataDirectTextItem, TextEndsAtTheFirstZeroByte) {
    const auto item = readDirect(atom("MCPS"_os, {text("abcdefgh"), u8(0), text("lost")}));
    EXPECT_EQ(item->text(), "abcdefgh");
    EXPECT_EQ(item->atomData(), atom("MCPS"_os, {text("abcdefgh")}));
}

TEST(UserDataDirectTextItem, TextThatDoesNotDecodeIsAbsentAndWrittenAsNothing) {
    const auto item = readDirect(atom("MCPS"_os, {text("abcdefg\xFF")}));
    EXPECT_EQ(item->text(), std::nullopt);
    EXPECT_EQ(item->atomData(), atom("MCPS"_os));
}

TEST(UserDataDirectTextItem, OnlyTheLowHalfOfALongLengthCounts) {
    struct Long {
        std::size_t length;
        std::size_t read;
    };
    const Long cases[] = {{65535, 65535}, {65536, 0}, {65541, 5}};
    for (const Long& tested : cases) {
        SCOPED_TRACE(tested.length);
        const auto item = readDirect(atom("XMP_"_os, {text(std::string(tested.length, 'a'))}));
        EXPECT_EQ(item->text(), std::string(tested.read, 'a'));
        EXPECT_EQ(item->atomData(), atom("XMP_"_os, {text(std::string(tested.read, 'a'))}));
    }
}

TEST(UserDataDirectTextItem, ALongTextIsWrittenWhole) {
    VexQTUserDataDirectTextItem item;
    item.setText(std::string(65541, 'a'));
    EXPECT_EQ(item.atomData().size(), 65549U);
}

}  // namespace
}  // namespace vexqt
