// Saving movies in the files of a machine, in place and as a copy: links, owners, holes, pipes, and
// one save after the other.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <chrono>
#include <iostream>

#include "saving/saves.h"
#include "vexqt/saving/UndoStore.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;
using Outcome = SaveResult::Outcome;
namespace fs = std::filesystem;

const Bytes kMovieFirst = join({kFileType, movie(40), kMedia});

class MovieFiles : public ::testing::Test {
protected:
    MovieFiles() { writeFile(path, kMovieFirst); }

    static std::unique_ptr<VexQTAsset> read(const fs::path& from, const Editing& edit) {
        std::error_code error;
        auto asset = VexQTAsset::initWithURL(from, error, {.tolerant = true});
        if (asset) edit(*asset);
        return asset;
    }
    SaveResult saveThrough(const fs::path& name, const Editing& edit, SaveOptions options = {}) {
        const auto asset = read(name, edit);
        SaveResult result = saveInPlace(*asset, options);
        told = textOf(result);
        return result;
    }
    SaveResult copyThrough(const fs::path& to, const Editing& edit) {
        const auto asset = read(path, edit);
        SaveResult result = saveCopy(*asset, to);
        told = textOf(result);
        return result;
    }
    static std::string textOf(const SaveResult& result) {
        std::string all = result.failure ? result.failure->what : "";
        for (const Finding& finding : result.plan.findings()) all += "\n" + finding.message;
        return all;
    }
    std::size_t entries() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(movies), {}));
    }
    static struct stat statusOf(const fs::path& of) {
        struct stat status = {};
        EXPECT_EQ(::stat(of.c_str(), &status), 0);
        return status;
    }
    /// Runs some work as somebody who is not allowed everything, and gives what it gives.
    static int asNobody(const std::function<int()>& work) {
        if (::geteuid() != 0) return work();
        const pid_t child = ::fork();
        if (child == 0) {
            if (::setgid(65534) != 0 || ::setuid(65534) != 0) ::_exit(99);
            ::_exit(work());
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    TemporaryFolder folder;
    const fs::path movies = [this] {
        fs::permissions(folder.path(), fs::perms(0755));
        fs::create_directory(folder / "movies");
        return fs::canonical(folder / "movies");
    }();
    const fs::path path = movies / "a.mov";
    const Bytes edited = [] {
        Bytes bytes = kMovieFirst;
        std::ranges::copy(u32(90000), bytes.begin() + 48);
        return bytes;
    }();
    std::string told;  ///< What the last save told.
};

// MARK: What is known of a file

TEST_F(MovieFiles, KeepLinksModeOwnerAndAttributesInPlace) {
    fs::create_symlink("movies/a.mov", folder / "soft.mov");
    fs::create_hard_link(path, folder / "hard.mov");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    ASSERT_TRUE(::geteuid() != 0 || ::chown(path.c_str(), 12, 34) == 0);
    const bool hasAttributes = ::setxattr(path.c_str(), "user.vexqt.test", "value", 5, 0) == 0;
    const struct stat before = statusOf(path);
    // A patch, one in the old place, a move.
    for (const Editing& edit : {Editing(setTimeScale), Editing(shrink), grow(300)})
        EXPECT_EQ(saveThrough(folder / "soft.mov", edit).outcome, Outcome::Saved) << told;
    const struct stat after = statusOf(path);
    EXPECT_TRUE(fs::is_symlink(folder / "soft.mov"));
    EXPECT_EQ(readFile(folder / "hard.mov"), readFile(path));
    EXPECT_EQ(after.st_nlink, 2U);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    EXPECT_EQ(entries(), 1U);
    if (!hasAttributes) GTEST_SKIP() << "the rest: no extended attributes here";
    std::string value(5, ' ');
    EXPECT_EQ(::getxattr(path.c_str(), "user.vexqt.test", value.data(), value.size()), 5);
    EXPECT_EQ(value, "value");
}

TEST_F(MovieFiles, GiveTheirModeAndAttributesToCopies) {
    ASSERT_EQ(::chmod(path.c_str(), 0440), 0);
    const bool hasAttributes = ::setxattr(path.c_str(), "user.vexqt.test", "value", 5, 0) == 0 &&
                               ::setxattr(path.c_str(), "user.empty", "", 0, 0) == 0;
    const struct stat before = statusOf(path);
    EXPECT_EQ(copyThrough(movies / "b.mov", setTimeScale).outcome, Outcome::Saved) << told;
    EXPECT_EQ(statusOf(movies / "b.mov").st_mode, before.st_mode);
    EXPECT_EQ(readFile(movies / "b.mov"), edited);
    EXPECT_EQ(readFile(path), kMovieFirst);
    if (!hasAttributes) GTEST_SKIP() << "the rest: no extended attributes here";
    std::string value(5, ' ');
    const std::string copy = movies / "b.mov";
    EXPECT_EQ(::getxattr(copy.c_str(), "user.vexqt.test", value.data(), value.size()), 5);
    EXPECT_EQ(value, "value");
    EXPECT_EQ(::getxattr(copy.c_str(), "user.empty", value.data(), value.size()), 0);
}

TEST_F(MovieFiles, AreReplacedByCopiesThroughLinksThatStay) {
    fs::create_directory(folder / "other");
    writeFile(folder / "other" / "b.mov", zeros(10));
    fs::create_hard_link(folder / "other" / "b.mov", folder / "other" / "hard.mov");
    fs::create_symlink("../other/b.mov", movies / "link.mov");
    EXPECT_EQ(copyThrough(movies / "link.mov", setTimeScale).outcome, Outcome::Saved) << told;
    EXPECT_TRUE(fs::is_symlink(movies / "link.mov"));
    EXPECT_EQ(readFile(folder / "other" / "b.mov"), edited);
    EXPECT_EQ(readFile(folder / "other" / "hard.mov"), zeros(10)) << "it is a file of its own now";
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "other"), {}), 2);
    EXPECT_EQ(entries(), 2U);
}

