// What the small leaves that qualify a picture or a sample format have in common.
#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/headers/VexQTavcCAtom.h"
#include "vexqt/atoms/headers/VexQTclapAtom.h"
#include "vexqt/atoms/headers/VexQTclefAtom.h"
#include "vexqt/atoms/headers/VexQTcolrAtom.h"
#include "vexqt/atoms/headers/VexQTcrgnAtom.h"
#include "vexqt/atoms/headers/VexQTcslgAtom.h"
#include "vexqt/atoms/headers/VexQTendaAtom.h"
#include "vexqt/atoms/headers/VexQTenofAtom.h"
#include "vexqt/atoms/headers/VexQTfielAtom.h"
#include "vexqt/atoms/headers/VexQTfrmaAtom.h"
#include "vexqt/atoms/headers/VexQTpaspAtom.h"
#include "vexqt/atoms/headers/VexQTprofAtom.h"
#include "vexqt/atoms/headers/VexQTschmAtom.h"
#include "vexqt/atoms/structure/VexQTclipAtom.h"
#include "vexqt/atoms/structure/VexQTsinfAtom.h"
#include "vexqt/atoms/structure/VexQTstblAtom.h"
#include "vexqt/atoms/structure/VexQTtaptAtom.h"
#include "vexqt/atoms/structure/VexQTwaveAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

constexpr std::size_t kAny = 64;

struct Leaf {
    const char* what;
    const AtomClass& cls;
    OSType type;
    const char* className;
    const char* atomName;
    std::size_t least, most;        ///< The lengths it accepts; kAny where there is no upper one.
    std::size_t sizeRead, written;  ///< The size it has, and what it writes, of the longest.
};
const Leaf kLeaves[] = {
    {"clef", VexQTclefAtom::kClass, "clef"_os, "VexQTclefAtom", "Track Clean Aperture Dimensions",
     20, 20, 20, 20},
    {"prof", VexQTprofAtom::kClass, "prof"_os, "VexQTprofAtom",
     "Track Production Aperture Dimensions", 20, 20, 20, 20},
    {"enof", VexQTenofAtom::kClass, "enof"_os, "VexQTenofAtom", "Track Encoded Pixel Dimensions",
     20, 20, 20, 20},
    {"clap", VexQTclapAtom::kClass, "clap"_os, "VexQTclapAtom", "Clean Aperture", 40, 40, 40, 40},
    {"pasp", VexQTpaspAtom::kClass, "pasp"_os, "VexQTpaspAtom", "Pixel Aspect Ratio", 16, 16, 16,
     16},
    {"colr", VexQTcolrAtom::kClass, "colr"_os, "VexQTcolrAtom", "Color Parameter", 18, 19, 18, 18},
    {"fiel", VexQTfielAtom::kClass, "fiel"_os, "VexQTfielAtom", "Field Dominance", 10, kAny, 10,
     10},
    {"cslg", VexQTcslgAtom::kClass, "cslg"_os, "VexQTcslgAtom", "Composition Shift Least Greatest",
     32, 32, 32, 32},
    {"crgn", VexQTcrgnAtom::kClass, "crgn"_os, "VexQTcrgnAtom", "Clipping Region", 18, kAny, kAny,
     kAny},
    {"avcC", VexQTavcCAtom::kClass, "avcC"_os, "VexQTavcCAtom", "avcC Extension", 8, kAny, kAny,
     kAny},
    {"schm", VexQTschmAtom::kClass, "schm"_os, "VexQTschmAtom", "Schema", 20, 20, 20, 20},
    {"frma", VexQTfrmaAtom::kClass, "frma"_os, "VexQTfrmaAtom", "Format", 12, 12, 12, 12},
    {"enda", VexQTendaAtom::kClass, "enda"_os, "VexQTendaAtom", "Endianness", 10, 10, 10, 10},
};

Bytes ofLength(OSType type, std::size_t length) {
    Bytes bytes = atomClaiming(static_cast<std::uint32_t>(length), type, {zeros(kAny)});
    bytes.resize(length);
    return bytes;
}

TEST(SmallLeaves, RefuseEveryLengthButTheirOwn) {
    for (const Leaf& leaf : kLeaves) {
        for (std::size_t length = 0; length <= kAny; ++length) {
            SCOPED_TRACE(std::string(leaf.what) + " of " + std::to_string(length));
            const bool isAccepted = length >= leaf.least && length <= leaf.most;
            EXPECT_EQ(VexQTAtom::make(leaf.cls, ofLength(leaf.type, length), nullptr, 0) != nullptr,
                      isAccepted);
        }
    }
}

TEST(SmallLeaves, HaveTheirSizeAndNotThatOfWhatTheyDrop) {
    for (const Leaf& leaf : kLeaves) {
        SCOPED_TRACE(leaf.what);
        const auto atom = VexQTAtom::make(leaf.cls, ofLength(leaf.type, leaf.most), nullptr, 0);
        EXPECT_EQ(atom->atomSize(), leaf.sizeRead);
        EXPECT_EQ(atom->atomData().size(), leaf.written);
        EXPECT_EQ(atom->atomSize(), leaf.written);
    }
}

TEST(SmallLeaves, AnswerTheirNamesTypeAndPlace) {
    for (const Leaf& leaf : kLeaves) {
        SCOPED_TRACE(leaf.what);
        VexQTAtom parent;
        const auto atom = VexQTAtom::make(leaf.cls, ofLength(leaf.type, leaf.least), &parent, 321);
        EXPECT_EQ(atom->atomName(), leaf.atomName);
        EXPECT_EQ(atom->atomNibName(), leaf.className);
        EXPECT_EQ(atom->atomClass().className, leaf.className);
        EXPECT_EQ(atom->atomType(), leaf.type);
        EXPECT_EQ(atom->parent(), &parent);
        EXPECT_EQ(atom->offsetInFile(), 321U);
        EXPECT_EQ(leaf.cls.create()->atomType(), leaf.type);
    }
}

TEST(SmallLeaves, AreMadeByTheirContainers) {
    const struct {
        const AtomClass& container;
        std::vector<OSType> children;
    } cases[] = {
        {VexQTtaptAtom::kClass, {"clef"_os, "prof"_os, "enof"_os}},
        {VexQTclipAtom::kClass, {"crgn"_os}},
        {VexQTstblAtom::kClass, {"cslg"_os}},
        {VexQTsinfAtom::kClass, {"frma"_os, "schm"_os}},
        {VexQTwaveAtom::kClass, {"frma"_os, "enda"_os}},
    };
    for (const auto& [container, children] : cases) {
        for (const OSType type : children) {
            SCOPED_TRACE(textFromCode(container.type) + "." + textFromCode(type));
            const Leaf& leaf = *std::ranges::find(kLeaves, type, &Leaf::type);
            const auto holder = VexQTAtom::make(
                container, atom(container.type, {ofLength(type, leaf.least)}), nullptr, 100);
            const VexQTAtom& child = *holder->children().at(0);
            EXPECT_EQ(child.atomClass().className, leaf.className);
            EXPECT_EQ(child.parent(), holder.get());
            EXPECT_EQ(child.offsetInFile(), 108U);
        }
    }
}

}  // namespace
}  // namespace vexqt
