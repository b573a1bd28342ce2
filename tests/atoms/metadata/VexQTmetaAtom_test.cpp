#include "vexqt/atoms/metadata/VexQTmetaAtom.h"

#include <gtest/gtest.h>

#include <map>

#include "testing/bytes.h"
#include "testing/reading.h"
#include "vexqt/atoms/headers/VexQThdlrAtom.h"
#include "vexqt/atoms/metadata/VexQTdataAtom.h"
#include "vexqt/atoms/metadata/VexQTilstAtom.h"
#include "vexqt/atoms/metadata/VexQTkeysAtom.h"
#include "vexqt/atoms/metadata/VexQTudtaAtom.h"
#include "vexqt/atoms/structure/VexQTmoofAtom.h"
#include "vexqt/atoms/structure/VexQTmoovAtom.h"
#include "vexqt/atoms/structure/VexQTtrakAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes handler() { return atom("hdlr"_os, {u32(0), u32(0), text("mdta"), zeros(12)}); }
Bytes versionAndFlags() { return {0x07, 0x08, 0x09, 0x0A}; }

/// An atom for others to have as their parent.
VexQTAtom& parentOfType(OSType type) {
    static std::map<OSType, VexQTAtom> parents;
    return parents.try_emplace(type, type, 8, nullptr, 0).first->second;
}
TolerantReading<VexQTmetaAtom> readTolerantlyBelow(OSType parentType, ByteView bytes) {
    return readTolerantly<VexQTmetaAtom>(bytes, 4096, &parentOfType(parentType));
}
std::unique_ptr<VexQTmetaAtom> readBelow(OSType parentType, ByteView bytes) {
    return VexQTmetaAtom::initWithData(bytes, &parentOfType(parentType), 4096);
}

template <class T>
const T* childAs(const VexQTAtom& holder, std::size_t index) {
    return dynamic_cast<const T*>(holder.children().at(index).get());
}

TEST(MetaAtom, IsNamedMetadataAndHasNoView) {
    const VexQTmetaAtom metadata;
    EXPECT_EQ(metadata.atomDescription(), "Metadata ('meta')");
    EXPECT_EQ(metadata.atomNibName(), std::nullopt);
    EXPECT_TRUE(metadata.properties().empty());
    EXPECT_EQ(VexQTmetaAtom().atomData(), atom("meta"_os));
}

TEST(MetaAtom, ChildrenFollowTheHeaderAndHaveTheirClasses) {
    const Bytes keys = atom("keys"_os, {u32(0), u32(0)});
    const Bytes items = atom("ilst"_os);
    const Bytes space = atom("free"_os, {u8(1)});
    const Bytes bytes = atom("meta"_os, {handler(), keys, items, space});
    const auto metadata = readBelow("moov"_os, bytes);
    ASSERT_EQ(metadata->children().size(), 4U);
    EXPECT_NE(childAs<VexQThdlrAtom>(*metadata, 0), nullptr);
    EXPECT_NE(childAs<VexQTkeysAtom>(*metadata, 1), nullptr);
    EXPECT_NE(childAs<VexQTilstAtom>(*metadata, 2), nullptr);
    EXPECT_EQ(metadata->children()[3]->atomName(), "Generic Atom");
    EXPECT_EQ(metadata->children()[0]->offsetInFile(), 4096U + 8U);
    EXPECT_EQ(metadata->children()[1]->offsetInFile(), 4096U + 8U + 32U);
    EXPECT_EQ(metadata->children()[0]->parent(), metadata.get());
    EXPECT_EQ(metadata->atomSize(), bytes.size());
    EXPECT_EQ(metadata->version(), 1);
    EXPECT_EQ(metadata->atomData(), bytes);
}

TEST(MetaAtom, BelowUserDataItIsAFullAtom) {
    const Bytes bytes = atom("meta"_os, {versionAndFlags(), handler()});
    const auto metadata = readBelow("udta"_os, bytes);
    EXPECT_EQ(metadata->version(), 0x07);
    EXPECT_EQ(metadata->flags0(), 0x08);
    EXPECT_EQ(metadata->flags1(), 0x09);
    EXPECT_EQ(metadata->flags2(), 0x0A);
    ASSERT_EQ(metadata->children().size(), 1U);
    EXPECT_EQ(metadata->children()[0]->offsetInFile(), 4096U + 12U);
    EXPECT_EQ(metadata->atomData(), bytes);
    EXPECT_EQ(metadata->atomSize(), 44U);
}

