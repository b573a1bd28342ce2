#include "vexqt/saving/FileTransaction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "saving/FaultyFileSystem.h"
#include "saving/changes.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/recovery.h"

namespace vexqt {
namespace {

using namespace testing;
using Reason = SaveFailure::Reason;
namespace fs = std::filesystem;

const fs::path kMovie = "/movies/a.mov";
const fs::path kJournal = "/movies/.a.mov.vexqt-journal";

class FileTransactions : public ::testing::Test {
protected:
    FileTransactions() { files.put(kMovie, old); }

    FileIdentity identity() { return *files.identityOf(kMovie, error); }
    std::optional<SaveFailure> change(const FileChange& change,
                                      const FileTransaction::Callbacks& callbacks = {}) {
        FileTransaction transaction(files);
        if (auto failure = transaction.open(kMovie, identity())) return failure;
        return transaction.apply(change, callbacks);
    }
    void expectOld() {
        EXPECT_EQ(files.bytes(kMovie), old);
        EXPECT_EQ(files.paths(), std::set<fs::path>{kMovie});
    }

    const Bytes old = someBytes(3000);
    MemoryFileSystem files;
    std::error_code error;
};

const FileChange kPatch = changeOf(3000, 3000, {{100, 4}});
const FileChange kFlip = changeOf(3000, 3700, {{3000, 700}}, Patch{40, 8});

TEST_F(FileTransactions, MakeTheChange) {
    const struct {
        const char* what;
        FileChange change;
    } cases[] = {
        {"a few bytes", kPatch},
        {"several ranges", changeOf(3000, 3000, {{0, 8}, {8, 1}, {700, 900}, {2999, 1}})},
        {"longer", changeOf(3000, 4000, {{2900, 1100}})},
        {"longer by two writes", changeOf(3000, 4000, {{10, 10}, {3000, 500}, {3500, 500}})},
        {"longer behind a gap of zeros", changeOf(3000, 5000, {{10, 10}, {4000, 1000}})},
        {"shorter", changeOf(3000, 1000, {{10, 10}})},
        {"cut off", changeOf(3000, 0, {})},
        {"all of it", changeOf(3000, 2000, {{0, 2000}})},
        {"longer than a block", changeOf(3000, 9'000'000, {{2999, 8'997'001}})},
        {"a write of nothing", changeOf(3000, 3000, {{50, 0}, {100, 4}})},
        {"flipped", kFlip},
        {"flipped alone", changeOf(3000, 3000, {}, Patch{0, 8})},
        {"flipped with two writes", changeOf(3000, 3700, {{3000, 3}, {3003, 697}}, Patch{9, 4})},
    };
    for (const auto& [what, change] : cases) {
        SCOPED_TRACE(what);
        files.put(kMovie, old);
        const auto failure = this->change(change);
        EXPECT_FALSE(failure) << failure->what;
        EXPECT_TRUE(files.bytes(kMovie) == changed(old, change));
        EXPECT_EQ(files.paths(), std::set<fs::path>{kMovie});
    }
}

TEST_F(FileTransactions, AnEmptyChangeTouchesNothing) {
    const FileIdentity before = identity();
    FileTransaction transaction(files);
    ASSERT_FALSE(transaction.open(kMovie, before));
    EXPECT_FALSE(transaction.apply(changeOf(3000, 3000, {})));
    EXPECT_FALSE(transaction.canBeUndone());
    EXPECT_EQ(identity(), before);
}

TEST_F(FileTransactions, RefuseChangesThatAreNotInOrder) {
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    const struct {
        const char* what;
        FileChange change;
    } cases[] = {
        {"order", changeOf(3000, 3000, {{500, 4}, {100, 4}})},
        {"overlap", changeOf(3000, 3000, {{100, 4}, {103, 4}})},
        {"past the new end", changeOf(3000, 2000, {{1999, 2}})},
        {"past all offsets", changeOf(3000, kMost, {{kMost - 1, 4}})},
        {"a flip and a gap", changeOf(3000, 4000, {{3001, 999}}, Patch{8, 8})},
        {"a flip and a gap later", changeOf(3000, 4000, {{3000, 500}, {3501, 499}}, Patch{8, 8})},
        {"longer without a write", changeOf(3000, 4000, {})},
        {"longer than its last write", changeOf(3000, 4000, {{3500, 499}})},
        {"another old length", changeOf(2999, 2999, {{100, 4}})},
        {"a long flip", changeOf(3000, 3100, {{3000, 100}}, Patch{8, 9})},
        {"a flip over the end", changeOf(3000, 3100, {{3000, 100}}, Patch{2999, 2})},
        {"a flip past the end", changeOf(3000, 3100, {{3000, 100}}, Patch{kMost, 2})},
        {"a flip and a write before the end", changeOf(3000, 3100, {{2999, 101}}, Patch{8, 8})},
        {"a flip and a shorter file", changeOf(3000, 2000, {}, Patch{8, 8})},
    };
    for (const auto& [what, change] : cases) {
        SCOPED_TRACE(what);
        const auto failure = this->change(change);
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->code, std::errc::invalid_argument);
        EXPECT_EQ(failure->what.find("the change is not in order: "), 0U) << failure->what;
        expectOld();
    }
}

TEST_F(FileTransactions, RefuseAFileThatIsNotAsItWasRead) {
    const FileIdentity read = identity();
    const struct {
        const char* what;
        FileIdentity expected;
    } cases[] = {
        {"device", {9, read.inode, read.size, read.modifiedSeconds, 0, true}},
        {"inode", {read.device, 999, read.size, read.modifiedSeconds, 0, true}},
        {"size", {read.device, read.inode, 2999, read.modifiedSeconds, 0, true}},
        {"time", {read.device, read.inode, read.size, read.modifiedSeconds + 1, 0, true}},
        {"nanoseconds", {read.device, read.inode, read.size, read.modifiedSeconds, 1, true}},
    };
    for (const auto& [what, expected] : cases) {
        SCOPED_TRACE(what);
        FileTransaction transaction(files);
        const auto failure = transaction.open(kMovie, expected);
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->reason, Reason::Changed);
        EXPECT_EQ(failure->what, "/movies/a.mov has changed since it was read");
    }
    expectOld();
}

