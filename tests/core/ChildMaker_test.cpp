#include "vexqt/core/ChildMaker.h"

#include <gtest/gtest.h>

#include "sample_classes.h"
#include "testing/bytes.h"
#include "testing/reading.h"

namespace vexqt {

static void PrintTo(const Problem& problem, std::ostream* out) {
    *out << problem.path << " at " << problem.offsetInFile << ": " << problem.message;
}

namespace {

using namespace testing;

Bytes leaf(std::uint32_t number) { return atom("leaf"_os, {u32(number)}); }

std::string strictError(const Bytes& bytes, std::uint64_t offsetInFile = 0) {
    return errorOf<Error>([&] { Nest::initWithData(bytes, nullptr, offsetInFile); });
}

// MARK: Strict reading

TEST(StrictReading, AChildPastTheEndIsARangeErrorWithItsPathAndPlace) {
    const Bytes bytes = atom("nest"_os, {
                                            leaf(1),
                                            atom("nest"_os, {leaf(2)}),
                                            atom("nest"_os,
                                                 {
                                                     leaf(3),
                                                     atomClaiming(13, "leaf"_os, {u32(4)}),
                                                 }),
                                        });
    EXPECT_THROW(Nest::initWithData(bytes, nullptr, 0), RangeError);
    EXPECT_EQ(strictError(bytes, 1000),
              "nest.nest[1].leaf[1] at 1060: 13 bytes wanted at 20, 32 there");
}

TEST(StrictReading, AChildThatIsDeclinedIsAnInsertionError) {
    const Bytes bytes = atom("nest"_os, {atom("free"_os, {u8(0)}), atom("leaf"_os, {zeros(5)})});
    EXPECT_THROW(Nest::initWithData(bytes, nullptr, 0), InsertionError);
    EXPECT_EQ(strictError(bytes, 1000), "nest.leaf at 1017: Leaf declines 13 bytes");
}

TEST(StrictReading, AChildThatRaisesEndsTheReading) {
    const Bytes bytes = atom("nest"_os, {leaf(1), leaf(2), atom("hung"_os, {u32(1)})});
    EXPECT_EQ(strictError(bytes), "nest.hung at 32: 8 bytes wanted at 8, 12 there");
}

TEST(StrictReading, AnExtendedSizeCutShortIsARangeError) {
    const Bytes bytes = atom("nest"_os, {leaf(1), u32(1), text("free"), zeros(7)});
    EXPECT_EQ(strictError(bytes, 1000), "nest at 1000: 8 bytes wanted at 28, 35 there");
}

TEST(StrictReading, AGenericChildSmallerThanItsHeaderIsARangeError) {
    const Bytes bytes = atom("nest"_os, {atomClaiming(7, "free"_os), zeros(20)});
    EXPECT_EQ(strictError(bytes), "nest.free at 8: 4 bytes wanted at 4, 7 there");
}

TEST(StrictReading, AChildSmallerThanAHeaderIsDeclinedByAClassThatWantsMore) {
    const Bytes bytes = atom("nest"_os, {atomClaiming(7, "leaf"_os), zeros(20)});
    EXPECT_EQ(strictError(bytes), "nest.leaf at 8: Leaf declines 7 bytes");
}

TEST(StrictReading, AWalkThatDoesNotMoveIsARangeError) {
    const Bytes bytes = atom("stuk"_os, {extendedAtomClaiming(0, "free"_os, {zeros(8)})});
    EXPECT_EQ(errorOf<RangeError>([&] { Stuck::initWithData(bytes, nullptr, 0); }),
              "stuk.free at 8: a size of 0 does not move forward");
}

TEST(StrictReading, ASizeThatWouldWrapIsARangeError) {
    const Bytes bytes =
        atom("nest"_os, {extendedAtomClaiming(0xFFFFFFFFFFFFFFFF, "free"_os, {zeros(8)})});
    EXPECT_EQ(strictError(bytes),
              "nest.free at 8: 18446744073709551615 bytes wanted at 8, 32 there");
}

TEST(StrictReading, APathNamesCodesThatAreNotPrintable) {
    const Bytes bytes =
        atom("nest"_os, {atom(0xA96E616D, {u8(0)}), atomClaiming(100, 0xA96E616D, {zeros(8)})});
    EXPECT_EQ(strictError(bytes), "nest.0xA96E616D[1] at 17: 100 bytes wanted at 17, 33 there");
}

// MARK: Tolerant reading

TEST(TolerantReading, OfSoundBytesMeetsNoProblem) {
    const Bytes bytes = atom("nest"_os, {leaf(1), atom("nest"_os, {leaf(2)}), leaf(3)});
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    EXPECT_EQ(problems, std::vector<Problem>());
    EXPECT_EQ(root->valueForKeyPath("nest.leaf.number"), Value(2));
    EXPECT_EQ(root->atomData(), bytes);
    EXPECT_EQ(root->children()[0]->declinedClass(), std::nullopt);
}

TEST(TolerantReading, KeepsADeclinedChildAsAGenericAtom) {
    const Bytes bytes = atom("nest"_os, {leaf(1), atom("leaf"_os, {text("other")}), leaf(2)});
    const auto [root, problems] = readTolerantly<Nest>(bytes, 1000);
    EXPECT_EQ(problems,
              (std::vector<Problem>{{"nest.leaf[1]", 1020,
                                     "Atom 'leaf' declined by Leaf (13 bytes) - kept as raw "
                                     "data"}}));
    ASSERT_EQ(root->children().size(), 3U);
    const VexQTAtom& kept = *root->children()[1];
    EXPECT_EQ(&kept.atomClass(), &VexQTAtom::kClass);
    EXPECT_EQ(kept.atomType(), "leaf"_os);
    EXPECT_EQ(kept.atomSize(), 13U);
    EXPECT_EQ(kept.parent(), root.get());
    EXPECT_EQ(kept.offsetInFile(), 1020U);
    EXPECT_EQ(kept.unknownData(), text("other"));
    EXPECT_EQ(kept.declinedClass(), "Leaf");
    EXPECT_EQ(kept.declinedReason(), "13 bytes");
    EXPECT_EQ(kept.valueForKey("declinedClass"), Value("Leaf"));
    EXPECT_EQ(kept.extent().start, 1020U);
    EXPECT_EQ(kept.extent().length, 13U);
    EXPECT_EQ(root->children()[2]->valueForKey("number"), Value(2));
    EXPECT_EQ(root->atomData(), bytes);
}

TEST(TolerantReading, KeepsAChildThatRaisesAsAGenericAtom) {
    const Bytes bytes = atom("nest"_os, {atom("hung"_os, {u32(1)}), leaf(2)});
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    EXPECT_EQ(problems,
              (std::vector<Problem>{{"nest.hung", 8,
                                     "Atom 'hung' declined by Hungry (8 bytes wanted at 8, 12 "
                                     "there) - kept as raw data"}}));
    ASSERT_EQ(root->children().size(), 2U);
    EXPECT_EQ(root->children()[0]->declinedReason(), "8 bytes wanted at 8, 12 there");
    EXPECT_EQ(root->atomData(), bytes);
}

TEST(TolerantReading, KeepsAChildPastTheEndUpToTheEnd) {
    const Bytes bytes = atom("nest"_os, {leaf(1), atomClaiming(100, "leaf"_os, {u32(2)})});
    const auto [root, problems] = readTolerantly<Nest>(bytes, 1000);
    EXPECT_EQ(problems, (std::vector<Problem>{{"nest.leaf[1]", 1020,
                                               "declares 100 bytes, 12 there - kept to the end of "
                                               "what holds it"}}));
    EXPECT_EQ(root->children()[1]->valueForKey("number"), Value(2));
    EXPECT_EQ(root->children()[1]->extent().length, 12U);
}

TEST(TolerantReading, ReadsTheChildrenOfAContainerPastTheEnd) {
    const Bytes bytes =
        atom("nest"_os, {atomClaiming(100, "nest"_os, {leaf(1), atomClaiming(12, "leaf"_os)})});
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    EXPECT_EQ(problems, (std::vector<Problem>{{"nest.nest", 8,
                                               "declares 100 bytes, 28 there - kept to the end of "
                                               "what holds it"}}));
    EXPECT_EQ(root->valueForKeyPath("nest.leaf.number"), Value(1));
    EXPECT_EQ(root->children()[0]->atomSize(), 100U);
}

TEST(TolerantReading, KeepsAGenericChildPastTheEnd) {
    const Bytes bytes = atom("nest"_os, {atomClaiming(0xFFFFFFFF, "free"_os, {text("xyz")})});
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].message,
              "declares 4294967295 bytes, 11 there - kept to the end of what holds it");
    EXPECT_EQ(root->children()[0]->unknownData(), text("xyz"));
    EXPECT_EQ(root->children()[0]->declinedClass(), std::nullopt);
    EXPECT_EQ(root->atomData(), atom("nest"_os, {atom("free"_os, {text("xyz")})}));
}

