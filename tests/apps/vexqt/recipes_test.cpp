// The recipes of docs/command.md, as they stand there.
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

#include "tests/apps/vexqt/calling.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: files and programs

/// What is typed, and what is to appear behind it.
struct Step {
    std::string command, output;
};
struct Recipe {
    std::string heading;
    std::vector<Step> steps;
};

std::vector<Recipe> recipesOfPage() {
    std::ifstream page(VEXQT_RECIPES);
    EXPECT_TRUE(page);
    std::vector<Recipe> recipes;
    bool isTyped = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("## ")) recipes.push_back({.heading = line.substr(3), .steps = {}});
        if (line.starts_with("```")) {
            isTyped = line == "```console";
        } else if (isTyped && line.starts_with("$ ")) {
            recipes.back().steps.push_back({line.substr(2) + "\n", ""});
        } else if (isTyped && line.starts_with("> ")) {
            recipes.back().steps.back().command += line.substr(2) + "\n";
        } else if (isTyped) {
            recipes.back().steps.back().output += line + "\n";
        }
    }
    return recipes;
}

/// Has everything that a recipe changes: HEVC as hev1, oblong pixels, colours, stereo, coordinates
/// in two places, and dates.
const std::filesystem::path& originalMovie() {
    static const TemporaryFolder folder;
    static const std::filesystem::path movie = [] {
        std::istringstream words(
            "-f lavfi -i testsrc=size=64x48:rate=10 -f lavfi -i sine -t 1 "
            "-c:v libx265 -x265-params log-level=none -tag:v hev1 -vf setsar=4/3 "
            "-color_primaries bt709 -color_trc bt709 -colorspace bt709 -c:a pcm_s16le -ac 2 "
            "-metadata location=+48.8584+002.2945/ -metadata creation_time=2020-01-02T03:04:05Z");
        const std::vector<std::string> arguments(std::istream_iterator<std::string>(words), {});
        const std::filesystem::path made = makeMovie(folder, "clip.mov", arguments);
        const std::string place = "com.example.location.ISO6709=+48.8584+002.2945/";
        EXPECT_EQ(call({"set-key", made.string(), "moov.meta", place, "--in-place"}).status, 0);
        return made;
    }();
    return movie;
}

class Recipes : public CommandTest {
protected:
    Recipes() {
        std::filesystem::copy(originalMovie(), movie_,
                              std::filesystem::copy_options::overwrite_existing);
    }

    /// Types the recipe into one shell, in the folder of clip.mov.
    void follow(const std::string& heading) const {
        const std::vector<Recipe> recipes = recipesOfPage();
        const auto recipe = std::ranges::find(recipes, heading, &Recipe::heading);
        ASSERT_NE(recipe, recipes.end()) << heading;
        ASSERT_FALSE(recipe->steps.empty());
        const std::string program = VEXQT_PROGRAM;
        std::string script = "exec 2>&1; cd '" + folder_.path().string() + "'\n";
        std::string expected;
        for (const Step& step : recipe->steps) {
            script += step.command;
            expected += step.output;
        }
        const Outcome outcome = testing::run(
            {"env", "PATH=" + program.substr(0, program.rfind('/')) + ":" + std::getenv("PATH"),
             "LC_ALL=C.UTF-8", "bash", "-c", script});
        EXPECT_EQ(outcome.output, expected) << script;
        EXPECT_EQ(decodedDigest(movie_), decodedDigest(originalMovie()));
    }
    std::string probed(const std::string& entries) const { return probe(movie_, entries); }
    bool isProbed(const std::string& entries, const std::string& line) const {
        return ("\n" + probed(entries)).find("\n" + line + "\n") != std::string::npos;
    }
};

TEST_F(Recipes, FixAPixelAspectRatio) {
    EXPECT_TRUE(isProbed("stream=sample_aspect_ratio", "sample_aspect_ratio=4:3"));
    follow("Fix a pixel aspect ratio");
    EXPECT_TRUE(isProbed("stream=sample_aspect_ratio", "sample_aspect_ratio=1:1"));
}

TEST_F(Recipes, SetAColourTag) { follow("Set a colour tag"); }

TEST_F(Recipes, RelabelAudioChannels) { follow("Relabel audio channels"); }

TEST_F(Recipes, ChangeHev1ToHvc1) {
    follow("Change hev1 to hvc1");
    EXPECT_TRUE(isProbed("stream=codec_tag_string", "codec_tag_string=hvc1"));
}

TEST_F(Recipes, RemoveCoordinates) {
    EXPECT_NE(probed("format_tags").find("48.8584"), std::string::npos);
    follow("Remove coordinates");
    const Bytes bytes = readFile(movie_);
    const std::string all(bytes.begin(), bytes.end());
    EXPECT_EQ(all.find("48.8584"), std::string::npos) << "neither in free space";
    EXPECT_EQ(probed("format_tags").find("48.8584"), std::string::npos);
}

TEST_F(Recipes, CorrectTheCreationDatesInAllHeaders) {
    follow("Correct the creation dates in all headers");
    EXPECT_TRUE(isProbed("format_tags", "TAG:creation_time=2024-05-01T12:00:00.000000Z"));
    EXPECT_EQ(probed("stream_tags").find("2020"), std::string::npos);
}

TEST_F(Recipes, AddAMissingKey) {
    follow("Add a missing key");
    EXPECT_TRUE(isProbed("format_tags", "TAG:com.example.title=First light"));
}

TEST(RecipesPage, HasNoRecipeThatIsNotFollowedHere) {
    std::size_t recipes = 0;
    for (const Recipe& recipe : recipesOfPage()) recipes += recipe.steps.empty() ? 0 : 1;
    EXPECT_EQ(recipes, 7U);
}

}  // namespace
}  // namespace vexqt::cli
