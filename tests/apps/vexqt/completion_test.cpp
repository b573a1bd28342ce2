// What Tab gives: of the program itself, and in the shells.
#include <sstream>

#include "tests/apps/vexqt/calling.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms

using Words = std::vector<std::string>;

class Completion : public CommandTest {
protected:
    /// The candidates for the last word, without what is said of them.
    static Words offered(Words words) {
        words.insert(words.begin(), "__complete");
        const Called called = call(words);
        EXPECT_EQ(called.status, 0);
        EXPECT_EQ(called.errors, "");
        Words candidates;
        std::istringstream lines(called.output);
        for (std::string line; std::getline(lines, line);)
            candidates.push_back(line.substr(0, line.find('\t')));
        return candidates;
    }
    static bool isOffered(const Words& words, const std::string& candidate) {
        const Words all = offered(words);
        return std::ranges::count(all, candidate) == 1;
    }
};

TEST_F(Completion, OffersCommands) {
    EXPECT_EQ(offered({"se"}), (Words{"set", "set-key"}));
    EXPECT_EQ(offered({"--v"}), Words{"--version"});
    EXPECT_EQ(offered({"nothing-like-it"}), Words{});
    EXPECT_TRUE(isOffered({""}, "outline"));
    EXPECT_FALSE(isOffered({""}, "__complete"));
    EXPECT_TRUE(isOffered({}, "outline"));
}

TEST_F(Completion, SaysWhatACandidateIs) {
    EXPECT_EQ(call({"__complete", "outl"}).output,
              "outline\tprints the tree of atoms, one a line\n");
    EXPECT_EQ(call({"__complete", "get", movie_, "moov.mvhd.timeS"}).output,
              "moov.mvhd.timeScale\t600 time units a second\n");
}

TEST_F(Completion, OffersOptionsOfTheCommandAlone) {
    EXPECT_EQ(offered({"json", "--l"}), Words{"--lines"});
    EXPECT_EQ(offered({"outline", "--l"}), Words{});
    EXPECT_TRUE(isOffered({"set", movie_, "-"}, "--in-place"));
    EXPECT_TRUE(isOffered({"set", movie_, "-"}, "-o"));
    EXPECT_FALSE(isOffered({"outline", "--", "--"}, "--strict"));
}

TEST_F(Completion, OffersTheValuesOfOptions) {
    EXPECT_EQ(offered({"show", "--color", ""}), (Words{"auto", "always", "never"}));
    EXPECT_EQ(offered({"show", "--color=a"}), (Words{"--color=auto", "--color=always"}));
    EXPECT_EQ(offered({"set", movie_, "-o", ""}), Words{":files"});
    EXPECT_EQ(offered({"json", "--jobs", ""}), Words{});
    EXPECT_EQ(offered({"insert", movie_, "moov", "--after", "t"}), Words{"trak"});
    EXPECT_EQ(offered({"set", movie_, "--absent", "moov.mvhd.c"}),
              Words{"moov.mvhd.creationDateTime"});
    EXPECT_EQ(offered({"set", movie_, "--absent", "moov.mvhd.timeS"}), Words{});
}

TEST_F(Completion, OffersFilesWhereFilesStand) {
    for (const Words& words : {Words{"show", ""},
                               {"json", movie_, ""},
                               {"set", "--from", "settings.txt", movie_, ""},
                               {"insert", movie_, "moov", ""}})
        EXPECT_EQ(offered(words), Words{":files"}) << words.front();
}

TEST_F(Completion, OffersAtomsWherePathsStand) {
    EXPECT_EQ(offered({"show", movie_, ""}), (Words{"ftyp", "mdat", "moov", "moov."}));
    EXPECT_EQ(offered({"show", movie_, "moov.tr"}),
              (Words{"moov.trak", "moov.trak.", "moov.trak[1]", "moov.trak[1]."}));
    EXPECT_EQ(offered({"remove", movie_, "moov.mvhd", "moov.trak[1].t"}),
              Words{"moov.trak[1].tkhd"});
    EXPECT_TRUE(isOffered({"show", movie_, "moov."}, "moov.0xA96E616D"));
}

