#include "vexqt/saving/UndoStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "saving/FaultyFileSystem.h"
#include "saving/changes.h"
#include "testing/files.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/Journal.h"

namespace vexqt {
namespace {

using namespace testing;
using Outcome = UndoResult::Outcome;
namespace fs = std::filesystem;

const fs::path kMovie = "/movies/a.mov";
const fs::path kStore = "/home/undo";

class UndoOfSaves : public ::testing::Test {
protected:
    UndoOfSaves() { files.put(kMovie, old); }

    UndoStore store() {
        return {files, kStore, limits, [this] { return now; }};
    }
    /// Saves and says why no record was kept.
    std::optional<std::string> save(const FileChange& change, const fs::path& movie = kMovie) {
        FileTransaction transaction(files);
        auto failure = transaction.open(movie, *files.identityOf(movie, error));
        EXPECT_FALSE(failure) << failure->what;
        failure = transaction.apply(change);
        EXPECT_FALSE(failure) << failure->what;
        return store().keep(transaction);
    }
    /// Saves a file of a hundred bytes, with a record of a length that hardly changes.
    void saveSmall(const fs::path& movie = kMovie) {
        EXPECT_EQ(save(changeOf(3000, 3000, {{next_++, 1}}), movie), std::nullopt);
    }
    UndoResult undo() { return vexqt::undo(files, store(), kMovie); }
    std::size_t records(const fs::path& movie = kMovie) {
        return store().recordsOf(movie, error).size();
    }
    const Bytes& movie() { return files.bytes(kMovie); }