// MARK: What must not be written to

TEST_F(MovieFiles, ThatAreReadOnlyAreNotSavedInPlaceButCopied) {
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(movies.c_str(), 0777), 0);
    EXPECT_EQ(asNobody([&] {
                  const SaveResult result = saveThrough(path, setTimeScale);
                  const bool isRefused = result.outcome == Outcome::Failed &&
                                         result.failure->code == std::errc::permission_denied;
                  if (!isRefused) return 1;
                  return copyThrough(movies / "b.mov", setTimeScale).outcome == Outcome::Saved ? 0
                                                                                               : 2;
              }),
              0);
    EXPECT_EQ(readFile(path), kMovieFirst);
    EXPECT_EQ(readFile(movies / "b.mov"), edited);
    EXPECT_EQ(entries(), 2U);
}

TEST_F(MovieFiles, InAReadOnlyFolderAreNotTouchedWhereAJournalIsNeeded) {
    ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(::chmod(movies.c_str(), 0555), 0);
    EXPECT_EQ(asNobody([&] {
                  for (const Editing& edit : {Editing(setTimeScale), Editing(shrink)}) {
                      const SaveResult result = saveThrough(path, edit);
                      if (result.outcome != Outcome::Failed) return 1;
                      if (result.failure->code != std::errc::permission_denied) return 2;
                      if (told.find(".a.mov.vexqt-journal") == std::string::npos) return 3;
                  }
                  const auto copy = copyThrough(movies / "b.mov", setTimeScale);
                  return copy.outcome == Outcome::Failed && told.find("copying ") == 0 ? 0 : 4;
              }),
              0);
    EXPECT_EQ(readFile(path), kMovieFirst);
    // A movie that moves needs none.
    EXPECT_EQ(
        asNobody([&] { return saveThrough(path, grow(300)).outcome == Outcome::Saved ? 0 : 1; }),
        0);
    ASSERT_EQ(::chmod(movies.c_str(), 0755), 0);
    EXPECT_EQ(entries(), 1U);
}

