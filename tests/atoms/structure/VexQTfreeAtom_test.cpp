// Free space and media data, which stand for bytes that are never loaded.
#include "vexqt/atoms/structure/VexQTfreeAtom.h"

#include <gtest/gtest.h>

#include "vexqt/atoms/structure/VexQTmdatAtom.h"

namespace vexqt {
namespace {

template <class T>
void expectStandsForBytes(OSType type, const char* name) {
    VexQTAtom parent;
    T atom(0x123456789A, 64, &parent);
    EXPECT_EQ(atom.atomType(), type);
    EXPECT_EQ(atom.atomSize(), 0x123456789AU);
    EXPECT_EQ(atom.offsetInFile(), 64U);
    EXPECT_EQ(atom.parent(), &parent);
    EXPECT_EQ(atom.unknownData(), std::nullopt);
    EXPECT_EQ(atom.atomName(), name);
    EXPECT_EQ(atom.atomNibName(), std::nullopt);
    EXPECT_EQ(atom.atomTypeString(), textFromCode(type));
    EXPECT_EQ(atom.atomDescription(), std::string(name) + " ('" + textFromCode(type) + "')");
    EXPECT_EQ(atom.description(), "   '" + textFromCode(type) + "' (78187493530)");
    EXPECT_EQ(atom.atomData(), Bytes());
    EXPECT_EQ(atom.atomSize(), 0x123456789AU);
}

template <class T>
void expectEmptyInMemory(OSType type) {
    T atom;
    EXPECT_EQ(atom.atomType(), type);
    EXPECT_EQ(atom.atomSize(), 0U);
    EXPECT_EQ(atom.offsetInFile(), 0U);
    EXPECT_EQ(atom.parent(), nullptr);
    EXPECT_EQ(atom.atomData(), Bytes());
}

TEST(FreeAtom, StandsForBytesAndIsNeverWritten) {
    expectStandsForBytes<VexQTfreeAtom>("free"_os, "Empty Space");
}
TEST(FreeAtom, MadeInMemoryHasNoSize) { expectEmptyInMemory<VexQTfreeAtom>("free"_os); }

TEST(MdatAtom, StandsForBytesAndIsNeverWritten) {
    expectStandsForBytes<VexQTmdatAtom>("mdat"_os, "Movie Data");
}
TEST(MdatAtom, MadeInMemoryHasNoSize) { expectEmptyInMemory<VexQTmdatAtom>("mdat"_os); }

TEST(FreeAtom, InsideAnotherAtomAddsNothingToItsBytes) {
    VexQTAtom parent("pare"_os, 8, nullptr, 0);
    parent.addChild(std::make_unique<VexQTfreeAtom>(1000, 64, &parent));
    parent.atomData();
    EXPECT_EQ(parent.atomSize(), 8U);
}

}  // namespace
}  // namespace vexqt
