#include "vexqt/atoms/headers/VexQTmvhdAtom.h"

#include <gtest/gtest.h>

#include <limits>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace testing;
using namespace std::chrono_literals;

constexpr Date k1904 = std::chrono::sys_days{std::chrono::year{1904} / 1 / 1};
constexpr Date k1970 = std::chrono::sys_days{std::chrono::year{1970} / 1 / 1};
constexpr Date k2001 = std::chrono::sys_days{std::chrono::year{2001} / 1 / 1};

const Bytes kBytes = atom("mvhd"_os, {
                                         u8(0),            // version
                                         u8(0x0A),         // flags
                                         u16(0x0B0C),      //
                                         u32(2082844800),  // creation time: 1970-01-01
                                         u32(2082844861),  // modification time: a minute later
                                         u32(600),         // time scale
                                         u32(0x90001234),  // duration
                                         u32(0x00018000),  // preferred rate
                                         u16(0x0080),      // preferred volume
                                         zeros(10),        // reserved
                                         u32(0x00020000),  // a
                                         u32(0x00034000),  // b
                                         u32(0x40000001),  // u: 1 + 2^-30
                                         u32(0x00048000),  // c
                                         u32(0x0005C000),  // d
                                         u32(0x0000FFFF),  // v: 65535 * 2^-30
                                         u32(0x7FFF0000),  // x
                                         u32(0x00000001),  // y: 2^-16
                                         u32(0x40000000),  // w
                                         u32(0x11000001),  // preview time
                                         u32(0x12000002),  // preview duration
                                         u32(0x13000003),  // poster time
                                         u32(0x14000004),  // selection time
                                         u32(0x15000005),  // selection duration
                                         u32(0x16000006),  // current time
                                         u32(0xF7000007),  // next track ID
                                     });

