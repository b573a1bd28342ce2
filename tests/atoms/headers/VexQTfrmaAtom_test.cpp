#include "vexqt/atoms/headers/VexQTfrmaAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

TEST(FrmaAtom, TheFormatIsReadAndWritten) {
    const Bytes bytes = atom("frma"_os, {text("mp4a")});
    const auto atom = VexQTfrmaAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->format(), "mp4a"_os);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(FrmaAtom, EditsOfOneMadeInMemoryAreWritten) {
    VexQTfrmaAtom atom;
    EXPECT_EQ(atom.atomData(), testing::atom("frma"_os, {text("????")}));
    atom.setFormat("in24"_os);
    EXPECT_EQ(atom.atomData(), testing::atom("frma"_os, {text("in24")}));
}

}  // namespace
}  // namespace vexqt