TEST_F(FileTransactions, RefuseAFileThatIsWrittenToWhileItIsOpen) {
    FileTransaction transaction(files);
    ASSERT_FALSE(transaction.open(kMovie, identity()));
    files.openForWriting(kMovie, error)->writeAt(0, Bytes{1}, error);
    const auto failure = transaction.apply(kPatch);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->reason, Reason::Changed);
}

TEST_F(FileTransactions, RefuseAFileBesideAJournal) {
    files.put(kJournal, Bytes{1});
    FileTransaction transaction(files);
    const auto failure = transaction.open(kMovie, identity());
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->reason, Reason::RecoveryNeeded);
    EXPECT_NE(failure->what.find(kJournal.string()), std::string::npos) << failure->what;
}

TEST_F(FileTransactions, OneAtATime) {
    FileTransaction first(files);
    ASSERT_FALSE(first.open(kMovie, identity()));
    {
        FileTransaction second(files);
        const auto failure = second.open(kMovie, identity());
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->reason, Reason::Busy);
        EXPECT_EQ(failure->code, std::errc::operation_would_block);
    }
    EXPECT_FALSE(first.apply(kPatch));
    EXPECT_EQ(files.bytes(kMovie), changed(old, kPatch));
}

TEST_F(FileTransactions, TheLockIsGivenUpWithTheTransaction) {
    EXPECT_FALSE(change(kPatch));
    const FileChange next = changeOf(3000, 3000, {{500, 9}});
    EXPECT_FALSE(change(next));
    EXPECT_EQ(files.bytes(kMovie), changed(changed(old, kPatch), next));
}

TEST_F(FileTransactions, VerifyLooksAtTheFileAsItWillBe) {
    for (const FileChange& change : {kPatch, kFlip, changeOf(3000, 500, {{3, 5}})}) {
        files.put(kMovie, old);
        Bytes seen;
        const auto look = [&](File& file) {
            seen.resize(file.size(error) + 10);
            seen.resize(file.readAt(0, seen, error));
            // Every way to read a flip, which may not be in the file yet.
            for (std::size_t at = 30; at < 60; ++at)
                for (std::size_t count = 0; count < 12; ++count) {
                    Bytes part(count);
                    EXPECT_EQ(file.readAt(at, part, error), count);
                    EXPECT_TRUE(std::equal(part.begin(), part.end(),
                                           seen.begin() + static_cast<std::ptrdiff_t>(at)));
                }
            return true;
        };
        EXPECT_FALSE(this->change(change, {.progress = {}, .verify = look}));
        EXPECT_EQ(seen, changed(old, change));
    }
}