    const Bytes old = someBytes(3000);
    UndoStore::Limits limits;
    std::int64_t now = 1'700'000'000;
    MemoryFileSystem files;
    std::error_code error;

private:
    std::uint64_t next_ = 100;
};

const FileChange kPatch = changeOf(3000, 3000, {{100, 4}, {600, 1000}});
const FileChange kLonger = changeOf(3000, 5000, {{100, 4}, {2800, 2200}});
const FileChange kShorter = changeOf(3000, 1000, {{990, 10}});
const FileChange kFlipped = changeOf(3000, 3700, {{3000, 700}}, Patch{508, 8});

TEST_F(UndoOfSaves, GivesTheFileOfBefore) {
    const FileIdentity before = *files.identityOf(kMovie, error);
    for (const FileChange& change : {kPatch, kLonger, kShorter, kFlipped}) {
        EXPECT_EQ(save(change), std::nullopt);
        const Bytes saved = movie();
        EXPECT_EQ(saved, changed(old, change));
        const UndoResult result = undo();
        EXPECT_EQ(result.outcome, Outcome::Undone) << result.text;
        EXPECT_EQ(movie(), old);
        EXPECT_EQ(changed(saved, result.change), old);
        EXPECT_EQ(*files.identityOf(kMovie, error), before);
        EXPECT_EQ(files.paths(), std::set<fs::path>{kMovie}) << "the record is gone";
    }
}

TEST_F(UndoOfSaves, TakesBackOneSaveAfterTheOther) {
    std::vector<Bytes> states = {old};
    const FileChange changes[] = {kLonger, changeOf(5000, 5000, {{2000, 900}}),
                                  changeOf(5000, 5600, {{5000, 600}}, Patch{40, 8}),
                                  changeOf(5600, 800, {})};
    for (const FileChange& change : changes) {
        EXPECT_EQ(save(change), std::nullopt);
        states.push_back(movie());
    }
    EXPECT_EQ(records(), 4U);
    while (states.size() > 1) {
        states.pop_back();
        EXPECT_EQ(undo().outcome, Outcome::Undone);
        EXPECT_EQ(movie(), states.back());
    }
    EXPECT_EQ(undo().outcome, Outcome::NothingToUndo);
    EXPECT_TRUE(undo().change.isEmpty());
    EXPECT_EQ(movie(), old);
}

TEST_F(UndoOfSaves, GoesOnAfterAnotherSave) {
    save(kPatch);
    save(changeOf(3000, 3100, {{3000, 100}}));
    EXPECT_EQ(undo().outcome, Outcome::Undone);
    save(changeOf(3000, 2000, {}));
    EXPECT_EQ(undo().outcome, Outcome::Undone);
    EXPECT_EQ(undo().outcome, Outcome::Undone);
    EXPECT_EQ(movie(), old);
}

TEST_F(UndoOfSaves, RefusesAFileThatWasChangedSince) {
    const auto edit = [&](const std::function<void(File&)>& write) {
        const auto file = files.openForWriting(kMovie, error);
        const FileIdentity saved = file->identity(error);
        write(*file);
        return std::pair(movie(), saved);
    };
    save(kPatch);
    const struct {
        const char* what;
        std::function<void(File&)> write;
        bool keepsTime;
    } cases[] = {
        {"where it was saved", [&](File& file) { file.writeAt(700, Bytes{1}, error); }, true},
        {"elsewhere", [&](File& file) { file.writeAt(2500, Bytes{1}, error); }, false},
        {"longer", [&](File& file) { file.writeAt(3000, Bytes{1}, error); }, true},
        {"shorter", [&](File& file) { file.truncate(2999, error); }, true},
        {"nothing but the time", [&](File& file) { file.setModified(9, 9, error); }, false},
    };
    const Bytes saved = movie();
    for (const auto& [what, write, keepsTime] : cases) {
        SCOPED_TRACE(what);
        const auto [edited, before] = edit(write);
        const auto file = files.openForWriting(kMovie, error);
        const auto restoreTime = [&, before = before] {
            file->setModified(before.modifiedSeconds, before.modifiedNanoseconds, error);
        };
        if (keepsTime) restoreTime();
        const UndoResult result = undo();
        EXPECT_EQ(result.outcome, Outcome::Changed) << result.text;
        EXPECT_EQ(movie(), edited);
        EXPECT_EQ(records(), 1U);
        file->truncate(3000, error);
        file->writeAt(0, saved, error);
        restoreTime();
    }
    EXPECT_EQ(undo().outcome, Outcome::Undone) << "and takes it when it is as it was";
}

TEST_F(UndoOfSaves, RefusesTheSaveBelowOneThatSomebodyElseMade) {
    save(kPatch);
    files.openForWriting(kMovie, error)->writeAt(5, Bytes{1}, error);
    const Bytes edited = movie();
    save(changeOf(3000, 3000, {{50, 4}}));
    EXPECT_EQ(undo().outcome, Outcome::Undone);
    EXPECT_EQ(movie(), edited);
    EXPECT_EQ(undo().outcome, Outcome::Changed);
    EXPECT_EQ(movie(), edited);
}

TEST_F(UndoOfSaves, IsNotDoneTwice) {
    save(kPatch);
    save(changeOf(3000, 3000, {{50, 4}}));
    const auto top = store().recordsOf(kMovie, error).front();
    const Bytes record = files.bytes(top);
    EXPECT_EQ(undo().outcome, Outcome::Undone);
    files.put(top, record);  // As if the machine had stopped before it was removed.
    EXPECT_EQ(undo().outcome, Outcome::AlreadyUndone);
    EXPECT_EQ(movie(), changed(old, kPatch));
    EXPECT_EQ(undo().outcome, Outcome::Undone);
    EXPECT_EQ(movie(), old);
}

/// Somebody who does not own the movie may write to it and not set its time.
class UndoWithoutTimes : public UndoOfSaves {
protected:
    UndoResult undoWithoutTime() {
        // Where the time is set is seen on a copy of everything.
        MemoryFileSystem copy;
        for (const fs::path& path : files.paths()) copy.put(path, files.bytes(path));
        const auto was = files.identityOf(kMovie, error);
        copy.openForWriting(kMovie, error)
            ->setModified(was->modifiedSeconds, was->modifiedNanoseconds, error);
        FaultyFileSystem looking(copy), faulty(files);
        vexqt::undo(looking, UndoStore(looking, kStore), kMovie);
        const auto setsTime = std::ranges::find(looking.operations, "setModified");
        EXPECT_NE(setsTime, looking.operations.end());
        faulty.setFault(FaultyFileSystem::Fault{
            std::make_error_code(std::errc::operation_not_permitted),
            static_cast<std::size_t>(setsTime - looking.operations.begin())});
        return vexqt::undo(faulty, UndoStore(faulty, kStore), kMovie);
    }
};

TEST_F(UndoWithoutTimes, GoesOnWithTheRecordBelow) {
    save(kPatch);
    save(kLonger);
    EXPECT_EQ(undoWithoutTime().outcome, Outcome::Undone);
    EXPECT_EQ(movie(), changed(old, kPatch));
    EXPECT_EQ(undoWithoutTime().outcome, Outcome::Undone);
    EXPECT_EQ(movie(), old);
}

TEST_F(UndoWithoutTimes, LeavesTheRecordBelowWhereItIsOfAnotherState) {
    save(kPatch);
    files.openForWriting(kMovie, error)->writeAt(5, Bytes{1}, error);
    const Bytes edited = movie();
    save(changeOf(3000, 3000, {{50, 4}}));
    const auto below = store().recordsOf(kMovie, error)[1];
    const Bytes record = files.bytes(below);
    EXPECT_EQ(undoWithoutTime().outcome, Outcome::Undone);
    EXPECT_EQ(movie(), edited);
    EXPECT_EQ(files.bytes(below), record);
    EXPECT_EQ(undo().outcome, Outcome::Changed);
}

TEST_F(UndoWithoutTimes, SucceedsWhereTheRecordBelowIsDamaged) {
    save(kPatch);
    save(changeOf(3000, 3000, {{50, 4}}));
    const auto below = store().recordsOf(kMovie, error)[1];
    Bytes record = files.bytes(below);
    record.back() ^= 1;
    files.put(below, record);
    EXPECT_EQ(undoWithoutTime().outcome, Outcome::Undone);
    EXPECT_EQ(movie(), changed(old, kPatch));
    EXPECT_EQ(undo().outcome, Outcome::Failed);
}

TEST_F(UndoOfSaves, TakesBackWhatIsNotWhatTheRecordSays) {
    save(kPatch);
    const Bytes saved = movie();
    // Another byte gets into what was put back, before that is looked at.
    FaultyFileSystem watched(files);
    std::size_t writes = 0;
    watched.beforeOperation = [&](std::size_t) {
        if (watched.operations.empty() || watched.operations.back() != "write") return;
        if (++writes == 3) files.openForWriting(kMovie, error)->writeAt(700, Bytes{1}, error);
    };
    const UndoResult result = vexqt::undo(watched, store(), kMovie);
    EXPECT_EQ(result.outcome, Outcome::Failed);
    ASSERT_TRUE(result.failure);
    EXPECT_EQ(result.failure->reason, SaveFailure::Reason::NotAsMeant) << result.text;
    EXPECT_EQ(movie(), saved);
    EXPECT_EQ(records(), 1U);
}

TEST_F(UndoOfSaves, IsDoneWhereThereIsNoMemoryToRemoveItsRecord) {
    save(kPatch);
    FaultyFileSystem poor(files);
    const auto path = store().recordsOf(kMovie, error).front();
    std::size_t removals = 0;
    poor.beforeRemoval = [&] {
        if (++removals == 2) throw std::bad_alloc();  // The first is that of the journal.
    };
    const UndoStore inPoor(poor, kStore);
    EXPECT_EQ(vexqt::undo(poor, inPoor, kMovie).outcome, Outcome::Undone);
    EXPECT_EQ(movie(), old);
    EXPECT_TRUE(files.exists(path, error));
    EXPECT_EQ(undo().outcome, Outcome::AlreadyUndone);
}

TEST_F(UndoOfSaves, TakesTheOldBytesForAChangeWhereSomebodyElsePutThemBack) {
    save(kPatch);
    files.openForWriting(kMovie, error)->writeAt(0, old, error);
    EXPECT_EQ(undo().outcome, Outcome::Changed);
    EXPECT_EQ(movie(), old);
    EXPECT_EQ(records(), 1U);
}

TEST_F(UndoOfSaves, SaysThatARecordIsDamagedWhichIsTheJournalOfASave) {
    Bytes journal;
    {
        FileTransaction transaction(files);
        ASSERT_FALSE(transaction.open(kMovie, *files.identityOf(kMovie, error)));
        ASSERT_TRUE(transaction.apply(kPatch, {.progress = {}, .verify = [&](File&) {
                                                   journal =
                                                       files.bytes("/movies/.a.mov.vexqt-journal");
                                                   return false;
                                               }}));
    }
    save(kPatch);
    files.put(store().recordsOf(kMovie, error).front(), journal);
    const UndoResult result = undo();
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_NE(result.text.find("is damaged"), std::string::npos) << result.text;
}

TEST_F(UndoOfSaves, SaysThatARecordIsDamaged) {
    save(kPatch);
    const auto path = store().recordsOf(kMovie, error).front();
    Bytes record = files.bytes(path);
    record.back() ^= 1;
    files.put(path, record);
    const UndoResult result = undo();
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_NE(result.text.find("is damaged"), std::string::npos) << result.text;
    EXPECT_EQ(movie(), changed(old, kPatch));
}

TEST_F(UndoOfSaves, OfAChangeThatChangedNothingIsNotKept) {
    EXPECT_EQ(save(changeOf(3000, 3000, {})), std::nullopt);
    EXPECT_EQ(records(), 0U);
}

TEST_F(UndoOfSaves, IsOffWithoutAFolder) {
    FileTransaction transaction(files);
    ASSERT_FALSE(transaction.open(kMovie, *files.identityOf(kMovie, error)));
    ASSERT_FALSE(transaction.apply(kPatch));
    const UndoStore off(files, std::nullopt);
    EXPECT_EQ(UndoStore(off).keep(transaction), std::nullopt);
    EXPECT_EQ(files.paths(), std::set<fs::path>{kMovie});
    EXPECT_EQ(vexqt::undo(files, off, "/movies/a.mov").outcome, Outcome::NothingToUndo);
}

TEST_F(UndoOfSaves, HasNothingToUndoWhereNoFolderWasMadeYet) {
    const TemporaryFolder folder;
    const UndoStore none(systemFiles(), folder / "none");
    EXPECT_EQ(none.recordsOf(kMovie, error), std::vector<fs::path>());
    EXPECT_FALSE(error) << error.message();
}

TEST_F(UndoOfSaves, LeavesNoHalfRecordWhereThereIsNoMemory) {
    FaultyFileSystem poor(files);
    poor.beforeRename = [] { throw std::bad_alloc(); };
    FileTransaction transaction(poor);
    ASSERT_FALSE(transaction.open(kMovie, *files.identityOf(kMovie, error)));
    ASSERT_FALSE(transaction.apply(kPatch));
    EXPECT_THROW(UndoStore(poor, kStore).keep(transaction), std::bad_alloc);
    EXPECT_EQ(files.paths(), std::set<fs::path>{kMovie});
}

TEST_F(UndoOfSaves, SaysWhichMovieIsMissing) {
    const UndoResult result = vexqt::undo(files, store(), "/movies/none.mov");
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.text, "finding /movies/none.mov: No such file or directory");
}

TEST_F(UndoOfSaves, RecordsLieInTheStoreAlone) {
    save(kPatch);
    for (const fs::path& path : files.paths())
        EXPECT_TRUE(path == kMovie || path.parent_path() == kStore) << path;
}

// What is let go.

TEST_F(UndoOfSaves, KeepsTheNewestOfAFile) {
    limits.recordsOfAFile = 3;
    std::vector<Bytes> states;
    for (int i = 0; i < 6; ++i) {
        states.push_back(movie());
        saveSmall();
    }
    files.put("/movies/b.mov", old);
    saveSmall("/movies/b.mov");
    EXPECT_EQ(records(), 3U);
    EXPECT_EQ(records("/movies/b.mov"), 1U);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(undo().outcome, Outcome::Undone);
    EXPECT_EQ(movie(), states[3]);
    EXPECT_EQ(undo().outcome, Outcome::NothingToUndo);
}

TEST_F(UndoOfSaves, KeepsNoneThatIsTooOld) {
    limits.seconds = 100;
    saveSmall();
    now += 60;
    saveSmall();
    now += 60;
    EXPECT_EQ(records(), 2U);
    files.put("/movies/b.mov", old);
    saveSmall("/movies/b.mov");
    EXPECT_EQ(records(), 1U) << "that of any file";
}

TEST_F(UndoOfSaves, KeepsNoMoreBytesThanAllowed) {
    saveSmall();
    const std::uint64_t length = files.bytes(store().recordsOf(kMovie, error).front()).size();
    limits.bytes = 4 * length + 3;
    for (int i = 0; i < 9; ++i) {
        ++now;
        saveSmall();
    }
    EXPECT_EQ(records(), 4U);
    EXPECT_EQ(undo().outcome, Outcome::Undone);
}

TEST_F(UndoOfSaves, KeepsNoMoreRecordsThanAllowed) {
    limits.records = 5;
    for (int i = 0; i < 9; ++i) {
        ++now;
        const fs::path path = "/movies/" + std::to_string(i);
        files.put(path, old);
        saveSmall(path);
    }
    for (int i = 0; i < 9; ++i) EXPECT_EQ(records("/movies/" + std::to_string(i)), i < 4 ? 0U : 1U);
}

TEST_F(UndoOfSaves, KeepsNoRecordThatIsTooLong) {
    limits.bytesOfARecord = Journal::lengthFor(kPatch) - 1;
    const auto note = save(kPatch);
    ASSERT_TRUE(note);
    EXPECT_EQ(*note,
              "this save cannot be undone: it would take 1 MiB to keep what it changed, 1 MiB at "
              "most are kept");
    EXPECT_EQ(records(), 0U);
    limits.bytesOfARecord = 1 << 20;
    const std::optional<std::string> rounded = save(changeOf(3000, 3000, {{0, 3000}}));
    EXPECT_EQ(rounded, std::nullopt);
    files.put(kMovie, someBytes(2 << 20));
    const auto whole = save(changeOf(2 << 20, 2 << 20, {{0, (2 << 20) - 1}}));
    ASSERT_TRUE(whole);
    EXPECT_NE(whole->find("take 3 MiB to keep what it changed, 1 MiB at"), std::string::npos)
        << *whole;
    files.put(kMovie, old);
    limits.bytesOfARecord = Journal::lengthFor(kShorter);
    EXPECT_EQ(save(kShorter), std::nullopt);
}

TEST_F(UndoOfSaves, LeavesAloneWhatIsNoRecord) {
    const std::string digest(16, 'a');
    const std::vector<fs::path> foreign = {
        kStore / "notes.txt",
        kStore / (digest + "-1"),
        kStore / (digest + "-1-x.undo"),
        kStore / (digest + "-1-2"),
        kStore / (digest + "-1-2.undo.bak"),
        kStore / (digest + "-01-2.undo"),
        kStore / (digest + "-x-2.undo"),
        kStore / (digest + "--2.undo"),
        kStore / "-.undo",
    };
    for (const fs::path& path : foreign) files.put(path, {});
    saveSmall();
    for (const fs::path& path : foreign) EXPECT_TRUE(files.exists(path, error)) << path;
}

TEST_F(UndoOfSaves, RemovesRecordsThatWereNeverFinished) {
    const std::string digest(16, 'a');
    const fs::path dead = kStore / (digest + "-0-" + std::to_string(now - 4000) + ".undo.part");
    const fs::path living = kStore / (digest + "-0-" + std::to_string(now - 10) + ".undo.part");
    files.put(dead, {});
    files.put(living, {});
    saveSmall();
    EXPECT_FALSE(files.exists(dead, error));
    EXPECT_TRUE(files.exists(living, error));
}

// Where they are kept.

class Environment : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : kNames) {
            const char* value = std::getenv(name);
            before_.emplace_back(value != nullptr ? std::optional<std::string>(value)
                                                  : std::nullopt);
            ::unsetenv(name);
        }
    }
    void TearDown() override {
        for (std::size_t i = 0; i < std::size(kNames); ++i) set(kNames[i], before_[i]);
    }
    static void set(const char* name, const std::optional<std::string>& value) {
        if (value)
            ::setenv(name, value->c_str(), 1);
        else
            ::unsetenv(name);
    }

