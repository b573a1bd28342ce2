#include "apps/vexqt/json_document.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "testing/small_movie.h"
#include "vexqt/atoms/sampletables/VexQTstscAtom.h"
#include "vexqt/core/list.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms
using Layout = JsonWriter::Layout;

/// An entry of each kind of column that is written in a way of its own.
struct Entry : Record {
    std::uint32_t count = 0;
    std::int32_t shift = 0;
    double rate = 0;
    std::uint32_t code = 0;
    std::optional<std::string> name;
};
constexpr Field kColumns[] = {
    property<&Entry::count>("count"), property<&Entry::shift>("shift"),
    property<&Entry::rate>("rate"),   property<&Entry::code>("code").as(Display::Code),
    property<&Entry::name>("name"),
};

/// An atom with the tables that tests need.
class TableAtom : public VexQTAtom {
public:
    static const AtomClass kClass;
    TableAtom() : VexQTAtom(kClass) {}

    std::vector<Entry> entries;
    std::vector<std::uint64_t> numbers;
    std::vector<std::int32_t> codes;

    /// Columns of integers are fetched many at a time, as long tables do it.
    static void integers(const Record& owner, std::size_t column, std::size_t first,
                         std::span<std::uint64_t> into) {
        const auto& rows = static_cast<const TableAtom&>(owner).entries;
        for (std::size_t i = 0; i < into.size(); ++i)
            into[i] = column == 0 ? rows[first + i].count
                                  : static_cast<std::uint64_t>(std::int64_t{rows[first + i].shift});
    }
    static constexpr ListAccess entryAccess = [] {
        ListAccess access = EntryList<&TableAtom::entries, kColumns>::access;
        access.integers = integers;
        return access;
    }();
    static constexpr Field fields[] = {
        {.name = "entries", .kind = ValueKind::List, .list = &entryAccess},
        numberList<&TableAtom::numbers>("numbers"),
        numberList<&TableAtom::codes, Display::Code>("codes"),
    };
};
constinit const AtomClass TableAtom::kClass = {.type = "tabl"_os,
                                               .className = "TableAtom",
                                               .atomName = "Table",
                                               .fields = TableAtom::fields,
                                               .create = vexqt::create<TableAtom>};

Entry entry(std::uint32_t count, std::int32_t shift, double rate, OSType code,
            std::optional<std::string> name) {
    Entry made;
    made.count = count;
    made.shift = shift;
    made.rate = rate;
    made.code = code;
    made.name = std::move(name);
    return made;
}

std::string atomText(const VexQTAtom& atom, Layout layout) {
    TextOutput out;
    JsonWriter json(out, layout);
    writeAtom(json, atom);
    return out.text();
}

std::string documentText(const Bytes& movie, Layout layout) {
    TextOutput out;
    JsonWriter json(out, layout);
    writeDocument(json, "a.mov", *VexQTAsset::initWithData(movie, {.tolerant = true}));
    return out.text();
}

TEST(JsonDocument, AnAtomHasItsMembersInOrder) {
    const Bytes movie = smallMovie();
    const auto asset = VexQTAsset::initWithData(movie);
    EXPECT_EQ(atomText(AtomPath("moov.mvhd").atomIn(asset->rootAtoms()), Layout::Indented),
              R"({
  "class": "VexQTmvhdAtom",
  "type": "mvhd",
  "name": "Movie Header",
  "nibName": "VexQTmvhdAtom",
  "size": 108,
  "offsetInFile": 44,
  "version": 0,
  "flags": [1, 2, 3],
  "unknownData": null,
  "properties": {
    "creationDateTime": "2001-01-01T00:00:00Z",
    "modificationDateTime": "2001-01-01T00:01:00Z",
    "timeScale": 600,
    "duration": 1200,
    "preferredRate": 1.5,
    "preferredVolume": 0.5,
    "previewTime": 11,
    "previewDuration": 12,
    "posterTime": 13,
    "selectionTime": 14,
    "selectionDuration": 15,
    "currentTime": 16,
    "nextTrackID": 3,
    "matrix": [1, 2, 0, 3, 4, 0, 5, 6, 1]
  },
  "children": []
})");
}

