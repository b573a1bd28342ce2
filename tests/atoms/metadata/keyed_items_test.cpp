#include "vexqt/atoms/metadata/keyed_items.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/headers/VexQThdlrAtom.h"
#include "vexqt/atoms/structure/VexQTmoovAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes handler(std::string_view scheme) {
    return atom("hdlr"_os, {u32(0), u32(0), text(scheme), zeros(12)});
}
Bytes keysOf(std::initializer_list<std::string_view> texts) {
    Bytes entries;
    for (const std::string_view value : texts) {
        const auto size = static_cast<std::uint32_t>(value.size() + 8);
        entries = join({entries, u32(size), text("mdta"), text(value)});
    }
    return atom("keys"_os, {u32(0), u32(static_cast<std::uint32_t>(texts.size())), entries});
}
Bytes value(std::string_view characters) {
    return atom("data"_os, {u32(1), u32(0), text(characters)});
}
Bytes item(OSType code, std::string_view characters) { return atom(code, {value(characters)}); }

/// A movie atom that holds metadata with these children.
Bytes movieOf(std::initializer_list<ByteView> children) {
    // Not alone, because an empty atom at the end is not read.
    return atom("moov"_os, {atom("meta"_os, children), atom("free"_os, {u8(0)})});
}

struct Movie {
    explicit Movie(std::initializer_list<ByteView> children)
        : movie(VexQTmoovAtom::initWithData(movieOf(children), nullptr, 0)),
          metadata(dynamic_cast<VexQTmetaAtom&>(*movie->children().at(0))) {}

    template <class T>
    T& child(std::size_t index) {
        return dynamic_cast<T&>(*metadata.children().at(index));
    }

    std::unique_ptr<VexQTmoovAtom> movie;
    VexQTmetaAtom& metadata;
};

/// The sizes that editing leaves are those that writing gives.
void expectMetadata(Movie& movie, std::initializer_list<ByteView> children) {
    const Bytes expected = movieOf(children);
    const std::uint64_t size = movie.movie->atomSize();
    EXPECT_EQ(movie.movie->atomData(), expected);
    EXPECT_EQ(size, expected.size());
}

const VexQTMetadataItem& itemAt(const VexQTAtom& items, std::size_t index) {
    return dynamic_cast<const VexQTMetadataItem&>(*items.children().at(index));
}

TEST(KeyOfItem, IsTheKeyInTheItemsPlace) {
    Movie movie(
        {keysOf({"first", "second"}), atom("ilst"_os, {item(2, "b"), item(1, "a"), item(3, "c"),
                                                       item(0, "d"), item("trkn"_os, "e")})});
    const auto& items = movie.child<VexQTilstAtom>(1);
    const VexQTkeysAtom& keys = movie.child<VexQTkeysAtom>(0);
    EXPECT_EQ(keyOfItem(itemAt(items, 0)), &keys.keys()[1]);
    EXPECT_EQ(keyOfItem(itemAt(items, 1)), &keys.keys()[0]);
    EXPECT_EQ(keyOfItem(itemAt(items, 2)), nullptr);
    EXPECT_EQ(keyOfItem(itemAt(items, 3)), nullptr);
    EXPECT_EQ(keyOfItem(itemAt(items, 4)), nullptr);
}

TEST(KeyOfItem, IsNoneWithoutKeysOrOutsideOfAList) {
    Movie movie({atom("ilst"_os, {item(1, "a")})});
    EXPECT_EQ(keyOfItem(itemAt(movie.child<VexQTilstAtom>(0), 0)), nullptr);
    EXPECT_EQ(keyOfItem(VexQTMetadataItem()), nullptr);
    const auto alone = VexQTilstAtom::initWithData(atom("ilst"_os, {item(1, "a")}), nullptr, 0);
    EXPECT_EQ(keyOfItem(itemAt(*alone, 0)), nullptr);
}

TEST(KeyOfItem, IsLookedUpInTheNearestKeys) {
    const Bytes space = atom("free"_os, {u8(0)});
    Movie movie({keysOf({"far"}), space, atom("ilst"_os, {item(1, "a")}), keysOf({"near"}),
                 atom("ilst"_os, {item(1, "b")}), keysOf({"later"})});
    EXPECT_EQ(keyOfItem(itemAt(movie.child<VexQTilstAtom>(2), 0))->value(), "near");
    EXPECT_EQ(keyOfItem(itemAt(movie.child<VexQTilstAtom>(4), 0))->value(), "near");
}

TEST(ItemWithKey, IsTheFirstItemOfThatKey) {
    Movie movie(
        {keysOf({"first", "second"}), atom("ilst"_os, {item(1, "a"), item(2, "b"), item(2, "c")})});
    const auto& items = movie.child<VexQTilstAtom>(1);
    EXPECT_EQ(itemWithKey(items, "second"), items.children()[1].get());
    EXPECT_EQ(itemWithKey(items, "third"), nullptr);
}

TEST(DataAtomWithText, IsAUTF8TextOfItsLength) {
    const auto data = dataAtomWithText("Café");
    EXPECT_EQ(data->atomSize(), 21U);
    EXPECT_EQ(data->atomNibName(), "VexQTMetadataTextItem");
    EXPECT_EQ(data->atomData(), value("Caf\xC3\xA9"));
}

