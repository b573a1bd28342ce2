// What only the files of a machine have: links, owners, holes, pipes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

#include "saving/FaultyFileSystem.h"
#include "saving/changes.h"
#include "testing/files.h"
#include "vexqt/saving/FileTransaction.h"
#include "vexqt/saving/Journal.h"
#include "vexqt/saving/UndoStore.h"
#include "vexqt/saving/recovery.h"

namespace vexqt {
namespace {

using namespace testing;
using Reason = SaveFailure::Reason;
namespace fs = std::filesystem;

class SavedFiles : public ::testing::Test {
protected:
    SavedFiles() { writeFile(movie, old); }

    std::optional<SaveFailure> save(const fs::path& path, const FileChange& change,
                                    const FileTransaction::Callbacks& callbacks = {}) {
        std::error_code error;
        const auto identity = systemFiles().identityOf(path, error);
        FileTransaction transaction(systemFiles());
        auto failure = transaction.open(path, identity.value_or(FileIdentity()));
        if (!failure) failure = transaction.apply(change, callbacks);
        if (!failure) note = store().keep(transaction);
        return failure;
    }
    UndoStore store() const { return {systemFiles(), folder / "state" / "undo"}; }
    std::size_t filesBesideTheMovie() const {
        const auto entries = fs::directory_iterator(movies);
        return static_cast<std::size_t>(std::distance(fs::begin(entries), fs::end(entries)));
    }

