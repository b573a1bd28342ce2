// What stays of metadata's bytes when only some of it was edited.
#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "testing/reading.h"
#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"
#include "vexqt/atoms/metadata/VexQTudtaAtom.h"
#include "vexqt/atoms/metadata/keyed_items.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes saved(VexQTAtom& atom) {
    const SharedBytes flat = Surgery().written(atom).flat();
    return Bytes(flat.view().begin(), flat.view().end());
}

/// Follows types down to a value.
VexQTdataAtom& valueAt(VexQTAtom& top, std::initializer_list<OSType> types) {
    VexQTAtom* atom = &top;
    for (const OSType type : types) atom = atom->childWithType(type);
    return dynamic_cast<VexQTdataAtom&>(*atom);
}

Bytes handler() { return atom("hdlr"_os, {u32(0), u32(0), text("mdta"), zeros(12)}); }
Bytes value(std::uint32_t type, ByteView bytes) {
    return atom("data"_os, {u32(type), u32(0), bytes});
}

TEST(CarefulMetadata, ANewLanguageLeavesATextThatDoesNotDecode) {
    const auto item = [](std::uint16_t language) {
        return atom(0xA96E616D, {u16(4), u16(language), text("caf\x8E"), text("behind")});
    };
    const auto read = VexQTUserDataTextItem::initWithData(item(0), nullptr, 0);
    EXPECT_EQ(saved(*read), item(0));
    read->setLanguageCode(0x55C4);
    EXPECT_EQ(saved(*read), item(0x55C4));
}

TEST(CarefulMetadata, AnEditedTextLeavesWhatIsBesideIt) {
    const auto userData = [](std::string_view title) {
        const auto length = static_cast<std::uint16_t>(title.size());
        return atom("udta"_os, {atom(0xA96E616D, {u16(length), u16(1), text(title)}),
                                atom(0xA9415254, {u16(4), u16(2), text("caf\x8E")}), u32(0)});
    };
    const auto read = VexQTudtaAtom::initWithData(userData("title"), nullptr, 0);
    dynamic_cast<VexQTUserDataTextItem&>(*read->children()[0]).setText("another");
    EXPECT_EQ(saved(*read), userData("another"));
}

TEST(CarefulMetadata, ValuesThatTheirClassWouldChangeStay) {
    const Bytes list = atom("ilst"_os, {
                                           atom(1, {value(2, Bytes{0x30, 0x42})}),
                                           atom(2, {value(0, Bytes{1, 2, 3})}),
                                           atom(3, {value(21, Bytes{1, 2, 3})}),
                                           atom(4, {value(1, text(std::string("a\0b", 3)))}),
                                           atom(5, {value(24, u64(0x3FB999999999999A))}),
                                           atom(6, {value(13, text("no picture"))}),
                                       });
    const auto read = VexQTilstAtom::initWithData(list, nullptr, 0);
    EXPECT_EQ(saved(*read), list);
    EXPECT_NE(read->atomData(), list);
}

TEST(CarefulMetadata, ANewLocaleLeavesTheValue) {
    const auto bytes = [](std::uint32_t locale) {
        return atom("data"_os, {u32(2), u32(locale), Bytes{0x30, 0x42}});
    };
    const auto read = VexQTdataAtom::initWithData(bytes(0), nullptr, 0);
    read->setDataLocale(7);
    EXPECT_EQ(saved(*read), bytes(7));
}

TEST(CarefulMetadata, AnEditBelowAValueIsWritten) {
    const auto outer = [](std::string_view characters) {
        return value(
            28,
            atom("meta"_os, {handler(), atom("ilst"_os, {atom(1, {value(1, text(characters))})})}));
    };
    const auto read = VexQTdataAtom::initWithData(outer("before"), nullptr, 0);
    EXPECT_EQ(saved(*read), outer("before"));
    valueAt(*read, {"meta"_os, "ilst"_os, 1, "data"_os}).setText("afterwards");
    EXPECT_EQ(saved(*read), outer("afterwards"));
}

TEST(CarefulMetadata, AValueMayBecomeAnotherKind) {
    const auto read = VexQTdataAtom::initWithData(value(1, text("five")), nullptr, 0);
    read->setDataType(21);
    read->setDataTypeString(std::string(VexQTDataAtomType_SInt8));
    read->setIntValue(5);
    EXPECT_EQ(saved(*read), value(21, u8(5)));
}

TEST(CarefulMetadata, TheOtherFormStaysAroundAnEdit) {
    const auto bytes = [](std::string_view characters) {
        return atom("meta"_os, {Bytes{0, 0, 0, 9}, handler(),
                                atom("ilst"_os, {atom(1, {value(1, text(characters))})}), u32(0)});
    };
    VexQTAtom movie("moov"_os, 8, nullptr, 0);
    const auto [read, problems] = readTolerantly<VexQTmetaAtom>(bytes("before"), 0, &movie);
    EXPECT_EQ(problems.size(), 1U);
    valueAt(*read, {"ilst"_os, 1, "data"_os}).setText("afterwards");
    EXPECT_EQ(saved(*read), bytes("afterwards"));
}

TEST(CarefulMetadata, KeysBehindAnExtendedSizeStay) {
    const Bytes keys = join({u32(1), text("keys"), u32(0), u32(1), u32(9), text("mdtaa")});
    const auto read = VexQTkeysAtom::initWithData(keys, nullptr, 0);
    ASSERT_EQ(read->keys().at(0).value(), "a");
    EXPECT_EQ(saved(*read), keys);
}

TEST(CarefulMetadata, AKeyIsRemovedWithItsItemAlone) {
    const auto bytes = [](std::uint32_t count, ByteView keys,
                          std::initializer_list<ByteView> items) {
        return atom("meta"_os, {handler(), atom("keys"_os, {u32(0), u32(count), keys}),
                                atom("ilst"_os, items)});
    };
    const Bytes first = join({u32(9), text("mdtaa")});
    const Bytes second = join({u32(9), text("mdtab")});
    const Bytes lossy = value(0, Bytes{1, 2, 3});
    const auto read = VexQTmetaAtom::initWithData(
        bytes(2, join({first, second}), {atom(1, {value(1, text("x"))}), atom(2, {lossy})}),
        nullptr, 0);
    removeKey(dynamic_cast<VexQTkeysAtom&>(*read->children()[1]), 0);
    EXPECT_EQ(saved(*read), bytes(1, second, {atom(1, {lossy})}));
}

}  // namespace
}  // namespace vexqt