TEST_F(MovieFiles, ArePipesAndDevicesNeverToBeSavedInto) {
    ASSERT_EQ(::mkfifo((movies / "pipe").c_str(), 0600), 0);
    for (const fs::path& target : {movies / "pipe", fs::path("/dev/null"), movies}) {
        EXPECT_EQ(copyThrough(target, setTimeScale).outcome, Outcome::Failed) << target;
        EXPECT_EQ(told, "is no regular file") << target;
    }
    // A pipe that takes the place of the movie once that was read. Nobody is at its other end.
    const auto asset = read(path, setTimeScale);
    fs::remove(path);
    fs::rename(movies / "pipe", path);
    EXPECT_EQ(saveInPlace(*asset).outcome, Outcome::Failed);
    EXPECT_EQ(saveCopy(*asset, movies / "b.mov").outcome, Outcome::Failed);
    EXPECT_EQ(entries(), 1U);
}

TEST_F(MovieFiles, AreSavedByOneProcessAtATime) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(descriptor, LOCK_EX), 0);
    const SaveResult busy = saveThrough(path, setTimeScale);
    ::close(descriptor);
    ASSERT_TRUE(busy.failure);
    EXPECT_EQ(busy.failure->reason, SaveFailure::Reason::Busy);
    EXPECT_EQ(readFile(path), kMovieFirst);
    EXPECT_EQ(saveThrough(path, setTimeScale).outcome, Outcome::Saved);
}

TEST_F(MovieFiles, OfTwoProcessesThatSaveAtOnceOneWins) {
    for (int round = 0; round < 20; ++round) {
        writeFile(path, kMovieFirst);
        const auto first = read(path, setTimeScale);
        const auto second = read(path, shrink);
        const pid_t child = ::fork();
        if (child == 0) ::_exit(saveInPlace(*first).outcome == Outcome::Saved ? 1 : 0);
        const bool secondIsSaved = saveInPlace(*second).outcome == Outcome::Saved;
        int status = -1;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFEXITED(status));
        const bool firstIsSaved = WEXITSTATUS(status) == 1;
        EXPECT_FALSE(firstIsSaved && secondIsSaved);
        const Bytes now = readFile(path);
        EXPECT_EQ(now == edited, firstIsSaved);
        if (!firstIsSaved && !secondIsSaved) {
            EXPECT_EQ(now, kMovieFirst);
        }
        EXPECT_EQ(entries(), 1U);
    }
}

// MARK: Long files

class LongMovie : public MovieFiles {
protected:
    static constexpr std::uint64_t kMediaLength = std::uint64_t{6} << 30;
    static constexpr std::int64_t kMostOnDisk = 1 << 20;

    /// Media that is one hole, with its size or reaching to the end of the file.
    void makeLong(bool isOpenEnded, ByteView inFront = {}) {
        const Bytes header = isOpenEnded ? join({u32(0), text("mdat")})
                                         : join({u32(1), text("mdat"), u64(kMediaLength)});
        writeFile(path, join({kFileType, movie(40), inFront, header}));
        fs::resize_file(path, kFileType.size() + 164 + inFront.size() + kMediaLength);
    }
    std::int64_t onDisk(const fs::path& of) const { return statusOf(of).st_blocks * 512; }
};

TEST_F(LongMovie, CostsNoDiskAndNoTime) {
    makeLong(false);
    const auto length = fs::file_size(path);
    const auto start = std::chrono::steady_clock::now();
    UndoStore store(systemFiles(), folder / "undo");
    EXPECT_EQ(copyThrough(movies / "b.mov", grow(300)).outcome, Outcome::Saved) << told;
    EXPECT_EQ(saveThrough(path, setTimeScale, {.undo = &store}).outcome, Outcome::Saved) << told;
    const SaveResult moved = saveThrough(path, grow(300), {.undo = &store});
    EXPECT_EQ(moved.outcome, Outcome::Saved) << told;
    EXPECT_EQ(moved.plan.way(), SavePlan::Way::Move);
    EXPECT_EQ(moved.plan.newAtoms()[0].offset, length);
    EXPECT_EQ(fs::file_size(path), length + 464);
    EXPECT_EQ(fs::file_size(movies / "b.mov"), length + 464);
    EXPECT_LT(onDisk(path), kMostOnDisk);
    EXPECT_LT(onDisk(movies / "b.mov"), kMostOnDisk);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(undo(systemFiles(), store, path).outcome, UndoResult::Outcome::Undone);
    EXPECT_EQ(fs::file_size(path), length);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(took.count(), 10.0);
    std::cout << "[  TIME    ] a copy, two saves and two undos of 6 GiB: " << took.count()
              << " s, on the disk " << onDisk(path) << " bytes\n";
}

