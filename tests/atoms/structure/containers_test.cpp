// What the fourteen containers have in common, and the three ways in which they read their own
// headers.
#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "testing/reading.h"
#include "vexqt/atoms/structure/VexQTclipAtom.h"
#include "vexqt/atoms/structure/VexQTdinfAtom.h"
#include "vexqt/atoms/structure/VexQTedtsAtom.h"
#include "vexqt/atoms/structure/VexQTgmhdAtom.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/atoms/structure/VexQTminfAtom.h"
#include "vexqt/atoms/structure/VexQTmoofAtom.h"
#include "vexqt/atoms/structure/VexQTmoovAtom.h"
#include "vexqt/atoms/structure/VexQTschiAtom.h"
#include "vexqt/atoms/structure/VexQTsinfAtom.h"
#include "vexqt/atoms/structure/VexQTstblAtom.h"
#include "vexqt/atoms/structure/VexQTtaptAtom.h"
#include "vexqt/atoms/structure/VexQTtrakAtom.h"
#include "vexqt/atoms/structure/VexQTwaveAtom.h"

namespace vexqt {
namespace {

using namespace testing;

/// How a container reads its own header.
enum class OwnHeader {
    NotRead,       ///< The size is the byte count.
    Read,          ///< A size of 0 leaves out the header that was read.
    ReadZeroShort  ///< A size of 0 makes the header 8 bytes.
};

/// A line of a child table.
struct Child {
    OSType type;
    std::string_view className;  ///< Empty for a child that is dropped.
    std::uint64_t minimumSize = 0;
    friend bool operator==(const Child&, const Child&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Child& child) {
        return out << textFromCode(child.type) << ' ' << child.className << ' '
                   << child.minimumSize;
    }
};

struct Container {
    const AtomClass& cls;
    OSType type;
    std::string_view className;
    std::string_view name;
    OwnHeader ownHeader;
    std::vector<Child> children;