/// The bytes with others from an offset on.
Bytes with(std::size_t offset, const Bytes& others) {
    Bytes bytes = kBytes;
    std::ranges::copy(others, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    return bytes;
}

TEST(MvhdAtom, ReadsEveryField) {
    VexQTAtom parent;
    const auto movie = VexQTmvhdAtom::initWithData(kBytes, &parent, 40);
    ASSERT_NE(movie, nullptr);
    EXPECT_EQ(movie->parent(), &parent);
    EXPECT_EQ(movie->offsetInFile(), 40U);
    EXPECT_EQ(movie->atomSize(), 108U);
    EXPECT_EQ(movie->atomType(), "mvhd"_os);
    EXPECT_EQ(movie->version(), 0);
    EXPECT_EQ(movie->flags0(), 0x0A);
    EXPECT_EQ(movie->flags1(), 0x0B);
    EXPECT_EQ(movie->flags2(), 0x0C);
    EXPECT_EQ(movie->creationDateTime(), k1970);
    EXPECT_EQ(movie->modificationDateTime(), k1970 + 61s);
    EXPECT_EQ(movie->timeScale(), 600U);
    EXPECT_EQ(movie->duration(), 0x90001234U);
    EXPECT_EQ(movie->preferredRate(), 1.5F);
    EXPECT_EQ(movie->preferredVolume(), 0.5F);
    EXPECT_EQ(movie->matrixAValue(), 2.0);
    EXPECT_EQ(movie->matrixBValue(), 3.25);
    EXPECT_EQ(movie->matrixUValue(), 1.0 + 1 / 1073741824.0);
    EXPECT_EQ(movie->matrixCValue(), 4.5);
    EXPECT_EQ(movie->matrixDValue(), 5.75);
    EXPECT_EQ(movie->matrixVValue(), 65535 / 1073741824.0);
    EXPECT_EQ(movie->matrixXValue(), 32767.0);
    EXPECT_EQ(movie->matrixYValue(), 1 / 65536.0);
    EXPECT_EQ(movie->matrixWValue(), 1.0);
    EXPECT_EQ(movie->previewTime(), 0x11000001U);
    EXPECT_EQ(movie->previewDuration(), 0x12000002U);
    EXPECT_EQ(movie->posterTime(), 0x13000003U);
    EXPECT_EQ(movie->selectionTime(), 0x14000004U);
    EXPECT_EQ(movie->selectionDuration(), 0x15000005U);
    EXPECT_EQ(movie->currentTime(), 0x16000006U);
    EXPECT_EQ(movie->nextTrackID(), 0xF7000007U);
    EXPECT_EQ(movie->unknownData(), std::nullopt);
    EXPECT_TRUE(movie->children().empty());
}

TEST(MvhdAtom, WritesEveryField) {
    VexQTmvhdAtom movie;
    movie.setVersion(0);
    movie.setFlags0(0x0A);
    movie.setFlags1(0x0B);
    movie.setFlags2(0x0C);
    movie.setCreationDateTime(k1970);
    movie.setModificationDateTime(k1970 + 61s);
    movie.setTimeScale(600);
    movie.setDuration(0x90001234);
    movie.setPreferredRate(1.5F);
    movie.setPreferredVolume(0.5F);
    movie.setMatrixAValue(2.0);
    movie.setMatrixBValue(3.25);
    movie.setMatrixUValue(1.0 + 1 / 1073741824.0);
    movie.setMatrixCValue(4.5);
    movie.setMatrixDValue(5.75);
    movie.setMatrixVValue(65535 / 1073741824.0);
    movie.setMatrixXValue(32767.0);
    movie.setMatrixYValue(1 / 65536.0);
    movie.setMatrixWValue(1.0);
    movie.setPreviewTime(0x11000001);
    movie.setPreviewDuration(0x12000002);
    movie.setPosterTime(0x13000003);
    movie.setSelectionTime(0x14000004);
    movie.setSelectionDuration(0x15000005);
    movie.setCurrentTime(0x16000006);
    movie.setNextTrackID(0xF7000007);
    EXPECT_EQ(movie.atomData(), kBytes);
}

TEST(MvhdAtom, RefusesEveryLengthBut108) {
    for (const std::size_t length : {0U, 7U, 8U, 107U, 109U, 120U})
        EXPECT_EQ(VexQTmvhdAtom::initWithData(zeros(length), nullptr, 0), nullptr) << length;
    EXPECT_NE(VexQTmvhdAtom::initWithData(zeros(108), nullptr, 0), nullptr);
}

TEST(MvhdAtom, ReadsNeitherSizeFieldNorType) {
    const auto movie =
        VexQTmvhdAtom::initWithData(with(0, join({u32(7), text("abcd")})), nullptr, 0);
    EXPECT_EQ(movie->atomSize(), 108U);
    EXPECT_EQ(movie->atomType(), "mvhd"_os);
    EXPECT_EQ(movie->atomData(), kBytes);
}

TEST(MvhdAtom, KeepsAVersionOf1WithTheShortLayout) {
    const auto movie = VexQTmvhdAtom::initWithData(with(8, u8(1)), nullptr, 0);
    EXPECT_EQ(movie->version(), 1);
    EXPECT_EQ(movie->timeScale(), 600U);
    EXPECT_EQ(movie->atomData(), with(8, u8(1)));
}

TEST(MvhdAtom, WritesReservedBytesAsZero) {
    const auto movie = VexQTmvhdAtom::initWithData(with(34, Bytes(10, 0xEE)), nullptr, 0);
    EXPECT_EQ(movie->atomData(), kBytes);
}

TEST(MvhdAtom, CountsSecondsFrom1904) {
    const auto movie =
        VexQTmvhdAtom::initWithData(with(12, join({u32(0), u32(3061152000)})), nullptr, 0);
    EXPECT_EQ(movie->creationDateTime(), k1904);
    EXPECT_EQ(movie->modificationDateTime(), k2001);
    const auto last = VexQTmvhdAtom::initWithData(with(12, u32(0xFFFFFFFF)), nullptr, 0);
    EXPECT_EQ(last->creationDateTime(), k1904 + 4294967295s);
}

TEST(MvhdAtom, WritesAnAbsentDateAs2001) {
    const auto movie = VexQTmvhdAtom::initWithData(kBytes, nullptr, 0);
    movie->setCreationDateTime(std::nullopt);
    EXPECT_EQ(movie->atomData(), with(12, u32(3061152000)));
}

TEST(MvhdAtom, WrapsDatesBeyondTheField) {
    const auto movie = VexQTmvhdAtom::initWithData(kBytes, nullptr, 0);
    movie->setCreationDateTime(k1904 - 1s);
    movie->setModificationDateTime(k1904 + 4294967296s + 5s);
    EXPECT_EQ(movie->atomData(), with(12, join({u32(0xFFFFFFFF), u32(5)})));
    movie->setCreationDateTime(Date::min());
    movie->setModificationDateTime(Date::max());
    EXPECT_EQ(movie->atomData(), with(12, join({u32(2082844800), u32(2082844799)})));
}

TEST(MvhdAtom, MadeInMemoryWritesItsDefaults) {
    VexQTmvhdAtom movie;
    EXPECT_EQ(movie.creationDateTime(), std::nullopt);
    EXPECT_EQ(movie.modificationDateTime(), std::nullopt);
    EXPECT_EQ(movie.preferredRate(), 1.0F);
    EXPECT_EQ(movie.preferredVolume(), 1.0F);
    EXPECT_EQ(movie.atomData(), atom("mvhd"_os, {
                                                    u8(1), zeros(3),  // version, flags
                                                    u32(3061152000),  // creation time
                                                    u32(3061152000),  // modification time
                                                    zeros(8),         // time scale, duration
                                                    u32(0x00010000),  // preferred rate
                                                    u16(0x0100),      // preferred volume
                                                    zeros(10),        // reserved
                                                    zeros(36),        // matrix
                                                    zeros(28),        // times, next track ID
                                                }));
}

TEST(MvhdAtom, WritingLeavesTheSizeAlone) {
    VexQTmvhdAtom movie;
    movie.atomData();
    EXPECT_EQ(movie.atomSize(), 8U);
    const auto read = VexQTmvhdAtom::initWithData(kBytes, nullptr, 0);
    read->increaseSizeBy(5);
    EXPECT_EQ(read->atomData(), kBytes);
    EXPECT_EQ(read->atomSize(), 113U);
}

TEST(MvhdAtom, WritesItsTypeWhateverItHolds) {
    const auto movie = VexQTmvhdAtom::initWithData(kBytes, nullptr, 0);
    movie->setAtomType("abcd"_os);
    EXPECT_EQ(movie->atomData(), kBytes);
}

TEST(MvhdAtom, AWholeNegativeRateReadsOneLower) {
    const auto movie = VexQTmvhdAtom::initWithData(with(28, u32(0xFFFF0000)), nullptr, 0);
    EXPECT_EQ(movie->preferredRate(), -2.0F);
    EXPECT_EQ(movie->atomData(), with(28, u32(0xFFFE0000)));
}

TEST(MvhdAtom, TheRateHasSinglePrecision) {
    const auto movie = VexQTmvhdAtom::initWithData(with(28, u32(0x7FFFFFFF)), nullptr, 0);
    EXPECT_EQ(movie->preferredRate(), 32768.0F);
    EXPECT_EQ(movie->atomData(), with(28, u32(0x80000000)));
}

TEST(MvhdAtom, KeepsMatrixElementsUnrounded) {
    // w is 1 + 2^-30; a needs 31 bits.
    Bytes bytes = with(76, u32(0x40000001));
    std::ranges::copy(u32(0x7FFFFFFF), bytes.begin() + 44);
    const auto movie = VexQTmvhdAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(movie->matrixWValue(), 1.0 + 1 / 1073741824.0);
    EXPECT_EQ(movie->matrixAValue(), 32767.0 + 65535 / 65536.0);
    EXPECT_EQ(movie->atomData(), bytes);
}

TEST(MvhdAtom, MatrixElementsThatHaveNoInverseComeOutChanged) {
    // a: -1.0 reads as -2.0; u: 0.5 loses its high fraction bits; w: -1.0 reads as -2.0.
    const Bytes read = with(44, join({u32(0xFFFF0000), u32(0), u32(0x20000000)}));
    const auto movie = VexQTmvhdAtom::initWithData(read, nullptr, 0);
    EXPECT_EQ(movie->matrixAValue(), -2.0);
    EXPECT_EQ(movie->matrixUValue(), 0.0);
    EXPECT_EQ(movie->atomData(), with(44, join({u32(0xFFFE0000), u32(0), u32(0)})));
}

TEST(MvhdAtom, VolumesAndRatesThatFitNotWrap) {
    const auto movie = VexQTmvhdAtom::initWithData(kBytes, nullptr, 0);
    movie->setPreferredRate(65537.25F);
    movie->setPreferredVolume(256.5F);
    EXPECT_EQ(movie->atomData(), with(28, join({u32(0x00014000), u16(0x0080)})));
    movie->setPreferredRate(std::numeric_limits<float>::quiet_NaN());
    movie->setPreferredVolume(std::numeric_limits<float>::infinity());
    EXPECT_EQ(movie->atomData(), with(28, join({u32(0), u16(0)})));
}

TEST(MvhdAtom, HasANameAndAView) {
    const VexQTmvhdAtom movie;
    EXPECT_EQ(movie.atomName(), "Movie Header");
    EXPECT_EQ(movie.atomNibName(), "VexQTmvhdAtom");
    EXPECT_EQ(movie.atomDescription(), "Movie Header ('mvhd')");
}

TEST(MvhdAtom, ListsItsPropertiesWithTheMatrixLast) {
    std::vector<std::string_view> names;
    const VexQTmvhdAtom movie;
    for (const Field* property : movie.properties()) names.push_back(property->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{
                         "creationDateTime", "modificationDateTime", "timeScale", "duration",
                         "preferredRate", "preferredVolume", "previewTime", "previewDuration",
                         "posterTime", "selectionTime", "selectionDuration", "currentTime",
                         "nextTrackID", "matrix"}));
}

}  // namespace
}  // namespace vexqt
