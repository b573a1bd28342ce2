// What is found where new bytes are not what was meant. A save that makes such bytes has a fault;
// so they are made by hand here.
#include "vexqt/saving/ReadBack.h"

#include <gtest/gtest.h>

#include "saving/saves.h"
#include "testing/reading.h"
#include "vexqt/atoms/metadata/VexQTUserDataDirectTextItem.h"
#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"
#include "vexqt/atoms/metadata/VexQTdataAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTsounSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"
#include "vexqt/atoms/structure/VexQTfreeAtom.h"
#include "vexqt/atoms/structure/VexQTmoovAtom.h"
#include "vexqt/atoms/structure/VexQTstblAtom.h"
#include "vexqt/atoms/structure/VexQTtrakAtom.h"
#include "vexqt/saving/ExactWriting.h"
#include "vexqt/saving/Surgery.h"

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
    movie->addChild(std::make_unique<VexQTAtom>("abcd"_os, 8, nullptr, 0));
    EXPECT_EQ(misreading(*movie, atom("moov"_os, {kHeader, atom("trak"_os), atom("abcd"_os)})), "");
    movie->children().pop_back();
    EXPECT_EQ(misreading(*movieOf(kMovie), atom("moov"_os, {kHeader, kRaw, atom("trak"_os)})),
              "moov: 3 atoms in it would read back as 2");
    EXPECT_EQ(misreading(*movieOf(atom("moov"_os, {kHeader, kRaw})),
                         atom("moov"_os, {kHeader, atom("abcd"_os)})),
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

TEST(Misreading, IsNoneOfAValueThatIsReadAsAnother) {
    // A rate of -1 is written, and read as -2.
    const auto made = std::make_unique<VexQTmoovAtom>();
    made->addChild(std::make_unique<VexQTmvhdAtom>());
    const auto edited = movieOf(atom("moov"_os, {kHeader}));
    for (VexQTAtom* movie : {static_cast<VexQTAtom*>(made.get()), edited.get()}) {
        dynamic_cast<VexQTmvhdAtom&>(*movie->children()[0]).setPreferredRate(-1);
        const Bytes bytes = movie->atomData();
        for (const SaveForm form : {SaveForm::Surgical, SaveForm::Exact}) {
            EXPECT_EQ(misreading(*movie, bytes, form), "");
            EXPECT_EQ(misreading(*movie, replaced(bytes, 8 + 28, u32(0x00020000)), form),
                      "moov.mvhd: 'preferredRate' would not read back as edited");
        }
    }
}

/// Which rows there are follows from the version.
TEST(Misreading, IsARowTooManyOrTooFew) {
    const auto entryOf = [](std::uint16_t version) {
        return atom("soun"_os, {zeros(6), u16(1), u16(version), zeros(10), u16(2), u16(16),
                                zeros(4), u32(48000 << 4), version == 1 ? zeros(16) : Bytes()});
    };
    const auto read = [](const Bytes& bytes) {
        return VexQTAtom::make(VexQTsounSampleDescription::kClass, bytes, nullptr, 0);
    };
    EXPECT_EQ(misreading(*read(entryOf(1)), entryOf(1)), "");
    for (const std::uint16_t version : {std::uint16_t{0}, std::uint16_t{1}}) {
        const auto meant = read(entryOf(version));
        const auto other = static_cast<std::uint16_t>(1 - version);
        // The same version with the rows of the other.
        EXPECT_NE(misreading(*meant, entryOf(other)), "");
    }
}

TEST(Misreading, IsAnotherTypeOfTheSameClass) {
    const auto textOf = [](OSType type) { return atom(type, {text("some text")}); };
    const auto item = VexQTUserDataDirectTextItem::initWithData(textOf("XMP_"_os), nullptr, 0);
    EXPECT_EQ(misreading(*item, textOf("XMP_"_os)), "");
    EXPECT_EQ(misreading(*item, textOf("name"_os)),
              "moov: would read back as another kind of atom");
    item->setText("abc");
    EXPECT_EQ(misreading(*item, textOf("XMP_"_os)), "moov: 'text' would not read back as edited");
}

TEST(Misreading, IsALengthThatItsTextDoesNotHave) {
    const auto texts = [](std::string_view words) {
        return atom(0xA96E616D,
                    {u16(static_cast<std::uint16_t>(words.size())), u16(1), text(words)});
    };
    const auto item = VexQTUserDataTextItem::initWithData(texts("title"), nullptr, 0);
    item->setText("a longer title");
    EXPECT_EQ(misreading(*item, texts("a longer title")), "");
    EXPECT_NE(misreading(*item, texts("title")), "");
}

TEST(Misreading, IsAByteThatNoPropertyHolds) {
    const auto tableOf = [](std::uint32_t rest) {
        return atom("stsd"_os, {u32(0), u32(1), atom("abcd"_os, {zeros(6), u16(1), u32(rest)})});
    };
    const auto table = VexQTstsdAtom::initWithData(tableOf(7), nullptr, 0);
    EXPECT_EQ(misreading(*table, tableOf(7)), "");
    EXPECT_EQ(misreading(*table, tableOf(8)), "moov.abcd: its bytes would not read back as edited");
}

TEST(Misreading, IsAnAtomThatIsDeclinedAsAnother) {
    const auto tableOf = [](OSType type) { return atom("stbl"_os, {atom(type, {u32(7)})}); };
    const auto table = readTolerantly<VexQTstblAtom>(tableOf("stts"_os)).atom;
    ASSERT_TRUE(table->children()[0]->declinedClass());
    EXPECT_EQ(misreading(*table, tableOf("stts"_os)), "");
    EXPECT_EQ(misreading(*table, tableOf("stsz"_os)),
              "moov.stts: would read back as another kind of atom");
}

TEST(Misreading, IsNoneOfAnAtomThatHasNeverHadBytes) {
    const auto movie = movieOf(atom("moov"_os, {kHeader}));
    movie->addChild(VexQTAtom::kClass.create());
    movie->children().back()->setAtomType("abcd"_os);
    movie->addChild(std::make_unique<VexQTmvhdAtom>());
    EXPECT_EQ(misreading(*movie, movie->atomData()), "");
}

/// Its class refuses to write it, and nobody asks it to where nobody edited it.
TEST(Misreading, IsNoneOfAValueThatIsMetadata) {
    const Bytes bytes = atom("data"_os, {u32(28), u32(0), atom("meta"_os, {kRaw})});
    const auto value = VexQTdataAtom::initWithData(bytes, nullptr, 0);
    ASSERT_EQ(value->children().size(), 1U);
    EXPECT_EQ(misreading(*value, bytes), "");
    Surgery surgery;
    EXPECT_TRUE(std::ranges::equal(surgery.written(*value).flat().view(), bytes));
}

TEST(Misreading, IsARootAtomThatIsNotRead) {
    const auto header = VexQTmvhdAtom::initWithData(kHeader, nullptr, 0);
    EXPECT_EQ(misreading(*header, atom("mvhd"_os, {u32(0)})),
              "moov: its new bytes would not be read as what they are any more");
    const auto space = VexQTfreeAtom::initWithData(atom("free"_os), nullptr, 0);
    EXPECT_EQ(misreading(*space, zeros(1)),
              "moov: would not be read back: 4 bytes wanted at 0, 1 there");
}

// MARK: Rows that no class has as yet

/// A number, which cannot be written where it is 13, and where there is more a second one, which is
/// read as one more than was written.
class Odd final : public AtomOf<Odd> {
public:
    static const AtomClass kClass;
    std::uint32_t number = 0, second = 0;
    bool hasSecond = false;
};
struct OddLayout {
    static void readNumber(Record& record, AtomReader& in) {
        auto& odd = static_cast<Odd&>(record);
        odd.hasSecond = in.remaining() > 4;
        odd.number = in.u32();
    }
    static void writeNumber(const Record& record, ByteWriter& out) {
        const std::uint32_t number = static_cast<const Odd&>(record).number;
        if (number == 13) throw EncodingError("13 has no form");
        out.u32(number);
    }
    static bool hasSecond(const Record& record) {
        return static_cast<const Odd&>(record).hasSecond;
    }
    static void readSecond(Record& record, AtomReader& in) {
        static_cast<Odd&>(record).second = in.u32() + 1;
    }
    static void writeSecond(const Record& record, ByteWriter& out) {
        out.u32(static_cast<const Odd&>(record).second);
    }
    static constexpr Field fields[] = {
        {.name = "number", .width = 4, .decode = readNumber, .encode = writeNumber},
        {.name = "second",
         .width = 4,
         .decode = readSecond,
         .encode = writeSecond,
         .present = hasSecond},
    };
};
constinit const AtomClass Odd::kClass = {.type = "odd "_os,
                                         .className = "Odd",
                                         .atomName = "Odd",
                                         .fields = OddLayout::fields,
                                         .create = vexqt::create<Odd>};

Bytes surgical(VexQTAtom& atom) {
    Surgery surgery;
    const SharedBytes bytes = surgery.written(atom).flat();
    return {bytes.view().begin(), bytes.view().end()};
}

TEST(RowThatCannotBeWritten, StaysAsItWasRead) {
    const Bytes bytes = atom("odd "_os, {u32(13)});
    const auto odd = Odd::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(surgical(*odd), bytes);
    EXPECT_EQ(misreading(*odd, bytes), "");
    const auto findings = exactWritingFindings(*odd, "odd");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].id, "atom-refuses");
    EXPECT_EQ(findings[0].severity, Severity::Destroys);
    EXPECT_EQ(findings[0].message, "'number' cannot be written: 13 has no form");
    EXPECT_EQ(findings[0].range, (FileRange{8, 4}));
}

