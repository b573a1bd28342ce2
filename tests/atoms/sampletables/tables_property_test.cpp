// Claims about every table, of whatever rows.

#include <gtest/gtest.h>
#include <rapidcheck.h>
// Wants the one above.
#include <rapidcheck/gtest.h>

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

struct TableClass {
    const AtomClass& cls;
    std::string_view list;
    std::size_t width;
    bool keepsFlags;
    bool mayBeCutShort;
};
const TableClass kTables[] = {
    {VexQTsttsAtom::kClass, "sampleDurations", 8, false, false},
    {VexQTcttsAtom::kClass, "compositionOffsets", 8, false, false},
    {VexQTstssAtom::kClass, "syncSamples", 4, false, false},
    {VexQTstpsAtom::kClass, "syncSamples", 4, false, false},
    {VexQTstscAtom::kClass, "sampleToChunkEntries", 12, false, true},
    {VexQTstszAtom::kClass, "sampleSizes", 4, true, true},
    {VexQTstcoAtom::kClass, "chunkOffsets", 4, false, false},
    {VexQTco64Atom::kClass, "chunkOffsets", 8, true, false},
};

TableClass anyTable() { return kTables[*rc::gen::inRange<std::size_t>(0, std::size(kTables))]; }

Bytes anyBytes(std::size_t count) {
    return *rc::gen::container<Bytes>(count, rc::gen::arbitrary<std::uint8_t>());
}

/// The bytes in front of the count, behind them the count and the entries.
Bytes tableOf(const TableClass& table, std::uint8_t version, ByteView flags, std::uint32_t count,
              ByteView entries) {
    const Bytes size = table.cls.type == "stsz"_os ? u32(0) : Bytes();
    return atom(table.cls.type, {u8(version), flags, size, u32(count), entries});
}

RC_GTEST_PROP(EveryTable, IsWrittenAsItWasReadButForTheFlags, ()) {
    const TableClass table = anyTable();
    const auto count = *rc::gen::inRange<std::size_t>(0, 40);
    const auto version = *rc::gen::arbitrary<std::uint8_t>();
    const Bytes flags = anyBytes(3);
    const Bytes entries = anyBytes(count * table.width);
    const auto number = static_cast<std::uint32_t>(count);

    const Bytes read = tableOf(table, version, flags, number, entries);
    const Bytes written =
        tableOf(table, version, table.keepsFlags ? flags : zeros(3), number, entries);
    const auto atom = VexQTAtom::make(table.cls, read, nullptr, 0);
    RC_ASSERT(atom->atomData() == written);

    const ListAccess& list = listNamed(*atom, table.list);
    list.insertRows(*atom, count, 1);
    list.removeRows(*atom, count, 1);
    RC_ASSERT(atom->atomData() == written);
}

RC_GTEST_PROP(EveryTable, HasAsManyRowsAsItsCountAndItsBytesAllow, ()) {
    const TableClass table = anyTable();
    const auto count = *rc::gen::inRange<std::uint32_t>(0, 20);
    const Bytes entries = anyBytes(*rc::gen::inRange<std::size_t>(0, 160));
    const Bytes read = tableOf(table, 0, zeros(3), count, entries);
    const std::size_t whole = entries.size() / table.width;

    if (count <= whole || table.mayBeCutShort) {
        const auto atom = VexQTAtom::make(table.cls, read, nullptr, 0);
        RC_ASSERT(listNamed(*atom, table.list).size(*atom) == std::min<std::size_t>(count, whole));
    } else {
        RC_ASSERT_THROWS_AS(VexQTAtom::make(table.cls, read, nullptr, 0), RangeError);
    }
}

RC_GTEST_PROP(EditList, WritesARateAsItsConversionsThereAndBack, ()) {
    const auto duration = *rc::gen::arbitrary<std::uint32_t>();
    const auto time = *rc::gen::arbitrary<std::uint32_t>();
    const auto rate = *rc::gen::arbitrary<std::int32_t>();
    const auto edit = [&](std::int32_t pattern) {
        return atom("elst"_os, {u32(0), u32(1), u32(duration), u32(time),
                                u32(static_cast<std::uint32_t>(pattern))});
    };
    const auto atom = VexQTelstAtom::initWithData(edit(rate), nullptr, 0);
    const double read = ValueCodecs::signedFixed1616ToDouble(rate);
    RC_ASSERT(std::as_const(*atom).editListEntries()[0].mediaRate() == read);
    RC_ASSERT(atom->atomData() == edit(ValueCodecs::doubleToSignedFixed1616(read)));
    if (rate >= 0) RC_ASSERT(atom->atomData() == edit(rate));
}

/// Edits by name of a table that was read, against the same edits of a list of rows.
RC_GTEST_PROP(EveryTable, EditedByNameIsWrittenAsItsRows, ()) {
    const TableClass table = anyTable();
    const auto startCount = *rc::gen::inRange<std::size_t>(0, 12);
    const Bytes entries = anyBytes(startCount * table.width);
    const auto atom = VexQTAtom::make(
        table.cls, tableOf(table, 0, zeros(3), static_cast<std::uint32_t>(startCount), entries),
        nullptr, 0);
    const ListAccess& list = listNamed(*atom, table.list);

    std::vector<std::vector<std::uint64_t>> rows;
    ByteReader in(entries);
    while (in.remaining() > 0) {
        auto& row = rows.emplace_back();
        for (const Field& column : list.columns)
            row.push_back(column.width == 8 ? in.u64() : in.u32());
    }
    const std::vector<std::uint64_t> zeroRow(list.columns.size());

    const auto edits = *rc::gen::inRange(0, 12);
    for (int i = 0; i < edits; ++i) {
        const auto row = *rc::gen::inRange<std::size_t>(0, rows.size() + 1);
        const auto at = rows.begin() + static_cast<std::ptrdiff_t>(row);
        switch (*rc::gen::inRange(0, 3)) {
            case 0: {
                const auto count = *rc::gen::inRange<std::size_t>(0, 4);
                list.insertRows(*atom, row, count);
                rows.insert(at, count, zeroRow);
                break;
            }
            case 1: {
                const auto count = *rc::gen::inRange<std::size_t>(0, rows.size() - row + 1);
                list.removeRows(*atom, row, count);
                rows.erase(at, at + static_cast<std::ptrdiff_t>(count));
                break;
            }
            default: {
                if (row == rows.size()) break;
                const auto column = *rc::gen::inRange<std::size_t>(0, list.columns.size());
                const auto number = *rc::gen::arbitrary<std::uint64_t>();
                list.setCell(*atom, row, column, Value(number));
                const bool isWide = list.columns[column].width == 8;
                rows[row][column] = isWide ? number : static_cast<std::uint32_t>(number);
            }
        }
    }

    Bytes expected;
    for (const auto& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column) {
            const Bytes cell = list.columns[column].width == 8
                                   ? u64(row[column])
                                   : u32(static_cast<std::uint32_t>(row[column]));
            expected.insert(expected.end(), cell.begin(), cell.end());
        }
    const std::size_t count = table.cls.type == "stsz"_os ? startCount : rows.size();
    RC_ASSERT(atom->atomData() ==
              tableOf(table, 0, zeros(3), static_cast<std::uint32_t>(count), expected));
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (std::size_t column = 0; column < zeroRow.size(); ++column)
            RC_ASSERT(integerFrom(list.cell(*atom, row, column)) == rows[row][column]);
}

}  // namespace
}  // namespace vexqt
