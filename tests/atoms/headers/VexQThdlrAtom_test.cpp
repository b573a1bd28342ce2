#include "vexqt/atoms/headers/VexQThdlrAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace testing;

/// Everything in front of the name, with any size.
Bytes fixedPart(std::uint32_t size) {
    return atomClaiming(size, "hdlr"_os,
                        {
                            u8(0x09),         // version
                            u8(0x0A),         // flags
                            u16(0x0B0C),      //
                            text("mhlr"),     // component type
                            text("vide"),     // component subtype
                            text("app\xEC"),  // component manufacturer
                            u32(0x8D0E0F10),  // component flags
                            u32(0x91121314),  // component flags mask
                        });
}

Bytes handler(const Bytes& name) {
    return join({fixedPart(static_cast<std::uint32_t>(32 + name.size())), name});
}

std::unique_ptr<VexQThdlrAtom> read(const Bytes& name) {
    return VexQThdlrAtom::initWithData(handler(name), nullptr, 0);
}

TEST(HdlrAtom, ReadsEveryField) {
    VexQTAtom parent;
    const Bytes bytes = handler(join({u8(4), text("Core")}));
    const auto atom = VexQThdlrAtom::initWithData(bytes, &parent, 77);
    ASSERT_NE(atom, nullptr);
    EXPECT_EQ(atom->parent(), &parent);
    EXPECT_EQ(atom->offsetInFile(), 77U);
    EXPECT_EQ(atom->atomSize(), 37U);
    EXPECT_EQ(atom->atomType(), "hdlr"_os);
    EXPECT_EQ(atom->version(), 0x09);
    EXPECT_EQ(atom->flags0(), 0x0A);
    EXPECT_EQ(atom->flags1(), 0x0B);
    EXPECT_EQ(atom->flags2(), 0x0C);
    EXPECT_EQ(atom->componentType(), "mhlr"_os);
    EXPECT_EQ(atom->componentSubType(), "vide"_os);
    EXPECT_EQ(atom->componentManufacturer(), 0x617070ECU);
    EXPECT_EQ(atom->componentFlags(), 0x8D0E0F10U);
    EXPECT_EQ(atom->componentFlagsMask(), 0x91121314U);
    EXPECT_EQ(atom->componentName(), "Core");
    EXPECT_FALSE(atom->componentNameIsCString());
    EXPECT_FALSE(atom->appendEmptyStringLength());
    EXPECT_EQ(atom->unknownData(), std::nullopt);
}

TEST(HdlrAtom, WritesEveryField) {
    VexQThdlrAtom atom;
    atom.setVersion(0x09);
    atom.setFlags0(0x0A);
    atom.setFlags1(0x0B);
    atom.setFlags2(0x0C);
    atom.setComponentType("mhlr"_os);
    atom.setComponentSubType("vide"_os);
    atom.setComponentManufacturer(0x617070EC);
    atom.setComponentFlags(0x8D0E0F10);
    atom.setComponentFlagsMask(0x91121314);
    atom.setComponentName("Core");
    EXPECT_EQ(atom.atomData(), handler(join({u8(4), text("Core")})));
    EXPECT_EQ(atom.atomSize(), 37U);
    atom.setComponentNameIsCString(true);
    EXPECT_EQ(atom.atomData(), handler(join({text("Core"), u8(0)})));
    EXPECT_EQ(atom.atomSize(), 37U);
}

TEST(HdlrAtom, MadeInMemoryWritesItsDefaults) {
    VexQThdlrAtom atom;
    EXPECT_EQ(atom.componentName(), std::nullopt);
    EXPECT_FALSE(atom.componentNameIsCString());
    EXPECT_FALSE(atom.appendEmptyStringLength());
    EXPECT_EQ(atom.atomData(), testing::atom("hdlr"_os, {u8(1), zeros(3), text("????"),
                                                         text("????"), text("????"), zeros(8)}));
}

TEST(HdlrAtom, RefusesFewerThan32Bytes) {
    for (const std::size_t length : {0U, 8U, 31U})
        EXPECT_EQ(VexQThdlrAtom::initWithData(zeros(length), nullptr, 0), nullptr) << length;
}

TEST(HdlrAtom, ReadsTheSizeFromTheByteCount) {
    const auto atom =
        VexQThdlrAtom::initWithData(join({fixedPart(7), u8(2), text("ab")}), nullptr, 0);
    EXPECT_EQ(atom->atomSize(), 35U);
    EXPECT_EQ(atom->componentName(), "ab");
}

TEST(HdlrAtom, Of32BytesHasNoName) {
    const auto atom = read({});
    EXPECT_EQ(atom->componentName(), std::nullopt);
    EXPECT_FALSE(atom->appendEmptyStringLength());
    EXPECT_FALSE(atom->componentNameIsCString());
    EXPECT_EQ(atom->atomData(), handler({}));
    EXPECT_EQ(atom->atomSize(), 32U);
}

TEST(HdlrAtom, ALengthByteOfZeroGrowsByOneByte) {
    const auto atom = read(u8(0));
    EXPECT_EQ(atom->componentName(), std::nullopt);
    EXPECT_TRUE(atom->appendEmptyStringLength());
    EXPECT_FALSE(atom->componentNameIsCString());
    EXPECT_EQ(atom->atomSize(), 33U);
    EXPECT_EQ(atom->atomData(), handler(zeros(2)));
    EXPECT_EQ(atom->atomSize(), 34U);
}