TEST(MetaAtom, TheSameBytesBelowAValueAreReadAsChildrenAtOnce) {
    // A version word of 16 is the size of a child whose code is the next child's size.
    const Bytes bytes = atom("meta"_os, {u32(16), atomClaiming(12, "free"_os, {u32(0)})});
    const auto below = readBelow("udta"_os, bytes);
    EXPECT_EQ(below->flags2(), 16);
    EXPECT_EQ(below->children()[0]->atomTypeString(), "free");
    EXPECT_EQ(below->children()[0]->offsetInFile(), 4096U + 12U);

    const Bytes data = atom("data"_os, {u32(28), u32(0), bytes});
    const auto value = VexQTdataAtom::initWithData(data, nullptr, 4096 - 16);
    const VexQTAtom& metadata = *value->children().at(0);
    EXPECT_EQ(metadata.flags2(), 0);
    EXPECT_EQ(metadata.children().at(0)->atomType(), 12U);
    EXPECT_EQ(metadata.children().at(0)->offsetInFile(), 4096U + 8U);
}

TEST(MetaAtom, TooShortForItsVersionItIsReadWithoutAndWrittenWithOne) {
    const auto metadata = readBelow("udta"_os, atom("meta"_os, {versionAndFlags()}));
    EXPECT_EQ(metadata->version(), 1);
    EXPECT_EQ(metadata->atomSize(), 12U);
    EXPECT_EQ(metadata->atomData(), atom("meta"_os, {Bytes{1, 0, 0, 0}}));

    // One byte more is enough to have one.
    const auto longer = readBelow("udta"_os, atom("meta"_os, {versionAndFlags(), u8(0)}));
    EXPECT_EQ(longer->version(), 0x07);
    EXPECT_EQ(longer->atomData(), atom("meta"_os, {versionAndFlags()}));
}

TEST(MetaAtom, AnyOtherParentMeansNoVersion) {
    for (const OSType type : {"moov"_os, "moof"_os, "trak"_os, "data"_os, "xxxx"_os}) {
        SCOPED_TRACE(textFromCode(type));
        const Bytes bytes = atom("meta"_os, {handler()});
        const auto metadata = readBelow(type, bytes);
        ASSERT_EQ(metadata->children().size(), 1U);
        metadata->setVersion(9);
        EXPECT_EQ(metadata->atomData(), bytes);
    }
    const auto alone = VexQTmetaAtom::initWithData(atom("meta"_os, {handler()}), nullptr, 0);
    EXPECT_EQ(alone->children().size(), 1U);
}

TEST(MetaAtom, TheParentAtTheTimeOfWritingDecides) {
    const auto metadata = readBelow("moov"_os, atom("meta"_os, {handler()}));
    metadata->setParent(&parentOfType("udta"_os));
    metadata->setVersion(2);
    EXPECT_EQ(metadata->atomData(), atom("meta"_os, {Bytes{2, 0, 0, 0}, handler()}));
}

TEST(MetaAtom, IsFoundInMoviesSegmentsTracksAndUserData) {
    const Bytes plain = atom("meta"_os, {handler()});
    const Bytes full = atom("meta"_os, {versionAndFlags(), handler()});
    const auto movie = VexQTmoovAtom::initWithData(atom("moov"_os, {plain}), nullptr, 0);
    const auto segment = VexQTmoofAtom::initWithData(atom("moof"_os, {plain}), nullptr, 0);
    const auto track = VexQTtrakAtom::initWithData(atom("trak"_os, {plain}), nullptr, 0);
    const auto userData = VexQTudtaAtom::initWithData(atom("udta"_os, {full}), nullptr, 0);
    EXPECT_NE(childAs<VexQTmetaAtom>(*movie, 0), nullptr);
    EXPECT_NE(childAs<VexQTmetaAtom>(*segment, 0), nullptr);
    EXPECT_NE(childAs<VexQTmetaAtom>(*track, 0), nullptr);
    EXPECT_NE(childAs<VexQTmetaAtom>(*userData, 0), nullptr);
    EXPECT_EQ(movie->atomData(), atom("moov"_os, {plain}));
    EXPECT_EQ(userData->atomData(), atom("udta"_os, {full}));
}

