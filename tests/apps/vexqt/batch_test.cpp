// Many files: lists of names, several at a time, and one file of settings for all.
#include <nlohmann/json.hpp>
#include <sstream>

#include "apps/vexqt/FileNames.h"
#include "apps/vexqt/batch.h"
#include "apps/vexqt/set_from.h"
#include "tests/apps/vexqt/calling.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms

using Words = std::vector<std::string>;

Words linesOf(const std::string& text) {
    Words lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

/// As call(), with a file on standard input.
Called callWithInput(const std::string& file, const Words& arguments) {
    TextOutput out, errors;
    const int input = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    Called called;
    called.status = run(arguments, out, errors, input);
    ::close(input);
    called.output = out.text();
    called.errors = errors.text();
    return called;
}

class Batch : public CommandTest {
protected:
    std::string writeText(const std::string& name, const std::string& text) const {
        return write(name, Bytes(text.begin(), text.end()));
    }
    std::string timeScaleOf(const std::string& file) const {
        return call({"get", file, "moov.mvhd.timeScale"}).output;
    }
    Words movies(int count) const {
        Words files;
        for (int i = 0; i < count; ++i)
            files.push_back(write("clip" + std::to_string(i) + ".mov", smallMovie()));
        return files;
    }
};

// MARK: Names

using FileNamesTest = Batch;

Words namesIn(const Arguments& arguments, Console& console) {
    FileNames names(arguments, console);
    Words all;
    while (const auto name = names.next()) all.push_back(*name);
    EXPECT_EQ(names.end(console), ExitStatus::Done);
    return all;
}

TEST_F(FileNamesTest, AreThoseOfTheLineAndThenThoseOfTheList) {
    TextOutput out, errors;
    Console console = {.out = out, .err = errors};
    const struct {
        std::string what, list;
        bool areZeroEnded;
        Words names;
    } kCases[] = {
        {"a line each", "a\nb\n", false, {"first", "a", "b"}},
        {"no end behind the last", "a\nb", false, {"first", "a", "b"}},
        {"blank lines", "\na\n\n\nb\n\n", false, {"first", "a", "b"}},
        {"blanks belong to names", " a b \n\tc\r\n", false, {"first", " a b ", "\tc\r"}},
        {"zero bytes", std::string("a\nb\0c\0", 6), true, {"first", "a\nb", "c"}},
        {"nothing", "", false, {"first"}},
        {"a name that means standard input", "-\n", false, {"first", "./-"}},
        {"names longer than what is read at once",
         std::string(200'000, 'x') + "\n" + std::string(70'000, 'y'),
         false,
         {"first", std::string(200'000, 'x'), std::string(70'000, 'y')}},
    };
    for (const auto& [what, list, areZeroEnded, names] : kCases) {
        SCOPED_TRACE(what);
        Arguments arguments;
        arguments.files = {"first"};
        arguments.filesFrom = writeText("list", list);
        arguments.areNamesZeroEnded = areZeroEnded;
        EXPECT_EQ(namesIn(arguments, console), names);
    }
    EXPECT_EQ(errors.text(), "");
}

TEST_F(FileNamesTest, AListThatIsNotThereIsAFailureBehindTheFilesOfTheLine) {
    const Called called = call({"json", "--lines", movie_, "--files-from", path("none")});
    EXPECT_EQ(called.status, 1);
    EXPECT_EQ(linesOf(called.output).size(), 1U);
    EXPECT_EQ(called.errors, said(path("none"), "No such file or directory"));
    EXPECT_EQ(call({"outline", "--files-from", folder_.path().string()}).errors,
              said(folder_.path().string(), "Is a directory"));
}

TEST_F(FileNamesTest, GiveEveryCommandOfManyFilesItsFiles) {
    const std::string list = writeText("list", movie_ + "\n" + movie_ + "\n");
    for (const std::string command : {"outline", "json", "check"}) {
        SCOPED_TRACE(command);
        const std::string one = call({command, movie_}).output;
        EXPECT_EQ(call({command, "--files-from", list}).output, one + one);
        EXPECT_EQ(callWithInput(list, {command, "--files-from", "-"}).output, one + one);
    }
}

TEST_F(FileNamesTest, StandardInputIsReadOnce) {
    for (const Words& words : {Words{"json", "-", "--files-from", "-"},
                               Words{"set", "--from", "-", "--files-from", "-", "--in-place"}}) {
        const Called called = call(words);
        EXPECT_EQ(called.status, 2);
        EXPECT_NE(called.errors.find("standard input can be read only once"), std::string::npos);
    }
}

// MARK: Several at a time

TEST_F(Batch, JsonOfSeveralAtATimeIsThatOfOneBehindTheOther) {
    Words arguments = {"json", "--lines"};
    for (const std::string& file : movies(40)) arguments.push_back(file);
    arguments.insert(arguments.begin() + 20, path("none.mov"));
    arguments.insert(arguments.begin() + 30,
                     writeText("broken.mov", std::string("\0\0\0\x20moov\0\0\0\x10", 12)));
    const Called one = call(arguments);
    ASSERT_EQ(linesOf(one.output).size(), 41U);
    for (const std::string jobs : {"2", "3", "8"}) {
        arguments.insert(arguments.begin() + 1, {"--jobs", jobs});
        const Called several = call(arguments);
        EXPECT_EQ(several.output, one.output) << jobs;
        EXPECT_EQ(several.errors, one.errors) << jobs;
        EXPECT_EQ(several.status, one.status) << jobs;
        arguments.erase(arguments.begin() + 1, arguments.begin() + 3);
    }
}

TEST_F(Batch, DocumentsThatAreLongerThanWhatIsKeptComeInOrderToo) {
    Words arguments = {"json", "--lines", "--jobs", "4"};
    const Bytes movie =
        join({atom("ftyp"_os, {text("qt  "), u32(0)}), atom("abcd"_os, {zeros(1'200'000)})});
    for (int i = 0; i < 12; ++i)
        arguments.push_back(write("long" + std::to_string(i) + ".mov", movie));
    const Words lines = linesOf(call(arguments).output);
    ASSERT_EQ(lines.size(), 12U);
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_TRUE(lines[i].starts_with("{\"file\":\"" + arguments[4 + i] + "\"")) << i;
}

TEST_F(Batch, AStrictReadingEndsWithTheFirstFileThatFails) {
    Words arguments = {"json", "--lines", "--strict"};
    for (const std::string& file : movies(20)) arguments.push_back(file);
    arguments.insert(arguments.begin() + 6, path("none.mov"));
    const Called one = call(arguments);
    EXPECT_EQ(one.status, 1);
    EXPECT_EQ(linesOf(one.output).size(), 3U);
    arguments.insert(arguments.end(), {"--jobs", "4"});
    const Called several = call(arguments);
    EXPECT_EQ(several.status, 1);
    EXPECT_EQ(several.output, one.output);
    EXPECT_EQ(several.errors, one.errors);
}

/// Takes a few bytes and is gone.
class ShortPipe final : public Output {
public:
    void send(std::string_view bytes) override {
        taken_ += bytes.size();
        if (taken_ > 1000) throw OutputClosed();
    }

private:
    std::size_t taken_ = 0;
};

TEST_F(Batch, AClosedPipeEndsAllJobs) {
    Words arguments = {"json", "--jobs", "4"};
    for (const std::string& file : movies(100)) arguments.push_back(file);
    ShortPipe out;
    TextOutput errors;
    EXPECT_EQ(run(arguments, out, errors, 0), 0);
    EXPECT_EQ(errors.text(), "");
}

TEST_F(Batch, JobsAreFromOneTo256) {
    for (const std::string jobs : {"0", "257", "-1", "many"})
        EXPECT_EQ(call({"json", movie_, "--jobs", jobs}).status, 2) << jobs;
    EXPECT_EQ(call({"json", movie_, "--jobs", "256"}).status, 0);
}

TEST(Worse, AFailureIsWorseThanAMistakeAndThatIsWorseThanARefusal) {
    const ExitStatus fromBest[] = {ExitStatus::Done, ExitStatus::Refused, ExitStatus::WrongUsage,
                                   ExitStatus::Failed};
    for (std::size_t i = 0; i < std::size(fromBest); ++i)
        for (std::size_t j = 0; j <= i; ++j) {
            EXPECT_EQ(worse(fromBest[i], fromBest[j]), fromBest[i]);
            EXPECT_EQ(worse(fromBest[j], fromBest[i]), fromBest[i]);
        }
}

// MARK: Settings

TEST(Settings, AreOneALine) {
    const struct {
        std::string what, text;
        Words assignments;
    } kCases[] = {
        {"two", "a.b=1\nc.d=2\n", {"a.b=1", "c.d=2"}},
        {"comments and blank lines", "# about\n\n  # more\na.b=1\n   \n", {"a.b=1"}},
        {"no line end behind the last", "a.b=1", {"a.b=1"}},
        {"the line ends of other systems", "a.b=1\r\nc.d=x\r\n", {"a.b=1", "c.d=x"}},
        {"a mark of the byte order",
         "\xEF\xBB\xBF"
         "a.b=1\n",
         {"a.b=1"}},
        {"blanks around the key", "  a.b = 1 \n", {"a.b= 1 "}},
        {"equals signs in the value and in brackets", "a[x=y].b=c=d\n", {"a[x=y].b=c=d"}},
        {"a number sign in the value", "a.b=#FF0000\n", {"a.b=#FF0000"}},
        {"an empty value", "a.b=\n", {"a.b="}},
        {"nothing", "", {}},
    };
    for (const auto& [what, text, assignments] : kCases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(assignmentsIn(text), assignments);
    }
}

TEST_F(Batch, AMistakeInTheSettingsIsFoundBeforeAnythingIsChanged) {
    const struct {
        std::string settings, what;
    } kCases[] = {
        {"moov.mvhd.timeScale=25\n\nmoov.mvhd.duration\n",
         "line 3: 'moov.mvhd.duration' is no assignment: KEY=VALUE"},
        {"moov.mvhd.timeScale=25\nmoov..duration=1\n",
         "line 2: 'moov..duration' is no path: a name is missing at 6"},
        {"# nothing\n", "there is no setting in it"},
    };
    for (const auto& [settings, what] : kCases) {
        const std::string file = writeText("settings", settings);
        const Called called = call({"set", movie_, "--from", file, "--in-place"});
        EXPECT_EQ(called.status, 2);
        EXPECT_EQ(called.errors, said(file, what));
        EXPECT_EQ(called.output, "");
        EXPECT_EQ(readFile(movie_), smallMovie());
    }
    EXPECT_EQ(call({"set", movie_, "--from", path("none"), "--in-place"}).status, 1);
}

class SetFrom : public Batch {
protected:
    const std::string settings_ = writeText("settings",
                                            "moov.mvhd.timeScale=25\n"
                                            "moov.trak[1].tkhd.layer=9\n");
};

TEST_F(SetFrom, SetsEveryValueInEveryMovie) {
    const Words files = movies(3);
    Words arguments = {"set", "--from", settings_, "--in-place"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    const Called called = call(arguments);
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.errors, "");
    EXPECT_EQ(called.output, files[0] + ": done\n" + files[1] + ": done\n" + files[2] + ": done\n");
    for (const std::string& file : files) {
        EXPECT_EQ(timeScaleOf(file), "25\n");
        EXPECT_EQ(call({"get", file, "moov.trak[1].tkhd.layer"}).output, "9\n");
    }
}

TEST_F(SetFrom, ReadsSettingsAndNamesFromStandardInput) {
    EXPECT_EQ(callWithInput(settings_, {"set", movie_, "--from", "-", "--in-place"}).output,
              movie_ + ": done\n");
    EXPECT_EQ(timeScaleOf(movie_), "25\n");
    const Words files = movies(2);
    const std::string list = writeText("list", files[0] + '\0' + files[1] + '\0');
    EXPECT_EQ(callWithInput(
                  list, {"set", "--from", settings_, "--files-from", "-", "--null", "--in-place"})
                  .output,
              files[0] + ": done\n" + files[1] + ": done\n");
}

TEST_F(SetFrom, SavesACopyOfOneMovie) {
    const std::string copy = path("copy.mov");
    EXPECT_EQ(call({"set", movie_, "--from", settings_, "-o", copy}).output, movie_ + ": done\n");
    EXPECT_EQ(timeScaleOf(copy), "25\n");
    EXPECT_EQ(readFile(movie_), smallMovie());
    EXPECT_EQ(call({"set", movie_, copy, "--from", settings_, "-o", path("more.mov")}).status, 2);
}

TEST_F(SetFrom, AMovieThatIsRefusedOrFailsStopsNoOther) {
    const std::string fragments = write(
        "fragments.mov",
        join({atom("moov"_os, {movieHeader(), track(1, "vide"_os), track(2, "soun"_os), zeros(1)}),
              atom("moof"_os, {atom("mfhd"_os, {u32(1), u32(1)})}), atom("mdat"_os)}));
    const std::string short_ =
        write("short.mov", join({atom("ftyp"_os, {text("qt  "), u32(0)}),
                                 atom("moov"_os, {movieHeader(), zeros(1)})}));
    const Words files = movies(2);
    for (const std::string jobs : {"1", "4"}) {
        SCOPED_TRACE(jobs);
        const Called called = call({"set", "--from", settings_, "--in-place", "--exact", "--jobs",
                                    jobs, files[0], path("none.mov"), short_, fragments, files[1]});
        EXPECT_EQ(called.status, 1);
        const Words lines = linesOf(called.output);
        ASSERT_EQ(lines.size(), 5U) << called.output;
        EXPECT_EQ(lines[0], files[0] + ": done");
        EXPECT_EQ(lines[1], path("none.mov") + ": failed: No such file or directory");
        EXPECT_TRUE(lines[2].starts_with(short_ + ": failed: moov.trak[1]: no 'trak'")) << lines[2];
        EXPECT_TRUE(lines[3].starts_with(fragments + ": refused: ")) << lines[3];
        EXPECT_EQ(lines[4], files[1] + ": done");
        EXPECT_EQ(called.errors.find("none.mov"), std::string::npos) << "said once";
        EXPECT_EQ(timeScaleOf(short_), "600\n") << "nothing of it is set";
    }
}

TEST_F(SetFrom, TheWorstOutcomeIsTheStatus) {
    const std::string bad = writeText("bad", "moov.mvhd.timeScale=x\n");
    EXPECT_EQ(call({"set", "--from", bad, "--in-place", movie_}).status, 2);
    EXPECT_EQ(call({"set", "--from", bad, "--in-place", path("none.mov"), movie_}).status, 1);
}

TEST_F(SetFrom, TheSameMovieTwiceIsSetOneBehindTheOtherOrNotAtAll) {
    Words arguments = {"set", "--from", settings_, "--in-place", "--jobs", "4"};
    for (int i = 0; i < 20; ++i) arguments.push_back(movie_);
    const Called called = call(arguments);
    EXPECT_EQ(linesOf(called.output).size(), 20U);
    EXPECT_EQ(timeScaleOf(movie_), "25\n");
    EXPECT_EQ(readFile(movie_).size(), smallMovie().size());
}

TEST_F(SetFrom, ReportsTakeThePlaceOfTheLines) {
    const Called called = call({"set", "--from", settings_, "--in-place", "--report", movie_});
    EXPECT_EQ(nlohmann::json::parse(called.output)["outcome"], "saved");
    EXPECT_EQ(called.errors, movie_ + ": done\n");
}

TEST_F(SetFrom, OptionsThatNeedItSaySo) {
    const struct {
        Words words;
        std::string what;
    } kCases[] = {
        {{"set", movie_, "a.b=1", "--in-place", "--jobs", "2"}, "--jobs goes with --from alone"},
        {{"set", "--files-from", "list", "--in-place"}, "--files-from goes with --from alone"},
        {{"json", movie_, "--null"}, "--null goes with --files-from alone"},
        {{"set", movie_, "--from", settings_}, "either --in-place or -o OUT is needed"},
        {{"set", "--from", settings_, "--in-place"}, "FILE is missing"},
        {{"set", "-", "--from", settings_, "--in-place"},
         "standard input cannot be changed in place"},
    };
    for (const auto& [words, what] : kCases) {
        const Called called = call(words);
        EXPECT_EQ(called.status, 2) << what;
        EXPECT_NE(called.errors.find(what), std::string::npos) << called.errors;
    }
}

}  // namespace
}  // namespace vexqt::cli