TEST_F(FileTransactions, WhatVerifyLooksAtBeforeAFlipCannotBeWritten) {
    const auto write = [&](File& file) {
        file.writeAt(0, Bytes{1}, error);
        EXPECT_TRUE(error);
        file.truncate(0, error);
        EXPECT_TRUE(error);
        file.setModified(0, 0, error);
        EXPECT_TRUE(error);
        return false;
    };
    EXPECT_TRUE(change(kFlip, {.progress = {}, .verify = write}));
    expectOld();
}

TEST_F(FileTransactions, WhatDoesNotReadBackAsMeantIsTakenBack) {
    const FileIdentity before = identity();
    for (const FileChange& change :
         {kPatch, kFlip, changeOf(3000, 500, {{3, 5}}), changeOf(3000, 4000, {{10, 3990}})}) {
        const auto failure =
            this->change(change, {.progress = {}, .verify = [](File&) { return false; }});
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->reason, Reason::NotAsMeant);
        EXPECT_EQ(failure->what,
                  "what was written does not read back as it was meant; the movie is as it was");
        expectOld();
        EXPECT_EQ(identity(), before) << "it was not even modified";
    }
}

TEST_F(FileTransactions, TakesBackMoreThanItReadsAtOnce) {
    const Bytes longer = someBytes(3'500'000);
    files.put(kMovie, longer);
    const auto failure = change(changeOf(3'500'000, 3'000'000, {{7, 2'800'000}}),
                                {.progress = {}, .verify = [](File&) { return false; }});
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->reason, Reason::NotAsMeant);
    EXPECT_TRUE(files.bytes(kMovie) == longer);
}

TEST_F(FileTransactions, ACallbackThatThrowsStopsTheSave) {
    const auto stop = [](auto&&...) -> bool { throw std::runtime_error("stop"); };
    const FileChange large = changeOf(3000, 20'000'000, {{2000, 19'998'000}});
    for (const FileChange& change : {kPatch, kFlip, large}) {
        EXPECT_THROW(this->change(change, {.progress = {}, .verify = stop}), std::runtime_error);
        expectOld();
        EXPECT_THROW(this->change(change, {.progress = stop, .verify = {}}), std::runtime_error);
        expectOld();
    }
}

TEST_F(FileTransactions, ProgressGrowsToItsTotal) {
    const FileChange large = changeOf(3000, 20'000'000, {{2000, 19'998'000}});
    for (const FileChange& change : {kPatch, kFlip, large, changeOf(3000, 100, {})}) {
        std::vector<std::uint64_t> reports;
        std::uint64_t expected = 0;
        const auto progress = [&](std::uint64_t done, std::uint64_t total) {
            reports.push_back(done);
            expected = total;
        };
        files.put(kMovie, old);
        EXPECT_FALSE(this->change(change, {.progress = progress, .verify = {}}));
        ASSERT_FALSE(reports.empty());
        EXPECT_TRUE(std::ranges::is_sorted(reports));
        EXPECT_EQ(reports.back(), expected);
        EXPECT_LT(reports.size(), 10U);
    }
}

TEST_F(FileTransactions, KeepOldBytesThatAreThemselvesOnTheDisk) {
    FaultyFileSystem counting(files);
    FileTransaction transaction(counting);
    ASSERT_FALSE(transaction.open(kMovie, identity()));
    ASSERT_FALSE(transaction.apply(kPatch));
    const auto& operations = counting.operations;
    EXPECT_LT(std::ranges::find(operations, "flush"),
              std::ranges::find(operations, "createPrivate"));
}

TEST_F(FileTransactions, SayWhatAFileIsThatCannotBeSaved) {
    FileTransaction transaction(files);
    const auto failure = transaction.open("/movies/none.mov", FileIdentity());
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->what, "finding /movies/none.mov: No such file or directory");
    EXPECT_EQ(failure->code, std::errc::no_such_file_or_directory);
}

}  // namespace
}  // namespace vexqt
