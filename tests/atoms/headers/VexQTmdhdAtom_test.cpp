#include "vexqt/atoms/headers/VexQTmdhdAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace testing;
using namespace std::chrono_literals;

constexpr Date k1970 = std::chrono::sys_days{std::chrono::year{1970} / 1 / 1};

const Bytes kBytes = atom("mdhd"_os, {
                                         u8(0), zeros(3),  // version, flags
                                         u32(2082844800),  // creation time: 1970-01-01
                                         u32(2082844861),  // modification time: a minute later
                                         u32(0x80015F90),  // time scale
                                         u32(0x90001234),  // duration
                                         u16(0x95C4),      // language
                                         u16(0xA5D6),      // quality
                                     });

TEST(MdhdAtom, ReadsEveryField) {
    VexQTAtom parent;
    const auto media = VexQTmdhdAtom::initWithData(kBytes, &parent, 300);
    ASSERT_NE(media, nullptr);
    EXPECT_EQ(media->parent(), &parent);
    EXPECT_EQ(media->offsetInFile(), 300U);
    EXPECT_EQ(media->atomSize(), 32U);
    EXPECT_EQ(media->atomType(), "mdhd"_os);
    EXPECT_EQ(media->creationDateTime(), k1970);
    EXPECT_EQ(media->modificationDateTime(), k1970 + 61s);
    EXPECT_EQ(media->timeScale(), 0x80015F90U);
    EXPECT_EQ(media->duration(), 0x90001234U);
    EXPECT_EQ(media->language(), 0x95C4);
    EXPECT_EQ(media->quality(), 0xA5D6);
    EXPECT_EQ(media->unknownData(), std::nullopt);
}

TEST(MdhdAtom, WritesEveryField) {
    VexQTmdhdAtom media;
    media.setCreationDateTime(k1970);
    media.setModificationDateTime(k1970 + 61s);
    media.setTimeScale(0x80015F90);
    media.setDuration(0x90001234);
    media.setLanguage(0x95C4);
    media.setQuality(0xA5D6);
    EXPECT_EQ(media.atomData(), kBytes);
    EXPECT_EQ(media.atomSize(), 32U);
}

TEST(MdhdAtom, RefusesEveryLengthBut32) {
    for (const std::size_t length : {0U, 8U, 31U, 33U, 44U})
        EXPECT_EQ(VexQTmdhdAtom::initWithData(zeros(length), nullptr, 0), nullptr) << length;
    EXPECT_NE(VexQTmdhdAtom::initWithData(zeros(32), nullptr, 0), nullptr);
}

TEST(MdhdAtom, DropsVersionAndFlagsOfTheFile) {
    Bytes bytes = kBytes;
    std::ranges::copy(Bytes{3, 0, 0, 1}, bytes.begin() + 8);
    const auto media = VexQTmdhdAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(media->version(), 3);
    EXPECT_EQ(media->flags0(), 0);
    EXPECT_EQ(media->flags1(), 0);
    EXPECT_EQ(media->flags2(), 0);
    EXPECT_EQ(media->atomData(), kBytes);
}

TEST(MdhdAtom, WritesFlagsThatWereSet) {
    const auto media = VexQTmdhdAtom::initWithData(kBytes, nullptr, 0);
    media->setFlags0(0x0A);
    media->setFlags1(0x0B);
    media->setFlags2(0x0C);
    Bytes bytes = kBytes;
    std::ranges::copy(Bytes{0x0A, 0x0B, 0x0C}, bytes.begin() + 9);
    EXPECT_EQ(media->atomData(), bytes);
}

TEST(MdhdAtom, WritesAnAbsentDateAs2001) {
    VexQTmdhdAtom media;
    EXPECT_EQ(media.creationDateTime(), std::nullopt);
    EXPECT_EQ(media.modificationDateTime(), std::nullopt);
    EXPECT_EQ(media.atomData(),
              atom("mdhd"_os, {zeros(4), u32(3061152000), u32(3061152000), zeros(12)}));
}

TEST(MdhdAtom, HasANameAndAView) {
    const VexQTmdhdAtom media;
    EXPECT_EQ(media.atomName(), "Media Header");
    EXPECT_EQ(media.atomNibName(), "VexQTmdhdAtom");
}

}  // namespace
}  // namespace vexqt
