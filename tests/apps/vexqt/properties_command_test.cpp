#include <nlohmann/json.hpp>

#include "tests/apps/vexqt/calling.h"
#include "vexqt/asset/atom_classes.h"

namespace vexqt::cli {
namespace {

using nlohmann::json;

json classNamed(const std::string& name) {
    const Called called = call({"properties", "--json", name});
    EXPECT_EQ(called.status, 0);
    const json document = json::parse(called.output);
    EXPECT_EQ(document["version"], 1);
    EXPECT_EQ(document["classes"].size(), 1U);
    return document["classes"][0];
}

json propertyNamed(const json& cls, const std::string& name) {
    for (const json& property : cls["properties"])
        if (property["name"] == name) return property;
    ADD_FAILURE() << "no " << name;
    return {};
}

TEST(PropertiesCommand, PrintsAClassForPeople) {
    EXPECT_EQ(call({"properties", "VexQTsttsAtom"}).output,
              "VexQTsttsAtom  'stts'  Time-to-Sample\n"
              "  sampleDurations                       table\n"
              "  sampleDurations[].sampleCount         unsigned, 32 bits   samples\n"
              "  sampleDurations[].sampleDuration      unsigned, 32 bits   time units\n");
    EXPECT_EQ(call({"properties", "moof"}).output,
              "VexQTmoofAtom  'moof'  Movie Segment\n"
              "  originalSize                          unsigned, 64 bits   bytes\n");
}

TEST(PropertiesCommand, TellsTypeUnitAndWhetherItCanBeSet) {
    const json header = classNamed("VexQTmvhdAtom");
    EXPECT_EQ(header["type"], "mvhd");
    EXPECT_EQ(header["name"], "Movie Header");
    EXPECT_EQ(propertyNamed(header, "timeScale"), (json{{"name", "timeScale"},
                                                        {"type", "unsigned"},
                                                        {"bits", 32},
                                                        {"unit", "time units a second"},
                                                        {"canBeSet", true},
                                                        {"canBeAbsent", false}}));
    EXPECT_EQ(propertyNamed(header, "creationDateTime"), (json{{"name", "creationDateTime"},
                                                               {"type", "date"},
                                                               {"canBeSet", true},
                                                               {"canBeAbsent", true}}));
    EXPECT_EQ(propertyNamed(header, "matrix")["type"], "matrix");
    const json sound = classNamed("VexQTsounSampleDescription");
    EXPECT_EQ(propertyNamed(sound, "hideV1Fields")["canBeSet"], false);
    EXPECT_EQ(propertyNamed(sound, "dataFormat")["type"], "code");
    EXPECT_FALSE(propertyNamed(sound, "dataFormat").contains("bits"));
}

TEST(PropertiesCommand, TellsTheColumnsOfTables) {
    const json table = propertyNamed(classNamed("stts"), "sampleDurations");
    EXPECT_EQ(table["type"], "table");
    EXPECT_EQ(table["columns"][1]["name"], "sampleDuration");
    EXPECT_EQ(table["columns"][1]["unit"], "time units");
    const json plain = propertyNamed(classNamed("stss"), "syncSamples");
    EXPECT_EQ(plain["element"]["type"], "unsigned");
    EXPECT_EQ(plain["element"]["canBeSet"], true);
    EXPECT_FALSE(plain.contains("columns"));
}

TEST(PropertiesCommand, WithoutAClassListsAllAndWhatEveryAtomHas) {
    const json document = json::parse(call({"properties", "--json"}).output);
    EXPECT_EQ(document["classes"].size(), atomClasses().size());
    EXPECT_EQ(document["common"][0]["name"], "atomName");
    const std::string text = call({"properties"}).output;
    EXPECT_TRUE(text.starts_with("every atom\n  atomName "));
    for (const AtomClass* cls : atomClasses()) {
        if (cls->create()->properties().empty()) continue;
        EXPECT_NE(text.find("\n" + std::string(cls->className) + "  "), std::string::npos);
    }
}

TEST(PropertiesCommand, EveryPropertyThatItCallsSettableIsSetByItsName) {
    for (const AtomClass* cls : atomClasses()) {
        const json told = classNamed(std::string(cls->className));
        for (const json& property : told["properties"]) {
            const auto atom = cls->create();
            const Field* field = atom->propertyNamed(property["name"].get<std::string>());
            ASSERT_NE(field, nullptr);
            EXPECT_EQ(property["canBeSet"].get<bool>(),
                      field->set != nullptr || field->list != nullptr)
                << cls->className << "." << field->name;
        }
    }
}

TEST(PropertiesCommand, AClassThatIsNotThereIsAMistake) {
    const Called called = call({"properties", "VexQTmvdhAtom"});
    EXPECT_EQ(called.status, 2);
    EXPECT_EQ(called.errors, "vexqt: no class 'VexQTmvdhAtom'; did you mean VexQTmvhdAtom?\n");
    EXPECT_EQ(call({"properties", "mvhd", "tkhd"}).status, 2);
}

}  // namespace
}  // namespace vexqt::cli