TEST(JsonDocument, ADocumentOnOneLineHasNoLineEnd) {
    const Bytes movie = join({atom("ftyp"_os, {text("qt  "), u32(5), text("mp42")}),
                              atom("moov"_os, {atom("\x01  x"_os, {u8(0xAB)})})});
    EXPECT_EQ(documentText(movie, Layout::OneLine),
              R"({"file":"a.mov","isValid":true,"rootAtoms":[)"
              R"({"class":"VexQTftypAtom","type":"ftyp","name":"File Type",)"
              R"("nibName":"VexQTftypAtom","size":20,"offsetInFile":0,"version":1,)"
              R"("flags":[0,0,0],"unknownData":null,"properties":{"majorBrand":"qt  ",)"
              R"("minorVersion":5,"compatibleBrands":["mp42"]},"children":[]},)"
              R"({"class":"VexQTmoovAtom","type":"moov","name":"Movie","nibName":null,)"
              R"("size":17,"offsetInFile":20,"version":1,"flags":[0,0,0],)"
              R"("unknownData":null,"properties":{"originalSize":17},"children":[)"
              R"({"class":"VexQTAtom","type":"\u0001  x","name":"Generic Atom",)"
              R"("nibName":"VexQTAtom","size":9,"offsetInFile":28,"version":1,)"
              R"("flags":[0,0,0],"unknownData":"ab","properties":{},"children":[]}]}]})");
}

TEST(JsonDocument, ProblemsAreListedOnlyWhereThereAreAny) {
    const auto whole = nlohmann::ordered_json::parse(documentText(smallMovie(), Layout::Indented));
    EXPECT_FALSE(whole.contains("problems"));

    const Bytes movie = join({atom("ftyp"_os, {text("qt  "), u32(0)}),
                              atom("moov"_os, {atom("mvhd"_os, {zeros(4)}), zeros(8)})});
    const auto damaged = nlohmann::ordered_json::parse(documentText(movie, Layout::Indented));
    EXPECT_EQ(damaged["isValid"], true);
    ASSERT_EQ(damaged["problems"].size(), 1U);
    EXPECT_EQ(damaged["problems"][0].dump(),
              R"({"path":"moov.mvhd","offset":24,"message":)"
              R"("Atom 'mvhd' declined by VexQTmvhdAtom (12 bytes) - kept as raw data"})");
    const auto& declined = damaged["rootAtoms"][1]["children"][0];
    EXPECT_EQ(declined["class"], "VexQTAtom");
    EXPECT_EQ(declined["declined"], "VexQTmvhdAtom");
    EXPECT_EQ(declined["unknownData"], "00000000");
    EXPECT_FALSE(damaged["rootAtoms"][0].contains("declined"));
}

TEST(JsonDocument, TheFileIsNamedAsItWasEvenIfItIsNoText) {
    TextOutput out;
    JsonWriter json(out, Layout::OneLine);
    writeDocument(json, "a\xFF\n.mov", *VexQTAsset::initWithData(smallMovie()));
    EXPECT_EQ(nlohmann::json::parse(out.text())["file"], "a\uFFFD\n.mov");
}

TEST(JsonDocument, EntriesHaveALineEachAndNumbersShareThem) {
    TableAtom table;
    table.entries = {entry(1, -2, 0.5, "vide"_os, "first"), entry(3, 4, -6, "soun"_os, {})};
    table.numbers = {7, std::numeric_limits<std::uint64_t>::max()};
    table.codes = {static_cast<std::int32_t>(0xA96E616D), 0x20};
    const std::string text = atomText(table, Layout::Indented);
    EXPECT_EQ(text.substr(text.find("\"properties\"")),
              "\"properties\": {\n"
              "    \"entries\": [\n"
              "      {\"count\": 1, \"shift\": -2, \"rate\": 0.5, \"code\": \"vide\", \"name\": "
              "\"first\"},\n"
              "      {\"count\": 3, \"shift\": 4, \"rate\": -6, \"code\": \"soun\", \"name\": "
              "null}\n"
              "    ],\n"
              "    \"numbers\": [7, 18446744073709551615],\n"
              "    \"codes\": [\"\u00A9nam\", \"\\u0000\\u0000\\u0000 \"]\n"
              "  },\n"
              "  \"children\": []\n"
              "}");
}

TEST(JsonDocument, EmptyTablesAreEmptyArrays) {
    const auto atom = nlohmann::json::parse(atomText(TableAtom(), Layout::Indented));
    EXPECT_EQ(atom["properties"]["entries"], nlohmann::json::array());
    EXPECT_EQ(atom["properties"]["numbers"], nlohmann::json::array());
}

TEST(JsonDocument, LongListsOfNumbersHaveTwentyOnALine) {
    TableAtom table;
    for (std::uint64_t i = 0; i < 41; ++i) table.numbers.push_back(i);
    const std::string text = atomText(table, Layout::Indented);
    const std::size_t begin = text.find("\"numbers\"");
    EXPECT_EQ(text.substr(begin, text.find("\"codes\"") - begin),
              "\"numbers\": [\n"
              "      0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19,\n"
              "      20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, "
              "39,\n"
              "      40\n"
              "    ],\n"
              "    ");
}

