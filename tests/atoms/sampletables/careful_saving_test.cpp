// What stays of a table's bytes when only some of it was edited.

#include "atoms/sampletables/tables.h"
#include "vexqt/atoms/sampletables/VexQTco64Atom.h"
#include "vexqt/atoms/sampletables/VexQTcttsAtom.h"
#include "vexqt/atoms/sampletables/VexQTdrefAtom.h"
#include "vexqt/atoms/sampletables/VexQTelstAtom.h"
#include "vexqt/atoms/sampletables/VexQTstcoAtom.h"
#include "vexqt/atoms/sampletables/VexQTstscAtom.h"
#include "vexqt/atoms/sampletables/VexQTstssAtom.h"
#include "vexqt/atoms/sampletables/VexQTstszAtom.h"
#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace testing;

/// A table with flags, two entries of 0xA0… and 0xB0…, and three bytes behind them.
struct Case {
    const AtomClass& cls;
    std::string_view name;
    std::size_t width;

    Bytes bytes() const {
        const Bytes size = cls.type == "stsz"_os ? u32(0) : Bytes();
        Bytes entries;
        for (std::size_t i = 0; i < 2 * width; ++i)
            entries.push_back(static_cast<std::uint8_t>((i < width ? 0xA0 : 0xB0 - width) + i));
        return atom(cls.type, {u8(0), u8(1), u8(2), u8(3), size, u32(2), entries, u8(7), u16(8)});
    }

    friend std::ostream& operator<<(std::ostream& out, const Case& table) {
        return out << table.cls.className;
    }
};
const Case kCases[] = {
    {VexQTsttsAtom::kClass, "sampleDurations", 8},
    {VexQTcttsAtom::kClass, "compositionOffsets", 8},
    {VexQTstssAtom::kClass, "syncSamples", 4},
    {VexQTstscAtom::kClass, "sampleToChunkEntries", 12},
    {VexQTstszAtom::kClass, "sampleSizes", 4},
    {VexQTstcoAtom::kClass, "chunkOffsets", 4},
    {VexQTco64Atom::kClass, "chunkOffsets", 8},
    {VexQTelstAtom::kClass, "editListEntries", 12},
};

Bytes saved(VexQTAtom& atom) {
    const SharedBytes flat = Surgery().written(atom).flat();
    return Bytes(flat.view().begin(), flat.view().end());
}

class CarefulSaving : public ::testing::TestWithParam<Case> {
protected:
    const Case& is = GetParam();
    const Bytes bytes = is.bytes();
    std::unique_ptr<VexQTAtom> atom = VexQTAtom::make(is.cls, bytes, nullptr, 0);
    const ListAccess& list = listNamed(*atom, is.name);
    const std::size_t firstEntry = bytes.size() - 3 - 2 * is.width;
};

TEST_P(CarefulSaving, LeavesATableThatNobodyEdited) {
    EXPECT_EQ(cellsOf(*atom, is.name).empty(), false);
    Surgery surgery;
    const SharedBytes flat = surgery.written(*atom).flat();
    EXPECT_TRUE(std::ranges::equal(flat.view(), bytes));
    EXPECT_TRUE(surgery.edits().empty());
}

TEST_P(CarefulSaving, LeavesATableThatWasEditedAndSetBack) {
    const Value before = list.cell(*atom, 1, 0);
    list.setCell(*atom, 1, 0, Value(5));
    list.setCell(*atom, 1, 0, before);
    EXPECT_EQ(saved(*atom), bytes);
}

TEST_P(CarefulSaving, ChangesTheBytesOfOneCell) {
    list.setCell(*atom, 1, 0, Value(5));
    Bytes expected = bytes;
    const std::size_t cell = firstEntry + is.width;
    for (std::size_t i = 0; i < list.columns[0].width; ++i) expected[cell + i] = 0;
    expected[cell + list.columns[0].width - 1] = 5;
    EXPECT_EQ(saved(*atom), expected);
}

TEST_P(CarefulSaving, RemovesTheBytesOfOneRow) {
    list.removeRows(*atom, 0, 1);
    Bytes expected = bytes;
    const auto first = expected.begin() + static_cast<std::ptrdiff_t>(firstEntry);
    expected.erase(first, first + static_cast<std::ptrdiff_t>(is.width));
    expected[3] = static_cast<std::uint8_t>(expected.size());
    // The count of sample sizes is a property of its own.
    if (is.cls.type != "stsz"_os) expected[firstEntry - 1] = 1;
    EXPECT_EQ(saved(*atom), expected);
}

INSTANTIATE_TEST_SUITE_P(EveryTable, CarefulSaving, ::testing::ValuesIn(kCases),
                         [](const auto& table) { return std::string(table.param.cls.className); });

const Bytes kSameFile = atom("alis"_os, {u32(1)});
const Bytes kElsewhere = atom("url "_os, {u8(9), u8(2), u8(3), u8(4), text("http://here/")});

TEST(CarefulSavingOfReferences, LeavesWhatNobodyEdited) {
    const Bytes cases[] = {
        atom("dref"_os, {u8(7), u8(2), u8(3), u8(4), u32(2), kElsewhere, kSameFile}),
        // More promised than there are, and bytes behind the last.
        atom("dref"_os, {u32(0), u32(5), kElsewhere, u16(7)}),
        // Fewer promised than there are.
        atom("dref"_os, {u32(0), u32(1), kSameFile, kElsewhere}),
        // The extended size lies where the version and the count are.
        extendedAtomClaiming(1, "dref"_os, {kElsewhere}),
    };
    for (const Bytes& bytes : cases) {
        const auto dref = VexQTdrefAtom::initWithData(bytes, nullptr, 0);
        Surgery surgery;
        const SharedBytes flat = surgery.written(*dref).flat();
        EXPECT_TRUE(std::ranges::equal(flat.view(), bytes));
        EXPECT_TRUE(surgery.edits().empty());
    }
}

TEST(CarefulSavingOfReferences, CountsAnAddedEntry) {
    const auto dref =
        VexQTdrefAtom::initWithData(atom("dref"_os, {u32(7), u32(1), kElsewhere}), nullptr, 0);
    dref->addChild(VexQTDataReference::initWithData(kSameFile, dref.get(), 0));
    EXPECT_EQ(saved(*dref), atom("dref"_os, {u32(7), u32(2), kElsewhere, kSameFile}));
}

TEST(CarefulSavingOfReferences, CountsARemovedEntry) {
    const auto dref = VexQTdrefAtom::initWithData(
        atom("dref"_os, {u32(7), u32(2), kElsewhere, kSameFile}), nullptr, 0);
    dref->children().pop_back();
    EXPECT_EQ(saved(*dref), atom("dref"_os, {u32(7), u32(1), kElsewhere}));
}

}  // namespace
}  // namespace vexqt