TEST(TolerantReading, ListsBothThatAChildIsCutAndThatItIsDeclined) {
    const Bytes bytes = atom("nest"_os, {atomClaiming(100, "leaf"_os, {zeros(3)})});
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    EXPECT_EQ(
        problems,
        (std::vector<Problem>{
            {"nest.leaf", 8, "declares 100 bytes, 11 there - kept to the end of what holds it"},
            {"nest.leaf", 8, "Atom 'leaf' declined by Leaf (11 bytes) - kept as raw data"}}));
    EXPECT_EQ(root->atomData(), bytes);
}

TEST(TolerantReading, KeepsEverythingFromAChildSmallerThanAHeaderOn) {
    for (std::uint32_t size = 2; size < 8; ++size) {
        const Bytes bytes = atom("nest"_os, {leaf(1), atomClaiming(size, "leaf"_os, {leaf(2)})});
        const auto [root, problems] = readTolerantly<Nest>(bytes);
        ASSERT_EQ(problems.size(), 1U);
        EXPECT_EQ(problems[0].path, "nest.leaf[1]");
        EXPECT_EQ(problems[0].offsetInFile, 20U);
        EXPECT_EQ(problems[0].message,
                  std::to_string(size) +
                      " bytes are no whole header - kept as raw data to the end of what holds it");
        ASSERT_EQ(root->children().size(), 2U);
        EXPECT_EQ(root->children()[1]->declinedClass(), "Leaf");
        EXPECT_EQ(root->children()[1]->declinedReason(), "no whole header");
        EXPECT_EQ(root->atomData(), bytes);
    }
}