TEST_F(Completion, OffersMediaTypesInBrackets) {
    const Words words = offered({"show", movie_, "moov.trak["});
    for (const std::string path : {"moov.trak[1]", "moov.trak[vide]", "moov.trak[soun]"})
        EXPECT_EQ(std::ranges::count(words, path), 1) << path;
    EXPECT_EQ(offered({"get", movie_, "moov.trak[soun].tkhd.al"}),
              Words{"moov.trak[soun].tkhd.alternateGroup"});
}

TEST_F(Completion, OffersKeysWithTheirValues) {
    EXPECT_EQ(offered({"get", movie_, "moov.mvhd.timeS"}), Words{"moov.mvhd.timeScale"});
    EXPECT_EQ(offered({"set", movie_, "moov.mvhd.timeS"}), Words{"moov.mvhd.timeScale="});
    EXPECT_EQ(offered({"set", movie_, "moov.mvhd.timeScale="}), Words{"moov.mvhd.timeScale=600"});
    EXPECT_EQ(offered({"set", movie_, "moov.mvhd.timeScale=25"}), Words{});
    EXPECT_EQ(offered({"get", movie_, "moov.mvhd.fl"}),
              (Words{"moov.mvhd.flags0", "moov.mvhd.flags1", "moov.mvhd.flags2"}));
    EXPECT_EQ(offered({"set", movie_, "moov.mvhd.atomS"}), Words{}) << "cannot be set";
}

TEST_F(Completion, OffersRowsAndColumnsOfTables) {
    const std::string file = write(
        "table.mov",
        join({atom("ftyp"_os, {text("qt  "), u32(0), text("qt  mp42")}),
              atom("moov"_os,
                   {movieHeader(),
                    atom("trak"_os, {trackHeader(1),
                                     atom("edts"_os, {atom("elst"_os, {u32(0), u32(1), u32(600),
                                                                       u32(7), u32(0x10000)}),
                                                      zeros(1)})}),
                    zeros(1)})}));
    const std::string list = "moov.trak.edts.elst.editListEntries";
    EXPECT_EQ(offered({"insert-rows", file, "moov.trak.edts.elst."}), (Words{list, list + "["}));
    EXPECT_EQ(offered({"remove-rows", file, list + "["}), Words{list + "[0]"});
    EXPECT_EQ(offered({"get", file, list + "["}), Words{list + "[0]."});
    EXPECT_EQ(offered({"get", file, list + "[0].mediaT"}), Words{list + "[0].mediaTime"});
    EXPECT_EQ(offered({"set", file, list + "[0].mediaTime="}), Words{list + "[0].mediaTime=7"});
    EXPECT_EQ(offered({"insert-rows", file, list, "mediaT"}), Words{"mediaTime="});
    EXPECT_EQ(offered({"get", file, "ftyp.compatibleBrands["}),
              (Words{"ftyp.compatibleBrands[0]", "ftyp.compatibleBrands[1]"}));
}

TEST_F(Completion, OffersTheKeysOfMetadata) {
    ASSERT_EQ(call({"set-key", movie_, "moov.meta", "com.example.title=A", "com.example.reel=B",
                    "--in-place"})
                  .status,
              0);
    EXPECT_EQ(offered({"remove-key", movie_, "moov.meta", "com.example.t"}),
              Words{"com.example.title"});
    EXPECT_EQ(offered({"set-key", movie_, "moov.meta", "com.example.t"}),
              Words{"com.example.title="});
    EXPECT_TRUE(isOffered({"show", movie_, "moov.meta.ilst[com.example.r"},
                          "moov.meta.ilst[com.example.reel]"));
}

TEST_F(Completion, OffersClasses) {
    EXPECT_EQ(offered({"properties", "VexQTmv"}), Words{"VexQTmvhdAtom"});
}

