#include "vexqt/atoms/headers/VexQTpaspAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

TEST(PaspAtom, EveryFieldIsReadAndWritten) {
    const Bytes bytes = atom("pasp"_os, {
                                            u32(0x80000001),  // Horizontal spacing.
                                            u32(33),          // Vertical spacing.
                                        });
    const auto atom = VexQTpaspAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->hSpacing(), 0x80000001U);
    EXPECT_EQ(atom->vSpacing(), 33U);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(PaspAtom, EditsOfOneMadeInMemoryAreWritten) {
    VexQTpaspAtom atom;
    EXPECT_EQ(atom.atomData(), testing::atom("pasp"_os, {u32(0), u32(0)}));
    atom.setHSpacing(40);
    atom.setVSpacing(33);
    EXPECT_EQ(atom.atomData(), testing::atom("pasp"_os, {u32(40), u32(33)}));
}

}  // namespace
}  // namespace vexqt
