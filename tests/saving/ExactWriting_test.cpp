// What the classes' own way of writing changes, atom by atom.
#include "vexqt/saving/ExactWriting.h"

#include <gtest/gtest.h>

#include <set>

#include "saving/movie_of_all_classes.h"
#include "saving/saves.h"
#include "testing/reading.h"
#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"

namespace vexqt {
namespace {

using namespace testing;

/// One line for each finding: how bad it is, where, and what.
std::string findings(VexQTAtom& root) {
    std::string lines;
    for (const Finding& finding : exactWritingFindings(root, "root"))
        lines += std::string(textOf(finding.severity)) + " " + finding.path + " " +
                 std::string(finding.id) + ": " + finding.message + "\n";
    return lines;
}
std::string findings(const Bytes& movie) {
    const auto root = readTolerantly<VexQTmoovAtom>(movie).atom;
    return findings(*root);
}
const Bytes kWide = atom("wide"_os, {u32(1)});

/// The classes that write what they read in another way, and no others.
TEST(ExactWriting, ChangesWhatTheClassesThemselvesHaveWrittenInFewPlaces) {
    const auto asset = VexQTAsset::initWithData(MovieOfAllClasses().bytes(), {.tolerant = true});
    std::set<std::string> changed;
    for (const Finding& finding : exactWritingFindings(*asset->moovAtom(), "moov")) {
        EXPECT_EQ(finding.severity, Severity::Changes) << finding.message;
        changed.insert(finding.path.substr(finding.path.rfind('.') + 1));
    }
    EXPECT_EQ(changed, (std::set<std::string>{"trak", "crgn", "smhd", "url "}));
}

TEST(ExactWriting, TellsOfAnInsertedAtom) {
    const auto movie = VexQTmoovAtom::initWithData(atom("moov"_os, {kWide}), nullptr, 0);
    movie->addChild(std::make_unique<VexQTUserDataTextItem>());
    EXPECT_EQ(findings(*movie), "note root.???? atom-changes: was inserted\n");
}

TEST(ExactWriting, TellsOfAnExtendedHeaderThatBecomesShorter) {
    EXPECT_EQ(findings(atom("moov"_os, {extendedAtomClaiming(28, "trak"_os, {kWide})})),
              "changes root.trak atom-changes: its header of 16 bytes becomes one of 8\n");
}

/// A description of subtitles is written as the atom in it and nothing else.
TEST(ExactWriting, DestroysADescriptionOfSubtitlesWithoutAnAtomInIt) {
    const auto destroys = [](const Bytes& entry, bool isEmptied) {
        const Bytes handler =
            atom("hdlr"_os, {u32(0), text("mhlr"), text("sbtl"), zeros(12), u8(0)});
        const Bytes second = atom("abcd"_os, {zeros(16)});
        const Bytes table = atom("stbl"_os, {atom("stsd"_os, {u32(0), u32(2), entry, second})});
        const auto movie = readTolerantly<VexQTmoovAtom>(atom(
            "moov"_os, {atom("trak"_os, {atom("mdia"_os, {handler, atom("minf"_os, {table})})})}));
        VexQTAtom* above = movie.atom.get();
        for (const OSType type : {"trak"_os, "mdia"_os, "minf"_os, "stbl"_os, "stsd"_os})
            above = above->childWithType(type);
        EXPECT_EQ(above->children().size(), 2U);
        if (isEmptied) above->children()[0]->children().clear();
        const std::string found = findings(*movie.atom);
        return found.find(
                   "destroys root.trak.mdia.minf.stbl.stsd.sbtl atom-dropped: is not "
                   "written at all\n") != std::string::npos;
    };
    const Bytes whole = atom("tx3g"_os, {zeros(20)});
    EXPECT_FALSE(destroys(whole, false));
    EXPECT_TRUE(destroys(whole, true));
    EXPECT_TRUE(destroys(atom("tx3g"_os), false)) << "a last header without contents is not read";
}

TEST(ExactWriting, TellsOfASizeFieldOfOneThatNoExtendedSizeFollows) {
    const auto enda = VexQTendaAtom::initWithData(atomClaiming(1, "enda"_os, {u16(1)}), nullptr, 0);
    EXPECT_EQ(findings(*enda),
              "changes root size-disagrees: its size field says 1, it has 10 bytes\n");
}

TEST(ExactWriting, SaysNothingOfFewerBytesThanAHeaderHas) {
    for (std::size_t length = 1; length < 8; ++length) EXPECT_EQ(findings(Bytes(length)), "");
}

}  // namespace
}  // namespace vexqt
