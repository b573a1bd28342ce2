#include "vexqt/core/AtomClass.h"

#include <gtest/gtest.h>

#include "sample_classes.h"
#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace testing;

/// An atom of raw bytes that follows any rules.
template <HeaderRule header, WrittenHeader written = WrittenHeader::AsHeld,
          SizeRule size = SizeRule::Recomputed, TypeRule type = TypeRule::AsHeld>
class Ruled final : public AtomOf<Ruled<header, written, size, type>> {
public:
    static const AtomClass kClass;

private:
    static constexpr Field fields[] = {irregular<&Ruled::keepRest, &Ruled::appendRest>()};
};
template <HeaderRule header, WrittenHeader written, SizeRule size, TypeRule type>
constinit const AtomClass Ruled<header, written, size, type>::kClass = {
    .type = "rule"_os,
    .className = "Ruled",
    .atomName = "Ruled",
    .header = header,
    .writtenHeader = written,
    .sizeRule = size,
    .typeRule = type,
    .fields = fields,
    .create = vexqt::create<Ruled>};

/// What an atom took from its header.
struct Taken {
    std::uint64_t size;
    std::string type;
    std::size_t payload;
    friend bool operator==(const Taken&, const Taken&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Taken& taken) {
        return out << taken.size << ' ' << taken.type << ' ' << taken.payload;
    }
};

template <HeaderRule rule>
Taken taken(const Bytes& bytes) {
    const auto atom = Ruled<rule>::initWithData(bytes, nullptr, 0);
    return {atom->atomSize(), atom->atomTypeString(), atom->unknownData()->size()};
}

/// Another type than that of the class.
constexpr OSType kHeldType = "abcd"_os;

const Bytes kShort = atomClaiming(99, "abcd"_os, {zeros(12)});
const Bytes kShortZero = atomClaiming(0, "abcd"_os, {zeros(12)});
const Bytes kExtended = extendedAtomClaiming(99, "abcd"_os, {zeros(12)});
const Bytes kExtendedZero = extendedAtomClaiming(0, "abcd"_os, {zeros(12)});
const Bytes kExtended16 = extendedAtomClaiming(16, "abcd"_os, {zeros(12)});
const Bytes kExtended7 = extendedAtomClaiming(7, "abcd"_os, {zeros(12)});

TEST(HeaderRule, ByteCountReadsNothing) {
    EXPECT_EQ(taken<HeaderRule::ByteCount>(kShort), (Taken{20, "rule", 12}));
    EXPECT_EQ(taken<HeaderRule::ByteCount>(kExtended), (Taken{28, "rule", 20}));
}

TEST(HeaderRule, NoneLeavesAllBytesToTheRows) {
    EXPECT_EQ(taken<HeaderRule::None>(kShort), (Taken{20, "rule", 20}));
    EXPECT_EQ(taken<HeaderRule::None>(Bytes{1}), (Taken{1, "rule", 1}));
}