TEST_F(LongMovie, ThatReachesToTheEndGetsAnExtendedSizeWhereThatHasRoom) {
    makeLong(true, atom("wide"_os));
    const auto end = fs::file_size(path);
    const SaveResult result = saveThrough(path, grow(300));
    EXPECT_EQ(result.outcome, Outcome::Saved) << told;
    std::error_code error;
    const auto file = systemFiles().openForReading(path, error);
    Bytes bytes(16);
    file->readAt(kFileType.size() + 164, bytes, error);
    EXPECT_EQ(bytes, join({u32(1), text("mdat"), u64(kMediaLength + 8)}));
    bytes.resize(8);
    file->readAt(end, bytes, error);
    EXPECT_EQ(bytes, join({u32(464), text("moov")}));
    EXPECT_LT(onDisk(path), kMostOnDisk);
}

TEST_F(LongMovie, TakesNoRoomForItsSizeFromAnAtomThatMayMeanSomething) {
    const struct {
        OSType inFront;
        Outcome outcome;
    } kCases[] = {
        {"free"_os, Outcome::Saved}, {"skip"_os, Outcome::Saved}, {"uuid"_os, Outcome::Refused}};
    for (const auto& test : kCases) {
        SCOPED_TRACE(textFromCode(test.inFront));
        // With an atom between the movie and that one, which would else be room for the movie.
        makeLong(true, join({atom("uuid"_os, {zeros(9)}), atom(test.inFront)}));
        EXPECT_EQ(saveThrough(path, grow(300), {.force = true}).outcome, test.outcome) << told;
    }
}

TEST_F(LongMovie, ThatIsAllMediaTakesNoNewMovie) {
    writeFile(path, join({u32(0), text("mdat")}));
    fs::resize_file(path, kMediaLength);
    const SaveResult result = saveThrough(path, [](VexQTAsset& asset) {
        asset.rootAtoms().push_back(std::make_unique<VexQTmoovAtom>());
    });
    EXPECT_EQ(result.outcome, Outcome::Refused);
    EXPECT_EQ(std::ranges::count(result.plan.findings(), "no-room", &Finding::id), 1);
}

TEST_F(LongMovie, LeavesLongFreeSpaceOfWhatIsNoAtom) {
    // Planned for a file that has become longer: whoever reads it reads what is no atom as well.
    const auto asset = read(path, grow(300));
    writeFile(path, join({kMovieFirst, u32(7)}));
    fs::resize_file(path, kMediaLength);
    std::error_code error;
    const auto plan =
        SavePlan::of(*asset, *systemFiles().openForReading(path, error), SaveForm::Surgical);
    const std::uint64_t end = kMovieFirst.size() + movie(40).size() + 300;
    const auto& writes = plan.change().writes;
    EXPECT_EQ(plan.change().newLength, kMediaLength);
    ASSERT_EQ(writes.back().offset, end);
    EXPECT_TRUE(std::ranges::equal(writes.back().bytes.view(),
                                   join({u32(1), text("free"), u64(kMediaLength - end)})));
}

