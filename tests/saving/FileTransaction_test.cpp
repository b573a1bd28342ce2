#include "vexqt/saving/FileTransaction.h"

#include <gtest/gtest.h>

#include <stdexcept>

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
        {"shorter", changeOf(3000, 1000, {{10, 10}})},
        {"cut off", changeOf(3000, 0, {})},
        {"all of it", changeOf(3000, 2000, {{0, 2000}})},
        {"longer than a block", changeOf(3000, 9'000'000, {{2999, 8'997'001}})},
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

}  // namespace
}  // namespace vexqt