TEST(JsonDocument, EveryRowOfALongTableIsThere) {
    TableAtom table;
    constexpr std::uint32_t kRows = 10'007;
    for (std::uint32_t i = 0; i < kRows; ++i) {
        table.entries.push_back(entry(i, -static_cast<std::int32_t>(i), i * 0.5, "vide"_os, {}));
        table.numbers.push_back(std::uint64_t{i} << 40);
    }
    for (const Layout layout : {Layout::Indented, Layout::OneLine}) {
        const auto properties = nlohmann::json::parse(atomText(table, layout))["properties"];
        ASSERT_EQ(properties["entries"].size(), kRows);
        ASSERT_EQ(properties["numbers"].size(), kRows);
        for (std::uint32_t i = 0; i < kRows; ++i) {
            ASSERT_EQ(properties["entries"][i]["count"], i);
            ASSERT_EQ(properties["entries"][i]["shift"], -static_cast<std::int64_t>(i));
            ASSERT_EQ(properties["entries"][i]["rate"], i * 0.5);
            ASSERT_EQ(properties["numbers"][i], std::uint64_t{i} << 40);
        }
    }
}

TEST(JsonDocument, EveryRowOfALongTableOfNothingButIntegersIsThere) {
    // Of every number of digits, each just below and at a power of ten.
    std::vector<std::uint32_t> numbers = {0};
    for (std::uint32_t power = 1; numbers.size() < 20; power *= 10) {
        numbers.push_back(power);
        numbers.push_back(power * 10 - 1);
    }
    constexpr std::uint32_t kRows = 10'007;
    std::vector<VexQTSampleToChunkEntry> entries;
    for (std::uint32_t i = 0; i < kRows; ++i)
        entries.emplace_back(i, numbers[i % numbers.size()], 0xFFFFFFFF - i);
    VexQTstscAtom table;
    table.setSampleToChunkEntries(std::move(entries));
    for (const Layout layout : {Layout::Indented, Layout::OneLine}) {
        const auto rows =
            nlohmann::json::parse(atomText(table, layout))["properties"]["sampleToChunkEntries"];
        ASSERT_EQ(rows.size(), kRows);
        for (std::uint32_t i = 0; i < kRows; ++i) {
            ASSERT_EQ(rows[i]["firstChunk"], i);
            ASSERT_EQ(rows[i]["samplesPerChunk"], numbers[i % numbers.size()]);
            ASSERT_EQ(rows[i]["sampleDescriptionID"], 0xFFFFFFFF - i);
        }
    }
}

TEST(JsonDocument, EveryKindOfValueHasItsForm) {
    const auto json = [](ValueKind kind, const Value& value) {
        TextOutput out;
        JsonWriter writer(out, Layout::Indented);
        writeValue(writer, {.name = "x", .kind = kind}, value);
        return out.text();
    };
    EXPECT_EQ(json(ValueKind::Boolean, true), "true");
    EXPECT_EQ(json(ValueKind::Unsigned, std::numeric_limits<std::uint64_t>::max()),
              "18446744073709551615");
    EXPECT_EQ(json(ValueKind::Text, Value()), "null");
    EXPECT_EQ(json(ValueKind::Text, "a\n"), R"("a\n")");
    EXPECT_EQ(json(ValueKind::Data, Bytes()), R"("")");
    EXPECT_EQ(json(ValueKind::Data, Bytes{0xDE, 0xAD}), R"("dead")");
    EXPECT_EQ(json(ValueKind::Number, Number(-3)), "-3");
    EXPECT_EQ(json(ValueKind::Number, Number(0.1F)), "0.10000000149011612");
    EXPECT_EQ(json(ValueKind::Number, Number(std::numeric_limits<float>::infinity())), "null");
    EXPECT_EQ(json(ValueKind::Color, Color::rgb(1, 0.5, 0.25)),
              R"({"red": 1, "green": 0.5, "blue": 0.25, "alpha": 1})");
    EXPECT_EQ(json(ValueKind::Color, Color::grey(0.5, 0.75)), R"({"white": 0.5, "alpha": 0.75})");
    EXPECT_EQ(json(ValueKind::Transformation, Matrix{1, 2, 3, 4, 5, 6, 7, 8, 9}),
              "[1, 2, 3, 4, 5, 6, 7, 8, 9]");
}

}  // namespace
}  // namespace vexqt::cli
