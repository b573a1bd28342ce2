// Tables reached by name, by those who do not know their classes.

#include "atoms/sampletables/tables.h"
#include "vexqt/atoms/sampletables/VexQTco64Atom.h"
#include "vexqt/atoms/sampletables/VexQTcttsAtom.h"
#include "vexqt/atoms/sampletables/VexQTelstAtom.h"
#include "vexqt/atoms/sampletables/VexQTstcoAtom.h"
#include "vexqt/atoms/sampletables/VexQTstpsAtom.h"
#include "vexqt/atoms/sampletables/VexQTstscAtom.h"
#include "vexqt/atoms/sampletables/VexQTstssAtom.h"
#include "vexqt/atoms/sampletables/VexQTstszAtom.h"
#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"

namespace vexqt {
namespace {

using namespace testing;

struct Case {
    const AtomClass& cls;
    std::string_view name;
    Bytes bytes;
    std::string cells;
    std::vector<std::string_view> columns;
    std::vector<std::string_view> units;

    friend std::ostream& operator<<(std::ostream& out, const Case& table) {
        return out << table.cls.className;
    }
};

const Case kCases[] = {
    {VexQTsttsAtom::kClass,
     "sampleDurations",
     atom("stts"_os, {u32(0), u32(2), u32(1), u32(2), u32(3), u32(0xFFFFFFFF)}),
     "1 2 / 3 4294967295 / ",
     {"sampleCount", "sampleDuration"},
     {"samples", "time units"}},
    {VexQTcttsAtom::kClass,
     "compositionOffsets",
     atom("ctts"_os, {u32(0), u32(2), u32(1), u32(2), u32(3), u32(0xFFFFFFFF)}),
     "1 2 / 3 4294967295 / ",
     {"sampleCount", "compositionOffset"},
     {"samples", "time units"}},
    {VexQTstssAtom::kClass,
     "syncSamples",
     atom("stss"_os, {u32(0), u32(2), u32(1), u32(0xFFFFFFFF)}),
     "1 / 4294967295 / ",
     {""},
     {""}},
    {VexQTstpsAtom::kClass,
     "syncSamples",
     atom("stps"_os, {u32(0), u32(2), u32(1), u32(0xFFFFFFFF)}),
     "1 / 4294967295 / ",
     {""},
     {""}},
    {VexQTstscAtom::kClass,
     "sampleToChunkEntries",
     atom("stsc"_os, {u32(0), u32(2), u32(1), u32(2), u32(3), u32(4), u32(5), u32(0xFFFFFFFF)}),
     "1 2 3 / 4 5 4294967295 / ",
     {"firstChunk", "samplesPerChunk", "sampleDescriptionID"},
     {"", "samples", ""}},
    {VexQTstszAtom::kClass,
     "sampleSizes",
     atom("stsz"_os, {u32(0), u32(0), u32(2), u32(1), u32(0xFFFFFFFF)}),
     "1 / 4294967295 / ",
     {""},
     {"bytes"}},
    {VexQTstcoAtom::kClass,
     "chunkOffsets",
     atom("stco"_os, {u32(0), u32(2), u32(1), u32(0xFFFFFFFF)}),
     "1 / 4294967295 / ",
     {""},
     {"bytes"}},
    {VexQTco64Atom::kClass,
     "chunkOffsets",
     atom("co64"_os, {u32(0), u32(2), u64(0x100000000), u64(0xFFFFFFFFFFFFFFFE)}),
     "4294967296 / -2 / ",
     {""},
     {"bytes"}},
    {VexQTelstAtom::kClass,
     "editListEntries",
     atom("elst"_os,
          {u32(0), u32(2), u32(1), u32(2), u32(0x8000), u32(3), u32(0xFFFFFFFF), u32(0x10000)}),
     "1 2 0.500000 / 3 4294967295 1.000000 / ",
     {"trackDuration", "mediaTime", "mediaRate"},
     {"time units", "time units", ""}},
};

class ListAccessTest : public ::testing::TestWithParam<Case> {
protected:
    const Case& is = GetParam();
    std::unique_ptr<VexQTAtom> atom = VexQTAtom::make(is.cls, is.bytes, nullptr, 0);
    const ListAccess& list = listNamed(*atom, is.name);

