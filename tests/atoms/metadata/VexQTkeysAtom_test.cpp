#include "vexqt/atoms/metadata/VexQTkeysAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/metadata/VexQTilstAtom.h"
#include "vexqt/atoms/metadata/VexQTmetaAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes key(std::string_view nameSpace, std::string_view value) {
    return join({u32(static_cast<std::uint32_t>(value.size() + 8)), text(nameSpace), text(value)});
}

Bytes twoKeys() {
    return atom("keys"_os, {
                               u8(0x03),
                               Bytes{0x04, 0x05, 0x06},
                               u32(2),
                               key("mdta", "com.example.title"),
                               key("udta", "nam"),
                           });
}

std::unique_ptr<VexQTkeysAtom> read(ByteView bytes) {
    return VexQTkeysAtom::initWithData(bytes, nullptr, 4096);
}

TEST(KeysAtom, ReadsVersionFlagsAndKeysWithTheirPlaces) {
    const auto keys = read(twoKeys());
    EXPECT_EQ(keys->version(), 3);
    EXPECT_EQ(keys->flags0(), 4);
    EXPECT_EQ(keys->flags1(), 5);
    EXPECT_EQ(keys->flags2(), 6);
    ASSERT_EQ(keys->numberOfKeys(), 2U);
    EXPECT_EQ(keys->keys()[0].index(), 1);
    EXPECT_EQ(keys->keys()[0].nameSpace(), "mdta"_os);
    EXPECT_EQ(keys->keys()[0].value(), "com.example.title");
    EXPECT_EQ(keys->keys()[1].index(), 2);
    EXPECT_EQ(keys->keys()[1].nameSpaceString(), "udta");
    EXPECT_EQ(keys->keys()[1].value(), "nam");
    EXPECT_EQ(keys->atomSize(), twoKeys().size());
    EXPECT_EQ(keys->offsetInFile(), 4096U);
    EXPECT_EQ(keys->atomData(), twoKeys());
}

TEST(KeysAtom, IsNamedAndHasAView) {
    const VexQTkeysAtom keys;
    EXPECT_EQ(keys.atomDescription(), "Metadata Keys ('keys')");
    EXPECT_EQ(keys.atomNibName(), "VexQTkeysAtom");
    EXPECT_EQ(keys.numberOfKeys(), 0U);
    EXPECT_EQ(VexQTkeysAtom().atomData(), atom("keys"_os, {Bytes{1, 0, 0, 0}, u32(0)}));
}

TEST(KeysAtom, KeepsItsPayloadBesideTheListAndNeverWritesIt) {
    const Bytes bytes = twoKeys();
    const auto keys = read(bytes);
    const Bytes payload(bytes.begin() + 8, bytes.end());
    EXPECT_EQ(keys->unknownData(), payload);
    keys->keys().clear();
    EXPECT_EQ(keys->unknownData(), payload);
    EXPECT_EQ(keys->atomData(), atom("keys"_os, {Bytes{3, 4, 5, 6}, u32(0)}));
    EXPECT_EQ(keys->atomSize(), 16U);
}

TEST(KeysAtom, ARemovedKeyLeavesTheItemsAsTheyAre) {
    VexQTAtom movie("moov"_os, 8, nullptr, 0);
    const Bytes item = atom(2, {atom("data"_os, {u32(21), u32(0), u8(5)})});
    const auto metadata = VexQTmetaAtom::initWithData(
        atom("meta"_os, {twoKeys(), atom("ilst"_os, {item})}), &movie, 0);
    auto& keys = dynamic_cast<VexQTkeysAtom&>(*metadata->children()[0]);
    keys.keys().erase(keys.keys().begin());
    EXPECT_EQ(metadata->atomData(),
              atom("meta"_os, {
                                  atom("keys"_os, {Bytes{3, 4, 5, 6}, u32(1), key("udta", "nam")}),
                                  atom("ilst"_os, {item}),
                              }));
    EXPECT_EQ(keys.keys()[0].index(), 2);
}

TEST(KeysAtom, TheOrderOfTheListIsWrittenWhateverTheIndices) {
    VexQTkeysAtom keys;
    keys.setVersion(0);
    keys.setKeys({VexQTKeyEntry(7, "mdta"_os, "b"), VexQTKeyEntry(7, "mdta"_os, "a")});
    EXPECT_EQ(keys.atomData(),
              atom("keys"_os, {u32(0), u32(2), key("mdta", "b"), key("mdta", "a")}));
    EXPECT_EQ(keys.keys()[1].index(), 7);
    EXPECT_EQ(keys.atomSize(), 34U);
}

TEST(KeysAtom, ATextEndsAtItsFirstZeroByte) {
    const auto keys = read(atom(
        "keys"_os, {u32(0), u32(2), key("mdta", std::string_view("ab\0cd", 5)), key("mdta", "e")}));
    EXPECT_EQ(keys->keys()[0].value(), "ab");
    EXPECT_EQ(keys->keys()[1].value(), "e");
    EXPECT_EQ(keys->atomData(),
              atom("keys"_os, {u32(0), u32(2), key("mdta", "ab"), key("mdta", "e")}));
}

TEST(KeysAtom, ATextThatIsNotASCIIIsAbsentAndWrittenAsNothing) {
    const auto keys = read(atom("keys"_os, {u32(0), u32(1), key("mdta", "caf\xC3\xA9")}));
    EXPECT_EQ(keys->keys().at(0).value(), std::nullopt);
    EXPECT_EQ(keys->atomData(), atom("keys"_os, {u32(0), u32(1), key("mdta", "")}));
}