private:
    static constexpr const char* kNames[] = {"VEXQT_UNDO", "XDG_STATE_HOME", "HOME"};
    std::vector<std::optional<std::string>> before_;
};

TEST_F(Environment, SaysWhereRecordsAreKept) {
    const std::optional<std::string> none;
    const std::optional<fs::path> off;
    const struct {
        std::optional<std::string> undo, state, home;
        std::optional<fs::path> folder;
    } cases[] = {
        {none, none, "/home/me", "/home/me/.local/state/vexqt/undo"},
        {none, "/state", "/home/me", "/state/vexqt/undo"},
        {none, "/state", none, "/state/vexqt/undo"},
        {none, "state", "/home/me", "/home/me/.local/state/vexqt/undo"},
        {none, "", "/home/me", "/home/me/.local/state/vexqt/undo"},
        {"on", none, "/home/me", "/home/me/.local/state/vexqt/undo"},
        {"off", "/state", "/home/me", off},
        {none, none, none, off},
        {none, none, "", off},
        {none, none, "me", off},
    };
    for (const auto& [undo, state, home, folder] : cases) {
        set("VEXQT_UNDO", undo);
        set("XDG_STATE_HOME", state);
        set("HOME", home);
        EXPECT_EQ(UndoStore::folderOfUser(), folder);
    }
}

}  // namespace
}  // namespace vexqt
