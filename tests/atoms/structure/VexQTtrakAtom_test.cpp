#include "vexqt/atoms/structure/VexQTtrakAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "testing/reading.h"
#include "vexqt/atoms/metadata/VexQTudtaAtom.h"

namespace vexqt {
namespace {

using namespace testing;

const Bytes kHeader = atom("tkhd"_os, {zeros(4), u32(1), u32(2), u32(3), zeros(68)});
const Bytes kMedia = atom("mdia"_os, {atom("free"_os, {u8(0)})});
const Bytes kProfile = atom("prfl"_os, {zeros(10)});

TEST(TrakAtom, LosesItsProfile) {
    const auto track =
        VexQTtrakAtom::initWithData(atom("trak"_os, {kHeader, kProfile, kMedia}), nullptr, 0);
    EXPECT_EQ(track->atomSize(), 135U);
    ASSERT_EQ(track->children().size(), 2U);
    EXPECT_EQ(track->children()[1]->offsetInFile(), 118U);
    EXPECT_EQ(track->atomData(), atom("trak"_os, {kHeader, kMedia}));
    EXPECT_EQ(track->atomSize(), 117U);
}

TEST(TrakAtom, AProfilePastTheEndIsARangeError) {
    const Bytes bytes = atom("trak"_os, {kHeader, atomClaiming(19, "prfl"_os, {zeros(10)})});
    EXPECT_EQ(errorOf<RangeError>([&] { VexQTtrakAtom::initWithData(bytes, nullptr, 0); }),
              "trak.prfl at 100: 19 bytes wanted at 100, 118 there");
}

TEST(TrakAtom, OfATolerantReadingLosesItsProfileTooButNothingElse) {
    const auto whole = readTolerantly<VexQTtrakAtom>(atom("trak"_os, {kHeader, kProfile, kMedia}));
    EXPECT_TRUE(whole.problems.empty());
    EXPECT_EQ(whole.atom->atomData(), atom("trak"_os, {kHeader, kMedia}));

    const Bytes broken = atom("trak"_os, {kHeader, atomClaiming(4, "prfl"_os), kMedia});
    const auto kept = readTolerantly<VexQTtrakAtom>(broken);
    EXPECT_EQ(kept.problems.size(), 1U);
    EXPECT_EQ(kept.atom->atomData(), broken);
}

TEST(TrakAtom, UserDataOfFewerThan16BytesStaysRaw) {
    const Bytes bytes = atom("trak"_os, {atom("udta"_os, {u32(0)}), kMedia});
    const auto track = VexQTtrakAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(&track->children()[0]->atomClass(), &VexQTAtom::kClass);
    EXPECT_EQ(track->children()[0]->unknownData(), u32(0));
    EXPECT_EQ(track->atomData(), bytes);
}

TEST(TrakAtom, UserDataFrom16BytesUpIsRead) {
    for (const std::size_t length : {7U, 8U}) {
        const auto track = VexQTtrakAtom::initWithData(
            atom("trak"_os, {atom("udta"_os, {zeros(length)}), kMedia}), nullptr, 0);
        EXPECT_EQ(dynamic_cast<VexQTudtaAtom*>(track->children()[0].get()) != nullptr, length == 8)
            << length;
    }
}

}  // namespace
}  // namespace vexqt
