// Saving as people meet it who have only the program: who else is at the file, what cannot be
// written, and what they read then.
#include <sys/stat.h>

#include <future>
#include <nlohmann/json.hpp>

#include "tests/apps/vexqt/calling.h"
#include "vexqt/platform/Digest.h"
#include "vexqt/platform/files.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms
namespace fs = std::filesystem;

class SavingProgram : public CommandTest {
protected:
    static Outcome vexqt(std::vector<std::string> arguments, std::string_view input = {}) {
        arguments.insert(arguments.begin(), VEXQT_PROGRAM);
        return testing::run(arguments, input);
    }
    /// By somebody who may not write what is read-only: root may without this.
    static Outcome asMortal(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), VEXQT_PROGRAM);
        if (::geteuid() == 0)
            arguments.insert(arguments.begin(),
                             {"setpriv", "--bounding-set=-dac_override,-dac_read_search"});
        return testing::run(arguments);
    }
    /// One line on standard error, nothing on standard output.
    static void expectFailure(const Outcome& outcome, const std::string& file,
                              const std::string& what, int status = 1) {
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, said(file, what));
    }
    void expectUntouched() const {
        EXPECT_EQ(readFile(movie_), smallMovie());
        EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 1) << "litter";
    }

    const std::string timeScale_ = "moov.mvhd.timeScale=25";
};

// MARK: Two at one file

TEST_F(SavingProgram, WaitsForNobodyWhoIsSavingTheSameMovie) {
    std::error_code error;
    {
        const auto held = systemFiles().openForWriting(movie_, error);
        held->lock(error);
        ASSERT_FALSE(error) << error.message();
        expectFailure(vexqt({"set", movie_, timeScale_, "--in-place"}), movie_,
                      "somebody else is saving this movie; nothing was written");
        // To read it, also into a copy, takes no lock.
        EXPECT_EQ(vexqt({"get", movie_, "moov.mvhd.timeScale"}).output, "600\n");
        EXPECT_EQ(vexqt({"set", movie_, timeScale_, "-o", path("copy.mov")}).status, 0);
        fs::remove(path("copy.mov"));
        expectUntouched();
    }
    EXPECT_EQ(vexqt({"set", movie_, timeScale_, "--in-place"}).status, 0);
}

TEST_F(SavingProgram, OfTwoAtATimeEachSavesAllOrNothing) {
    const std::string layer = "moov.trak[1].tkhd.layer=9";
    const auto saved = [&](const std::vector<std::string>& values) {
        writeFile(movie_, smallMovie());
        std::vector<std::string> arguments = {"set", movie_, "--in-place"};
        arguments.insert(arguments.end(), values.begin(), values.end());
        EXPECT_EQ(call(arguments).status, 0);
        return readFile(movie_);
    };
    const Bytes first = saved({timeScale_}), second = saved({layer});
    const Bytes both = saved({timeScale_, layer});
    int refused = 0;
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE(round);
        writeFile(movie_, smallMovie());
        auto other = std::async(std::launch::async, [&] {
            return vexqt({"set", movie_, layer, "--in-place"});
        });
        const Outcome one = vexqt({"set", movie_, timeScale_, "--in-place"});
        const Outcome two = other.get();
        const Bytes now = readFile(movie_);
        for (const Outcome& outcome : {one, two}) {
            if (outcome.status == 0) {
                EXPECT_EQ(outcome.errors, "");
                continue;
            }
            ++refused;
            EXPECT_EQ(outcome.status, 1);
            EXPECT_TRUE(
                outcome.errors ==
                    said(movie_, "somebody else is saving this movie; nothing was written") ||
                outcome.errors == said(movie_,
                                       "has changed since it was read, so nothing was written; "
                                       "run the command again"))
                << outcome.errors;
        }
        ASSERT_TRUE(one.status == 0 || two.status == 0);
        EXPECT_EQ(now, one.status != 0 ? second : two.status != 0 ? first : both);
    }
    RecordProperty("refused", refused);
}

TEST_F(SavingProgram, AMovieThatChangesWhileItIsEditedIsLeftAlone) {
    // The value comes out of a pipe, and the movie is changed before it arrives.
    const std::string pipe = path("value");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    auto saving = std::async(std::launch::async, [&] {
        return vexqt({"insert", movie_, "moov", pipe, "--in-place"});
    });
    const int end = ::open(pipe.c_str(), O_WRONLY | O_CLOEXEC);  // Waits until it is read.
    Bytes changed = smallMovie();
    changed.back() ^= 1;
    writeFile(movie_, changed);
    const Bytes value = atom("abcd"_os, {u32(1)});
    EXPECT_EQ(::write(end, value.data(), value.size()), static_cast<ssize_t>(value.size()));
    ::close(end);
    expectFailure(saving.get(), movie_,
                  "has changed since it was read, so nothing was written; run the command again");
    EXPECT_EQ(readFile(movie_), changed);
}

// MARK: What cannot be written