TEST(AddKeyedItem, AddsTheKeyAtTheEndAndAnItemOfItsNumber) {
    Movie movie({handler("mdta"), keysOf({"first"}), atom("ilst"_os, {item(1, "a")})});
    const VexQTMetadataItem& added =
        addKeyedItem(movie.metadata, kKeyNameSpace, "second", dataAtomWithText("words"));
    EXPECT_EQ(added.atomTypeString(), "2");
    EXPECT_EQ(added.parent(), &movie.child<VexQTilstAtom>(2));
    EXPECT_EQ(added.children().at(0)->parent(), &added);
    EXPECT_EQ(keyOfItem(added)->value(), "second");
    EXPECT_EQ(keyOfItem(added)->index(), 2);
    expectMetadata(movie, {handler("mdta"), keysOf({"first", "second"}),
                           atom("ilst"_os, {item(1, "a"), item(2, "words")})});
}

TEST(AddKeyedItem, TakesAKeyThatHasNoItem) {
    Movie movie({keysOf({"first", "second"}), atom("ilst"_os, {item(2, "b")})});
    addKeyedItem(movie.metadata, kKeyNameSpace, "first", dataAtomWithText("a"));
    expectMetadata(movie,
                   {keysOf({"first", "second"}), atom("ilst"_os, {item(2, "b"), item(1, "a")})});
}

TEST(AddKeyedItem, MakesWhatIsMissing) {
    Movie empty({});
    addKeyedItem(empty.metadata, kKeyNameSpace, "first", dataAtomWithText("a"));
    expectMetadata(empty, {handler("mdta"), keysOf({"first"}), atom("ilst"_os, {item(1, "a")})});

    Movie withHandler({handler("mdta")});
    addKeyedItem(withHandler.metadata, kKeyNameSpace, "first", dataAtomWithText("a"));
    expectMetadata(withHandler,
                   {handler("mdta"), keysOf({"first"}), atom("ilst"_os, {item(1, "a")})});

    Movie withKeys({keysOf({"zeroth"})});
    addKeyedItem(withKeys.metadata, kKeyNameSpace, "first", dataAtomWithText("a"));
    expectMetadata(withKeys, {keysOf({"zeroth", "first"}), atom("ilst"_os, {item(2, "a")})});
}

TEST(AddKeyedItem, SaysNoAndChangesNothing) {
    struct Refused {
        const char* what;
        Movie movie;
        std::string key;
    };
    Refused cases[] = {
        {"the key has an item", Movie({keysOf({"first"}), atom("ilst"_os, {item(1, "a")})}),
         "first"},
        {"an item has the number without a key",
         Movie({keysOf({"first"}), atom("ilst"_os, {item(2, "b")})}), "second"},
        {"not ASCII", Movie({keysOf({"first"})}), "Café"},
        {"a zero byte", Movie({keysOf({"first"})}), std::string("a\0b", 3)},
        {"the handler's items go by codes", Movie({handler("mdir")}), "first"},
        {"the items go by codes", Movie({atom("ilst"_os, {item("trkn"_os, "a")})}), "first"},
    };
    for (Refused& tested : cases) {
        SCOPED_TRACE(tested.what);
        const Bytes before = tested.movie.movie->atomData();
        EXPECT_THROW(
            addKeyedItem(tested.movie.metadata, kKeyNameSpace, tested.key, dataAtomWithText("new")),
            ValueError);
        EXPECT_EQ(tested.movie.movie->atomData(), before);
    }
    Movie movie({});
    EXPECT_THROW(addKeyedItem(movie.metadata, kKeyNameSpace, "first", nullptr), InsertionError);
}

TEST(AddKeyedItem, KeysOfOneTextInTwoNamespacesAreTwo) {
    Movie movie({keysOf({"first"}), atom("ilst"_os, {item(1, "a")})});
    addKeyedItem(movie.metadata, "udta"_os, "first", dataAtomWithText("b"));
    const auto& keys = movie.child<VexQTkeysAtom>(0);
    ASSERT_EQ(keys.numberOfKeys(), 2U);
    EXPECT_EQ(keys.keys()[1].nameSpace(), "udta"_os);
}

TEST(RemoveKey, RemovesItsItemsAndRenumbersTheOthers) {
    Movie movie({keysOf({"first", "second", "third"}),
                 atom("ilst"_os, {item(3, "c"), item(2, "b"), item(1, "a"), item(2, "bb"),
                                  item(4, "dangling"), item("trkn"_os, "classic")})});
    auto& keys = movie.child<VexQTkeysAtom>(0);
    removeKey(keys, 1);
    EXPECT_EQ(keys.keys()[0].index(), 1);
    EXPECT_EQ(keys.keys()[1].index(), 2);
    expectMetadata(movie, {keysOf({"first", "third"}),
                           atom("ilst"_os, {item(2, "c"), item(1, "a"), item(4, "dangling"),
                                            item("trkn"_os, "classic")})});
}

TEST(RemoveKey, LeavesTheItemsOfOtherKeys) {
    Movie movie({keysOf({"first"}), atom("ilst"_os, {item(1, "a")}), atom("free"_os, {u8(0)}),
                 atom("ilst"_os, {item(2, "d"), item(1, "c")}), keysOf({"other", "another"})});
    removeKey(movie.child<VexQTkeysAtom>(4), 0);
    expectMetadata(movie,
                   {keysOf({"first"}), atom("ilst"_os, {item(1, "a")}), atom("free"_os, {u8(0)}),
                    atom("ilst"_os, {item(1, "d")}), keysOf({"another"})});
}

TEST(RemoveKey, AMissingRowIsARangeError) {
    Movie movie({keysOf({"first"})});
    EXPECT_THROW(removeKey(movie.child<VexQTkeysAtom>(0), 1), RangeError);
    VexQTkeysAtom alone;
    alone.keys().emplace_back(1, kKeyNameSpace, "first");
    EXPECT_THROW(removeKey(alone, 0), RangeError);
}

}  // namespace
}  // namespace vexqt