TEST(HdlrAtom, TwoZeroBytesComeBack) {
    const auto atom = read(zeros(2));
    EXPECT_EQ(atom->componentName(), std::nullopt);
    EXPECT_TRUE(atom->appendEmptyStringLength());
    EXPECT_EQ(atom->atomData(), handler(zeros(2)));
}

TEST(HdlrAtom, WhatFollowsALengthByteOfZeroIsLost) {
    const auto atom = read(join({u8(0), text("lost")}));
    EXPECT_EQ(atom->componentName(), std::nullopt);
    EXPECT_TRUE(atom->appendEmptyStringLength());
    EXPECT_EQ(atom->atomData(), handler(zeros(2)));
}

TEST(HdlrAtom, ACountThatFillsTheAtomIsACountedName) {
    const auto atom = read(join({u8(16), text("SixteenLettersOf")}));
    EXPECT_EQ(atom->componentName(), "SixteenLettersOf");
    EXPECT_FALSE(atom->componentNameIsCString());
    EXPECT_EQ(atom->atomSize(), 49U);
    EXPECT_EQ(atom->atomData(), handler(join({u8(16), text("SixteenLettersOf")})));
}

TEST(HdlrAtom, AnyOtherCountIsTheFirstCharacterOfAName) {
    const auto atom = read(join({u8(65), text("SixteenLettersOf")}));
    EXPECT_EQ(atom->componentName(), "ASixteenLettersOf");
    EXPECT_TRUE(atom->componentNameIsCString());
    // The terminator that was not there is written.
    EXPECT_EQ(atom->atomData(), handler(join({text("ASixteenLettersOf"), u8(0)})));
    EXPECT_EQ(atom->atomSize(), 50U);
}

TEST(HdlrAtom, ACStringEndsAtItsFirstZeroByte) {
    const auto atom = read(join({text("Name"), u8(0), text("more"), u8(0)}));
    EXPECT_EQ(atom->componentName(), "Name");
    EXPECT_TRUE(atom->componentNameIsCString());
    EXPECT_EQ(atom->atomData(), handler(join({text("Name"), u8(0)})));
}

TEST(HdlrAtom, ACountedNameIsTakenWhole) {
    const auto atom = read(join({u8(5), text("ab"), u8(0), text("cd")}));
    EXPECT_EQ(atom->componentName(), std::string("ab\0cd", 5));
    EXPECT_EQ(atom->atomData(), handler(join({u8(5), text("ab"), u8(0), text("cd")})));
}

TEST(HdlrAtom, ACountedNameThatIsNotAsciiIsAbsent) {
    const auto atom = read(join({u8(3), text("a\xC3\xA9")}));
    EXPECT_EQ(atom->componentName(), std::nullopt);
    EXPECT_FALSE(atom->componentNameIsCString());
    EXPECT_FALSE(atom->appendEmptyStringLength());
    EXPECT_EQ(atom->atomData(), handler({}));
}

TEST(HdlrAtom, ACStringThatIsNotAsciiIsAbsentAndStaysACString) {
    const auto atom = read(join({text("a\xC3\xA9"), u8(0)}));
    EXPECT_EQ(atom->componentName(), std::nullopt);
    EXPECT_TRUE(atom->componentNameIsCString());
    EXPECT_EQ(atom->atomData(), handler({}));
}

TEST(HdlrAtom, ALengthByteFrom128UpThatDoesNotFillTheAtomLeavesNoName) {
    const auto atom = read(join({u8(200), text("ab")}));
    EXPECT_EQ(atom->componentName(), std::nullopt);
    EXPECT_TRUE(atom->componentNameIsCString());
}

TEST(HdlrAtom, ALongNameDeclaresTheLowByteOfItsLength) {
    const std::string name(300, 'x');
    VexQTAtom parent;
    auto atom = read({});
    atom->setComponentName(name);
    EXPECT_EQ(atom->atomData(), join({fixedPart(77), u8(44), text(name)}));
    EXPECT_EQ(atom->atomSize(), 77U);
    atom->setComponentNameIsCString(true);
    EXPECT_EQ(atom->atomData(), join({fixedPart(77), text(name), u8(0)}));
}

TEST(HdlrAtom, AnEmptyNameDeclaresOneByteLessThanItWrites) {
    const auto atom = read({});
    atom->setComponentName("");
    EXPECT_EQ(atom->atomData(), join({fixedPart(32), u8(0)}));
    atom->setComponentNameIsCString(true);
    EXPECT_EQ(atom->atomData(), join({fixedPart(32), u8(0)}));
    atom->setAppendEmptyStringLength(true);
    EXPECT_EQ(atom->atomData(), join({fixedPart(34), u8(0)}));
    EXPECT_EQ(atom->atomSize(), 34U);
}

TEST(HdlrAtom, ANameThatIsNotAsciiIsWrittenAsOneOfNoLength) {
    const auto atom = read({});
    atom->setComponentName("\u00E9");
    EXPECT_EQ(atom->atomData(), join({fixedPart(33), u8(0)}));
    atom->setComponentNameIsCString(true);
    EXPECT_EQ(atom->atomData(), join({fixedPart(33), u8(0)}));
    EXPECT_EQ(atom->atomSize(), 33U);
}

TEST(HdlrAtom, HasANameAndAView) {
    const VexQThdlrAtom atom;
    EXPECT_EQ(atom.atomName(), "Handler Reference");
    EXPECT_EQ(atom.atomNibName(), "VexQThdlrAtom");
}

}  // namespace
}  // namespace vexqt