TEST_F(Completion, OffersNothingOfWhatIsNoMovieAndSaysNothing) {
    const std::string text = write("text.mov", testing::text("no movie at all"));
    EXPECT_EQ(offered({"show", text, "moov."}), Words{});
    EXPECT_EQ(offered({"show", path("none.mov"), "moov."}), Words{});
    EXPECT_EQ(offered({"show", movie_, "moov.nope."}), Words{});
    EXPECT_EQ(offered({"show", movie_, "moov["}), Words{});
    EXPECT_EQ(offered({"show", "-", ""}), Words{});
    EXPECT_EQ(offered({"frobnicate", "--"}), Words{});
}

// MARK: In the shells

class CompletionInShell : public Completion {
protected:
    static Words linesOf(const Outcome& outcome) {
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        Words lines;
        std::istringstream text(outcome.output);
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }
    Outcome run(Words command) const {
        const std::string program = VEXQT_PROGRAM;
        const Words environment = {
            "env",
            "PATH=" + program.substr(0, program.rfind('/')) + ":" + std::getenv("PATH"),
            "HOME=" + folder_.path().string(),
            "XDG_CONFIG_HOME=" + folder_.path().string(),
            "XDG_DATA_HOME=" + folder_.path().string(),
            "D=" + folder_.path().string(),
            "C=" VEXQT_COMPLETIONS,
            "LC_ALL=C.UTF-8"};
        command.insert(command.begin(), environment.begin(), environment.end());
        return testing::run(command);
    }

    /// What COMPREPLY is, behind a word for each option that compopt got. The program's folder is
    /// the first in PATH, and the line is completed where it ends.
    Words inBash(const std::string& line) const {
        return linesOf(run({"bash", "--norc", "-c",
                            "source /usr/share/bash-completion/bash_completion || exit 1\n"
                            "source $C/vexqt.bash || exit 1\n"
                            "compopt() { echo \"$2\"; }\n"
                            "complete -p vexqt >/dev/null || exit 1\n"
                            "function=$(complete -p vexqt | sed 's/.*-F \\([^ ]*\\).*/\\1/')\n"
                            "COMP_LINE=$1 COMP_POINT=${#1} COMP_TYPE=9 COMP_KEY=9\n"
                            "$function vexqt '' ''\n"
                            "printf '%s\\n' \"${COMPREPLY[@]}\"",
                            "bash", line}));
    }
};

TEST_F(CompletionInShell, BashReplacesTheWord) {
    const std::string file = folder_.path().string() + "/clip.mov";
    EXPECT_EQ(inBash("vexqt outl"), Words{"outline"});
    EXPECT_EQ(inBash("vexqt json --li"), Words{"--lines"});
    EXPECT_EQ(inBash("vexqt get " + file + " moov.mvhd.timeS"), Words{"moov.mvhd.timeScale"});
    EXPECT_EQ(inBash("ls; vexqt get " + file + " moov.mvhd.timeS"), Words{"moov.mvhd.timeScale"});
    EXPECT_EQ(inBash("vexqt get ~/clip.mov moov.mvhd.timeS"), Words{"moov.mvhd.timeScale"});
    EXPECT_EQ(inBash("vexqt frobnicate --"), Words{""}) << "there is nothing";
}

TEST_F(CompletionInShell, BashWritesNoBlankBehindWhatGoesOn) {
    EXPECT_EQ(inBash("vexqt get ~/clip.mov moov.mv"), (Words{"nospace", "moov.mvhd."}));
    EXPECT_EQ(inBash("vexqt set ~/clip.mov moov.mvhd.timeS"),
              (Words{"nospace", "moov.mvhd.timeScale="}));
}

TEST_F(CompletionInShell, BashPartsWordsAtEqualsSignsAndColons) {
    EXPECT_EQ(inBash("vexqt set ~/clip.mov moov.mvhd.timeScale="), Words{"600"});
    EXPECT_EQ(inBash("vexqt show --color=al"), Words{"always"});
    EXPECT_EQ(inBash("vexqt set ~/clip.mov 'moov.mvhd.timeScale="),
              Words{"moov.mvhd.timeScale=600"});
    write("twice.mov",
          join({atom("moov"_os, {track(1, "soun"_os), track(2, "soun"_os), zeros(1)})}));
    EXPECT_EQ(inBash("vexqt show ~/twice.mov moov.trak[soun:"),
              (Words{"nospace", "1\\]", "1\\]."}));
}