TEST_F(SavingProgram, AReadOnlyFileIsLeftAlone) {
    ::chmod(movie_.c_str(), 0444);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"set", movie_, timeScale_, "--in-place"},
          {"remove", movie_, "moov.trak", "--in-place"}})
        expectFailure(asMortal(command), movie_,
                      "cannot be opened for writing: Permission denied (-o OUT saves into a copy)");
    expectUntouched();
    EXPECT_EQ(asMortal({"set", movie_, timeScale_, "-o", path("copy.mov")}).status, 0);
}

TEST_F(SavingProgram, AFileThatMayNotBeReadIsNamed) {
    ::chmod(movie_.c_str(), 0);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"set", movie_, timeScale_, "--in-place"},
          {"set", movie_, timeScale_, "-o", path("copy.mov")},
          {"save", movie_},
          {"check", movie_}})
        expectFailure(asMortal(command), movie_, "Permission denied");
    ::chmod(movie_.c_str(), 0644);
    expectUntouched();
}

TEST_F(SavingProgram, InAReadOnlyFolderThereIsNoSafeWay) {
    ::chmod(folder_.path().c_str(), 0555);
    const Outcome inPlace = asMortal({"set", movie_, timeScale_, "--in-place"});
    expectFailure(inPlace, movie_,
                  "making the journal " + path(".clip.mov.vexqt-journal") +
                      ": Permission denied; the movie is as it was (-o OUT saves into a copy)");
    const Outcome copy = asMortal({"set", movie_, timeScale_, "-o", path("copy.mov")});
    EXPECT_EQ(copy.status, 1);
    EXPECT_TRUE(copy.errors.starts_with("vexqt: " + path("copy.mov") + ": ")) << copy.errors;
    EXPECT_NE(copy.errors.find("Permission denied"), std::string::npos) << copy.errors;
    EXPECT_EQ(std::ranges::count(copy.errors, '\n'), 1);
    ::chmod(folder_.path().c_str(), 0755);
    expectUntouched();
}

TEST_F(SavingProgram, WhatIsNoFileIsRefusedAtOnce) {
    const std::string pipe = path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const auto& [name, kind] : {std::pair<std::string, std::string>(pipe, "a pipe"),
                                     {"/dev/null", "a device"},
                                     {"/dev/zero", "a device"},
                                     {folder_.path().string(), "a folder"}}) {
        SCOPED_TRACE(name);
        const std::string what =
            "is " + kind + ", and only what lies in a file can be saved in place";
        for (const std::vector<std::string>& command :
             {std::vector<std::string>{"set", name, timeScale_, "--in-place"},
              {"save", name},
              {"check", name},
              {"undo", name},
              {"recover", name}}) {
            SCOPED_TRACE(command.front());
            expectFailure(vexqt(command), name, what);
        }
        if (name == pipe) continue;
        expectFailure(vexqt({"set", name, timeScale_, "-o", path("copy.mov")}), name,
                      "is " + kind + ", not a movie");
    }
    fs::remove(pipe);
    expectUntouched();
}

TEST_F(SavingProgram, AFileThatIsNotThereIsNamedOnce) {
    const std::string none = path("none.mov");
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"set", none, timeScale_, "--in-place"},
          {"set", none, timeScale_, "-o", path("copy.mov")},
          {"save", none},
          {"check", none},
          {"undo", none},
          {"recover", none}}) {
        SCOPED_TRACE(command.front());
        expectFailure(vexqt(command), none, "No such file or directory");
    }
    expectUntouched();
}

TEST_F(SavingProgram, ACopyHasToHaveAPlaceOfItsOwn) {
    const std::string link = path("link.mov"), hardLink = path("hard.mov");
    fs::create_symlink(movie_, link);
    fs::create_hard_link(movie_, hardLink);
    const std::string another = "is the movie itself under another name";
    const std::string pipe = path("pipe"), missing = path("none") + "/copy.mov";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const struct {
        std::string output, what;
    } cases[] = {
        {movie_, "is the movie itself"},
        {link, another},
        {hardLink, another},
        {path("./clip.mov"), another},
        {path("../" + folder_.path().filename().string() + "/clip.mov"), another},
        {pipe, "is a pipe, which is not replaced by a file"},
        {"/dev/null", "is a device, which is not replaced by a file"},
        {folder_.path().string(), "is a folder, which is not replaced by a file"},
        {missing, "there is no folder " + path("none")},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.output);
        expectFailure(vexqt({"set", movie_, timeScale_, "-o", each.output}), each.output,
                      each.what);
        expectFailure(vexqt({"data", movie_, "moov", "-o", each.output}), each.output, each.what);
        // Neither does the source's other name make a difference.
        if (each.output == hardLink)
            expectFailure(vexqt({"set", hardLink, timeScale_, "-o", movie_}), movie_, another);
    }
    for (const std::string& name : {link, hardLink, pipe}) fs::remove(name);
    expectUntouched();
}

