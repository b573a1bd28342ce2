#include "vexqt/atoms/headers/VexQTavcCAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

TEST(AvcCAtom, EverythingBehindTheHeaderIsKeptRaw) {
    const Bytes bytes = atom("avcC"_os, {Bytes{1, 100, 0, 31, 0xFF}});
    const auto atom = VexQTavcCAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->unknownData(), (Bytes{1, 100, 0, 31, 0xFF}));
    EXPECT_EQ(atom->atomData(), bytes);
    EXPECT_EQ(atom->atomSize(), 13U);
}

TEST(AvcCAtom, AHeaderAloneKeepsBytesThatAreEmptyAndNotAbsent) {
    const auto atom = VexQTavcCAtom::initWithData(testing::atom("avcC"_os), nullptr, 0);
    EXPECT_EQ(atom->unknownData(), Bytes());
    EXPECT_EQ(atom->atomData(), testing::atom("avcC"_os));
}

TEST(AvcCAtom, OneMadeInMemoryHasNoBytes) {
    VexQTavcCAtom atom;
    EXPECT_EQ(atom.unknownData(), std::nullopt);
    EXPECT_EQ(atom.atomData(), testing::atom("avcC"_os));
}

}  // namespace
}  // namespace vexqt