TEST_F(CompletionInShell, BashQuotesWhatItWouldExpand) {
    EXPECT_EQ(inBash("vexqt get ~/clip.mov moov.trak[so"),
              (Words{"nospace", "moov.trak\\[soun\\]."}));
    EXPECT_EQ(inBash("vexqt get ~/clip.mov moov.trak\\[so"),
              (Words{"nospace", "moov.trak\\[soun\\]."}));
    EXPECT_EQ(inBash("vexqt get ~/clip.mov 'moov.trak[so"), (Words{"nospace", "moov.trak[soun]."}));
    write("a clip.mov", smallMovie());
    EXPECT_EQ(inBash("vexqt get '" + path("a clip.mov") + "' moov.mvhd.timeS"),
              Words{"moov.mvhd.timeScale"});
    EXPECT_EQ(inBash("vexqt get ~/a\\ clip.mov moov.mvhd.timeS"), Words{"moov.mvhd.timeScale"});
}

TEST_F(CompletionInShell, BashCompletesFiles) {
    EXPECT_EQ(inBash("vexqt show " + path("cl")), (Words{"filenames", path("clip.mov")}));
}

TEST_F(CompletionInShell, BashCompletionLoadsItByTheNameOfTheCommand) {
    // As it is installed: share/bash-completion/completions/vexqt.
    const auto installed = folder_ / "bash-completion/completions/vexqt";
    std::filesystem::create_directories(installed.parent_path());
    std::filesystem::copy(VEXQT_COMPLETIONS "/vexqt.bash", installed);
    EXPECT_EQ(linesOf(run({"bash", "--norc", "-c",
                           "source /usr/share/bash-completion/bash_completion || exit 1\n"
                           "_completion_loader vexqt; complete -p vexqt"})),
              Words{"complete -F _vexqt vexqt"});
}

TEST_F(CompletionInShell, FishOffersTheSameWithWhatItIs) {
    const auto inFish = [&](const std::string& line) {
        return linesOf(
            run({"fish", "--no-config", "-c",
                 "source $C/vexqt.fish; and complete --do-complete \"$argv[1]\"", line}));
    };
    EXPECT_EQ(inFish("vexqt outl"), Words{"outline\tprints the tree of atoms, one a line"});
    EXPECT_EQ(inFish("vexqt set $D/clip.mov moov.mvhd.timeS"), Words{});
    EXPECT_EQ(inFish("vexqt set ~/clip.mov moov.mvhd.timeS"),
              Words{"moov.mvhd.timeScale=\t600 time units a second"});
    EXPECT_EQ(inFish("vexqt get ~/clip.mov 'moov.trak[so"), Words{"moov.trak[soun].\tTrack, soun"});
    EXPECT_EQ(inFish("vexqt show " + path("cl")), Words{path("clip.mov")});
}

TEST_F(CompletionInShell, ZshIsHandedTheSameWithWhatItIs) {
    const auto inZsh = [&](const std::string& words) {
        return linesOf(run({"zsh", "-f", "-c",
                            "_describe() { local list=$3; echo ${(P)list} ${@:4} }\n"
                            "_files() { echo files }\n"
                            "words=(" +
                                words +
                                "); CURRENT=$#words; PREFIX=$words[-1]\n"
                                "complete() { source $C/_vexqt }; complete; true"}));
    };
    EXPECT_EQ(inZsh("vexqt outl"), Words{"outline:prints the tree of atoms, one a line"});
    EXPECT_EQ(inZsh("vexqt get ~/clip.mov moov.mvhd.timeS"),
              Words{"moov.mvhd.timeScale:600 time units a second"});
    EXPECT_EQ(inZsh("vexqt set '~/clip.mov' moov.mvhd.timeS"),
              Words{"moov.mvhd.timeScale=:600 time units a second -S"});
    EXPECT_EQ(inZsh("vexqt get ~/clip.mov 'moov.trak\\[so'"),
              Words{"moov.trak[soun].:Track, soun -S"});
    EXPECT_EQ(inZsh("vexqt show ''"), Words{"files"});
}

}  // namespace
}  // namespace vexqt::cli
