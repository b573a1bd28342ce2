#include "vexqt/atoms/headers/VexQTendaAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

TEST(EndaAtom, AnyNumberButZeroIsLittleEndianAndWrittenAsOne) {
    const struct {
        std::uint16_t read;
        bool littleEndian;
        std::uint16_t written;
    } cases[] = {{0x0000, false, 0}, {0x0001, true, 1}, {0x0100, true, 1}, {0xFFFF, true, 1}};
    for (const auto& [read, littleEndian, written] : cases) {
        SCOPED_TRACE(read);
        const auto atom =
            VexQTendaAtom::initWithData(testing::atom("enda"_os, {u16(read)}), nullptr, 0);
        EXPECT_EQ(atom->littleEndian(), littleEndian);
        EXPECT_EQ(atom->atomData(), testing::atom("enda"_os, {u16(written)}));
    }
}

TEST(EndaAtom, EditsOfOneMadeInMemoryAreWritten) {
    VexQTendaAtom atom;
    EXPECT_FALSE(atom.littleEndian());
    atom.setLittleEndian(true);
    EXPECT_EQ(atom.atomData(), testing::atom("enda"_os, {u16(1)}));
}

}  // namespace
}  // namespace vexqt