TEST(TolerantReading, KeepsEverythingFromAnExtendedSizeBelow16On) {
    const Bytes bytes = atom("nest"_os, {extendedAtomClaiming(15, "free"_os, {leaf(2)}), leaf(3)});
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].message,
              "15 bytes are no whole header - kept as raw data to the end of what holds it");
    EXPECT_EQ(root->children().size(), 1U);
    EXPECT_EQ(root->atomData(), bytes);
}

TEST(TolerantReading, KeepsAChildWhoseExtendedSizeIsCutShort) {
    const Bytes bytes = atom("nest"_os, {leaf(1), u32(1), text("free"), text("seven b")});
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].message,
              "15 bytes are no whole header - kept as raw data to the end of what holds it");
    ASSERT_EQ(root->children().size(), 2U);
    EXPECT_EQ(root->children()[1]->unknownData(), text("seven b"));
    EXPECT_EQ(root->atomData(), bytes);
}

TEST(TolerantReading, WritesAnyDeclinedHeaderBackAsItWas) {
    const Bytes bytes = atom("nest"_os, {
                                            extendedAtomClaiming(21, "leaf"_os, {zeros(5)}),
                                            atomClaiming(0, "leaf"_os, {zeros(9)}),
                                        });
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    ASSERT_EQ(root->children().size(), 2U);
    EXPECT_EQ(root->children()[0]->extent().headerLength, 16U);
    EXPECT_EQ(root->children()[0]->declinedReason(), "21 bytes");
    EXPECT_EQ(root->children()[1]->declinedReason(), "17 bytes");
    EXPECT_EQ(root->atomData(), bytes);
}

TEST(TolerantReading, TheTypeOfADeclinedAtomCanBeChangedAndNothingElse) {
    const Bytes bytes = atom("nest"_os, {atom("leaf"_os, {text("other")})});
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    VexQTAtom& kept = *root->children()[0];
    kept.setAtomType("free"_os);
    kept.setVersion(9);
    kept.increaseSizeBy(1000);
    EXPECT_EQ(root->atomData(), atom("nest"_os, {atom("free"_os, {text("other")})}));
}

TEST(TolerantReading, DropsWhatTheTableDrops) {
    const Bytes bytes = atom("nest"_os, {leaf(1), atom("drop"_os, {zeros(5)}), leaf(2)});
    const auto [root, problems] = readTolerantly<Nest>(bytes);
    EXPECT_TRUE(problems.empty());
    EXPECT_EQ(root->atomData(), atom("nest"_os, {leaf(1), leaf(2)}));
}

TEST(TolerantReading, KeepsWhatIsToBeDroppedWhereItsSizeIsWrong) {
    const Bytes pastTheEnd = atom("nest"_os, {atomClaiming(100, "drop"_os, {leaf(2)})});
    const auto cut = readTolerantly<Nest>(pastTheEnd);
    EXPECT_EQ(cut.problems.size(), 1U);
    ASSERT_EQ(cut.atom->children().size(), 1U);
    EXPECT_EQ(cut.atom->children()[0]->unknownData(), leaf(2));

    const Bytes tooSmall = atom("nest"_os, {atomClaiming(4, "drop"_os, {leaf(2)})});
    const auto small = readTolerantly<Nest>(tooSmall);
    EXPECT_EQ(small.problems.size(), 1U);
    EXPECT_EQ(small.atom->atomData(), tooSmall);
}

TEST(TolerantReading, OfAWalkThatDoesNotMoveKeepsTheRest) {
    const Bytes bytes = atom("stuk"_os, {extendedAtomClaiming(0, "free"_os, {zeros(8)})});
    const auto [root, problems] = readTolerantly<Stuck>(bytes);
    EXPECT_EQ(problems.size(), 1U);
    EXPECT_EQ(root->atomData(), bytes);
}

TEST(TolerantReading, OfEveryPrefixOfAMovieEndsWithATree) {
    const Bytes bytes = atom("nest"_os, {
                                            leaf(1),
                                            atom("nest"_os, {leaf(2), atom("hung"_os, {u64(3)})}),
                                            extendedAtomClaiming(20, "free"_os, {u32(4)}),
                                            atom("drop"_os, {u32(5)}),
                                            leaf(6),
                                        });
    for (std::size_t length = 8; length <= bytes.size(); ++length) {
        const Bytes prefix(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
        const auto [root, problems] = readTolerantly<Nest>(prefix);
        ASSERT_NE(root, nullptr);
        EXPECT_FALSE(root->description().empty());
        EXPECT_LE(root->atomData().size(), length);
    }
}

}  // namespace
}  // namespace vexqt