TEST(HeaderRule, ReadLeavesOutTheHeaderOfASizeOfZero) {
    EXPECT_EQ(taken<HeaderRule::Read>(kShort), (Taken{99, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::Read>(kShortZero), (Taken{12, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::Read>(kExtended), (Taken{99, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::Read>(kExtendedZero), (Taken{12, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::Read>(kExtended7), (Taken{7, "abcd", 12}));
}

TEST(HeaderRule, ReadZeroMeansShortTakesTheExtendedSizeForPayload) {
    EXPECT_EQ(taken<HeaderRule::ReadZeroMeansShort>(kShort), (Taken{99, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadZeroMeansShort>(kShortZero), (Taken{12, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadZeroMeansShort>(kExtended), (Taken{99, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadZeroMeansShort>(kExtendedZero), (Taken{20, "abcd", 20}));
}

TEST(HeaderRule, ReadZeroLeavesEightKeepsTheHeaderThatWasRead) {
    EXPECT_EQ(taken<HeaderRule::ReadZeroLeavesEight>(kShortZero), (Taken{12, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadZeroLeavesEight>(kExtended), (Taken{99, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadZeroLeavesEight>(kExtendedZero), (Taken{20, "abcd", 12}));
}

TEST(HeaderRule, ReadExtendedPlusOneAddsOneToAnExtendedSize) {
    EXPECT_EQ(taken<HeaderRule::ReadExtendedPlusOne>(kShort), (Taken{99, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadExtendedPlusOne>(kShortZero), (Taken{12, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadExtendedPlusOne>(kExtended), (Taken{100, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadExtendedPlusOne>(kExtendedZero), (Taken{1, "abcd", 12}));
}

TEST(HeaderRule, ReadSizeFieldTakesTheFieldAsItStands) {
    EXPECT_EQ(taken<HeaderRule::ReadSizeField>(kShort), (Taken{99, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadSizeField>(kShortZero), (Taken{0, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::ReadSizeField>(kExtended), (Taken{1, "abcd", 12}));
}

TEST(HeaderRule, GenericTakes16FromAnExtendedSize) {
    EXPECT_EQ(taken<HeaderRule::Generic>(kShort), (Taken{99, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::Generic>(kShortZero), (Taken{12, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::Generic>(kExtended), (Taken{83, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::Generic>(kExtended16), (Taken{20, "abcd", 20}));
    EXPECT_EQ(taken<HeaderRule::Generic>(kExtendedZero), (Taken{0 - 16ULL, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::Generic>(kExtended7), (Taken{0 - 9ULL, "abcd", 12}));
}

TEST(HeaderRule, GenericFieldsAtEightLeavesAnExtendedSizeToTheRows) {
    EXPECT_EQ(taken<HeaderRule::GenericFieldsAtEight>(kShort), (Taken{99, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::GenericFieldsAtEight>(kShortZero), (Taken{12, "abcd", 12}));
    EXPECT_EQ(taken<HeaderRule::GenericFieldsAtEight>(kExtended), (Taken{83, "abcd", 20}));
}

TEST(HeaderRule, ThatReadsRaisesWhereTheHeaderIsCutShort) {
    const Bytes seven = zeros(7);
    const Bytes fifteen = join({u32(1), zeros(11)});
    EXPECT_THROW(taken<HeaderRule::Read>(seven), RangeError);
    EXPECT_THROW(taken<HeaderRule::Read>(fifteen), RangeError);
    EXPECT_THROW(taken<HeaderRule::ReadZeroMeansShort>(fifteen), RangeError);
    EXPECT_THROW(taken<HeaderRule::Generic>(fifteen), RangeError);
}

TEST(WrittenHeader, ShortIsEightBytesAndHoldsTheLowBitsOfTheSize) {
    const auto atom = Ruled<HeaderRule::Read, WrittenHeader::Short>::initWithData(
        extendedAtomClaiming(0x1234567890, "abcd"_os, {text("xyz")}), nullptr, 0);
    EXPECT_EQ(atom->atomData(), testing::atom("abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomSize(), 11U);
}

TEST(WrittenHeader, AsHeldIsJudgedOnTheOldSize) {
    const auto atom = Ruled<HeaderRule::Read, WrittenHeader::AsHeld>::initWithData(
        extendedAtomClaiming(0x1234567890, "abcd"_os, {text("xyz")}), nullptr, 0);
    EXPECT_EQ(atom->atomData(), atomClaiming(19, "abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomData(), atomClaiming(11, "abcd"_os, {text("xyz")}));
}

TEST(WrittenHeader, InRowsIsPutRightAtTheEnd) {
    using Entry = Ruled<HeaderRule::None, WrittenHeader::InRows>;
    const auto atom = Entry::initWithData(atomClaiming(99, "abcd"_os, {text("xyz")}), nullptr, 0);
    EXPECT_EQ(atom->atomData(), testing::atom("abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomSize(), 11U);
}

TEST(WrittenHeader, NoneWritesTheRowsAlone) {
    using Tail = Ruled<HeaderRule::None, WrittenHeader::None>;
    const auto atom = Tail::initWithData(text("xyz"), nullptr, 0);
    EXPECT_EQ(atom->atomData(), text("xyz"));
    EXPECT_EQ(atom->atomSize(), 3U);
}

TEST(WrittenHeader, IsPatchedWhereTheAtomBegins) {
    using Entry = Ruled<HeaderRule::None, WrittenHeader::InRows>;
    const auto atom = Entry::initWithData(atomClaiming(99, "abcd"_os, {text("xyz")}), nullptr, 0);
    VexQTAtom big("bigg"_os, 8, nullptr, 0);
    big.increaseSizeBy(0x100000000);
    ByteWriter out;
    out.append(text("before"));
    atom->appendTo(out);
    big.appendTo(out);
    EXPECT_EQ(out.release(), join({text("before"), testing::atom("abcd"_os, {text("xyz")}),
                                   atomClaiming(16, "bigg"_os)}));
}

template <SizeRule rule>
std::unique_ptr<Ruled<HeaderRule::Read, WrittenHeader::Short, rule>> sized() {
    return Ruled<HeaderRule::Read, WrittenHeader::Short, rule>::initWithData(
        atomClaiming(99, kHeldType, {text("xyz")}), nullptr, 0);
}

TEST(SizeRule, RecomputedStoresWhatWasWritten) {
    const auto atom = sized<SizeRule::Recomputed>();
    EXPECT_EQ(atom->atomData(), atomClaiming(11, "abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomSize(), 11U);
}

TEST(SizeRule, NotStoredWritesTheTrueSizeAndKeepsTheOther) {
    const auto atom = sized<SizeRule::NotStored>();
    EXPECT_EQ(atom->atomData(), atomClaiming(11, "abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomSize(), 99U);
}

TEST(SizeRule, NotRecomputedWritesTheSizeThatIsHeld) {
    const auto atom = sized<SizeRule::NotRecomputed>();
    EXPECT_EQ(atom->atomData(), atomClaiming(99, "abcd"_os, {text("xyz")}));
    EXPECT_EQ(atom->atomSize(), 99U);
}

template <WrittenHeader header, TypeRule rule>
std::string typesWrittenAndHeld() {
    const auto atom = Ruled<HeaderRule::Read, header, SizeRule::Recomputed, rule>::initWithData(
        testing::atom(kHeldType), nullptr, 0);
    const Bytes bytes = atom->atomData();
    return std::string(bytes.begin() + 4, bytes.end()) + ' ' + atom->atomTypeString();
}

TEST(TypeRule, SaysWhatIsWrittenAndWhatIsHeldAfterwards) {
    constexpr auto kShortForm = WrittenHeader::Short;
    constexpr auto kHeldForm = WrittenHeader::AsHeld;
    EXPECT_EQ((typesWrittenAndHeld<kShortForm, TypeRule::OfClass>()), "rule abcd");
    EXPECT_EQ((typesWrittenAndHeld<kHeldForm, TypeRule::OfClass>()), "rule abcd");
    EXPECT_EQ((typesWrittenAndHeld<kShortForm, TypeRule::Restored>()), "rule rule");
    EXPECT_EQ((typesWrittenAndHeld<kHeldForm, TypeRule::Restored>()), "rule rule");
    EXPECT_EQ((typesWrittenAndHeld<kShortForm, TypeRule::AsHeld>()), "abcd abcd");
    EXPECT_EQ((typesWrittenAndHeld<kHeldForm, TypeRule::AsHeld>()), "abcd abcd");
}

TEST(LengthRule, AcceptsItsBounds) {
    EXPECT_FALSE(exactly(12).accepts(11));
    EXPECT_TRUE(exactly(12).accepts(12));
    EXPECT_FALSE(exactly(12).accepts(13));
    EXPECT_FALSE(atLeast(12).accepts(11));
    EXPECT_TRUE(atLeast(12).accepts(12));
    EXPECT_TRUE(atLeast(12).accepts(std::numeric_limits<std::size_t>::max()));
    EXPECT_TRUE(LengthRule().accepts(0));
}

TEST(LengthRule, IsJudgedBeforeAnythingIsRead) {
    // Bytes that could not even be a header are refused, not a range error.
    EXPECT_EQ(Leaf::initWithData({}, nullptr, 0), nullptr);
    EXPECT_EQ(Leaf::initWithData(zeros(3), nullptr, 0), nullptr);
}

}  // namespace
}  // namespace vexqt