TEST(KeysAtom, ExactlyAsManyKeysAreReadAsAreCounted) {
    const auto keys =
        read(atom("keys"_os, {u32(0), u32(1), key("mdta", "a"), key("mdta", "not counted")}));
    EXPECT_EQ(keys->numberOfKeys(), 1U);
    EXPECT_EQ(keys->atomData(), atom("keys"_os, {u32(0), u32(1), key("mdta", "a")}));
}

TEST(KeysAtom, WhatRunsPastTheEndIsARangeError) {
    struct Broken {
        const char* what;
        Bytes payload;
    };
    const Broken cases[] = {
        {"no count", {0, 0, 0, 0}},
        {"no key", join({u32(0), u32(1)})},
        {"a key less", join({u32(0), u32(2), key("mdta", "a")})},
        {"countless keys", join({u32(0), u32(0xFFFFFFFF), key("mdta", "a")})},
        {"a key without its namespace", join({u32(0), u32(1), u32(8), text("md")})},
        {"a text that is longer than the atom", join({u32(0), u32(1), u32(11), text("mdtaab")})},
        {"a size without its own bytes", join({u32(0), u32(1), u32(7), text("mdta")})},
        {"a size of 0", join({u32(0), u32(1), u32(0), text("mdta")})},
    };
    for (const Broken& tested : cases) {
        SCOPED_TRACE(tested.what);
        EXPECT_THROW(read(atom("keys"_os, {tested.payload})), RangeError);
    }
}

TEST(KeysAtom, TheSizeIsTakenAsAGenericAtomTakesIt) {
    Bytes toTheEnd = twoKeys();
    toTheEnd[3] = 0;
    EXPECT_EQ(read(toTheEnd)->atomSize(), toTheEnd.size() - 8);

    // The fields lie behind 8 bytes whatever the header: here in the extended size.
    const Bytes extended =
        join({u32(1), text("keys"), Bytes{1, 2, 3, 4}, u32(1), key("mdta", "a")});
    const auto keys = read(extended);
    EXPECT_EQ(keys->atomSize(), 0x0102030400000001U - 16);
    EXPECT_EQ(keys->version(), 1);
    EXPECT_EQ(keys->keys().at(0).value(), "a");
    EXPECT_EQ(keys->unknownData(), key("mdta", "a"));
    EXPECT_EQ(keys->atomData(), atom("keys"_os, {Bytes{1, 2, 3, 4}, u32(1), key("mdta", "a")}));
}

TEST(KeysAtom, WithoutAHeaderItIsARangeError) {
    EXPECT_THROW(read(Bytes{0, 0, 0, 8, 'k', 'e', 'y'}), RangeError);
}

TEST(KeysAtom, IsReadAsKeysWhateverItsCode) {
    Bytes renamed = twoKeys();
    renamed[4] = 'x';
    EXPECT_EQ(read(renamed)->atomTypeString(), "keys");
}

TEST(KeysAtom, TheListIsEditedByName) {
    const auto keys = read(twoKeys());
    const Field* list = keys->propertyNamed("keys");
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->list->columns.size(), 3U);
    EXPECT_EQ(list->list->columns[0].name, "index");
    EXPECT_EQ(list->list->columns[1].name, "nameSpace");
    EXPECT_EQ(list->list->columns[1].display, Display::Code);
    EXPECT_EQ(list->list->columns[2].name, "value");
    EXPECT_EQ(list->list->cell(*keys, 1, 0), Value(2));
    EXPECT_EQ(list->list->cell(*keys, 1, 1), Value("udta"_os));
    EXPECT_EQ(list->list->cell(*keys, 1, 2), Value("nam"));
    list->list->setCell(*keys, 1, 0, 5);
    list->list->setCell(*keys, 1, 1, "mdta"_os);
    list->list->setCell(*keys, 1, 2, "x");
    EXPECT_EQ(keys->keys()[1].index(), 5);
    EXPECT_EQ(keys->keys()[1].nameSpace(), "mdta"_os);
    EXPECT_EQ(keys->keys()[1].value(), "x");
    EXPECT_EQ(keys->properties().size(), 1U);
}

TEST(KeyEntry, ANewOneHasNoPlaceNoNamespaceAndNoText) {
    const VexQTKeyEntry entry;
    EXPECT_EQ(entry.index(), 0);
    EXPECT_EQ(entry.nameSpace(), "????"_os);
    EXPECT_EQ(entry.nameSpaceString(), "????");
    EXPECT_EQ(entry.value(), std::nullopt);
    EXPECT_EQ(entry.atomData(), key("????", ""));
}

TEST(KeyEntry, WritesItsNamespaceAndText) {
    EXPECT_EQ(VexQTKeyEntry(9, "mdta"_os, "abc").atomData(),
              (Bytes{0, 0, 0, 11, 'm', 'd', 't', 'a', 'a', 'b', 'c'}));
    EXPECT_EQ(VexQTKeyEntry(9, "mdta"_os, "Café").atomData(), key("mdta", ""));
}

TEST(KeyEntry, TakesItsNamespaceAsText) {
    VexQTKeyEntry entry;
    entry.setNameSpaceString("mdta");
    EXPECT_EQ(entry.nameSpace(), 0x6D647461U);
    entry.setNameSpaceString("too long");
    EXPECT_EQ(entry.nameSpace(), "????"_os);
}

}  // namespace
}  // namespace vexqt