TEST_F(SavingProgram, ALinkIsSavedWhereItLeads) {
    const std::string link = path("link.mov"), hardLink = path("hard.mov");
    fs::create_symlink("clip.mov", link);
    fs::create_hard_link(movie_, hardLink);
    EXPECT_EQ(vexqt({"set", link, timeScale_, "--in-place"}).status, 0);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(vexqt({"get", hardLink, "moov.mvhd.timeScale"}).output, "25\n");
    EXPECT_EQ(fs::hard_link_count(movie_), 2U);
    // The save is found by any name that leads there, but for a second hard link's.
    EXPECT_EQ(vexqt({"undo", path("./link.mov")}).status, 0);
    EXPECT_EQ(readFile(movie_), smallMovie());
}

// MARK: Refusals

class RefusedSaves : public SavingProgram {
protected:
    /// One line that ends with the finding and the way out, status 3, the file as it was.
    void expectRefused(std::vector<std::string> arguments, const std::string& ending) {
        const std::string file = arguments[1];
        const Bytes before = readFile(file);
        const Outcome outcome = vexqt(std::move(arguments));
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
        EXPECT_TRUE(outcome.errors.ends_with(ending + "\n")) << outcome.errors;
        EXPECT_EQ(readFile(file), before);
    }

    const std::string more_ = write("more.bin", atom("abcd"_os, {zeros(90)}));
    const std::string fragments_ = write(
        "fragments.mov",
        join({atom("moov"_os, {movieHeader(), zeros(1)}),
              atom("moof"_os, {atom("mfhd"_os, {u32(1), u32(1)})}), atom("mdat"_os, {zeros(9)})}));
};

TEST_F(RefusedSaves, NameTheFindingAndTheWayOut) {
    expectRefused({"insert", fragments_, "moov", more_, "--in-place"},
                  "[behind-fragments]; nothing was written (-o OUT leaves this file as it is; "
                  "--force saves all the same)");
    expectRefused({"insert", fragments_, "moov", more_, "-o", path("copy.mov")},
                  "[behind-fragments]; nothing was written (--force saves all the same)");
    expectRefused({"save", fragments_},
                  "[behind-fragments]; nothing was written (--force saves all the same)");
    EXPECT_FALSE(fs::exists(path("copy.mov")));
}

TEST_F(RefusedSaves, ComeAboutWithForce) {
    EXPECT_EQ(vexqt({"insert", fragments_, "moov", more_, "--in-place", "--force"}).status, 0);
    EXPECT_EQ(vexqt({"get", fragments_, "moov.abcd.size"}).output, "98\n");
}

TEST_F(RefusedSaves, OfAnExactSaveNameTheOtherForm) {
    const std::string lone = write("lone.mov", join({atom("ftyp"_os, {text("qt  "), u32(0)}),
                                                     atom("moov"_os, {movieHeader(), zeros(1)})}));
    expectRefused({"set", lone, timeScale_, "--exact", "--in-place"},
                  "[movie-not-written]; nothing was written (try it without --exact; -o OUT leaves "
                  "this file as it is; --force saves all the same)");
    EXPECT_EQ(vexqt({"set", lone, timeScale_, "--in-place"}).status, 0);
}

TEST_F(RefusedSaves, ForWantOfRoomAreNotForced) {
    // The file type cannot become longer where the next atom follows it.
    for (const bool isForced : {false, true}) {
        std::vector<std::string> arguments = {"insert-rows", movie_, "ftyp.compatibleBrands",
                                              "=mp42", "--in-place"};
        if (isForced) arguments.push_back("--force");
        expectRefused(arguments,
                      "[no-room]; nothing was written (--force does not help, as there is "
                      "nothing to write)");
    }
}

// MARK: Proof

TEST_F(SavingProgram, ProvesThatSparseMediaOfTwoGigabytesIsUntouched) {
    // The media is a hole: its digest is that of as many zeros.
    constexpr std::uint64_t kMedia = std::uint64_t{1} << 31;
    const std::string file = write("sparse.mov", join({atom("ftyp"_os, {text("qt  "), u32(0)}),
                                                       u32(1), text("mdat"), u64(kMedia + 16)}));
    fs::resize_file(file, 16 + 16 + kMedia);
    {
        std::error_code error;
        const auto open = systemFiles().openForWriting(file, error);
        open->writeAt(32 + kMedia, atom("moov"_os, {movieHeader(), zeros(1)}), error);
        ASSERT_FALSE(error);
    }
    const Outcome outcome =
        vexqt({"set", file, timeScale_, "--in-place", "--report", "--media-digest"});
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "") << "progress is for terminals";
    const auto media = nlohmann::json::parse(outcome.output)["media"];
    EXPECT_EQ(media["before"], "a7c744c13cc101ed66c29f672f92455547889cc586ce6d44fe76ae824958ea51");
    EXPECT_EQ(media["after"], media["before"]);
    EXPECT_EQ(media["ranges"][0]["length"], kMedia);
    struct stat status = {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_LT(status.st_blocks * 512, 1 << 20) << "a hole stays one";
}

}  // namespace
}  // namespace vexqt::cli
