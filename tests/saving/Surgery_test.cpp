// What surgical writing leaves of the bytes that were read. Every movie here has something that its
// classes would write in another way.
#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "testing/reading.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/atoms/headers/VexQTmvhdAtom.h"
#include "vexqt/atoms/headers/VexQTtkhdAtom.h"
#include "vexqt/atoms/metadata/VexQTUserDataDirectTextItem.h"
#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"
#include "vexqt/atoms/metadata/VexQTkeysAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTmebxkeysAtom.h"
#include "vexqt/atoms/sampletables/VexQTelstAtom.h"
#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"
#include "vexqt/atoms/structure/VexQTfreeAtom.h"
#include "vexqt/atoms/structure/VexQTmoovAtom.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes surgical(VexQTAtom& atom) {
    Surgery surgery;
    const SharedBytes bytes = surgery.written(atom).flat();
    return {bytes.view().begin(), bytes.view().end()};
}

std::unique_ptr<VexQTmoovAtom> movieOf(std::initializer_list<ByteView> children) {
    return VexQTmoovAtom::initWithData(atom("moov"_os, children), nullptr, 0);
}

/// A movie header with something in the reserved bytes and a matrix that turns by 180 degrees: its
/// class drops the former and reads -1.0 as -2.0.
const Bytes kHeader = atom(
    "mvhd"_os, {u32(0),                                             // version, flags
                u32(0x11111111),                                    // creation time
                u32(0x22222222),                                    // modification time
                u32(600),                                           // time scale
                u32(1234),                                          // duration
                u32(0xFFFF0000),                                    // rate: -1.0
                u16(0x0180),                                        // volume
                Bytes(10, 0xEE),                                    // reserved
                u32(0xFFFF0000), u32(0),          u32(0),           // a b u
                u32(0),          u32(0xFFFF0000), u32(0),           // c d v
                u32(0x00500000), u32(0),          u32(0x40000000),  // x y w
                u32(1),          u32(2),          u32(3),          u32(4), u32(5), u32(6), u32(7)});

const Bytes kEdits =
    atom("elst"_os, {u32(0x00000007),  // version, flags that are not read
                     u32(2),           // number of entries
                     u32(100), u32(0), u32(0xFFFF0000), u32(200), u32(50), u32(0xFFFF0000),
                     text("tail")});  // bytes behind the last entry

