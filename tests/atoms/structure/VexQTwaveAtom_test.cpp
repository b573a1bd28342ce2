#include "vexqt/atoms/structure/VexQTwaveAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "testing/reading.h"

namespace vexqt {
namespace {

using namespace testing;

TEST(WaveAtom, KeepsItsTerminator) {
    const Bytes bytes = atom("wave"_os, {atom("frma"_os, {text("mp4a")}), atom(0)});
    const auto wave = VexQTwaveAtom::initWithData(bytes, nullptr, 0);
    ASSERT_EQ(wave->children().size(), 2U);
    EXPECT_EQ(wave->children()[1]->atomType(), 0U);
    EXPECT_EQ(wave->children()[1]->atomSize(), 8U);
    EXPECT_EQ(wave->atomData(), bytes);
    EXPECT_EQ(wave->atomSize(), 28U);
}

TEST(WaveAtom, KeepsATerminatorThatIsItsOnlyChild) {
    const Bytes bytes = atom("wave"_os, {atom(0)});
    const auto wave = VexQTwaveAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(wave->children().size(), 1U);
    EXPECT_EQ(wave->atomData(), bytes);
}

TEST(WaveAtom, ATerminatorOfSizeZeroBehindOthersReachesPastTheEnd) {
    const Bytes bytes = atom("wave"_os, {atom("frma"_os, {text("mp4a")}), zeros(8)});
    EXPECT_THROW(VexQTwaveAtom::initWithData(bytes, nullptr, 0), RangeError);
    const auto [wave, problems] = readTolerantly<VexQTwaveAtom>(bytes);
    EXPECT_EQ(problems.size(), 1U);
    EXPECT_EQ(wave->children().size(), 2U);
}

TEST(WaveAtom, AnExtendedHeaderAloneIsCutShort) {
    // Exactly eight bytes are left, and the size field says that the size follows.
    const Bytes bytes = atom("wave"_os, {u32(1), text("free")});
    EXPECT_EQ(errorOf<RangeError>([&] { VexQTwaveAtom::initWithData(bytes, nullptr, 0); }),
              "wave at 0: 8 bytes wanted at 16, 16 there");
}

}  // namespace
}  // namespace vexqt