TEST(MetaAtom, KeepsTheCodeItWasReadWith) {
    const Bytes bytes = atom("mtxx"_os, {handler()});
    const auto metadata = readBelow("moov"_os, bytes);
    EXPECT_EQ(metadata->atomTypeString(), "mtxx");
    EXPECT_EQ(metadata->atomData(), bytes);
}

TEST(MetaAtom, SizesOfEveryFormAreReadAndRecomputed) {
    struct Form {
        const char* what;
        Bytes bytes;
        std::uint64_t size;
        std::size_t children;
    };
    const Form cases[] = {
        {"to the end", atomClaiming(0, "meta"_os, {handler()}), 32, 1},
        {"wrong", atomClaiming(999, "meta"_os, {handler()}), 999, 1},
        {"extended", extendedAtomClaiming(48, "meta"_os, {handler()}), 48, 1},
        {"extended to the end", extendedAtomClaiming(0, "meta"_os, {handler()}), 40, 1},
    };
    for (const Form& tested : cases) {
        SCOPED_TRACE(tested.what);
        const auto metadata = readBelow("moov"_os, tested.bytes);
        EXPECT_EQ(metadata->atomSize(), tested.size);
        EXPECT_EQ(metadata->children().size(), tested.children);
        EXPECT_EQ(metadata->atomData(), atom("meta"_os, {handler()}));
        EXPECT_EQ(metadata->atomSize(), 40U);
    }
}

TEST(MetaAtom, AnExtendedHeaderBelowUserDataHasItsVersionBehindIt) {
    const Bytes bytes = extendedAtomClaiming(52, "meta"_os, {versionAndFlags(), handler()});
    const auto metadata = readBelow("udta"_os, bytes);
    EXPECT_EQ(metadata->version(), 0x07);
    EXPECT_EQ(metadata->children().at(0)->offsetInFile(), 4096U + 20U);
    EXPECT_EQ(metadata->atomData(), atom("meta"_os, {versionAndFlags(), handler()}));
}

TEST(MetaAtom, AChildOfEightBytesAtTheEndIsDropped) {
    const auto metadata = readBelow("moov"_os, atom("meta"_os, {handler(), atom("free"_os)}));
    EXPECT_EQ(metadata->children().size(), 1U);
    EXPECT_EQ(metadata->atomData(), atom("meta"_os, {handler()}));
}

TEST(MetaAtom, BytesThatAreNoHeaderAreDropped) {
    for (std::size_t count = 1; count < 8; ++count) {
        SCOPED_TRACE(count);
        const auto plain = readBelow("moov"_os, atom("meta"_os, {handler(), Bytes(count, 0xEE)}));
        EXPECT_EQ(plain->atomData(), atom("meta"_os, {handler()}));
        const auto full = readBelow(
            "udta"_os, atom("meta"_os, {versionAndFlags(), handler(), Bytes(count, 0xEE)}));
        EXPECT_EQ(full->atomData(), atom("meta"_os, {versionAndFlags(), handler()}));
    }
}

TEST(MetaAtom, AChildOfSizeZeroReachesAsFarAsTheWholeAtomIsLong) {
    const Bytes payload = {1, 2, 3, 4};
    const auto metadata =
        readBelow("moov"_os, atom("meta"_os, {atomClaiming(0, "free"_os, {payload})}));
    EXPECT_EQ(metadata->children().at(0)->atomSize(), 4U);
    EXPECT_EQ(metadata->children().at(0)->unknownData(), payload);
    EXPECT_THROW(
        readBelow("moov"_os, atom("meta"_os, {handler(), atomClaiming(0, "free"_os, {payload})})),
        RangeError);
}

TEST(MetaAtom, AChildMayHaveAnExtendedSize) {
    const auto metadata = readBelow(
        "moov"_os,
        atom("meta"_os, {extendedAtomClaiming(17, "free"_os, {u8(5)}), atom("skip"_os, {u8(6)})}));
    ASSERT_EQ(metadata->children().size(), 2U);
    EXPECT_EQ(metadata->children()[0]->unknownData(), Bytes{5});
    EXPECT_EQ(metadata->children()[1]->offsetInFile(), 4096U + 8U + 17U);
}