Bytes replaced(Bytes bytes, std::size_t offset, const Bytes& by) {
    std::ranges::copy(by, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    return bytes;
}

TEST(Surgery, UneditedAtomsComeBackWhateverTheirClassesWouldWrite) {
    const struct {
        std::string_view what;
        Bytes bytes;
    } kCases[] = {
        {"reserved bytes and a matrix of -1.0", atom("moov"_os, {kHeader})},
        {"flags that are not read",
         atom("moov"_os, {atom("trak"_os, {atom("edts"_os, {kEdits})})})},
        {"a profile", atom("moov"_os, {atom("trak"_os, {atom("prfl"_os, {u32(9)}),
                                                        atom("abcd"_os, {u32(1)})})})},
        {"a last child that is a bare header", atom("moov"_os, {kHeader, atom("free"_os)})},
        {"bytes behind the last child", atom("moov"_os, {kHeader, text("\0\0\0\0")})},
        {"a child with an extended size",
         atom("moov"_os, {extendedAtomClaiming(20, "wide"_os, {u32(5)})})},
        {"a container with an extended size",
         atom("moov"_os, {extendedAtomClaiming(16 + 12, "trak"_os, {atom("wide"_os, {u32(5)})})})},
        {"a child whose size reaches to the end",
         atom("moov"_os, {atomClaiming(0, "wide"_os, {u32(5)})})},
        {"fewer bytes than a header has", zeros(4)},
        {"a size field that tells less than there is", atomClaiming(12, "moov"_os, {kHeader})},
    };
    for (const auto& test : kCases) {
        SCOPED_TRACE(test.what);
        const auto movie = VexQTmoovAtom::initWithData(test.bytes, nullptr, 0);
        Surgery surgery;
        const ByteRope rope = surgery.written(*movie);
        EXPECT_EQ(rope.flat().size(), test.bytes.size());
        EXPECT_TRUE(std::ranges::equal(rope.flat().view(), test.bytes));
        EXPECT_EQ(rope.parts().size(), 1u) << "it is one part of what was read, without a copy";
        EXPECT_TRUE(surgery.edits().empty());
    }
}

TEST(Surgery, AnEditedFieldChangesNoOtherByte) {
    const auto movie = movieOf({kHeader});
    movie->children()[0]->setValueForKey(90000, "timeScale");
    EXPECT_EQ(surgical(*movie), replaced(atom("moov"_os, {kHeader}), 8 + 20, u32(90000)));
}

TEST(Surgery, AnEditedElementOfAMatrixLeavesTheOthersAsTheyWereRead) {
    const auto movie = movieOf({kHeader});
    movie->children()[0]->setMatrixXValue(81.0);
    EXPECT_EQ(surgical(*movie), replaced(atom("moov"_os, {kHeader}), 8 + 68, u32(0x00510000)));
}

TEST(Surgery, SettingAValueToWhatItIsIsNoEdit) {
    const auto movie = movieOf({kHeader});
    auto& header = dynamic_cast<VexQTmvhdAtom&>(*movie->children()[0]);
    header.setPreferredRate(header.preferredRate());
    header.setMatrix(Matrix(header.matrix()));
    header.setCreationDateTime(header.creationDateTime());
    EXPECT_EQ(surgical(*movie), atom("moov"_os, {kHeader}));
}

TEST(Surgery, AnEditTakenBackGivesTheOriginal) {
    const auto movie = movieOf({kHeader});
    movie->children()[0]->setValueForKey(90000, "timeScale");
    surgical(*movie);
    movie->children()[0]->setValueForKey(600, "timeScale");
    EXPECT_EQ(surgical(*movie), atom("moov"_os, {kHeader}));
}

TEST(Surgery, FlagsThatAreNotReadStayUntilSomebodySetsThem) {
    const Bytes table = atom("stts"_os, {u32(0x00ABCDEF), u32(0)});
    const auto stts = VexQTsttsAtom::initWithData(table, nullptr, 0);
    EXPECT_EQ(surgical(*stts), table);
    stts->setFlags1(0x55);
    EXPECT_EQ(surgical(*stts), replaced(table, 10, u8(0x55)));
}

class EditList : public ::testing::Test {
protected:
    std::unique_ptr<VexQTelstAtom> elst = VexQTelstAtom::initWithData(kEdits, nullptr, 0);
};

TEST_F(EditList, AnEditedCellLeavesItsRowAndTheOthersAsTheyWereRead) {
    elst->editListEntries()[1].setMediaTime(77);
    EXPECT_EQ(surgical(*elst), replaced(kEdits, 16 + 12 + 4, u32(77)));
}

TEST_F(EditList, AnInsertedRowLeavesTheOthersAsTheyWereRead) {
    elst->editListEntries().insert(elst->editListEntries().begin() + 1, VexQTEditListEntry());
    EXPECT_EQ(surgical(*elst),
              atom("elst"_os, {u32(0x00000007), u32(3), u32(100), u32(0), u32(0xFFFF0000),
                               zeros(12), u32(200), u32(50), u32(0xFFFF0000), text("tail")}));
}

TEST_F(EditList, ARowAddedAtTheEndLeavesTheOthersAsTheyWereRead) {
    elst->editListEntries().emplace_back();
    EXPECT_EQ(surgical(*elst),
              atom("elst"_os, {u32(0x00000007), u32(3), u32(100), u32(0), u32(0xFFFF0000), u32(200),
                               u32(50), u32(0xFFFF0000), zeros(12), text("tail")}));
}

TEST_F(EditList, ARemovedRowLeavesTheOthersAsTheyWereRead) {
    elst->editListEntries().erase(elst->editListEntries().begin());
    EXPECT_EQ(surgical(*elst), atom("elst"_os, {u32(0x00000007), u32(1), u32(200), u32(50),
                                                u32(0xFFFF0000), text("tail")}));
}

TEST(Surgery, ATableThatWasLookedAtIsNotEdited) {
    const Bytes table = atom("stts"_os, {u32(1), u32(1), u32(5), u32(600), text("rest")});
    const auto stts = VexQTsttsAtom::initWithData(table, nullptr, 0);
    EXPECT_EQ(stts->sampleDurations().size(), 1u);
    EXPECT_EQ(surgical(*stts), table);
}

// MARK: Children

const Bytes kFirst = atom("aaaa"_os, {u32(1)});
const Bytes kProfile = atom("prfl"_os, {u32(2)});
const Bytes kSecond = atom("bbbb"_os, {u32(3), u32(4)});

std::unique_ptr<VexQTmoovAtom> trackOf(std::initializer_list<ByteView> children) {
    return movieOf({atom("trak"_os, children)});
}

TEST(SurgeryOfChildren, ARemovedChildShrinksItsAncestorsAndNothingElse) {
    const auto movie = trackOf({kFirst, kProfile, kSecond});
    movie->children()[0]->removeChildrenWithType("aaaa"_os);
    EXPECT_EQ(surgical(*movie), atom("moov"_os, {atom("trak"_os, {kProfile, kSecond})}));
}

TEST(SurgeryOfChildren, OfAllChildrenRemovedTheDroppedOnesStay) {
    const auto movie = trackOf({kFirst, kProfile, kSecond, kProfile});
    movie->children()[0]->children().clear();
    EXPECT_EQ(surgical(*movie), atom("moov"_os, {atom("trak"_os, {kProfile, kProfile})}));
}

TEST(SurgeryOfChildren, AnInsertedChildStandsBehindTheOneInFrontOfIt) {
    const auto movie = trackOf({kFirst, kProfile, kSecond});
    movie->children()[0]->insertChild(
        VexQTAtom::initWithData(atom("cccc"_os, {u32(9)}), nullptr, 0), "aaaa"_os);
    EXPECT_EQ(
        surgical(*movie),
        atom("moov"_os, {atom("trak"_os, {kFirst, kProfile, atom("cccc"_os, {u32(9)}), kSecond})}));
}

TEST(SurgeryOfChildren, ATerminatorStaysBehindAChildAddedAtTheEnd) {
    const Bytes terminator = zeros(4);
    const auto movie = trackOf({kFirst, terminator});
    movie->children()[0]->addChild(VexQTAtom::initWithData(kSecond, nullptr, 0));
    EXPECT_EQ(surgical(*movie), atom("moov"_os, {atom("trak"_os, {kFirst, kSecond, terminator})}));
}

TEST(SurgeryOfChildren, ChildrenInANewOrderAreWrittenInIt) {
    const auto movie = trackOf({kFirst, kSecond});
    std::swap(movie->children()[0]->children()[0], movie->children()[0]->children()[1]);
    Surgery surgery;
    const SharedBytes bytes = surgery.written(*movie).flat();
    EXPECT_TRUE(
        std::ranges::equal(bytes.view(), atom("moov"_os, {atom("trak"_os, {kSecond, kFirst})})));
    ASSERT_EQ(surgery.edits().size(), 1u);
    EXPECT_EQ(surgery.edits()[0].atom, movie->children()[0].get());
}

TEST(SurgeryOfChildren, AChildThatMovesTakesItsBytesAlong) {
    const Bytes odd = atom("stts"_os, {u32(0x00ABCDEF), u32(0)});
    const auto movie = movieOf({atom("trak"_os, {odd, kSecond}), atom("trak"_os, {kFirst})});
    auto& track = *movie->children()[0];
    auto& other = *movie->children()[1];
    const auto move = [](VexQTAtom& from, std::size_t place, VexQTAtom& to) {
        auto child = std::move(from.children()[place]);
        from.children().erase(from.children().begin() + static_cast<std::ptrdiff_t>(place));
        to.addChild(std::move(child));
    };
    move(track, 0, *movie);
    EXPECT_EQ(surgical(*movie),
              atom("moov"_os, {atom("trak"_os, {kSecond}), atom("trak"_os, {kFirst}), odd}));
    move(other, 0, *movie);
    EXPECT_EQ(surgical(*movie),
              atom("moov"_os, {atom("trak"_os, {kSecond}), atom("trak"_os), odd, kFirst}));
    move(*movie, 3, track);
    move(track, 0, other);
    EXPECT_EQ(surgical(*movie),
              atom("moov"_os, {atom("trak"_os, {kFirst}), atom("trak"_os, {kSecond}), odd}));
}

TEST(SurgeryOfChildren, AnAtomMadeInMemoryIsWrittenAsItsClassWritesIt) {
    const auto movie = movieOf({kFirst});
    movie->addChild(std::make_unique<VexQTtkhdAtom>());
    EXPECT_EQ(surgical(*movie), atom("moov"_os, {kFirst, VexQTtkhdAtom().atomData()}));
}

TEST(SurgeryOfChildren, AnAtomMadeInMemoryTellsItsLengthThoughItsSizeHasWrapped) {
    const auto movie = movieOf({kFirst});
    auto list = std::make_unique<VexQTAtom>("list"_os, 8, nullptr, 0);
    auto item = std::make_unique<VexQTAtom>("item"_os, 20, nullptr, 0);
    const VexQTAtom* added = item.get();
    list->addChild(std::move(item));  // Which does not change the size.
    list->removeChild(added);
    ASSERT_EQ(list->atomSize(), std::uint64_t{8} - 20);
    list->addChild(std::make_unique<VexQTAtom>("item"_os, 8, nullptr, 0));
    movie->addChild(std::move(list));
    const Bytes expected = atom("moov"_os, {kFirst, atom("list"_os, {atom("item"_os)})});
    EXPECT_EQ(surgical(*movie), expected);
    EXPECT_EQ(surgical(*movie), expected);
}

TEST(SurgeryOfChildren, AnExtendedSizeGrowsInItsOwnField) {
    const auto movie = movieOf({extendedAtomClaiming(16 + 12, "trak"_os, {kFirst})});
    movie->children()[0]->addChild(VexQTAtom::initWithData(kSecond, nullptr, 0));
    EXPECT_EQ(surgical(*movie),
              atom("moov"_os, {extendedAtomClaiming(16 + 12 + 16, "trak"_os, {kFirst, kSecond})}));
}

TEST(SurgeryOfChildren, ASizeThatReachesToTheEndStaysZero) {
    const auto movie = movieOf({atomClaiming(0, "trak"_os, {kFirst})});
    movie->children()[0]->addChild(VexQTAtom::initWithData(kSecond, nullptr, 0));
    EXPECT_EQ(surgical(*movie), atom("moov"_os, {atomClaiming(0, "trak"_os, {kFirst, kSecond})}));
}

TEST(SurgeryOfChildren, ASizeThatDisagreesGrowsByWhatWasAdded) {
    const auto movie =
        VexQTmoovAtom::initWithData(atomClaiming(99, "moov"_os, {kFirst}), nullptr, 0);
    movie->addChild(VexQTAtom::initWithData(kSecond, nullptr, 0));
    EXPECT_EQ(surgical(*movie), atomClaiming(99 + 16, "moov"_os, {kFirst, kSecond}));
}

TEST(SurgeryOfChildren, ASizeFieldThatHasNoRoomForTheNewLengthIsRefused) {
    const auto movie =
        VexQTmoovAtom::initWithData(atomClaiming(0xFFFFFFF0, "moov"_os, {kFirst}), nullptr, 0);
    movie->addChild(VexQTAtom::initWithData(atom("bbbb"_os, {zeros(7)}), nullptr, 0));
    EXPECT_EQ(surgical(*movie),
              atomClaiming(0xFFFFFFFF, "moov"_os, {kFirst, atom("bbbb"_os, {zeros(7)})}));
    movie->addChild(VexQTAtom::initWithData(kSecond, nullptr, 0));
    EXPECT_EQ(errorOf<EncodingError>([&] { surgical(*movie); }),
              "moov at 0: it would be longer than its size field can tell");
}

TEST(SurgeryOfChildren, AnExtendedSizeInTheFieldsOfAClassIsRefusedWhereItWouldGrow) {
    const Bytes table = atomClaiming(1, "stts"_os, {u32(0), u32(1), u32(2), u32(3)});
    const auto stts = VexQTsttsAtom::initWithData(table, nullptr, 0);
    EXPECT_EQ(surgical(*stts), table);
    stts->sampleDurations().clear();
    EXPECT_EQ(errorOf<EncodingError>([&] { surgical(*stts); }),
              "stts at 0: its extended size lies where its class reads fields");
}

TEST(SurgeryOfChildren, ATypeThatWasSetIsWrittenWhereTheClassWritesWhatItHolds) {
    const auto movie = movieOf({kFirst});
    movie->children()[0]->setAtomType("zzzz"_os);
    EXPECT_EQ(surgical(*movie), atom("moov"_os, {atom("zzzz"_os, {u32(1)})}));
}

TEST(SurgeryOfChildren, EditsNameTheAtomAndTheProperty) {
    const auto movie = movieOf({kHeader});
    movie->children()[0]->setValueForKey(1, "duration");
    movie->children()[0]->setValueForKey(2, "nextTrackID");
    Surgery surgery;
    surgery.written(*movie);
    ASSERT_EQ(surgery.edits().size(), 2u);
    EXPECT_EQ(surgery.edits()[0].atom, movie->children()[0].get());
    EXPECT_EQ(surgery.edits()[0].property, "duration");
    EXPECT_EQ(surgery.edits()[1].property, "nextTrackID");
}

TEST(SurgeryOfChildren, DeclinedAtomsKeepTheirBytes) {
    std::vector<Problem> problems;
    ReadContext context(problems);
    const Bytes header = atom("mvhd"_os, {Bytes(112, 0x64)});
    const Bytes cut = atomClaiming(500, "wide"_os, {u32(1)});
    const Bytes bytes = atom("moov"_os, {header, cut});
    const auto movie =
        VexQTAtom::make(VexQTmoovAtom::kClass, SharedBytes::copyOf(bytes), nullptr, 0, context);
    ASSERT_EQ(problems.size(), 2u);
    EXPECT_EQ(surgical(*movie), bytes);
}

TEST(Surgery, OfFreeSpaceIsItsBytes) {
    const Bytes space = atom("free"_os, {u32(7)});
    EXPECT_EQ(surgical(*VexQTfreeAtom::initWithData(space, nullptr, 0)), space);
}

TEST(SurgeryOfChildren, ADeclinedRootWithAnExtendedSizeKeepsItsBytes) {
    // From the eighth byte on, where root atoms are read from, it begins like one more extended
    // header, which is cut short.
    const Bytes bytes = extendedAtomClaiming(0x0000000100356F73, "abcd"_os, {text("i!Yxy")});
    const auto asset = VexQTAsset::initWithData(bytes, {.tolerant = true});
    ASSERT_EQ(asset->rootAtoms().size(), 1u);
    VexQTAtom& root = *asset->rootAtoms()[0];
    ASSERT_EQ(root.declinedClass(), "VexQTAtom");
    EXPECT_EQ(surgical(root), Bytes(bytes.begin() + 8, bytes.end()));
}

TEST(SurgeryOfChildren, DeclinedAtomsGetATypeThatWasSetWhereTheirBytesHaveOne) {
    std::vector<Problem> problems;
    ReadContext context(problems);
    const Bytes payload(112, 0x64);
    const auto movie = VexQTAtom::make(
        VexQTmoovAtom::kClass, SharedBytes::copyOf(atom("moov"_os, {atom("mvhd"_os, {payload})})),
        nullptr, 0, context);
    ASSERT_TRUE(movie->children()[0]->declinedClass());
    movie->children()[0]->setAtomType("zzzz"_os);
    EXPECT_EQ(surgical(*movie), atom("moov"_os, {atom("zzzz"_os, {payload})}));

    const Bytes bytes = extendedAtomClaiming(0x0000000100356F73, "abcd"_os, {text("i!Yxy")});
    const auto asset = VexQTAsset::initWithData(bytes, {.tolerant = true});
    VexQTAtom& root = *asset->rootAtoms()[0];
    root.setAtomType("zzzz"_os);
    Surgery surgery;
    const ByteRope rope = surgery.written(root);
    EXPECT_TRUE(std::ranges::equal(rope.flat().view(), ByteView(bytes).subspan(8)));
    ASSERT_EQ(surgery.edits().size(), 1U);
    EXPECT_EQ(surgery.edits()[0].property, "type");
}

// MARK: Lists whose entries have lengths of their own

/// Keys with something behind their texts that their class does not write.
Bytes key(std::string_view name, std::string_view padding = {}) {
    return join({u32(static_cast<std::uint32_t>(8 + name.size() + padding.size())), text("mdta"),
                 text(name), text(padding)});
}
const Bytes kFirstKey = key("first", std::string_view("\0\0", 2));
const Bytes kSecondKey = key("second");
const Bytes kThirdKey = key("third", std::string_view("\0more", 5));

class KeysOfMetadata : public ::testing::Test {
protected:
    static Bytes keysOf(std::initializer_list<ByteView> entries) {
        return atom("keys"_os, {u32(0), u32(static_cast<std::uint32_t>(entries.size())),
                                join(entries), text("tail")});
    }
    std::unique_ptr<VexQTkeysAtom> keys =
        VexQTkeysAtom::initWithData(keysOf({kFirstKey, kSecondKey, kThirdKey}), nullptr, 0);
    bool changesMore() {
        Surgery surgery;
        surgery.written(*keys);
        EXPECT_EQ(surgery.edits().size(), 1U);
        EXPECT_EQ(surgery.edits()[0].property, "keys");
        return surgery.edits()[0].changesMore;
    }
};

TEST_F(KeysOfMetadata, ThatAreEditedLeaveTheOthersAsTheyWereRead) {
    keys->keys()[1].setValue("other");
    EXPECT_EQ(surgical(*keys), keysOf({kFirstKey, key("other"), kThirdKey}));
    EXPECT_FALSE(changesMore());
}

TEST_F(KeysOfMetadata, BetweenTwoThatAreEditedStayAsTheyWereRead) {
    keys->keys()[0].setValue("eldest");
    keys->keys()[2].setValue("last");
    EXPECT_EQ(surgical(*keys), keysOf({key("eldest"), kSecondKey, key("last")}));
}

/// Where it is not known where the entries lie, the row is written as its class writes it.
TEST_F(KeysOfMetadata, AreWrittenAnewWhereNobodyKnowsWhereTheyLie) {
    keys->keys()[1].setValue("other");
    AtomAsRead read(*keys);
    ASSERT_EQ(read.survey.entries.size(), 3U);
    const Survey::Part row = read.survey.rows.back();
    read.survey.entries.pop_back();
    const auto edited = editedRow(row, read, *keys);
    ASSERT_TRUE(edited);
    EXPECT_EQ(edited->bytes, join({u32(3), key("first"), key("other"), key("third")}));
    EXPECT_TRUE(edited->isRewritten);
}

TEST_F(KeysOfMetadata, ThatAreInsertedLeaveTheOthersAsTheyWereRead) {
    keys->keys().insert(keys->keys().begin() + 1, VexQTKeyEntry(2, "mdta"_os, "new"));
    EXPECT_EQ(surgical(*keys), keysOf({kFirstKey, key("new"), kSecondKey, kThirdKey}));
    keys->keys().emplace_back(5, "mdta"_os, "last");
    EXPECT_EQ(surgical(*keys), keysOf({kFirstKey, key("new"), kSecondKey, kThirdKey, key("last")}));
    EXPECT_FALSE(changesMore());
}

TEST_F(KeysOfMetadata, ThatAreRemovedLeaveTheOthersAsTheyWereRead) {
    keys->keys().erase(keys->keys().begin());
    EXPECT_EQ(surgical(*keys), keysOf({kSecondKey, kThirdKey}));
    EXPECT_FALSE(changesMore());
    keys->keys().clear();
    EXPECT_EQ(surgical(*keys), keysOf({}));
}

TEST_F(KeysOfMetadata, ThatAreRemovedAndEditedLeaveTheOthersAsTheyWereRead) {
    keys->keys().erase(keys->keys().begin());
    keys->keys()[0].setValue("other");
    EXPECT_EQ(surgical(*keys), keysOf({key("other"), kThirdKey}));
}

TEST_F(KeysOfMetadata, TellWhereAnEditTakesTheirPaddingWithIt) {
    keys->keys()[0].setNameSpace("abcd"_os);
    const Bytes edited = join({u32(13), text("abcd"), text("first")});
    EXPECT_EQ(surgical(*keys), keysOf({edited, kSecondKey, kThirdKey}));
    EXPECT_TRUE(changesMore());
}

/// A key of timed metadata, with other records than its class writes where it is asked for.
Bytes timedKey(std::uint32_t index, std::string_view name, ByteView others = {}) {
    const Bytes records = join({atom("keyd"_os, {text("mdta"), text(name)}), others,
                                atom("dtyp"_os, {u32(0), u32(30 + index)})});
    return join({u32(static_cast<std::uint32_t>(8 + records.size())), u32(index), records});
}

TEST(KeysOfTimedMetadata, StayInTheirOrderWithWhatTheirClassDoesNotWrite) {
    const Bytes setup = atom("setu"_os, {text("any bytes")});
    const Bytes nameless = join({u32(24), u32(9), atom("dtyp"_os, {u64(1)})});
    const Bytes table = atom("keys"_os, {timedKey(1, "b", setup), nameless, timedKey(2, "a"),
                                         timedKey(3, "c", setup), text("end")});
    const auto keys = VexQTmebxkeysAtom::initWithData(table, nullptr, 0);
    ASSERT_EQ(keys->numberOfKeys(), 3U);
    EXPECT_EQ(surgical(*keys), table);

    keys->keys()[1].setValue("other");
    EXPECT_EQ(surgical(*keys),
              atom("keys"_os, {timedKey(1, "b", setup), nameless, timedKey(2, "other"),
                               timedKey(3, "c", setup), text("end")}));
    keys->keys()[1].setValue("a");
    keys->keys().erase(keys->keys().begin());
    EXPECT_EQ(surgical(*keys),
              atom("keys"_os, {nameless, timedKey(2, "a"), timedKey(3, "c", setup), text("end")}));
}

TEST(FontTable, LeavesTheFontsThatNobodyEditedAsTheyWereRead) {
    const Bytes padded = join({u16(1), u8(7), text(std::string_view("Serif\0!", 7))});
    const auto table = [&](ByteView second) { return atom("ftab"_os, {u16(2), padded, second}); };
    const auto fonts =
        VexQTftabAtom::initWithData(table(join({u16(2), u8(4), text("Mono")})), nullptr, 0);
    fonts->fontTableEntries()[1].setFontName("Sans serif");
    EXPECT_EQ(surgical(*fonts), table(join({u16(2), u8(10), text("Sans serif")})));
}

TEST(TextsOfUserData, StayBehindTheOneThatIsRead) {
    const auto texts = [](std::string_view first) {
        return atom(0xA96E616D, {u16(static_cast<std::uint16_t>(first.size())), u16(1), text(first),
                                 u16(5), u16(2), text("titre")});
    };
    const auto item = VexQTUserDataTextItem::initWithData(texts("title"), nullptr, 0);
    item->setText("any other");
    EXPECT_EQ(surgical(*item), texts("any other"));
    item->setText("abc");
    EXPECT_EQ(surgical(*item), texts("abc"));
}

TEST(LongText, IsReplacedWithThatOfItWhichItsClassDoesNotRead) {
    // Of the length the low 16 bits count.
    const Bytes packet = atom("XMP_"_os, {Bytes(65536 + 700, 'x')});
    const auto item = VexQTUserDataDirectTextItem::initWithData(packet, nullptr, 0);
    ASSERT_EQ(item->text(), std::string(700, 'x'));
    item->setText("a new packet");
    EXPECT_EQ(surgical(*item), atom("XMP_"_os, {text("a new packet")}));
}

TEST(LongText, LosesThePaddingWithWhichItWouldBeCutShort) {
    const Bytes packet = atom("XMP_"_os, {text("short"), zeros(200)});
    const auto item = VexQTUserDataDirectTextItem::initWithData(packet, nullptr, 0);
    ASSERT_EQ(item->text(), "short");
    const std::string longer(65500, 'y');
    item->setText(longer);
    EXPECT_EQ(surgical(*item), atom("XMP_"_os, {text(longer)}));
    item->setText("other");
    EXPECT_EQ(surgical(*item), atom("XMP_"_os, {text("other"), zeros(200)}));
}

// MARK: Rows

TEST(NameOfARow, IsThatOfTheFirstPropertyBehindItThatHasOne) {
    const auto decode = [](Record&, AtomReader&) {};
    static constexpr void (*kDecode)(Record&, AtomReader&) = +decode;
    const Field fields[] = {{.decode = kDecode}, {}, {.name = "text"}, {.decode = kDecode}};
    AtomClass cls = VexQTmoovAtom::kClass;
    cls.fields = fields;
    EXPECT_EQ(nameOfRow(cls, fields[0]), "text");
    EXPECT_EQ(nameOfRow(cls, fields[3]), "");
}

TEST(MergedRow, KeepsTheBytesInFrontOfTheValuesUntilTheyAreEdited) {
    Field row;
    row.unitWidth = 2;
    EXPECT_EQ(mergedRow(row, text("CAABB"), text("caabb"), text("caaXX")).bytes, text("CAAXX"));
    EXPECT_EQ(mergedRow(row, text("CAABB"), text("caabb"), text("daaXX")).bytes, text("dAAXX"));
}

TEST(MergedRow, OfColumnsWithoutAWidthIsWhatIsWrittenNow) {
    static constexpr Field columns[] = {{.width = 2}, {.width = 0}};
    ListAccess list{};
    list.columns = columns;
    Field row;
    row.list = &list;
    EXPECT_EQ(mergedRow(row, text("AABB"), text("aabb"), text("aaXX")).bytes, text("aaXX"));
}

TEST(MergedRow, KeepsWhatWasReadWhereverTheTwoWritingsAgree) {
    Field row;
    row.unitWidth = 2;
    EXPECT_EQ(mergedRow(row, text("AABBCC"), text("aabbcc"), text("aaXXcc")).bytes, text("AAXXCC"));
}

TEST(MergedRow, IsWhatIsWrittenNowWhereItCannotBeCutIntoValues) {
    EXPECT_EQ(mergedRow(Field(), text("AABB"), text("aabb"), text("aaXX")).bytes, text("aaXX"));
    Field row;
    row.unitWidth = 2;
    EXPECT_EQ(mergedRow(row, text("AAB"), text("aabb"), text("aaXX")).bytes, text("aaXX"));
}

TEST(MergedRow, KeepsWhatLiesBehindAValueThatComesBackShorter) {
    EXPECT_EQ(mergedRow(Field(), text("abc--"), text("abc"), text("xy")).bytes, text("xy--"));
    EXPECT_EQ(mergedRow(Field(), text("ABC--"), text("abc"), text("xy")).bytes, text("xy"));
    EXPECT_EQ(mergedRow(Field(), text("--"), {}, text("xy")).bytes, text("xy"))
        << "what gave no value makes room for one";
}

}  // namespace
}  // namespace vexqt