    TemporaryFolder folder;
    const fs::path movies = [this] {
        fs::create_directory(folder / "movies");
        return fs::canonical(folder / "movies");
    }();
    const fs::path movie = movies / "a.mov";
    const Bytes old = someBytes(3000);
    std::optional<std::string> note;
};

const FileChange kPatch = changeOf(3000, 3000, {{100, 4}, {600, 1000}});
const FileChange kLonger = changeOf(3000, 5000, {{100, 4}, {2800, 2200}});
const FileChange kShorter = changeOf(3000, 1000, {{990, 10}});
const FileChange kFlipped = changeOf(3000, 3700, {{3000, 700}}, Patch{508, 8});

TEST_F(SavedFiles, AreChangedAndChangedBack) {
    for (const FileChange& change : {kPatch, kLonger, kShorter, kFlipped}) {
        const auto failure = save(movie, change);
        EXPECT_FALSE(failure) << failure->what;
        EXPECT_EQ(note, std::nullopt);
        EXPECT_EQ(readFile(movie), changed(old, change));
        EXPECT_EQ(filesBesideTheMovie(), 1U);
        const UndoResult result = undo(systemFiles(), store(), movie);
        EXPECT_EQ(result.outcome, UndoResult::Outcome::Undone) << result.text;
        EXPECT_EQ(readFile(movie), old);
        EXPECT_EQ(filesBesideTheMovie(), 1U);
    }
}

TEST_F(SavedFiles, KeepWhatIsKnownOfThem) {
    ASSERT_EQ(::chmod(movie.c_str(), 0640), 0);
    ASSERT_TRUE(::geteuid() != 0 || ::chown(movie.c_str(), 12, 34) == 0);
    const bool hasAttributes = ::setxattr(movie.c_str(), "user.vexqt.test", "value", 5, 0) == 0;
    struct stat before = {}, after = {};
    ASSERT_EQ(::stat(movie.c_str(), &before), 0);
    for (const FileChange& change : {kPatch, changeOf(3000, 3500, {{2000, 1500}}),
                                     changeOf(3500, 4000, {{3500, 500}}, Patch{0, 8})}) {
        const auto failure = save(movie, change);
        EXPECT_FALSE(failure) << failure->what;
    }
    ASSERT_EQ(::stat(movie.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    if (!hasAttributes) GTEST_SKIP() << "the rest: no extended attributes here";
    std::string value(5, ' ');
    EXPECT_EQ(::getxattr(movie.c_str(), "user.vexqt.test", value.data(), value.size()), 5);
    EXPECT_EQ(value, "value");
}

TEST_F(SavedFiles, AreFoundThroughSymbolicLinks) {
    fs::create_directory(folder / "links");
    const fs::path link = folder / "links" / "b.mov";
    fs::create_symlink("../movies/a.mov", link);
    fs::path journal;
    const auto look = [&](File&) {
        std::error_code error;
        journal = findJournal(systemFiles(), link, error).value_or("");
        EXPECT_TRUE(fs::exists(journal));
        EXPECT_EQ(fs::status(journal).permissions(), fs::perms(0600));
        return true;
    };
    EXPECT_FALSE(save(link, kPatch, {.progress = {}, .verify = look}));
    EXPECT_EQ(journal, movies / ".a.mov.vexqt-journal");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(readFile(movie), changed(old, kPatch));
    EXPECT_EQ(undo(systemFiles(), store(), movie).outcome, UndoResult::Outcome::Undone)
        << "by its own name";
    EXPECT_EQ(readFile(movie), old);
}

TEST_F(SavedFiles, StayOneFileUnderTwoNames) {
    fs::create_hard_link(movie, movies / "b.mov");
    EXPECT_FALSE(save(movies / "b.mov", kLonger));
    EXPECT_EQ(readFile(movie), changed(old, kLonger));
    EXPECT_EQ(fs::hard_link_count(movie), 2U);
}

TEST_F(SavedFiles, AreRegular) {
    ASSERT_EQ(::mkfifo((movies / "pipe").c_str(), 0600), 0);
    const struct {
        fs::path path;
        std::errc code;
    } cases[] = {
        {movies / "pipe", std::errc::not_supported},
        {"/dev/null", std::errc::not_supported},
        {movies, std::errc::is_a_directory},
    };
    for (const auto& [path, code] : cases) {
        const auto failure = save(path, kPatch);
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->code, code) << failure->what;
        EXPECT_NE(failure->what.find(path.string()), std::string::npos) << failure->what;
    }
}

TEST_F(SavedFiles, AreNotSavedWhereTheyAreReadOnly) {
    if (::geteuid() == 0) {
        // Nothing is read-only for the superuser, but for somebody else. The failure comes back
        // through the exit status.
        ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
        ASSERT_EQ(::chmod(movie.c_str(), 0444), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            if (::setgid(65534) != 0 || ::setuid(65534) != 0) ::_exit(9);
            std::error_code error;
            FileTransaction transaction(systemFiles());
            const auto failure = transaction.open(movie, *systemFiles().identityOf(movie, error));
            ::_exit(failure && failure->code == std::errc::permission_denied ? 0 : 1);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    } else {
        ASSERT_EQ(::chmod(movie.c_str(), 0444), 0);
        const auto failure = save(movie, kPatch);
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->code, std::errc::permission_denied);
    }
    EXPECT_EQ(readFile(movie), old);
    EXPECT_EQ(filesBesideTheMovie(), 1U);
}

TEST_F(SavedFiles, AreNotTouchedInAFolderWithoutRoomForAJournal) {
    struct rlimit before = {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const struct rlimit full = {.rlim_cur = 200, .rlim_max = before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    const auto failure = save(movie, kPatch);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, std::errc::file_too_large);
    EXPECT_EQ(readFile(movie), old);
    EXPECT_EQ(filesBesideTheMovie(), 1U);
}

TEST_F(SavedFiles, AreSavedByOneProcessAtATime) {
    const int descriptor = ::open(movie.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(descriptor, LOCK_EX), 0);
    const auto failure = save(movie, kPatch);
    ::close(descriptor);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->reason, Reason::Busy);
    EXPECT_EQ(readFile(movie), old);
    EXPECT_FALSE(save(movie, kPatch));
}

TEST_F(SavedFiles, PastFourGigabytesCostNoDisk) {
    constexpr std::uint64_t kLength = std::uint64_t{5} << 30;
    fs::resize_file(movie, kLength);
    FileChange change = changeOf(kLength, kLength + 1000, {{kLength - 100, 1100}});
    change.writes.insert(change.writes.begin(), {40, SharedBytes::copyOf(someBytes(8, 9))});
    const auto failure = save(movie, change);
    EXPECT_FALSE(failure) << failure->what;
    EXPECT_EQ(fs::file_size(movie), kLength + 1000);
    EXPECT_EQ(undo(systemFiles(), store(), movie).outcome, UndoResult::Outcome::Undone);
    EXPECT_EQ(fs::file_size(movie), kLength);
    struct stat status = {};
    ASSERT_EQ(::stat(movie.c_str(), &status), 0);
    EXPECT_LT(status.st_blocks * 512, 1 << 20);
    fs::resize_file(movie, 3000);
    EXPECT_EQ(readFile(movie), old);
}

TEST_F(SavedFiles, WithTheLongestNameHaveAJournal) {
    const fs::path longest = movies / std::string(255, 'm');
    fs::rename(movie, longest);
    const auto failure = save(longest, kPatch);
    EXPECT_FALSE(failure) << failure->what;
    EXPECT_EQ(readFile(longest), changed(old, kPatch));
}

TEST_F(SavedFiles, AreWholeAfterTheProcessWasKilledAtAnyMoment) {
    std::size_t kills = 0, rolledBack = 0, discarded = 0;
    for (const FileChange& change : {kPatch, kLonger, kShorter, kFlipped}) {
        const Bytes saved = changed(old, change);
        for (std::size_t moment = 0;; ++moment) {
            SCOPED_TRACE(moment);
            writeFile(movie, old);
            const pid_t child = ::fork();
            if (child == 0) {
                FaultyFileSystem files(systemFiles());
                files.beforeOperation = [&](std::size_t number) {
                    if (number == moment) ::kill(::getpid(), SIGKILL);
                };
                std::error_code error;
                FileTransaction transaction(files);
                if (transaction.open(movie, *systemFiles().identityOf(movie, error))) ::_exit(1);
                ::_exit(transaction.apply(change) ? 1 : 0);
            }
            int status = 0;
            ::waitpid(child, &status, 0);
            const RecoveryResult result = recover(systemFiles(), movie);
            EXPECT_EQ(filesBesideTheMovie(), 1U) << result.text;
            Bytes now = readFile(movie);
            if (WIFEXITED(status)) {
                EXPECT_EQ(WEXITSTATUS(status), 0);
                EXPECT_TRUE(now == saved);
                break;
            }
            ++kills;
            rolledBack += result.outcome == Recovery::RolledBack ? 1 : 0;
            discarded += result.outcome == Recovery::Discarded ? 1 : 0;
            // Behind its end an old movie may have some bytes that do not count.
            if (change.flip && now != saved) now.resize(old.size());
            ASSERT_TRUE(now == old || now == saved) << result.text;
        }
    }
    EXPECT_GT(rolledBack, 10U);
    EXPECT_GT(discarded, 5U);
    std::cout << "[  KILLED  ] " << kills << " times, " << rolledBack << " of them rolled back\n";
}

}  // namespace
}  // namespace vexqt
