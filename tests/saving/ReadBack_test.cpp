// What is found where new bytes are not what was meant. A save that makes such bytes has a fault;
// so they are made by hand here.
#include "vexqt/saving/ReadBack.h"

#include <gtest/gtest.h>

#include "saving/saves.h"
#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"
#include "vexqt/atoms/structure/VexQTfreeAtom.h"
#include "vexqt/atoms/structure/VexQTmoovAtom.h"
#include "vexqt/atoms/structure/VexQTtrakAtom.h"

namespace vexqt {
namespace {

using namespace testing;

const Bytes kHeader = header();
const Bytes kRaw = atom("abcd"_os, {u32(1)});
const Bytes kMovie = atom("moov"_os, {kHeader, kRaw, atom("trak"_os, {kRaw})});

std::unique_ptr<VexQTAtom> movieOf(const Bytes& bytes) {
    return VexQTmoovAtom::initWithData(bytes, nullptr, 0);
}

/// "PATH: MESSAGE"; empty where there is nothing wrong.
std::string misreading(const VexQTAtom& meant, const Bytes& bytes,
                       SaveForm form = SaveForm::Surgical) {
    const auto found = misreadingOf(meant, SharedBytes::copyOf(bytes), 0, "moov", form);
    return found ? found->path + ": " + found->message : "";
}

Bytes replaced(Bytes bytes, std::size_t offset, const Bytes& by) {
    std::ranges::copy(by, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    return bytes;
}

TEST(Misreading, IsNoneWhereTheBytesAreThoseThatWereMeant) {
    EXPECT_EQ(misreading(*movieOf(kMovie), kMovie), "");
    EXPECT_EQ(misreading(*movieOf(kMovie), kMovie, SaveForm::Exact), "");
}

TEST(Misreading, IsAnyOtherValueThanTheOneThatWasSet) {
    // The time scale.
    const Bytes other = replaced(kMovie, 8 + 20, u32(601));
    for (const SaveForm form : {SaveForm::Surgical, SaveForm::Exact}) {
        EXPECT_EQ(misreading(*movieOf(kMovie), other, form),
                  "moov.mvhd: 'timeScale' would not read back as edited");
        const auto edited = movieOf(kMovie);
        edited->children()[0]->setValueForKey(601, "timeScale");
        EXPECT_EQ(misreading(*edited, other, form), "");
        EXPECT_EQ(misreading(*edited, kMovie, form),
                  "moov.mvhd: 'timeScale' would not read back as edited");
    }
}

TEST(Misreading, IsAnotherKindOfAtom) {
    EXPECT_EQ(misreading(*movieOf(kMovie), replaced(kMovie, 8 + 108 + 12 + 4, text("udta"))),
              "moov.trak: would read back as another kind of atom");
}

TEST(Misreading, IsAnotherTypeOrAnotherPayloadOfAnAtomThatNoClassDecodes) {
    const std::string found = "moov.abcd: its bytes would read back as others";
    EXPECT_EQ(misreading(*movieOf(kMovie), replaced(kMovie, 8 + 108 + 4, text("abce"))), found);
    EXPECT_EQ(misreading(*movieOf(kMovie), replaced(kMovie, 8 + 108 + 8, u32(2))), found);
    EXPECT_EQ(misreading(*movieOf(atom("moov"_os, {atom("abcd"_os, {zeros(30)}), kHeader})),
                         atom("moov"_os, {atom("abcd"_os, {zeros(3)}), kHeader})),
              found);
}

TEST(Misreading, IsAnAtomTooManyOrTooFew) {
    EXPECT_EQ(misreading(*movieOf(kMovie), atom("moov"_os, {kHeader, kRaw})),
              "moov: 3 atoms in it would read back as 2");
    EXPECT_EQ(misreading(*movieOf(atom("moov"_os, {kHeader, kRaw})), kMovie),
              "moov: 2 atoms in it would read back as 3");
}

TEST(Misreading, IsNoneOfALastChildThatIsNothingButAHeader) {
    const auto movie = movieOf(atom("moov"_os, {kHeader, atom("trak"_os, {kRaw})}));
    movie->children()[1]->children().clear();
    EXPECT_EQ(misreading(*movie, atom("moov"_os, {kHeader, atom("trak"_os)})), "");
    EXPECT_EQ(misreading(*movie, atom("moov"_os, {kHeader, atom("tref"_os)})),
              "moov: 2 atoms in it would read back as 1");
    EXPECT_EQ(misreading(*movie, atom("moov"_os, {kHeader})),
              "moov: 2 atoms in it would read back as 1");
    movie->children().erase(movie->children().begin());
    EXPECT_EQ(misreading(*movie, atom("moov"_os)), "moov: 1 atoms in it would read back as 0");
}

TEST(Misreading, IsAnAtomThatItsClassDeclines) {
    const Bytes declined = atom("moov"_os, {atom("mvhd"_os, {Bytes(112, 0x64)})});
    std::vector<Problem> problems;
    ReadContext context(problems);
    const auto meant =
        VexQTAtom::make(VexQTmoovAtom::kClass, SharedBytes::copyOf(declined), nullptr, 0, context);
    EXPECT_EQ(misreading(*meant, declined), "") << "where it was declined before";
    EXPECT_EQ(misreading(*meant, atom("moov"_os, {kHeader})),
              "moov.mvhd: would read back as another kind of atom");
    const std::string found = misreading(*movieOf(atom("moov"_os, {kHeader})), declined);
    EXPECT_EQ(found.find("moov.mvhd: its new bytes would not be read as what they are any more ("),
              0U)
        << found;
}

TEST(Misreading, IsARootAtomThatIsNotRead) {
    const auto header = VexQTmvhdAtom::initWithData(kHeader, nullptr, 0);
    EXPECT_EQ(misreading(*header, atom("mvhd"_os, {u32(0)})),
              "moov: its new bytes would not be read as what they are any more");
    const auto space = VexQTfreeAtom::initWithData(atom("free"_os), nullptr, 0);
    EXPECT_EQ(misreading(*space, zeros(1)),
              "moov: would not be read back: 4 bytes wanted at 0, 1 there");
}

TEST(StrictFailure, NamesTheAtomInsideOrTheRootItself) {
    const auto failure = [](const AtomClass& cls, const Bytes& bytes) {
        const auto found = strictFailure(cls, SharedBytes::copyOf(bytes), 0, "root");
        return found ? found->path + ": " + found->message : "";
    };
    EXPECT_EQ(failure(VexQTmoovAtom::kClass, kMovie), "");
    EXPECT_EQ(failure(VexQTmvhdAtom::kClass, atom("mvhd"_os, {u32(0)})),
              "root: VexQTmvhdAtom declines its bytes");
    const std::string inside =
        failure(VexQTmoovAtom::kClass, atom("moov"_os, {atomClaiming(99, "trak"_os, {kRaw})}));
    EXPECT_EQ(inside.find("root.trak: "), 0U) << inside;
}

}  // namespace
}  // namespace vexqt
