#include "vexqt/saving/FileLayout.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/platform/MemoryFileSystem.h"

namespace vexqt {
namespace {

using namespace testing;

FileLayout layoutOf(const Bytes& bytes) {
    MemoryFileSystem files;
    files.put("/a.mov", bytes);
    std::error_code error;
    FileLayout layout = FileLayout::of(*files.openForReading("/a.mov", error), error);
    EXPECT_FALSE(error);
    EXPECT_EQ(layout.fileLength, bytes.size());
    return layout;
}

TEST(FileLayout, FindsAnAtomByItsFirstByte) {
    const FileLayout layout = layoutOf(join({atom("ftyp"_os, {zeros(12)}), atom("mdat"_os)}));
    ASSERT_EQ(layout.atoms.size(), 2U);
    EXPECT_EQ(layout.atomAt(0), &layout.atoms[0]);
    EXPECT_EQ(layout.atomAt(20), &layout.atoms[1]);
    EXPECT_EQ(layout.atomAt(19), nullptr);
    EXPECT_EQ(layout.atomAt(28), nullptr);
}

TEST(FileLayout, EndsInFrontOfAHeaderThatTheFileCutsShort) {
    const FileLayout layout =
        layoutOf(join({atom("ftyp"_os, {zeros(12)}), u32(1), text("mdat"), u32(0)}));
    EXPECT_EQ(layout.atoms.size(), 1U);
    EXPECT_EQ(layout.end(), 20U);
}

TEST(FileLayout, OfNoAtomsEndsWhereItBegins) { EXPECT_EQ(layoutOf(zeros(7)).end(), 0U); }

}  // namespace
}  // namespace vexqt
