#include "vexqt/atoms/headers/VexQTschmAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes scheme() {
    return atom("schm"_os, {
                               u32(0x01020304),  // Version and flags.
                               text("cenc"),
                               u32(0x00010002),  // The scheme's version.
                           });
}

TEST(SchmAtom, VersionAndFlagsAreOneNumberAndNotTheAtomsOwn) {
    const auto atom = VexQTschmAtom::initWithData(scheme(), nullptr, 0);
    EXPECT_EQ(atom->reserved1(), 0x01020304U);
    EXPECT_EQ(atom->schemaType(), "cenc"_os);
    EXPECT_EQ(atom->reserved2(), 0x00010002U);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->version(), VexQTAtom().version());
    EXPECT_EQ(atom->atomData(), scheme());
}

TEST(SchmAtom, EditsOfOneMadeInMemoryAreWritten) {
    VexQTschmAtom atom;
    EXPECT_EQ(atom.atomData(), testing::atom("schm"_os, {u32(0), text("????"), u32(0)}));
    atom.setReserved1(0x01020304);
    atom.setSchemaType("cenc"_os);
    atom.setReserved2(0x00010002);
    EXPECT_EQ(atom.atomData(), scheme());
}

}  // namespace
}  // namespace vexqt
