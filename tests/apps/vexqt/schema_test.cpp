// Every document that the program prints holds to its schema, and its atoms to what is told of
// their properties.
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/apps/vexqt/calling.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms

class Schema : public CommandTest {
protected:
    const std::string kept_ = path("kept");
    const EnvironmentVariable keeps_{"VEXQT_KEPT_DOCUMENTS", kept_.c_str()};

    /// Compares all that were kept with the schemas, and with what is told of the properties.
    Outcome compared() const {
        const std::string properties = path("properties.json");
        std::ofstream(properties) << testing::run({VEXQT_PROGRAM, "properties", "--json"}).output;
        return testing::run({"python3", VEXQT_VALIDATOR, VEXQT_SCHEMAS, properties, kept_});
    }

    /// How many documents of each kind were kept and hold.
    std::map<std::string, int> validated() const {
        const Outcome outcome = compared();
        EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
        const std::size_t last = outcome.output.rfind('\n', outcome.output.size() - 2);
        std::istringstream words(outcome.output.substr(last == std::string::npos ? 0 : last + 1));
        std::map<std::string, int> counts;
        for (std::string word; words >> word;)
            counts[word.substr(0, word.find('='))] = std::stoi(word.substr(word.find('=') + 1));
        return counts;
    }

    void keep(const std::string& schema, const nlohmann::json& document) const {
        const std::string text = document.dump();
        std::ofstream(kept_, std::ios::app) << schema << ' ' << text.size() << '\n' << text;
    }
};

TEST_F(Schema, HoldsOfEveryDocumentOfTheUnitTests) {
    // Its own claims are tested elsewhere; here it stands for what it prints.
    testing::run({VEXQT_UNIT_TESTS, "--gtest_brief=1"});
    const auto counts = validated();
    EXPECT_GT(counts.at("json"), 100);
    EXPECT_GT(counts.at("report"), 20);
    EXPECT_GT(counts.at("check"), 0);
    EXPECT_GT(counts.at("properties"), 50);
}

TEST_F(Schema, HoldsOfMoviesOfFfmpeg) {
    const std::vector<std::string> sources = {
        "-f",   "lavfi", "-i",        "testsrc=size=64x48:rate=10",
        "-f",   "lavfi", "-i",        "sine=frequency=440",
        "-t",   "2",     "-c:v",      "mpeg4",
        "-c:a", "aac",   "-metadata", "title=A title"};
    std::vector<std::string> tagged = sources;
    tagged.insert(tagged.end(), {"-movflags", "+use_metadata_tags"});
    std::vector<std::string> fragmented = sources;
    fragmented.insert(fragmented.end(), {"-movflags", "+frag_keyframe+empty_moov"});
    for (const auto& [name, arguments] : std::map<std::string, std::vector<std::string>>{
             {"a.mov", sources}, {"b.mp4", sources}, {"c.mov", tagged}, {"d.mp4", fragmented}}) {
        const std::string movie = makeMovie(folder_, name, arguments).string();
        call({"json", movie});
        call({"check", "--json", movie});
        call({"set", movie, "moov.mvhd.timeScale=25", "--in-place", "--report", "--media-digest"});
        call({"undo", movie, "--report"});
        call({"set", movie, "moov.mvhd.timeScale=25", "-o", path("copy.mov"), "--report"});
    }
    const auto counts = validated();
    EXPECT_EQ(counts.at("json"), 4);
    EXPECT_EQ(counts.at("check"), 4);
    EXPECT_EQ(counts.at("report"), 12);
}

TEST_F(Schema, HoldsOfMoviesThatAreGiven) {
    const char* folder = std::getenv("VEXQT_TEST_MOVIES");
    if (folder == nullptr) GTEST_SKIP() << "VEXQT_TEST_MOVIES names no folder of movies";
    int movies = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        ++movies;
        call({"json", "--lines", entry.path().string()});
        call({"check", "--json", entry.path().string()});
    }
    const auto counts = validated();
    EXPECT_EQ(counts.at("json"), movies);
    EXPECT_GT(movies, 0);
}

TEST_F(Schema, DoesNotHoldOfOtherDocuments) {
    using nlohmann::json;
    const json movie = json::parse(call({"json", movie_}).output);
    const json check = json::parse(call({"check", "--json", movie_}).output);
    const json report = json::parse(
        call({"set", movie_, "moov.mvhd.timeScale=25", "--in-place", "--report"}).output);
    const json classes = json::parse(call({"properties", "--json", "mvhd"}).output);
    const struct {
        std::string what, schema;
        json document;
        std::string pointer;
        json value;  ///< Null takes the member away.
    } kCases[] = {
        {"an atom without a class", "json", movie, "/rootAtoms/0/class", nullptr},
        {"a size below zero", "json", movie, "/rootAtoms/2/children/0/size", -1},
        {"a text for flags", "json", movie, "/rootAtoms/2/flags/1", "0"},
        {"digits that are none", "json", movie, "/rootAtoms/0/unknownData", "0x"},
        {"an object for a value", "json", movie, "/rootAtoms/2/children/0/properties/timeScale",
         json::object()},
        {"a number that has no room", "json", movie, "/rootAtoms/2/children/0/properties/timeScale",
         std::uint64_t{1} << 32},
        {"a text for a number", "json", movie, "/rootAtoms/2/children/0/properties/timeScale",
         "600"},
        {"an atom without a property of its class", "json", movie,
         "/rootAtoms/2/children/0/properties/duration", nullptr},
        {"a property that the class does not have", "json", movie,
         "/rootAtoms/2/children/0/properties/volume", 1},
        {"the properties of another class", "json", movie, "/rootAtoms/2/children/0/class",
         "VexQTtkhdAtom"},
        {"a matrix of eight", "json", movie, "/rootAtoms/2/children/0/properties/matrix",
         json::array({json::object({{"a", json::array({1, 2})}})})},
        {"a member that nobody knows", "json", movie, "/extra", 1},
        {"a plan without findings", "check", check, "/exact/findings", nullptr},
        {"a severity that is none", "check", check, "/exact/findings/0",
         json{{"id", "x"}, {"severity", "bad"}, {"message", ""}}},
        {"an outcome that is none", "report", report, "/outcome", "well"},
        {"another version", "report", report, "/version", 2},
        {"a range without a purpose", "report", report, "/ranges/0/purpose", nullptr},
        {"a type that is none", "properties", classes, "/classes/0/properties/0/type", "int"},
        {"columns of what is no table", "properties", classes, "/classes/0/properties/0/columns",
         json::array()},
    };
    std::filesystem::remove(kept_);
    for (const auto& [what, schema, document, pointer, value] : kCases) {
        json changed = document;
        const json::json_pointer place(pointer);
        changed[place] = value.is_null() ? json(what) : value;
        if (value.is_null()) changed[place.parent_pointer()].erase(place.back());
        keep(schema, changed);
    }
    const Outcome outcome = compared();
    EXPECT_EQ(outcome.status, 1);
    const std::string all = "invalid=" + std::to_string(std::size(kCases)) + " ";
    EXPECT_NE(outcome.output.find(all), std::string::npos) << outcome.output;
}

}  // namespace
}  // namespace vexqt::cli