    void expectIntegersAsCells(std::size_t firstRow) {
        for (std::size_t column = 0; column < list.columns.size(); ++column) {
            if (list.columns[column].kind == ValueKind::Floating) continue;
            std::vector<std::uint64_t> numbers(list.size(*atom) - firstRow);
            list.integers(*atom, column, firstRow, numbers);
            for (std::size_t i = 0; i < numbers.size(); ++i)
                EXPECT_EQ(numbers[i], integerFrom(list.cell(*atom, firstRow + i, column)));
        }
    }
    /// Makes the table one that may have been edited, although its rows stay the same.
    void decodeAllRows() {
        list.insertRows(*atom, list.size(*atom), 1);
        list.removeRows(*atom, list.size(*atom) - 1, 1);
    }
};

TEST_P(ListAccessTest, CellsAreReadFromTheBytes) { EXPECT_EQ(cellsOf(*atom, is.name), is.cells); }

TEST_P(ListAccessTest, CellsAreReadFromTheRows) {
    decodeAllRows();
    EXPECT_EQ(cellsOf(*atom, is.name), is.cells);
}

TEST_P(ListAccessTest, ColumnsTellTheirNamesAndUnits) {
    std::vector<std::string_view> names, units;
    for (const Field& column : list.columns) {
        names.push_back(column.name);
        units.push_back(column.unit);
    }
    EXPECT_EQ(names, is.columns);
    EXPECT_EQ(units, is.units);
}

TEST_P(ListAccessTest, ColumnsAreAsWideAsTheEntry) {
    const std::size_t width = is.cls.type == "stts"_os || is.cls.type == "ctts"_os   ? 8
                              : is.cls.type == "stsc"_os || is.cls.type == "elst"_os ? 12
                              : is.cls.type == "co64"_os                             ? 8
                                                                                     : 4;
    EXPECT_EQ(wireWidth(list.columns), width);
}

TEST_P(ListAccessTest, IntegersAreReadFromTheBytes) {
    expectIntegersAsCells(0);
    expectIntegersAsCells(1);
    expectIntegersAsCells(2);
}

TEST_P(ListAccessTest, IntegersAreReadFromTheRows) {
    decodeAllRows();
    expectIntegersAsCells(0);
    expectIntegersAsCells(1);
    expectIntegersAsCells(2);
}

TEST_P(ListAccessTest, ASetCellIsWritten) {
    // The bytes in front of the entries, which lie at the end.
    const std::size_t width = wireWidth(list.columns);
    const std::size_t head = is.bytes.size() - 2 * width;
    for (std::size_t column = 0, offset = 0; column < list.columns.size(); ++column) {
        const std::unique_ptr<VexQTAtom> edited = VexQTAtom::make(is.cls, is.bytes, nullptr, 0);
        list.setCell(*edited, 1, column, Value(9));
        Bytes expected = is.bytes;
        const std::size_t cell = head + width + offset;
        const std::size_t cellWidth = list.columns[column].width;
        std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(cell), cellWidth, 0);
        const bool isFixed = list.columns[column].kind == ValueKind::Floating;
        expected[cell + cellWidth - (isFixed ? 3 : 1)] = 9;
        EXPECT_EQ(edited->atomData(), expected) << list.columns[column].name;
        EXPECT_EQ(list.cell(*edited, 1, column), isFixed ? Value(9.0) : Value(9));
        offset += cellWidth;
    }
}

TEST_P(ListAccessTest, AnAbsentValueSetsACellToZero) {
    list.setCell(*atom, 1, 0, Value());
    EXPECT_EQ(list.cell(*atom, 1, 0), Value(0));
}

TEST_P(ListAccessTest, AValueOfTheWrongKindIsAnError) {
    EXPECT_THROW(list.setCell(*atom, 1, 0, Value("nine")), ValueError);
}

TEST_P(ListAccessTest, InsertedRowsAreZeros) {
    const std::string zeroRow = [&] {
        std::string cells;
        for (const Field& column : list.columns)
            cells += column.kind == ValueKind::Floating ? "0.000000 " : "0 ";
        return cells + "/ ";
    }();
    list.insertRows(*atom, 2, 1);
    list.insertRows(*atom, 0, 2);
    EXPECT_EQ(cellsOf(*atom, is.name), zeroRow + zeroRow + is.cells + zeroRow);
    EXPECT_EQ(atom->atomData().size(), is.bytes.size() + 3 * wireWidth(list.columns));
}

TEST_P(ListAccessTest, RemovedRowsAreNotWritten) {
    list.removeRows(*atom, 0, 1);
    EXPECT_EQ(cellsOf(*atom, is.name), is.cells.substr(is.cells.find('/') + 2));
    list.removeRows(*atom, 0, 1);
    EXPECT_EQ(list.size(*atom), 0u);
    EXPECT_EQ(atom->atomData().size(), is.bytes.size() - 2 * wireWidth(list.columns));
}

INSTANTIATE_TEST_SUITE_P(EveryTable, ListAccessTest, ::testing::ValuesIn(kCases),
                         [](const auto& table) { return std::string(table.param.cls.className); });

}  // namespace
}  // namespace vexqt
