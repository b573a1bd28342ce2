#include "vexqt/core/VexQTAtom.h"

#include <gtest/gtest.h>

#include <limits>

#include "sample_classes.h"
#include "testing/bytes.h"
#include "testing/reading.h"

namespace vexqt {
namespace {

using namespace testing;

std::unique_ptr<VexQTAtom> read(const Bytes& bytes) {
    return VexQTAtom::initWithData(bytes, nullptr, 0);
}

std::unique_ptr<VexQTAtom> made(OSType type, std::uint32_t size = 8, VexQTAtom* parent = nullptr) {
    return std::make_unique<VexQTAtom>(type, size, parent, 0);
}

std::vector<OSType> typesOf(const VexQTAtom& atom) {
    std::vector<OSType> types;
    for (const auto& child : atom.children()) types.push_back(child->atomType());
    return types;
}

// MARK: Construction

TEST(Atom, MadeInMemoryIsEmpty) {
    const VexQTAtom atom;
    EXPECT_EQ(atom.parent(), nullptr);
    EXPECT_TRUE(atom.children().empty());
    EXPECT_EQ(atom.atomSize(), 8U);
    EXPECT_EQ(atom.atomType(), 0x3F3F3F3FU);
    EXPECT_EQ(atom.version(), 1);
    EXPECT_EQ(atom.flags0(), 0);
    EXPECT_EQ(atom.flags1(), 0);
    EXPECT_EQ(atom.flags2(), 0);
    EXPECT_EQ(atom.matrix(), Matrix{});
    EXPECT_EQ(atom.unknownData(), std::nullopt);
    EXPECT_EQ(atom.hexRepresentation(), std::nullopt);
    EXPECT_EQ(atom.offsetInFile(), 0U);
    EXPECT_EQ(atom.declinedClass(), std::nullopt);
    EXPECT_EQ(atom.declinedReason(), "");
}

TEST(Atom, MadeWithTypeAndSizeKeepsThem) {
    VexQTAtom parent;
    const VexQTAtom atom("abcd"_os, 0xFFFFFFFF, &parent, 0x123456789A);
    EXPECT_EQ(atom.atomType(), "abcd"_os);
    EXPECT_EQ(atom.atomSize(), 0xFFFFFFFFU);
    EXPECT_EQ(atom.parent(), &parent);
    EXPECT_EQ(atom.offsetInFile(), 0x123456789AU);
    EXPECT_EQ(atom.version(), 1);
    EXPECT_EQ(atom.unknownData(), std::nullopt);
    EXPECT_TRUE(atom.children().empty());
    EXPECT_TRUE(parent.children().empty());
}

TEST(Atom, ReadFromBytesKeepsEverythingBehindItsHeader) {
    VexQTAtom parent;
    const auto atom =
        VexQTAtom::initWithData(testing::atom("uuid"_os, {text("payload")}), &parent, 0x123456789A);
    EXPECT_EQ(atom->parent(), &parent);
    EXPECT_EQ(atom->offsetInFile(), 0x123456789AU);
    EXPECT_EQ(atom->atomSize(), 15U);
    EXPECT_EQ(atom->atomType(), "uuid"_os);
    EXPECT_EQ(atom->version(), 1);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->unknownData(), text("payload"));
    EXPECT_EQ(atom->hexRepresentation(), "70 61 79 6C 6F 61 64 ");
    EXPECT_TRUE(atom->children().empty());
    EXPECT_TRUE(parent.children().empty());
}

TEST(Atom, OfAHeaderAloneHasRawBytesThatAreEmpty) {
    const auto atom = read(testing::atom("skip"_os));
    EXPECT_EQ(atom->unknownData(), Bytes());
    EXPECT_EQ(atom->hexRepresentation(), "");
    EXPECT_EQ(atom->atomSize(), 8U);
}

TEST(Atom, TakesItsSizeFromTheFieldWhateverItSays) {
    const auto atom = read(atomClaiming(1000, "abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomSize(), 1000U);
    EXPECT_EQ(atom->unknownData(), text("xyz"));
}

TEST(Atom, AnExtendedSizeLoses16) {
    const auto atom = read(extendedAtomClaiming(20, "abcd"_os, {text("wxyz")}));
    EXPECT_EQ(atom->atomSize(), 4U);
    EXPECT_EQ(atom->unknownData(), text("wxyz"));
}

TEST(Atom, AnExtendedSizeBelow16Wraps) {
    const auto atom = read(extendedAtomClaiming(15, "abcd"_os, {text("wxyz")}));
    EXPECT_EQ(atom->atomSize(), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(atom->unknownData(), text("wxyz"));
    EXPECT_EQ(atom->description(), " 'abcd' (-1)");
    EXPECT_EQ(atom->atomSizeString(), "-1 bytes");
}

TEST(Atom, AnExtendedSizeOf16CountsWhatFollowsEightBytes) {
    const auto atom = read(extendedAtomClaiming(16, "abcd"_os));
    EXPECT_EQ(atom->atomSize(), 8U);
    EXPECT_EQ(atom->unknownData(), u64(16));
}

TEST(Atom, ASizeFieldOfZeroCountsWhatFollowsTheHeader) {
    const auto atom = read(atomClaiming(0, "abcd"_os, {text("twelve bytes")}));
    EXPECT_EQ(atom->atomSize(), 12U);
    EXPECT_EQ(atom->unknownData(), text("twelve bytes"));
}

TEST(Atom, OfFewerBytesThanItsHeaderIsARangeError) {
    EXPECT_EQ(errorOf<RangeError>([] { read({}); }), "???? at 0: 4 bytes wanted at 0, 0 there");
    EXPECT_EQ(errorOf<RangeError>([] {
                  read({0, 0, 0, 8, 'a', 'b', 'c'});
              }),
              "???? at 0: 4 bytes wanted at 4, 7 there");
    const Bytes cut = join({u32(1), text("abcd"), zeros(7)});
    EXPECT_EQ(errorOf<RangeError>([&] { VexQTAtom::initWithData(cut, nullptr, 99); }),
              "abcd at 99: 8 bytes wanted at 8, 15 there");
}

TEST(Atom, KeepsACopyOfTheBytesItWasReadFrom) {
    Bytes bytes = testing::atom("abcd"_os, {text("xyz")});
    const auto atom = read(bytes);
    bytes.assign(bytes.size(), 0xFF);
    EXPECT_EQ(atom->unknownData(), text("xyz"));
}

// MARK: Bytes

TEST(Atom, WritesTheBytesItWasReadFrom) {
    const Bytes bytes = testing::atom("uuid"_os, {text("ten bytes.")});
    const auto atom = read(bytes);
    EXPECT_EQ(atom->atomData(), bytes);
    EXPECT_EQ(atom->atomSize(), 18U);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(Atom, WritesTheTypeItHolds) {
    const auto atom = read(testing::atom("uuid"_os, {text("xyz")}));
    atom->setAtomType("free"_os);
    EXPECT_EQ(atom->atomData(), testing::atom("free"_os, {text("xyz")}));
}

TEST(Atom, WithoutPayloadOrChildrenIsAHeader) {
    VexQTAtom atom;
    EXPECT_EQ(atom.atomData(), testing::atom("????"_os));
    VexQTAtom sized("abcd"_os, 500, nullptr, 0);
    EXPECT_EQ(sized.atomData(), testing::atom("abcd"_os));
    EXPECT_EQ(sized.atomSize(), 8U);
}

TEST(Atom, WritesItsChildrenInOrder) {
    VexQTAtom atom("pare"_os, 8, nullptr, 0);
    atom.addChild(read(testing::atom("bbbb"_os, {u8(1)})));
    atom.addChild(read(testing::atom("aaaa"_os, {u8(2)})));
    atom.children()[1]->increaseSizeBy(100);
    EXPECT_EQ(atom.atomData(), testing::atom("pare"_os, {testing::atom("bbbb"_os, {u8(1)}),
                                                         testing::atom("aaaa"_os, {u8(2)})}));
    EXPECT_EQ(atom.atomSize(), 26U);
    EXPECT_EQ(atom.children()[1]->atomSize(), 9U);
}

TEST(Atom, WithRawBytesAndChildrenWritesTheBytesAndCountsBoth) {
    const auto atom = read(testing::atom("both"_os, {text("xyz")}));
    atom->addChild(read(testing::atom("chld"_os, {u8(1)})));
    EXPECT_EQ(atom->atomData(), atomClaiming(20, "both"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomSize(), 20U);
}

TEST(Atom, WithEmptyRawBytesAndChildrenWritesNoChild) {
    const auto atom = read(testing::atom("both"_os));
    atom->addChild(read(testing::atom("chld"_os, {u8(1)})));
    EXPECT_EQ(atom->atomData(), atomClaiming(17, "both"_os));
}

TEST(Atom, ItsHeaderIsExtendedFrom4GiBUp) {
    VexQTAtom atom("abcd"_os, 0xFFFFFFFF, nullptr, 0);
    EXPECT_EQ(atom.headerData(), atomClaiming(0xFFFFFFFF, "abcd"_os));
    atom.increaseSizeBy(1);
    EXPECT_EQ(atom.headerData(), extendedAtomClaiming(0x100000000, "abcd"_os));
    EXPECT_EQ(atom.atomSize(), 0x100000000U);
}

TEST(Atom, OfMoreThan4GiBReadsAndShowsAnExtendedHeader) {
    const auto atom = read(extendedAtomClaiming(0x100000010, "abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomSize(), 0x100000000U);
    EXPECT_EQ(atom->headerData(), extendedAtomClaiming(0x100000000, "abcd"_os));
}

TEST(Atom, WritingJudgesTheHeadersLengthOnTheOldSize) {
    // The size counts the 16 bytes that the old size called for; the header is built of the new.
    const auto atom = read(extendedAtomClaiming(0x100000010, "abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomData(), atomClaiming(19, "abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomSize(), 19U);
    EXPECT_EQ(atom->atomData(), atomClaiming(11, "abcd"_os, {text("xyz")}));
}

TEST(Atom, WritingDoesNotTouchTheSizesAbove) {
    VexQTAtom root("root"_os, 500, nullptr, 0);
    root.addChild(made("abcd"_os, 100, &root));
    root.children()[0]->atomData();
    EXPECT_EQ(root.atomSize(), 500U);
}

TEST(Atom, ThatCannotBeWrittenSaysWhereItIs) {
    const Bytes stubborn = testing::atom("firm"_os, {u8(0)});
    const auto root = Nest::initWithData(
        testing::atom("nest"_os, {testing::atom("nest"_os, {u8(0)}),
                                  testing::atom("nest"_os, {testing::atom("free"_os), stubborn})}),
        nullptr, 1000);
    EXPECT_EQ(errorOf<EncodingError>([&] { root->atomData(); }),
              "nest.nest[1].firm at 1033: it has no form");
    EXPECT_EQ(errorOf<EncodingError>([&] { Stubborn().atomData(); }), "firm at 0: it has no form");
}

TEST(Atom, VerifyingHasNoEffect) {
    const auto atom = read(testing::atom("abcd"_os, {text("xyz")}));
    atom->verifyCalculatedDataWithOriginalData(Bytes{1, 2, 3});
    EXPECT_EQ(atom->atomData(), testing::atom("abcd"_os, {text("xyz")}));
}

TEST(Atom, KnowsWhereItsBytesTrulyLie) {
    const auto shortOne =
        VexQTAtom::initWithData(testing::atom("abcd"_os, {text("xyz")}), nullptr, 40);
    EXPECT_EQ(shortOne->extent().start, 40U);
    EXPECT_EQ(shortOne->extent().headerLength, 8U);
    EXPECT_EQ(shortOne->extent().length, 11U);
    const auto extended =
        VexQTAtom::initWithData(extendedAtomClaiming(19, "abcd"_os, {text("xyz")}), nullptr, 50);
    EXPECT_EQ(extended->extent().start, 50U);
    EXPECT_EQ(extended->extent().headerLength, 16U);
    EXPECT_EQ(extended->extent().length, 19U);
    EXPECT_EQ(extended->atomSize(), 3U);
}

TEST(Atom, LiesWhereItIsToldTo) {
    const auto atom = VexQTAtom::initWithData(testing::atom("abcd"_os), nullptr, 40);
    atom->setExtent({.start = 24, .headerLength = 16, .length = 1000});
    EXPECT_EQ(atom->extent().start, 24U);
    EXPECT_EQ(atom->extent().headerLength, 16U);
    EXPECT_EQ(atom->extent().length, 1000U);
    EXPECT_EQ(atom->offsetInFile(), 40U);
    EXPECT_EQ(atom->matrix(), Matrix{});
}

TEST(Atom, MadeInMemoryLiesNowhere) {
    const VexQTAtom atom;
    EXPECT_EQ(atom.extent().start, 0U);
    EXPECT_EQ(atom.extent().headerLength, 0U);
    EXPECT_EQ(atom.extent().length, 0U);
}

// MARK: The tree

TEST(Atom, AddingAChildChangesNothingElse) {
    VexQTAtom atom("pare"_os, 50, nullptr, 0);
    VexQTAtom stranger;
    atom.addChild(made("chld"_os, 8, &stranger));
    EXPECT_EQ(typesOf(atom), (std::vector{"chld"_os}));
    EXPECT_EQ(atom.atomSize(), 50U);
    EXPECT_EQ(atom.children()[0]->parent(), &stranger);
}

TEST(Atom, AddingNothingIsAnInsertionError) {
    VexQTAtom atom;
    EXPECT_THROW(atom.addChild(nullptr), InsertionError);
    EXPECT_THROW(atom.insertChild(nullptr, "abcd"_os), InsertionError);
    EXPECT_TRUE(atom.children().empty());
}

TEST(Atom, InsertsBehindTheFirstChildOfAType) {
    VexQTAtom atom("pare"_os, 50, nullptr, 0);
    for (const OSType type : {"aaaa"_os, "bbbb"_os, "bbbb"_os, "cccc"_os})
        atom.addChild(made(type));
    atom.insertChild(made("new1"_os), "bbbb"_os);
    EXPECT_EQ(typesOf(atom), (std::vector{"aaaa"_os, "bbbb"_os, "new1"_os, "bbbb"_os, "cccc"_os}));
    EXPECT_EQ(atom.atomSize(), 50U);
    EXPECT_EQ(atom.children()[2]->parent(), nullptr);
}

TEST(Atom, InsertsAtTheEndWhereNoChildHasTheType) {
    VexQTAtom atom;
    atom.insertChild(made("new1"_os), "bbbb"_os);
    atom.insertChild(made("new2"_os), "bbbb"_os);
    atom.insertChild(made("new3"_os), "new2"_os);
    EXPECT_EQ(typesOf(atom), (std::vector{"new1"_os, "new2"_os, "new3"_os}));
}

TEST(Atom, RemovesEveryChildOfATypeAndLeavesTheSizes) {
    VexQTAtom root("root"_os, 500, nullptr, 0);
    VexQTAtom atom("pare"_os, 300, &root, 0);
    for (const OSType type : {"bbbb"_os, "aaaa"_os, "bbbb"_os, "bbbb"_os, "cccc"_os})
        atom.addChild(made(type, 100));
    atom.removeChildrenWithType("bbbb"_os);
    EXPECT_EQ(typesOf(atom), (std::vector{"aaaa"_os, "cccc"_os}));
    atom.removeChildrenWithType("zzzz"_os);
    EXPECT_EQ(typesOf(atom), (std::vector{"aaaa"_os, "cccc"_os}));
    EXPECT_EQ(atom.atomSize(), 300U);
    EXPECT_EQ(root.atomSize(), 500U);
}

TEST(Atom, RemovingAChildLowersTheSizesUpToTheRoot) {
    VexQTAtom root("root"_os, 500, nullptr, 0);
    VexQTAtom middle("midl"_os, 400, &root, 0);
    VexQTAtom atom("pare"_os, 300, &middle, 0);
    atom.addChild(made("aaaa"_os, 20, &atom));
    atom.addChild(made("bbbb"_os, 100, &atom));
    VexQTAtom* child = atom.children()[1].get();
    const std::unique_ptr<VexQTAtom> removed = atom.removeChild(child);
    EXPECT_EQ(removed.get(), child);
    EXPECT_EQ(typesOf(atom), (std::vector{"aaaa"_os}));
    EXPECT_EQ(atom.atomSize(), 200U);
    EXPECT_EQ(middle.atomSize(), 300U);
    EXPECT_EQ(root.atomSize(), 400U);
    EXPECT_EQ(removed->atomSize(), 100U);
    EXPECT_EQ(removed->parent(), &atom);
}

TEST(Atom, RemovingWhatIsNoChildLowersTheSizesAllTheSame) {
    VexQTAtom root("root"_os, 500, nullptr, 0);
    root.addChild(made("aaaa"_os, 20, &root));
    const VexQTAtom stranger("aaaa"_os, 100, &root, 0);
    EXPECT_EQ(root.removeChild(&stranger), nullptr);
    EXPECT_EQ(typesOf(root), (std::vector{"aaaa"_os}));
    EXPECT_EQ(root.atomSize(), 400U);
    EXPECT_EQ(root.removeChild(nullptr), nullptr);
    EXPECT_EQ(root.atomSize(), 400U);
}

TEST(Atom, SizesWrap) {
    VexQTAtom root("root"_os, 10, nullptr, 0);
    VexQTAtom atom("abcd"_os, 5, &root, 0);
    atom.increaseSizeBy(-6);
    EXPECT_EQ(atom.atomSize(), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(root.atomSize(), 4U);
    atom.increaseSizeBy(std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(atom.atomSize(), 0x7FFFFFFFFFFFFFFFU);
    EXPECT_EQ(root.atomSize(), 0x8000000000000004U);
}

TEST(Atom, FindsTheFirstChildOfAType) {
    VexQTAtom atom;
    for (const OSType type : {"aaaa"_os, "bbbb"_os, "bbbb"_os}) atom.addChild(made(type));
    EXPECT_EQ(atom.childWithType("bbbb"_os), atom.children()[1].get());
    EXPECT_EQ(atom.childWithType("cccc"_os), nullptr);
    EXPECT_EQ(VexQTAtom().childWithType("????"_os), nullptr);
}

// MARK: What people are shown

TEST(Atom, DescribesItselfByNameAndType) {
    const auto atom = read(testing::atom("uuid"_os));
    EXPECT_EQ(atom->atomName(), "Generic Atom");
    EXPECT_EQ(atom->atomTypeString(), "uuid");
    EXPECT_EQ(atom->atomDescription(), "Generic Atom ('uuid')");
    EXPECT_EQ(atom->atomSizeString(), "8 bytes");
    EXPECT_EQ(atom->atomNibName(), "VexQTAtom");
}

TEST(Atom, OutlinesItsSubtree) {
    VexQTAtom root("root"_os, 100, nullptr, 0);
    root.addChild(made("aaaa"_os, 30, &root));
    VexQTAtom& first = *root.children()[0];
    first.addChild(made(0xA9616161, 20, &first));
    root.addChild(made("bbbb"_os, 40, &root));
    EXPECT_EQ(root.description(),
              " 'root' (100)\r\n"
              "   'aaaa' (30)\r\n"
              "     '\u00A9aaa' (20)\r\n"
              "   'bbbb' (40)");
    EXPECT_EQ(first.children()[0]->description(), "     '\u00A9aaa' (20)");
}

// MARK: Fields that every atom has

TEST(Atom, GivesFlagsByIndex) {
    VexQTAtom atom;
    atom.setFlags0(10);
    atom.setFlags1(11);
    atom.setFlags2(12);
    EXPECT_EQ(atom.flagAtIndex(0), 10);
    EXPECT_EQ(atom.flagAtIndex(1), 11);
    EXPECT_EQ(atom.flagAtIndex(2), 12);
    EXPECT_EQ(atom.flagAtIndex(3), 0);
    EXPECT_EQ(atom.flagAtIndex(std::numeric_limits<std::int32_t>::max()), 0);
    EXPECT_EQ(atom.flagAtIndex(-1), 0);
}

TEST(Atom, NamesTheElementsOfItsMatrixInFileOrder) {
    VexQTAtom atom;
    atom.setMatrixAValue(1);
    atom.setMatrixBValue(2);
    atom.setMatrixUValue(3);
    atom.setMatrixCValue(4);
    atom.setMatrixDValue(5);
    atom.setMatrixVValue(6);
    atom.setMatrixXValue(7);
    atom.setMatrixYValue(8);
    atom.setMatrixWValue(9);
    EXPECT_EQ(atom.matrix(), (Matrix{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    atom.setMatrix({11, 12, 13, 14, 15, 16, 17, 18, 19});
    EXPECT_EQ(atom.matrixAValue(), 11);
    EXPECT_EQ(atom.matrixBValue(), 12);
    EXPECT_EQ(atom.matrixUValue(), 13);
    EXPECT_EQ(atom.matrixCValue(), 14);
    EXPECT_EQ(atom.matrixDValue(), 15);
    EXPECT_EQ(atom.matrixVValue(), 16);
    EXPECT_EQ(atom.matrixXValue(), 17);
    EXPECT_EQ(atom.matrixYValue(), 18);
    EXPECT_EQ(atom.matrixWValue(), 19);
}

/// An entry that is an atom and stands by value in a list.
class Entry final : public AtomOf<Entry> {
public:
    static const AtomClass kClass;
    Entry() = default;
    Entry(const Entry&) = default;
    Entry& operator=(const Entry&) = delete;
    using VexQTAtom::setAtomSize;
};
constinit const AtomClass Entry::kClass = {
    .type = "entr"_os, .className = "Entry", .atomName = "Entry", .create = create<Entry>};

TEST(Atom, ACopyHasEverythingButTheChildren) {
    VexQTAtom parent;
    Entry entry;
    entry.setParent(&parent);
    entry.setAtomSize(77);
    entry.setAtomType("abcd"_os);
    entry.setVersion(3);
    entry.setFlags1(4);
    entry.setMatrixWValue(5);
    entry.setExtent({.start = 6, .headerLength = 16, .length = 7});
    entry.addChild(made("chld"_os));
    const Entry copy = entry;
    entry.setMatrixWValue(8);
    EXPECT_EQ(copy.parent(), &parent);
    EXPECT_EQ(copy.atomSize(), 77U);
    EXPECT_EQ(copy.atomType(), "abcd"_os);
    EXPECT_EQ(copy.version(), 3);
    EXPECT_EQ(copy.flags1(), 4);
    EXPECT_EQ(copy.matrixWValue(), 5);
    EXPECT_EQ(copy.extent().start, 6U);
    EXPECT_TRUE(copy.children().empty());
}

// MARK: Access by name

TEST(Atom, AnswersEveryCommonPropertyByName) {
    VexQTAtom parent;
    auto atom = VexQTAtom::initWithData(testing::atom("uuid"_os, {u16(0x0AFF)}), &parent, 40);
    atom->setFlags0(10);
    atom->setFlags1(11);
    atom->setFlags2(12);
    atom->setMatrix({1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5});
    EXPECT_EQ(atom->valueForKey("atomName"), Value("Generic Atom"));
    EXPECT_EQ(atom->valueForKey("atomTypeString"), Value("uuid"));
    EXPECT_EQ(atom->valueForKey("atomDescription"), Value("Generic Atom ('uuid')"));
    EXPECT_EQ(atom->valueForKey("description"), Value("   'uuid' (10)"));
    EXPECT_EQ(atom->valueForKey("atomNibName"), Value("VexQTAtom"));
    EXPECT_EQ(atom->valueForKey("size"), Value(10));
    EXPECT_EQ(atom->valueForKey("atomSize"), Value(10));
    EXPECT_EQ(atom->valueForKey("atomSizeString"), Value("10 bytes"));
    EXPECT_EQ(atom->valueForKey("type"), Value("uuid"_os));
    EXPECT_EQ(atom->valueForKey("atomType"), Value("uuid"_os));
    EXPECT_EQ(atom->valueForKey("offsetInFile"), Value(40));
    EXPECT_EQ(atom->valueForKey("version"), Value(1));
    EXPECT_EQ(atom->valueForKey("flags0"), Value(10));
    EXPECT_EQ(atom->valueForKey("flags1"), Value(11));
    EXPECT_EQ(atom->valueForKey("flags2"), Value(12));
    EXPECT_EQ(atom->valueForKey("matrixAValue"), Value(1.5));
    EXPECT_EQ(atom->valueForKey("matrixBValue"), Value(2.5));
    EXPECT_EQ(atom->valueForKey("matrixUValue"), Value(3.5));
    EXPECT_EQ(atom->valueForKey("matrixCValue"), Value(4.5));
    EXPECT_EQ(atom->valueForKey("matrixDValue"), Value(5.5));
    EXPECT_EQ(atom->valueForKey("matrixVValue"), Value(6.5));
    EXPECT_EQ(atom->valueForKey("matrixXValue"), Value(7.5));
    EXPECT_EQ(atom->valueForKey("matrixYValue"), Value(8.5));
    EXPECT_EQ(atom->valueForKey("matrixWValue"), Value(9.5));
    EXPECT_EQ(atom->valueForKey("unknownData"), Value(Bytes{0x0A, 0xFF}));
    EXPECT_EQ(atom->valueForKey("hexRepresentation"), Value("0A FF "));
    EXPECT_TRUE(VexQTAtom().valueForKey("unknownData").isAbsent());
    EXPECT_TRUE(VexQTAtom().valueForKey("hexRepresentation").isAbsent());
}

TEST(Atom, SetsCommonPropertiesByName) {
    VexQTAtom atom;
    atom.setValueForKey("abcd"_os, "type");
    atom.setValueForKey(2, "version");
    atom.setValueForKey(10, "flags0");
    atom.setValueForKey(11, "flags1");
    atom.setValueForKey(12U, "flags2");
    atom.setValueForKey(-1.5, "matrixBValue");
    atom.setValueForKey(7, "matrixWValue");
    EXPECT_EQ(atom.atomType(), "abcd"_os);
    EXPECT_EQ(atom.version(), 2);
    EXPECT_EQ(atom.flags0(), 10);
    EXPECT_EQ(atom.flags1(), 11);
    EXPECT_EQ(atom.flags2(), 12);
    EXPECT_EQ(atom.matrix(), (Matrix{0, -1.5, 0, 0, 0, 0, 0, 0, 7}));
    atom.setValueForKey("efgh"_os, "atomType");
    EXPECT_EQ(atom.atomType(), "efgh"_os);
}

TEST(Atom, KeepsTheLowBitsOfAWiderNumber) {
    VexQTAtom atom;
    atom.setValueForKey(0x1FE, "version");
    EXPECT_EQ(atom.version(), 0xFE);
    atom.setValueForKey(-1, "version");
    EXPECT_EQ(atom.version(), 0xFF);
    atom.setValueForKey(2.75, "version");
    EXPECT_EQ(atom.version(), 2);
}

TEST(Atom, SettingNilSetsANumberToZero) {
    VexQTAtom atom;
    atom.setFlags1(7);
    atom.setMatrixYValue(7);
    atom.setNilValueForKey("version");
    atom.setNilValueForKey("flags1");
    atom.setValueForKey({}, "matrixYValue");
    EXPECT_EQ(atom.version(), 0);
    EXPECT_EQ(atom.flags1(), 0);
    EXPECT_EQ(atom.matrixYValue(), 0);
}

TEST(Atom, SettingWhatIsNoPropertyIsAnUndefinedKeyError) {
    VexQTAtom atom;
    atom.addChild(made("trak"_os));
    EXPECT_EQ(errorOf<UndefinedKeyError>([&] { atom.setValueForKey(1, "nothing"); }),
              "no property nothing");
    EXPECT_THROW(atom.setValueForKey(1, "trak"), UndefinedKeyError);
    EXPECT_THROW(atom.setValueForKey(1, ""), UndefinedKeyError);
    EXPECT_THROW(atom.setNilValueForKey("nothing"), UndefinedKeyError);
}

TEST(Atom, SettingWhatIsWorkedOutIsAnUndefinedKeyError) {
    VexQTAtom atom;
    for (const Field& property : VexQTAtom::commonProperties()) {
        if (property.set != nullptr) continue;
        EXPECT_THROW(atom.setValueForKey(1, property.name), UndefinedKeyError) << property.name;
    }
}

TEST(Atom, SettingAValueOfTheWrongKindNamesTheKey) {
    VexQTAtom atom;
    try {
        atom.setValueForKey("2", "version");
        ADD_FAILURE() << "a text was taken for a number";
    } catch (const ValueError& error) {
        EXPECT_STREQ(error.what(), "version: a value of the wrong kind");
    }
}

TEST(Atom, SettingAValueOfTheWrongKindIsAValueErrorAndChangesNothing) {
    VexQTAtom atom;
    EXPECT_THROW(atom.setValueForKey("2", "version"), ValueError);
    EXPECT_THROW(atom.setValueForKey(Bytes{2}, "flags0"), ValueError);
    EXPECT_THROW(atom.setValueForKey(Date(), "matrixAValue"), ValueError);
    EXPECT_EQ(atom.version(), 1);
    EXPECT_EQ(atom.flags0(), 0);
}

TEST(Atom, AnswersAnUndefinedKeyWithTheFirstChildOfThatType) {
    VexQTAtom atom;
    for (const OSType type : {"aaaa"_os, 0xA96E616DU, "bbbb"_os, "bbbb"_os})
        atom.addChild(made(type));
    EXPECT_EQ(atom.valueForUndefinedKey("bbbb"), Value(atom.children()[2].get()));
    EXPECT_EQ(atom.valueForKey("bbbb"), Value(atom.children()[2].get()));
    EXPECT_EQ(atom.valueForKey("\u00A9nam"), Value(atom.children()[1].get()));
}

TEST(Atom, AnswersAKeyThatNamesNoChildWithNothing) {
    const VexQTAtom atom;
    EXPECT_TRUE(atom.valueForUndefinedKey("trak").isAbsent());
    EXPECT_TRUE(atom.valueForKey("trak").isAbsent());
    EXPECT_TRUE(atom.valueForKey("").isAbsent());
}

TEST(Atom, APropertyGoesBeforeAChildOfItsName) {
    VexQTAtom atom;
    atom.addChild(made("type"_os));
    atom.addChild(made("size"_os));
    EXPECT_EQ(atom.valueForKey("type"), Value("????"_os));
    EXPECT_EQ(atom.valueForKey("size"), Value(8));
    EXPECT_EQ(atom.valueForUndefinedKey("size"), Value(atom.children()[1].get()));
}

TEST(Atom, FollowsAKeyPathThroughItsChildren) {
    const auto root = Nest::initWithData(
        testing::atom("nest"_os,
                      {testing::atom("nest"_os, {testing::atom("leaf"_os, {u32(77)}), zeros(1)})}),
        nullptr, 0);
    EXPECT_EQ(root->valueForKeyPath("nest.leaf.number"), Value(77));
    EXPECT_EQ(root->valueForKeyPath("nest.leaf"), root->children()[0]->valueForKey("leaf"));
    EXPECT_EQ(root->valueForKeyPath("nest.atomName"), Value("Nest"));
    EXPECT_TRUE(root->valueForKeyPath("nest.trak.number").isAbsent());
    EXPECT_TRUE(root->valueForKeyPath("nest.leaf.number.more").isAbsent());
    EXPECT_TRUE(root->valueForKeyPath("nest..number").isAbsent());
    EXPECT_TRUE(root->valueForKeyPath("").isAbsent());
    EXPECT_TRUE(root->valueForKeyPath("nest.").isAbsent());
}

}  // namespace
}  // namespace vexqt