TEST(RowThatAnEditBringsIn, IsMeantToHaveTheBytesThatItsClassWrites) {
    const Bytes bytes = atom("odd "_os, {u32(7)});
    const auto odd = Odd::initWithData(bytes, nullptr, 0);
    odd->hasSecond = true;
    odd->second = 5;
    const Bytes edited = atom("odd "_os, {u32(7), u32(5)});
    EXPECT_EQ(surgical(*odd), edited);
    EXPECT_EQ(misreading(*odd, edited), "");
    const std::string found = "moov: 'second' would not read back as edited";
    EXPECT_EQ(misreading(*odd, atom("odd "_os, {u32(7), u32(6)})), found);
    EXPECT_EQ(misreading(*odd, bytes), found) << "it is not there";
    odd->hasSecond = false;
    EXPECT_EQ(misreading(*odd, edited), found) << "it is there";
}

TEST(EditedRow, OfWhatIsOutOrWasNotThereIsWhatIsWrittenNow) {
    const auto odd = Odd::initWithData(atom("odd "_os, {u32(7), u32(5)}), nullptr, 0);
    const AtomAsRead read(*odd);
    const Survey::Part& second = read.survey.rows.back();
    EXPECT_FALSE(editedRow(second, read, *odd));
    odd->hasSecond = false;
    const auto out = editedRow(second, read, *odd);
    ASSERT_TRUE(out);
    EXPECT_EQ(out->bytes, Bytes());
    odd->hasSecond = true;
    dynamic_cast<Odd&>(*read.record).hasSecond = false;
    const auto in = editedRow(second, read, *odd);
    ASSERT_TRUE(in);
    EXPECT_EQ(in->bytes, u32(6));
}