TEST(MetaAtom, BytesWithoutAHeaderAreARangeError) {
    EXPECT_THROW(readBelow("moov"_os, Bytes{0, 0, 0, 7, 'm', 'e', 't'}), RangeError);
    EXPECT_THROW(readBelow("moov"_os, join({u32(1), text("meta"), u32(0)})), RangeError);
}

TEST(MetaAtom, AHandlerThatIsTooShortEndsTheReading) {
    EXPECT_THROW(readBelow("moov"_os, atom("meta"_os, {atom("hdlr"_os, {zeros(20)})})),
                 InsertionError);
}

// MARK: The other form

struct OtherForm {
    const char* what;
    OSType parent;
    Bytes bytes;
    std::vector<std::string> children;
    bool isListed;
};

TEST(MetaAtom, ATolerantReadingTakesTheFormItFindsAndWritesItBack) {
    const Bytes box = atom("free"_os, {u8(1)});
    const OtherForm cases[] = {
        {"full below a movie", "moov"_os, atom("meta"_os, {u32(0), handler()}), {"hdlr"}, true},
        {"full below a track", "trak"_os, atom("meta"_os, {u32(0), handler()}), {"hdlr"}, true},
        {"at once below a movie", "moov"_os, atom("meta"_os, {handler()}), {"hdlr"}, false},
        {"full below user data", "udta"_os, atom("meta"_os, {u32(0), handler()}), {"hdlr"}, false},
        {"at once below user data", "udta"_os, atom("meta"_os, {handler()}), {"hdlr"}, true},
        {"full, without a handler", "moov"_os, atom("meta"_os, {u32(0), box}), {"free"}, true},
        {"at once, without a handler", "udta"_os, atom("meta"_os, {box}), {"free"}, true},
        {"nothing but a version", "moov"_os, atom("meta"_os), {}, false},
        {"extended",
         "moov"_os,
         extendedAtomClaiming(52, "meta"_os, {u32(0), handler()}),
         {"hdlr"},
         true},
    };
    for (const OtherForm& tested : cases) {
        SCOPED_TRACE(tested.what);
        const auto [metadata, problems] = readTolerantlyBelow(tested.parent, tested.bytes);
        std::vector<std::string> children;
        for (const auto& child : metadata->children()) children.push_back(child->atomTypeString());
        EXPECT_EQ(children, tested.children);
        EXPECT_EQ(problems.size(), tested.isListed ? 1U : 0U);
        const Bytes again = metadata->atomData();
        const std::size_t header = ByteReader(tested.bytes).u32() == 1 ? 16 : 8;
        EXPECT_EQ(
            Bytes(again.begin() + 8, again.end()),
            Bytes(tested.bytes.begin() + static_cast<std::ptrdiff_t>(header), tested.bytes.end()));
    }
}

TEST(MetaAtom, TheOtherFormIsListedWithItsPlace) {
    EXPECT_EQ(readTolerantlyBelow("moov"_os, atom("meta"_os, {u32(0), handler()})).problems,
              (std::vector<Problem>{
                  {"meta", 4096,
                   "has a version and flags, which metadata has in user data alone - read with "
                   "them"},
              }));
    EXPECT_EQ(readTolerantlyBelow("udta"_os, atom("meta"_os, {handler()})).problems,
              (std::vector<Problem>{
                  {"meta", 4096,
                   "has no version and flags, which metadata has in user data - read without "
                   "them"},
              }));
}

TEST(MetaAtom, AHandlerInTheFormOfTheParentSettlesIt) {
    // Below user data, with a version whose bytes are the size of a plausible child.
    const Bytes bytes = atom("meta"_os, {u32(20), handler()});
    const auto [metadata, problems] = readTolerantlyBelow("udta"_os, bytes);
    EXPECT_EQ(problems, std::vector<Problem>());
    EXPECT_EQ(metadata->flags2(), 20);
    EXPECT_EQ(metadata->atomData(), bytes);
}

TEST(MetaAtom, AStrictReadingGoesByTheParentAlone) {
    // The version is taken for a child's size, 0, and the handler's size for its code.
    EXPECT_EQ(
        readBelow("moov"_os, atom("meta"_os, {u32(0), handler()}))->children().at(0)->atomType(),
        32U);
    // The handler's size is taken for the version, and its code for a child's size.
    EXPECT_THROW(readBelow("udta"_os, atom("meta"_os, {handler()})), RangeError);
}

}  // namespace
}  // namespace vexqt
