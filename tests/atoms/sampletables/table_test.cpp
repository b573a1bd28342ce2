#include "vexqt/core/table.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

int decodings = 0;

std::vector<std::uint32_t> decodeCounted(ByteView bytes) {
    ++decodings;
    ByteReader in(bytes);
    std::vector<std::uint32_t> rows;
    while (in.remaining() > 0) rows.push_back(in.u32());
    return rows;
}
constexpr Table<std::uint32_t>::Form kForm = {.width = 4, .decode = decodeCounted};

class TableTest : public ::testing::Test {
protected:
    TableTest() {
        decodings = 0;
        table.setBytes(SharedBytes::copyOf(bytes), kForm);
    }

    const Bytes bytes = join({u32(5), u32(6), u32(7)});
    Table<std::uint32_t> table;
};

TEST_F(TableTest, TheSizeIsKnownWithoutDecoding) {
    EXPECT_EQ(table.size(), 3u);
    EXPECT_EQ(decodings, 0);
}

TEST_F(TableTest, RowsAreDecodedOnce) {
    EXPECT_EQ(std::as_const(table).rows(), (std::vector<std::uint32_t>{5, 6, 7}));
    table.rows().push_back(8);
    EXPECT_EQ(std::as_const(table).rows(), (std::vector<std::uint32_t>{5, 6, 7, 8}));
    EXPECT_EQ(decodings, 1);
}

TEST_F(TableTest, LookingAtRowsKeepsTheBytesThatWereRead) {
    EXPECT_EQ(std::as_const(table).rows().size(), 3u);
    EXPECT_TRUE(table.isAsRead());
    EXPECT_TRUE(std::ranges::equal(table.bytes(), bytes));
}

TEST_F(TableTest, RowsForEditingAreNoLongerAsRead) {
    table.rows();
    EXPECT_FALSE(table.isAsRead());
    EXPECT_EQ(table.size(), 3u);
}

TEST_F(TableTest, SetRowsAreNeverDecoded) {
    table.setRows({9});
    EXPECT_EQ(std::as_const(table).rows(), (std::vector<std::uint32_t>{9}));
    EXPECT_EQ(table.size(), 1u);
    EXPECT_FALSE(table.isAsRead());
    EXPECT_EQ(decodings, 0);
}

TEST_F(TableTest, ACopyIsEditedAlone) {
    Table<std::uint32_t> copy = table;
    copy.rows()[0] = 50;
    EXPECT_EQ(std::as_const(table).rows()[0], 5u);
}

TEST(EmptyTable, HasNoRows) {
    const Table<std::uint32_t> table;
    EXPECT_EQ(table.size(), 0u);
    EXPECT_TRUE(table.rows().empty());
}

}  // namespace
}  // namespace vexqt