/// Bytes and nothing that its class knows of.
class Unknown final : public AtomOf<Unknown> {
public:
    static const AtomClass kClass;
};
constinit const AtomClass Unknown::kClass = {.type = "none"_os,
                                             .className = "Unknown",
                                             .atomName = "Unknown",
                                             .create = vexqt::create<Unknown>};

TEST(AtomWithoutRows, IsItsBytes) {
    const Bytes bytes = atom("none"_os, {u32(7)});
    EXPECT_EQ(surgical(*Unknown::initWithData(bytes, nullptr, 0)), bytes);
}

TEST(StrictFailure, NamesTheAtomInsideOrTheRootItself) {
    const auto failure = [](const AtomClass& cls, const Bytes& bytes) {
        const auto found = strictFailure(cls, SharedBytes::copyOf(bytes), 0, "root");
        return found ? found->path + ": " + found->message : "";
    };
    EXPECT_EQ(failure(VexQTmoovAtom::kClass, kMovie), "");
    EXPECT_EQ(failure(VexQTmvhdAtom::kClass, atom("mvhd"_os, {u32(0)})),
              "root: VexQTmvhdAtom declines its bytes");
    EXPECT_EQ(failure(VexQTstsdAtom::kClass, atom("stsd"_os, {u32(0), u32(5)})),
              "root: 4 bytes wanted at 16, 16 there");
    const std::string inside =
        failure(VexQTmoovAtom::kClass, atom("moov"_os, {atomClaiming(99, "trak"_os, {kRaw})}));
    EXPECT_EQ(inside.find("root.trak: "), 0U) << inside;
}

}  // namespace
}  // namespace vexqt