    std::unique_ptr<VexQTAtom> read(const Bytes& bytes, std::uint64_t offsetInFile = 0) const {
        return VexQTAtom::make(cls, bytes, nullptr, offsetInFile);
    }
    friend void PrintTo(const Container& container, std::ostream* out) {
        *out << container.className;
    }
};

const Container kContainers[] = {
    {VexQTmoovAtom::kClass,
     "moov"_os,
     "VexQTmoovAtom",
     "Movie",
     OwnHeader::NotRead,
     {{"mvhd"_os, "VexQTmvhdAtom"},
      {"trak"_os, "VexQTtrakAtom"},
      {"udta"_os, "VexQTudtaAtom"},
      {"meta"_os, "VexQTmetaAtom"}}},
    {VexQTmoofAtom::kClass,
     "moof"_os,
     "VexQTmoofAtom",
     "Movie Segment",
     OwnHeader::NotRead,
     {{"mvhd"_os, "VexQTmvhdAtom"},
      {"trak"_os, "VexQTtrakAtom"},
      {"udta"_os, "VexQTudtaAtom"},
      {"meta"_os, "VexQTmetaAtom"}}},
    {VexQTtrakAtom::kClass,
     "trak"_os,
     "VexQTtrakAtom",
     "Track",
     OwnHeader::Read,
     {{"tkhd"_os, "VexQTtkhdAtom"},
      {"edts"_os, "VexQTedtsAtom"},
      {"mdia"_os, "VexQTmdiaAtom"},
      {"meta"_os, "VexQTmetaAtom"},
      {"tapt"_os, "VexQTtaptAtom"},
      {"clip"_os, "VexQTclipAtom"},
      {"udta"_os, "VexQTudtaAtom", 16},
      {"prfl"_os, ""}}},
    {VexQTmdiaAtom::kClass,
     "mdia"_os,
     "VexQTmdiaAtom",
     "Media",
     OwnHeader::ReadZeroShort,
     {{"mdhd"_os, "VexQTmdhdAtom"},
      {"hdlr"_os, "VexQThdlrAtom"},
      {"minf"_os, "VexQTminfAtom"},
      {"elng"_os, "VexQTelngAtom"}}},
    {VexQTminfAtom::kClass,
     "minf"_os,
     "VexQTminfAtom",
     "Media Information",
     OwnHeader::ReadZeroShort,
     {{"vmhd"_os, "VexQTvmhdAtom"},
      {"smhd"_os, "VexQTsmhdAtom"},
      {"gmhd"_os, "VexQTgmhdAtom"},
      {"hdlr"_os, "VexQThdlrAtom"},
      {"dinf"_os, "VexQTdinfAtom"},
      {"stbl"_os, "VexQTstblAtom"}}},
    {VexQTstblAtom::kClass,
     "stbl"_os,
     "VexQTstblAtom",
     "Sample Table",
     OwnHeader::Read,
     {{"stsd"_os, "VexQTstsdAtom"},
      {"stts"_os, "VexQTsttsAtom"},
      {"ctts"_os, "VexQTcttsAtom"},
      {"cslg"_os, "VexQTcslgAtom"},
      {"stss"_os, "VexQTstssAtom"},
      {"stps"_os, "VexQTstpsAtom"},
      {"stsc"_os, "VexQTstscAtom"},
      {"stsz"_os, "VexQTstszAtom"},
      {"stco"_os, "VexQTstcoAtom"},
      {"co64"_os, "VexQTco64Atom"}}},
    {VexQTdinfAtom::kClass,
     "dinf"_os,
     "VexQTdinfAtom",
     "Data Information",
     OwnHeader::Read,
     {{"dref"_os, "VexQTdrefAtom"}}},
    {VexQTedtsAtom::kClass,
     "edts"_os,
     "VexQTedtsAtom",
     "Edits",
     OwnHeader::Read,
     {{"elst"_os, "VexQTelstAtom"}}},
    {VexQTwaveAtom::kClass,
     "wave"_os,
     "VexQTwaveAtom",
     "Wave Extension",
     OwnHeader::ReadZeroShort,
     {{"frma"_os, "VexQTfrmaAtom"}, {"enda"_os, "VexQTendaAtom"}}},
    {VexQTsinfAtom::kClass,
     "sinf"_os,
     "VexQTsinfAtom",
     "'sinf' Atom",
     OwnHeader::Read,
     {{"frma"_os, "VexQTfrmaAtom"}, {"schm"_os, "VexQTschmAtom"}, {"schi"_os, "VexQTschiAtom"}}},
    {VexQTschiAtom::kClass,
     "schi"_os,
     "VexQTschiAtom",
     "'schi' Atom",
     OwnHeader::ReadZeroShort,
     {}},
    {VexQTtaptAtom::kClass,
     "tapt"_os,
     "VexQTtaptAtom",
     "Track Aperture Mode Dimensions",
     OwnHeader::ReadZeroShort,
     {{"clef"_os, "VexQTclefAtom"}, {"prof"_os, "VexQTprofAtom"}, {"enof"_os, "VexQTenofAtom"}}},
    {VexQTgmhdAtom::kClass,
     "gmhd"_os,
     "VexQTgmhdAtom",
     "Base Media Information Header",
     OwnHeader::Read,
     {{"gmin"_os, "VexQTgminAtom"}, {"text"_os, "VexQTtextAtom"}, {"tmcd"_os, "VexQTtmcdAtom"}}},
    {VexQTclipAtom::kClass,
     "clip"_os,
     "VexQTclipAtom",
     "Movie Clipping",
     OwnHeader::Read,
     {{"crgn"_os, "VexQTcrgnAtom"}}},
};

class Containers : public ::testing::TestWithParam<Container> {};

/// Runs for all containers but the wave, which alone keeps a last child that is a bare header.
class ContainersButWave : public ::testing::TestWithParam<Container> {};

std::vector<Container> allButWave() {
    std::vector<Container> containers;
    for (const Container& container : kContainers)
        if (container.type != "wave"_os) containers.push_back(container);
    return containers;
}

std::string nameOf(const ::testing::TestParamInfo<Container>& info) {
    return textFromCode(info.param.type);
}
INSTANTIATE_TEST_SUITE_P(, Containers, ::testing::ValuesIn(kContainers), nameOf);
INSTANTIATE_TEST_SUITE_P(, ContainersButWave, ::testing::ValuesIn(allButWave()), nameOf);

const Bytes kFirst = atom("aaaa"_os, {u8(0xA1)});
const Bytes kSecond = atom("bbbb"_os, {u16(0xB1B2)});

TEST_P(Containers, HasANameAndNoView) {
    const auto atom = GetParam().cls.create();
    EXPECT_EQ(GetParam().cls.className, GetParam().className);
    EXPECT_EQ(atom->atomName(), GetParam().name);
    EXPECT_EQ(atom->atomNibName(), std::nullopt);
}

TEST_P(Containers, MadeInMemoryIsAnEmptyAtomOfItsType) {
    const auto atom = GetParam().cls.create();
    EXPECT_EQ(atom->atomType(), GetParam().type);
    EXPECT_EQ(atom->atomSize(), 8U);
    EXPECT_EQ(atom->parent(), nullptr);
    EXPECT_TRUE(atom->children().empty());
    EXPECT_EQ(atom->atomData(), testing::atom(GetParam().type));
}

TEST_P(Containers, ChoosesTheClassesOfItsChildrenByThisTable) {
    std::vector<Child> table;
    for (const ChildRule& rule : GetParam().cls.children)
        table.push_back({.type = rule.type != 0 ? rule.type : rule.cls->type,
                         .className = rule.cls != nullptr ? rule.cls->className : "",
                         .minimumSize = rule.minimumSize});
    EXPECT_EQ(table, GetParam().children);
}

TEST_P(Containers, ReadsItsChildrenInOrderEachWithItsPlace) {
    VexQTAtom parent;
    const Bytes bytes = atom(GetParam().type, {kFirst, kSecond});
    const auto container = VexQTAtom::make(GetParam().cls, bytes, &parent, 1000);
    EXPECT_EQ(container->parent(), &parent);
    EXPECT_EQ(container->offsetInFile(), 1000U);
    EXPECT_EQ(container->atomSize(), 27U);
    EXPECT_EQ(container->atomType(), GetParam().type);
    EXPECT_EQ(container->unknownData(), std::nullopt);
    ASSERT_EQ(container->children().size(), 2U);
    const VexQTAtom& first = *container->children()[0];
    EXPECT_EQ(first.atomType(), "aaaa"_os);
    EXPECT_EQ(first.parent(), container.get());
    EXPECT_EQ(first.offsetInFile(), 1008U);
    EXPECT_EQ(first.unknownData(), u8(0xA1));
    const VexQTAtom& second = *container->children()[1];
    EXPECT_EQ(second.atomType(), "bbbb"_os);
    EXPECT_EQ(second.offsetInFile(), 1017U);
    EXPECT_EQ(second.unknownData(), u16(0xB1B2));
    EXPECT_EQ(container->atomData(), bytes);
}

TEST_P(Containers, KeepsFreeSpaceAndMediaDataInsideAsRawBytes) {
    const Bytes bytes = atom(GetParam().type, {atom("free"_os, {u8(1)}), atom("mdat"_os, {u8(2)})});
    const auto container = GetParam().read(bytes);
    ASSERT_EQ(container->children().size(), 2U);
    EXPECT_EQ(&container->children()[0]->atomClass(), &VexQTAtom::kClass);
    EXPECT_EQ(&container->children()[1]->atomClass(), &VexQTAtom::kClass);
    EXPECT_EQ(container->atomData(), bytes);
}

TEST_P(Containers, ReadsAChildWithAnExtendedSize) {
    const Bytes extended = extendedAtomClaiming(19, "aaaa"_os, {text("xyz")});
    const auto container = GetParam().read(atom(GetParam().type, {extended, kSecond}));
    ASSERT_EQ(container->children().size(), 2U);
    EXPECT_EQ(container->children()[0]->unknownData(), text("xyz"));
    EXPECT_EQ(container->children()[0]->atomSize(), 3U);
    EXPECT_EQ(container->children()[1]->offsetInFile(), 27U);
    EXPECT_EQ(container->atomData(),
              atom(GetParam().type, {atom("aaaa"_os, {text("xyz")}), kSecond}));
}

TEST_P(Containers, DropsBytesThatAreNoHeader) {
    for (std::size_t count = 1; count < 8; ++count) {
        const auto container = GetParam().read(
            join({atomClaiming(static_cast<std::uint32_t>(17 + count), GetParam().type, {kFirst}),
                  Bytes(count, 0xEE)}));
        EXPECT_EQ(container->children().size(), 1U) << count;
        EXPECT_EQ(container->atomData(), atom(GetParam().type, {kFirst})) << count;
    }
}

TEST_P(ContainersButWave, DropsALastChildThatIsABareHeader) {
    const auto alone = GetParam().read(atom(GetParam().type, {atom("aaaa"_os)}));
    EXPECT_TRUE(alone->children().empty());
    EXPECT_EQ(alone->atomSize(), 16U);
    EXPECT_EQ(alone->atomData(), atom(GetParam().type));
    EXPECT_EQ(alone->atomSize(), 8U);
    const auto last = GetParam().read(atom(GetParam().type, {kFirst, atom("bbbb"_os)}));
    EXPECT_EQ(last->atomData(), atom(GetParam().type, {kFirst}));
}

TEST_P(ContainersButWave, KeepsABareHeaderThatIsNotTheLast) {
    const Bytes bytes = atom(GetParam().type, {atom("aaaa"_os), kSecond});
    const auto container = GetParam().read(bytes);
    EXPECT_EQ(container->children().size(), 2U);
    EXPECT_EQ(container->atomData(), bytes);
}

TEST_P(Containers, AChildOfSizeZeroCountsFromTheContainersStart) {
    // The first child reaches to the end just so.
    const auto container =
        GetParam().read(atom(GetParam().type, {atomClaiming(0, "aaaa"_os, {text("xyz")})}));
    ASSERT_EQ(container->children().size(), 1U);
    EXPECT_EQ(container->children()[0]->unknownData(), text("xyz"));
    EXPECT_EQ(container->children()[0]->atomSize(), 3U);
    EXPECT_EQ(container->atomData(), atom(GetParam().type, {atom("aaaa"_os, {text("xyz")})}));
}

TEST_P(Containers, ALaterChildOfSizeZeroReachesPastTheEnd) {
    const Bytes bytes = atom(GetParam().type, {kFirst, atomClaiming(0, "aaaa"_os, {text("xyz")})});
    EXPECT_EQ(errorOf<RangeError>([&] { GetParam().read(bytes); }),
              textFromCode(GetParam().type) + ".aaaa[1] at 17: 20 bytes wanted at 17, 28 there");
}

TEST_P(Containers, AChildWithAnExtendedSizeOfZeroIsOneOfSizeZero) {
    const auto container =
        GetParam().read(atom(GetParam().type, {extendedAtomClaiming(0, "aaaa"_os, {text("xyz")})}));
    ASSERT_EQ(container->children().size(), 1U);
    EXPECT_EQ(container->children()[0]->unknownData(), text("xyz"));
    EXPECT_EQ(container->children()[0]->atomSize(), 0 - 16ULL);  // By the child's own rule.
    const Bytes later =
        atom(GetParam().type, {kFirst, extendedAtomClaiming(0, "aaaa"_os, {text("xyz")})});
    EXPECT_THROW(GetParam().read(later), RangeError);
}

TEST_P(Containers, AChildPastTheEndIsARangeError) {
    const Bytes bytes = atom(GetParam().type, {kFirst, atomClaiming(12, "aaaa"_os, {text("xyz")})});
    EXPECT_EQ(errorOf<RangeError>([&] { GetParam().read(bytes, 1000); }),
              textFromCode(GetParam().type) + ".aaaa[1] at 1017: 12 bytes wanted at 17, 28 there");
}

TEST_P(Containers, ItsTypeIsPutRightWhenItIsWritten) {
    const auto container = GetParam().read(atom(GetParam().type, {kFirst}));
    container->setAtomType("wxyz"_os);
    EXPECT_EQ(container->atomData(), atom(GetParam().type, {kFirst}));
    EXPECT_EQ(container->atomType(), GetParam().type);
}

TEST_P(Containers, ItsSizeFollowsItsChildren) {
    const auto container = GetParam().read(atom(GetParam().type, {kFirst, kSecond}));
    container->removeChildrenWithType("aaaa"_os);
    EXPECT_EQ(container->atomSize(), 27U);
    EXPECT_EQ(container->atomData(), atom(GetParam().type, {kSecond}));
    EXPECT_EQ(container->atomSize(), 18U);
}

TEST_P(Containers, ItsWrittenHeaderIsJudgedOnItsOldSize) {
    const auto container = GetParam().read(atom(GetParam().type, {kFirst}));
    container->increaseSizeBy(0x100000000);
    EXPECT_EQ(container->atomData(), atomClaiming(25, GetParam().type, {kFirst}));
    EXPECT_EQ(container->atomSize(), 25U);
    EXPECT_EQ(container->atomData(), atom(GetParam().type, {kFirst}));
}

// MARK: Own headers

TEST_P(Containers, ReadsItsOwnHeaderOrDoesNot) {
    const auto container = GetParam().read(atomClaiming(99, "wxyz"_os, {kFirst, kSecond}));
    const bool isRead = GetParam().ownHeader != OwnHeader::NotRead;
    EXPECT_EQ(container->atomSize(), isRead ? 99U : 27U);
    EXPECT_EQ(container->atomType(), isRead ? "wxyz"_os : GetParam().type);
    EXPECT_EQ(container->children().size(), 2U);
}

TEST_P(Containers, OwnSizeOfZeroLeavesOutTheHeader) {
    const auto container = GetParam().read(atomClaiming(0, GetParam().type, {kFirst, kSecond}));
    EXPECT_EQ(container->atomSize(), GetParam().ownHeader == OwnHeader::NotRead ? 27U : 19U);
    EXPECT_EQ(container->children().size(), 2U);
}

TEST_P(Containers, OwnExtendedSizeIsReadWhereTheHeaderIs) {
    const Bytes bytes =
        extendedAtomClaiming(0x6162636465666768, GetParam().type, {kFirst, kSecond});
    if (GetParam().ownHeader == OwnHeader::NotRead) {
        // Its two halves are the size and the type of a child.
        EXPECT_EQ(
            errorOf<RangeError>([&] { GetParam().read(bytes); }),
            textFromCode(GetParam().type) + ".efgh at 8: 1633837924 bytes wanted at 8, 35 there");
        return;
    }
    const auto container = GetParam().read(bytes);
    EXPECT_EQ(container->atomSize(), 0x6162636465666768U);
    ASSERT_EQ(container->children().size(), 2U);
    EXPECT_EQ(container->children()[0]->offsetInFile(), 16U);
}

TEST_P(Containers, OwnExtendedSizeOfZeroIsOneOfSizeZero) {
    const Bytes bytes = extendedAtomClaiming(0, GetParam().type, {kFirst, kSecond});
    const auto container = GetParam().read(bytes);
    if (GetParam().ownHeader == OwnHeader::Read) {
        EXPECT_EQ(container->atomSize(), 19U);
        ASSERT_EQ(container->children().size(), 2U);
        EXPECT_EQ(container->children()[0]->offsetInFile(), 16U);
        return;
    }
    // Eight bytes of header alone: the extended size is taken for the header of a child without a
    // type, whose size of 0 reaches to the end.
    EXPECT_EQ(container->atomSize(), GetParam().ownHeader == OwnHeader::NotRead ? 35U : 27U);
    ASSERT_EQ(container->children().size(), 1U);
    EXPECT_EQ(container->children()[0]->atomType(), 0U);
    EXPECT_EQ(container->children()[0]->unknownData(), join({kFirst, kSecond}));
}

TEST_P(Containers, OwnHeaderCutShortIsARangeErrorWhereItIsRead) {
    const bool isRead = GetParam().ownHeader != OwnHeader::NotRead;
    for (const Bytes& bytes : {Bytes(), zeros(7), join({u32(1), zeros(11)})}) {
        if (isRead) {
            EXPECT_THROW(GetParam().read(bytes), RangeError) << bytes.size();
        } else {
            EXPECT_TRUE(GetParam().read(bytes)->children().empty()) << bytes.size();
            EXPECT_EQ(GetParam().read(bytes)->atomSize(), bytes.size());
        }
    }
}

}  // namespace
}  // namespace vexqt
