#include "vexqt/atoms/headers/ApertureDimensionsAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/headers/VexQTclefAtom.h"
#include "vexqt/atoms/headers/VexQTenofAtom.h"
#include "vexqt/atoms/headers/VexQTprofAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes dimensions(OSType type, std::uint8_t version, std::initializer_list<std::uint8_t> flags) {
    return atom(type, {
                          u8(version), Bytes(flags),
                          u32(0x02D00000),  // Width: 720.
                          u32(0x01E08000),  // Height: 480.5.
                      });
}

template <class Atom>
class ApertureDimensions : public ::testing::Test {};
using Classes = ::testing::Types<VexQTclefAtom, VexQTprofAtom, VexQTenofAtom>;
TYPED_TEST_SUITE(ApertureDimensions, Classes);

TYPED_TEST(ApertureDimensions, EveryFieldIsRead) {
    const auto atom =
        TypeParam::initWithData(dimensions(TypeParam::kClass.type, 7, {1, 2, 3}), nullptr, 96);
    EXPECT_EQ(atom->width(), 720.0);
    EXPECT_EQ(atom->height(), 480.5);
    EXPECT_EQ(atom->version(), 7);
    EXPECT_EQ(atom->atomSize(), 20U);
    EXPECT_EQ(atom->offsetInFile(), 96U);
    EXPECT_EQ(atom->unknownData(), std::nullopt);
}

TYPED_TEST(ApertureDimensions, FlagsAreNotReadAndTheVersionIsWrittenAsZero) {
    const auto atom =
        TypeParam::initWithData(dimensions(TypeParam::kClass.type, 7, {0, 0, 1}), nullptr, 0);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->atomData(), dimensions(TypeParam::kClass.type, 0, {0, 0, 0}));
}

TYPED_TEST(ApertureDimensions, OneMadeInMemoryIsEmpty) {
    TypeParam atom;
    EXPECT_EQ(atom.width(), 0.0);
    EXPECT_EQ(atom.height(), 0.0);
    EXPECT_EQ(atom.atomData(), testing::atom(TypeParam::kClass.type, {zeros(12)}));
    EXPECT_EQ(atom.atomSize(), 20U);
}

TYPED_TEST(ApertureDimensions, EditsAreWritten) {
    TypeParam atom;
    atom.setWidth(1920.25);
    atom.setValueForKey(1080.0, "height");
    EXPECT_EQ(atom.atomData(),
              testing::atom(TypeParam::kClass.type, {zeros(4), u32(0x07804000), u32(0x04380000)}));
}

template <class Atom>
Bytes writtenWithFlags() {
    Atom atom;
    atom.setFlags0(1);
    atom.setFlags1(2);
    atom.setFlags2(3);
    atom.setWidth(720);
    atom.setHeight(480.5);
    return atom.atomData();
}

TEST(ApertureDimensionsFlags, AreWrittenByProfAndEnofWhenTheyWereSet) {
    EXPECT_EQ(writtenWithFlags<VexQTprofAtom>(), dimensions("prof"_os, 0, {1, 2, 3}));
    EXPECT_EQ(writtenWithFlags<VexQTenofAtom>(), dimensions("enof"_os, 0, {1, 2, 3}));
}

TEST(ApertureDimensionsFlags, AreNeverWrittenByClef) {
    EXPECT_EQ(writtenWithFlags<VexQTclefAtom>(), dimensions("clef"_os, 0, {0, 0, 0}));
}

}  // namespace
}  // namespace vexqt
