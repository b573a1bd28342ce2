#include "vexqt/atoms/headers/VexQTelngAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace testing;

Bytes tag(const Bytes& payload) {
    return atom("elng"_os, {
                               u8(0x09),     // version
                               u8(0x0A),     // flags
                               u16(0x0B0C),  //
                               payload,
                           });
}

TEST(ElngAtom, ReadsEveryField) {
    VexQTAtom parent;
    const auto atom = VexQTelngAtom::initWithData(tag(join({text("en-US"), u8(0)})), &parent, 55);
    ASSERT_NE(atom, nullptr);
    EXPECT_EQ(atom->parent(), &parent);
    EXPECT_EQ(atom->offsetInFile(), 55U);
    EXPECT_EQ(atom->atomSize(), 18U);
    EXPECT_EQ(atom->version(), 0x09);
    EXPECT_EQ(atom->flags0(), 0x0A);
    EXPECT_EQ(atom->flags1(), 0x0B);
    EXPECT_EQ(atom->flags2(), 0x0C);
    EXPECT_EQ(atom->languageTagString(), "en-US");
    EXPECT_EQ(atom->unknownData(), std::nullopt);
}

TEST(ElngAtom, WritesEveryField) {
    VexQTelngAtom atom;
    atom.setVersion(0x09);
    atom.setFlags0(0x0A);
    atom.setFlags1(0x0B);
    atom.setFlags2(0x0C);
    atom.setLanguageTagString("en-US");
    EXPECT_EQ(atom.atomData(), tag(join({text("en-US"), u8(0)})));
    EXPECT_EQ(atom.atomSize(), 18U);
}

TEST(ElngAtom, ThatWasReadAnswersATypeWithExchangedLetters) {
    const auto atom = VexQTelngAtom::initWithData(tag(u8(0)), nullptr, 0);
    EXPECT_EQ(atom->atomType(), 0x656E6C67U);
    EXPECT_EQ(atom->atomTypeString(), "enlg");
    EXPECT_EQ(VexQTelngAtom().atomTypeString(), "elng");
}

TEST(ElngAtom, WritesItsOwnTypeAndKeepsTheOther) {
    const auto atom = VexQTelngAtom::initWithData(tag(u8(0)), nullptr, 0);
    EXPECT_EQ(atom->atomData(), tag(u8(0)));
    EXPECT_EQ(atom->atomType(), 0x656E6C67U);
}

TEST(ElngAtom, RefusesFewerThan13Bytes) {
    for (const std::size_t length : {0U, 8U, 12U})
        EXPECT_EQ(VexQTelngAtom::initWithData(zeros(length), nullptr, 0), nullptr) << length;
    EXPECT_NE(VexQTelngAtom::initWithData(zeros(13), nullptr, 0), nullptr);
    EXPECT_NE(VexQTelngAtom::initWithData(zeros(100000), nullptr, 0), nullptr);
}

TEST(ElngAtom, ReadsTheTagUpToTheFirstZeroByte) {
    const auto atom =
        VexQTelngAtom::initWithData(tag(join({text("de"), u8(0), text("\xFFjunk")})), nullptr, 0);
    EXPECT_EQ(atom->languageTagString(), "de");
    EXPECT_EQ(atom->atomData(), tag(join({text("de"), u8(0)})));
}

TEST(ElngAtom, TakesATagWithoutATerminatorToTheEnd) {
    const auto atom = VexQTelngAtom::initWithData(tag(text("fr-CA")), nullptr, 0);
    EXPECT_EQ(atom->languageTagString(), "fr-CA");
    EXPECT_EQ(atom->atomData(), tag(join({text("fr-CA"), u8(0)})));
}

TEST(ElngAtom, AnEmptyTagIsNotAbsent) {
    EXPECT_EQ(VexQTelngAtom::initWithData(tag(u8(0)), nullptr, 0)->languageTagString(), "");
    EXPECT_EQ(VexQTelngAtom().languageTagString(), std::nullopt);
}

TEST(ElngAtom, ATagThatIsNotAsciiIsAbsent) {
    const auto atom = VexQTelngAtom::initWithData(tag(join({text("d\xE9"), u8(0)})), nullptr, 0);
    EXPECT_EQ(atom->languageTagString(), std::nullopt);
    EXPECT_EQ(atom->atomData(), tag(u8(0)));
    EXPECT_EQ(atom->atomSize(), 13U);
}

TEST(ElngAtom, WritesATagThatIsNotAsciiAsOneOfNoLength) {
    VexQTelngAtom atom;
    atom.setLanguageTagString("d\u00E9");
    EXPECT_EQ(atom.atomData(), testing::atom("elng"_os, {u8(1), zeros(3), u8(0)}));
    atom.setLanguageTagString(std::nullopt);
    EXPECT_EQ(atom.atomData(), testing::atom("elng"_os, {u8(1), zeros(3), u8(0)}));
}

TEST(ElngAtom, HasANameAndAView) {
    const VexQTelngAtom atom;
    EXPECT_EQ(atom.atomName(), "Extended Language Tag");
    EXPECT_EQ(atom.atomNibName(), "VexQTelngAtom");
}

}  // namespace
}  // namespace vexqt