TEST_F(LongMovie, ThatReachesToTheEndAndHasNoRoomForItsSizeIsLeftAlone) {
    makeLong(true);
    const auto before = fs::last_write_time(path);
    const SaveResult refused = saveThrough(path, grow(300), {.force = true});
    EXPECT_EQ(refused.outcome, Outcome::Refused);
    EXPECT_TRUE(std::ranges::count(refused.plan.findings(), "no-room", &Finding::id) == 1);
    EXPECT_EQ(fs::last_write_time(path), before);
    EXPECT_EQ(copyThrough(movies / "b.mov", grow(300)).outcome, Outcome::Refused);
    EXPECT_EQ(entries(), 1U) << "and nothing was copied first";
    EXPECT_EQ(saveThrough(path, setTimeScale).outcome, Outcome::Saved) << told;
}

// MARK: One save after the other

struct Step {
    std::string_view what;
    SavePlan::Way way;
    Editing edit;
    SaveForm form = SaveForm::Surgical;
};

/// Edits of every kind, one after the other, with what each of them finds.
std::vector<Step> steps() {
    using Way = SavePlan::Way;
    const auto setDuration = [](std::uint32_t duration) -> Editing {
        return [duration](VexQTAsset& asset) {
            asset.moovAtom()->childWithType("mvhd"_os)->setValueForKey(duration, "duration");
        };
    };
    return {
        {"a field", Way::Patch, setTimeScale},
        {"removed children", Way::InOldPlace, shrink},
        {"a child where there is room now", Way::InOldPlace, grow(24)},
        {"another field", Way::Patch, setDuration(77)},
        {"a child without room", Way::Move, grow(300)},
        {"a child at the end of the file", Way::InOldPlace, grow(500)},
        {"the exact form", Way::Move, setDuration(78), SaveForm::Exact},
        {"removed children at the end", Way::InOldPlace,
         [](VexQTAsset& asset) { asset.moovAtom()->removeChildrenWithType("skip"_os); }},
        {"a root atom less", Way::Patch,
         [](VexQTAsset& asset) { asset.rootAtoms().erase(asset.rootAtoms().begin() + 1); }},
        {"the last field", Way::Patch, setDuration(79)},
    };
}

TEST_F(MovieFiles, ThatWereSavedManyTimesAreWhatTheyWereWhenAllIsUndone) {
    const Bytes open = atomClaiming(0, "mdat"_os, {Bytes(100, 0xDA)});
    const struct {
        std::string_view what;
        Bytes movie;
    } kMovies[] = {
        {"media with its size", join({kFileType, atom("uuid"_os, {zeros(9)}), movie(40), kMedia})},
        {"media to the end", join({kFileType, atom("uuid"_os, {zeros(9)}), movie(40), open})},
        {"bytes behind the media",
         join({kFileType, atom("uuid"_os, {zeros(9)}), movie(40), kMedia, text("junk")})},
    };
    for (const auto& test : kMovies) {
        SCOPED_TRACE(test.what);
        writeFile(path, test.movie);
        UndoStore store(systemFiles(), folder / "undo");
        std::vector<Bytes> states = {test.movie};
        for (const Step& step : steps()) {
            SCOPED_TRACE(step.what);
            const SaveResult result =
                saveThrough(path, step.edit, {.form = step.form, .force = true, .undo = &store});
            ASSERT_EQ(result.outcome, Outcome::Saved) << told;
            EXPECT_EQ(result.plan.way(), step.way) << told;
            EXPECT_TRUE(result.notes.empty());
            states.push_back(readFile(path));
            ASSERT_NE(states.back(), states[states.size() - 2]);
            EXPECT_EQ(saveThrough(path, leaveAlone).outcome, Outcome::NothingToDo);
            ASSERT_NE(read(path, leaveAlone)->moovAtom(), nullptr);
        }
        while (states.size() > 1) {
            states.pop_back();
            const UndoResult result = undo(systemFiles(), store, path);
            ASSERT_EQ(result.outcome, UndoResult::Outcome::Undone) << result.text;
            ASSERT_EQ(readFile(path), states.back()) << states.size();
        }
        EXPECT_EQ(undo(systemFiles(), store, path).outcome, UndoResult::Outcome::NothingToUndo);
        EXPECT_EQ(entries(), 1U);
    }
}

}  // namespace
}  // namespace vexqt
