// The power fails at every moment of a save, of a recovery and of an undo.
#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <unordered_set>

#include "saving/CrashingFileSystem.h"
#include "saving/FaultyFileSystem.h"
#include "saving/changes.h"
#include "vexqt/saving/FileTransaction.h"
#include "vexqt/saving/UndoStore.h"
#include "vexqt/saving/recovery.h"

namespace vexqt {
namespace {

using namespace testing;
namespace fs = std::filesystem;

const fs::path kMovie = "/movies/a.mov";
const fs::path kStore = "/home/undo";

/// All the ways of ten pieces, of which a length and a name are another two parts.
constexpr std::size_t kMostDisks = 1 << 13, kRandomDisks = 256;
/// A second power cut is tried in every moment of that many recoveries.
constexpr std::size_t kMostSecondCuts = 48, kMostSecondDisks = 128;

Disk diskWith(const Bytes& movie) {
    Disk disk;
    disk.files[kMovie] = {7, movie, 100};
    return disk;
}

const Bytes& movieOf(const Disk& disk) { return disk.files.at(kMovie).bytes; }

void change(FileSystem& files, const FileChange& change) {
    std::error_code error;
    FileTransaction transaction(files);
    auto failure = transaction.open(kMovie, *files.identityOf(kMovie, error));
    ASSERT_FALSE(failure) << failure->what;
    failure = transaction.apply(change);
    ASSERT_FALSE(failure) << failure->what;
}

struct Counts {
    std::size_t disks = 0, distinct = 0, secondDisks = 0, secondDistinct = 0;

    Counts& operator+=(const Counts& other) {
        disks += other.disks;
        distinct += other.distinct;
        secondDisks += other.secondDisks;
        secondDistinct += other.secondDistinct;
        return *this;
    }
};

/// Cuts the power in every moment of some work, and of the recoveries after that.
class PowerCuts {
public:
    using Check = std::function<void(const Disk&)>;

    /// `check` is called with what is there after a recovery.
    explicit PowerCuts(Check check) : check_(std::move(check)) {}

    void during(const Disk& start, const std::function<void(FileSystem&)>& work) {
        CrashingFileSystem files(start);
        const auto cut = [&] {
            counts_.disks += files.forEachDisk(kMostDisks, kRandomDisks, random_,
                                               [&](const Disk& disk) { afterCut(disk); });
        };
        cut();
        files.afterOperation = cut;
        work(files);
    }
    const Counts& counts() const { return counts_; }

private:
    void afterCut(Disk disk) {
        if (!seen_.insert(disk.hash()).second) return;
        ++counts_.distinct;
        // A card that is put into another reader, some file systems that are mounted again: the
        // file has other numbers than before.
        if (counts_.distinct % 3 == 0) {
            disk.device += 5;
            for (auto& [path, content] : disk.files) content.inode += 100;
        }
        CrashingFileSystem files(disk);
        const bool cutsAgain = counts_.distinct % (1 + counts_.distinct / kMostSecondCuts) == 0;
        if (cutsAgain)
            files.afterOperation = [&] {
                counts_.secondDisks +=
                    files.forEachDisk(kMostSecondDisks, kMostSecondDisks, random_,
                                      [&](const Disk& second) { afterSecondCut(second); });
            };
        recoverAndCheck(files);
    }
    void afterSecondCut(const Disk& disk) {
        if (!seenSecond_.insert(disk.hash()).second) return;
        ++counts_.secondDistinct;
        CrashingFileSystem files(disk);
        recoverAndCheck(files);
    }
    void recoverAndCheck(CrashingFileSystem& files) const {
        if (::testing::Test::HasFailure()) return;  // One of a hundred thousand is enough.
        const RecoveryResult result = recover(files, kMovie);
        EXPECT_NE(result.outcome, Recovery::Failed) << result.text;
        EXPECT_NE(result.outcome, Recovery::Refused) << result.text;
        check_(files.disk());
    }

    Check check_;
    Counts counts_;
    std::mt19937 random_{20240229};
    std::unordered_set<std::size_t> seen_, seenSecond_;
};

struct Layout {
    std::string what;
    std::size_t oldLength, newLength;
    std::vector<Patch> patches;
};

std::vector<Layout> journaledLayouts() {
    std::vector<Layout> layouts = {
        {"one byte", 700, 700, {{300, 1}}},
        {"one byte of one", 1, 1, {{0, 1}}},
        {"the first byte", 2000, 2000, {{0, 1}}},
        {"the last byte", 2000, 2000, {{1999, 1}}},
        {"four bytes", 2000, 2000, {{100, 4}}},
        {"across a block", 2000, 2000, {{510, 4}}},
        {"a whole block", 2048, 2048, {{512, 512}}},
        {"two ranges", 2000, 2000, {{3, 4}, {1500, 8}}},
        {"ranges side by side", 2000, 2000, {{3, 4}, {7, 700}}},
        {"ranges of one block", 1500, 1500, {{1030, 4}, {1040, 4}, {1050, 4}}},
        {"many ranges", 4000, 4000, {{0, 1}, {600, 2}, {1200, 3}, {1800, 4}, {2400, 5}, {3000, 6}}},
        {"a range in every other block", 5000, 5000, {{100, 9}, {1100, 9}, {2100, 9}, {3100, 9}}},
        {"half of it", 2000, 2000, {{1000, 1000}}},
        {"all of it", 1500, 1500, {{0, 1500}}},
        {"longer by a byte", 1000, 1001, {{1000, 1}}},
        {"longer from a block on", 1024, 1600, {{1024, 576}}},
        {"longer to a block", 1000, 1536, {{1000, 536}}},
        {"longer, over the end", 1000, 1700, {{900, 800}}},
        {"longer, changed before", 1000, 1700, {{8, 4}, {1000, 700}}},
        {"longer by two writes", 1000, 2100, {{990, 500}, {1490, 610}}},
        {"much longer", 500, 2500, {{400, 2100}}},
        {"longer behind a gap", 1000, 2600, {{1700, 900}}},
        {"longer behind a gap, changed before", 1000, 2600, {{8, 4}, {1500, 1100}}},
        {"from nothing", 0, 800, {{0, 800}}},
        {"shorter by a byte", 1000, 999, {}},
        {"shorter by a block", 1536, 1024, {}},
        {"shorter inside a block", 1000, 700, {}},
        {"shorter, changed before", 1600, 900, {{30, 8}}},
        {"shorter, changed to the end", 1600, 900, {{500, 400}}},
        {"much shorter", 2500, 100, {{90, 10}}},
        {"to nothing", 900, 0, {}},
        {"replaced, longer", 800, 1300, {{0, 1300}}},
        {"replaced, shorter", 1300, 800, {{0, 800}}},
        {"replaced, same length", 1024, 1024, {{0, 1024}}},
        {"ten blocks", 5120, 5120, {{0, 5120}}},
        {"more blocks than can be tried", 9000, 9000, {{0, 9000}}},
        {"many blocks longer", 600, 8000, {{500, 7500}}},
        {"many blocks shorter", 8000, 600, {{500, 100}}},
    };
    // A movie in front that moves behind its media, and back.
    for (const std::size_t media : {40, 700, 1500}) {
        const std::string name = std::to_string(media) + " bytes of media";
        layouts.push_back({"moved behind " + name,
                           24 + 300 + media,
                           24 + 300 + media + 420,
                           {{24, 8}, {324 + media, 420}}});
        layouts.push_back({"size given to " + name,
                           24 + media + 300,
                           24 + media + 500,
                           {{24, 8}, {24 + media, 500}}});
    }
    return layouts;
}

struct FlippedLayout {
    std::string what;
    std::size_t oldLength, newLength;
    std::vector<Patch> patches;
    Patch flip;
};

std::vector<FlippedLayout> flippedLayouts() {
    return {
        {"the movie first", 1000, 1400, {{1000, 400}}, {24, 8}},
        {"the movie last", 1000, 1400, {{1000, 400}}, {700, 8}},
        {"a type of four bytes", 1000, 1400, {{1000, 400}}, {28, 4}},
        {"across a block", 1000, 1400, {{1000, 400}}, {508, 8}},
        {"across a block, most before", 1000, 1400, {{1000, 400}}, {505, 8}},
        {"from a block on", 1024, 1600, {{1024, 576}}, {0, 8}},
        {"two writes", 1000, 1800, {{1000, 16}, {1016, 784}}, {24, 8}},
        {"a first write of a size alone", 1000, 1800, {{1000, 4}, {1004, 796}}, {24, 8}},
        {"header across a block", 1020, 2000, {{1020, 980}}, {24, 8}},
        {"an empty movie", 900, 908, {{900, 8}}, {24, 8}},
        {"many blocks", 1000, 5200, {{1000, 4200}}, {24, 8}},
        {"more blocks than can be tried", 1000, 12000, {{1000, 11000}}, {24, 8}},
        {"the flip alone", 1000, 1000, {}, {508, 8}},
    };
}

void report(std::size_t layouts, const Counts& counts) {
    std::cout << "[  STATES  ] " << layouts << " layouts: " << counts.disks
              << " disks after a power cut (" << counts.distinct << " of them distinct), "
              << counts.secondDisks << " (" << counts.secondDistinct
              << ") after another one during the recovery\n";
}

/// However the power fails after a change, it was made.
void expectOnlyAfterwards(const Bytes& old, const FileChange& edit, const Bytes& expected) {
    CrashingFileSystem files(diskWith(old));
    change(files, edit);
    std::mt19937 random(1);
    files.forEachDisk(kMostDisks, kRandomDisks, random, [&](const Disk& disk) {
        CrashingFileSystem restarted(disk);
        EXPECT_EQ(recover(restarted, kMovie).outcome, Recovery::NothingToDo);
        EXPECT_TRUE(movieOf(restarted.disk()) == expected);
    });
}

TEST(PowerCut, LeavesTheOldFileOrTheNewOne) {
    Counts counts;
    const auto layouts = journaledLayouts();
    EXPECT_GE(layouts.size(), 40U);
    for (const auto& [what, oldLength, newLength, patches] : layouts) {
        SCOPED_TRACE(what);
        const Bytes old = someBytes(oldLength);
        const FileChange edit = changeOf(oldLength, newLength, patches);
        const Bytes changedBytes = changed(old, edit);
        std::size_t olds = 0, news = 0;
        PowerCuts cuts([&](const Disk& disk) {
            EXPECT_EQ(disk.files.size(), 1U);
            const bool isOld = movieOf(disk) == old;
            EXPECT_TRUE(isOld || movieOf(disk) == changedBytes);
            ++(isOld ? olds : news);
        });
        cuts.during(diskWith(old), [&](FileSystem& files) { change(files, edit); });
        EXPECT_GT(olds, 0U);
        EXPECT_GT(news, 0U);
        counts += cuts.counts();
        if (HasFailure()) break;
    }
    report(layouts.size(), counts);
}

TEST(PowerCut, AfterASaveLeavesTheNewFile) {
    for (const auto& [what, oldLength, newLength, patches] : journaledLayouts()) {
        SCOPED_TRACE(what);
        const FileChange edit = changeOf(oldLength, newLength, patches);
        const Bytes old = someBytes(oldLength);
        expectOnlyAfterwards(old, edit, changed(old, edit));
    }
    for (const auto& [what, oldLength, newLength, patches, flip] : flippedLayouts()) {
        SCOPED_TRACE(what);
        const FileChange edit = changeOf(oldLength, newLength, patches, flip);
        const Bytes old = someBytes(oldLength);
        expectOnlyAfterwards(old, edit, changed(old, edit));
    }
}

/// True if nothing but the flip is missing, or some blocks of it.
bool isNewUpToTheFlip(const Bytes& bytes, const Bytes& old, const Bytes& changedBytes,
                      const Patch& flip) {
    if (bytes.size() != changedBytes.size()) return false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == changedBytes[i]) continue;
        if (i < flip.offset || i >= flip.offset + flip.length) return false;
        if (bytes[i] != (i < old.size() ? old[i] : 0)) return false;
    }
    return true;
}

TEST(PowerCut, NeedsNoRecoveryWhereBytesAreFlipped) {
    Counts counts;
    const auto layouts = flippedLayouts();
    for (const auto& [what, oldLength, newLength, patches, flip] : layouts) {
        SCOPED_TRACE(what);
        const Bytes old = someBytes(oldLength);
        const FileChange edit = changeOf(oldLength, newLength, patches, flip);
        const Bytes changedBytes = changed(old, edit);
        std::size_t olds = 0, news = 0;
        PowerCuts cuts([&, flip = flip](const Disk& disk) {
            EXPECT_EQ(disk.files.size(), 1U);
            const Bytes& bytes = movieOf(disk);
            if (bytes == changedBytes) {
                ++news;
                return;
            }
            if (bytes != old && isNewUpToTheFlip(bytes, old, changedBytes, flip)) return;
            ++olds;
            ASSERT_GE(bytes.size(), old.size());
            EXPECT_TRUE(std::equal(old.begin(), old.end(), bytes.begin()));
            // A reader finds a movie behind the old one only if all of it is there.
            const auto typeOf = [&](const Bytes& from) {
                return Bytes(from.begin() + static_cast<std::ptrdiff_t>(old.size()) + 4,
                             from.begin() + static_cast<std::ptrdiff_t>(old.size()) + 8);
            };
            if (bytes.size() < old.size() + 8 || typeOf(bytes) != typeOf(changedBytes)) return;
            EXPECT_EQ(bytes.size(), changedBytes.size());
            EXPECT_TRUE(isNewUpToTheFlip(bytes, old, changedBytes, {0, old.size() + 8}));
        });
        cuts.during(diskWith(old), [&](FileSystem& files) {
            change(files, edit);
            EXPECT_FALSE(::testing::Test::HasFailure());
        });
        EXPECT_GT(olds, 0U);
        EXPECT_GT(news, 0U);
        counts += cuts.counts();
        if (HasFailure()) break;
    }
    report(layouts.size(), counts);
}

TEST(PowerCut, DuringTheRollbackOfASaveThatFailedLeavesTheOldFileOrTheNewOne) {
    struct Failing {
        const char* what;
        std::size_t oldLength;
        FileChange edit;
    };
    const Failing cases[] = {
        {"patched", 1100, changeOf(1100, 1100, {{20, 4}, {500, 30}})},
        {"longer", 1000, changeOf(1000, 1700, {{8, 4}, {1000, 700}})},
        {"shorter", 1600, changeOf(1600, 900, {{500, 400}})},
        {"flipped", 1000, changeOf(1000, 1700, {{1000, 700}}, Patch{508, 8})},
    };
    Counts counts;
    for (const auto& [what, oldLength, edit] : cases) {
        const Bytes old = someBytes(oldLength);
        const Bytes changedBytes = changed(old, edit);
        const Patch flip = {edit.flip ? edit.flip->offset : 0, edit.flip ? std::size_t{8} : 0};
        for (std::size_t operation = 0;; ++operation) {
            SCOPED_TRACE(std::string(what) + ", operation " + std::to_string(operation));
            bool hasFailed = false;
            PowerCuts cuts([&, &edit = edit](const Disk& disk) {
                Bytes bytes = movieOf(disk);
                EXPECT_EQ(disk.files.size(), 1U);
                if (bytes == changedBytes) return;
                if (edit.flip && bytes != old && isNewUpToTheFlip(bytes, old, changedBytes, flip))
                    return;
                if (edit.flip && bytes.size() > old.size()) bytes.resize(old.size());
                EXPECT_TRUE(bytes == old);
            });
            cuts.during(diskWith(old), [&, &edit = edit](FileSystem& files) {
                std::error_code error;
                const FileIdentity read = *files.identityOf(kMovie, error);
                FaultyFileSystem faulty(files);
                faulty.setFault(
                    FaultyFileSystem::Fault{std::make_error_code(std::errc::io_error), operation});
                FileTransaction transaction(faulty);
                if (!transaction.open(kMovie, read)) transaction.apply(edit);
                hasFailed = operation < faulty.operations.size();
            });
            counts += cuts.counts();
            if (!hasFailed) break;
        }
    }
    report(std::size(cases), counts);
}

TEST(PowerCut, DuringAnUndoLeavesTheSavedFileOrTheOneBefore) {
    const Layout layouts[] = {
        {"a patch", 1500, 1500, {{20, 4}, {900, 40}}},
        {"longer", 1000, 1700, {{8, 4}, {1000, 700}}},
        {"shorter", 1600, 900, {{500, 400}}},
    };
    Counts counts;
    for (const auto& [what, oldLength, newLength, patches] : layouts) {
        SCOPED_TRACE(what);
        const Bytes old = someBytes(oldLength);
        const FileChange edit = changeOf(oldLength, newLength, patches);
        const Bytes saved = changed(old, edit);

        CrashingFileSystem start(diskWith(old));
        UndoStore store(start, kStore);
        std::error_code error;
        FileTransaction transaction(start);
        ASSERT_FALSE(transaction.open(kMovie, *start.identityOf(kMovie, error)));
        ASSERT_FALSE(transaction.apply(edit));
        ASSERT_EQ(store.keep(transaction), std::nullopt);

        PowerCuts cuts([&](const Disk& disk) {
            EXPECT_TRUE(movieOf(disk) == old || movieOf(disk) == saved);
            // Whatever happened, the undo can be done or is known to be done.
            CrashingFileSystem files(disk);
            const UndoResult result = undo(files, UndoStore(files, kStore), kMovie);
            EXPECT_NE(result.outcome, UndoResult::Outcome::Failed) << result.text;
            EXPECT_TRUE(movieOf(files.disk()) == old) << result.text;
        });
        cuts.during(start.disk(), [](FileSystem& files) {
            EXPECT_EQ(undo(files, UndoStore(files, kStore), kMovie).outcome,
                      UndoResult::Outcome::Undone);
        });
        counts += cuts.counts();
    }
    report(std::size(layouts), counts);
}

TEST(PowerCut, WhileARecordIsKeptLeavesTheNewFileAndNoHalfARecord) {
    const Bytes old = someBytes(1500);
    const FileChange edit = changeOf(1500, 1600, {{20, 4}, {1500, 100}});
    const Bytes saved = changed(old, edit);
    PowerCuts cuts([&](const Disk& disk) {
        const bool isSaved = movieOf(disk) == saved;
        EXPECT_TRUE(isSaved || movieOf(disk) == old);
        CrashingFileSystem files(disk);
        const UndoResult result = undo(files, UndoStore(files, kStore), kMovie);
        EXPECT_NE(result.outcome, UndoResult::Outcome::Failed) << result.text;
        if (result.outcome == UndoResult::Outcome::Undone)
            EXPECT_TRUE(isSaved && movieOf(files.disk()) == old);
        else
            EXPECT_TRUE(movieOf(files.disk()) == movieOf(disk));
    });
    cuts.during(diskWith(old), [&](FileSystem& files) {
        std::error_code error;
        FileTransaction transaction(files);
        ASSERT_FALSE(transaction.open(kMovie, *files.identityOf(kMovie, error)));
        ASSERT_FALSE(transaction.apply(edit));
        EXPECT_EQ(UndoStore(files, kStore).keep(transaction), std::nullopt);
    });
    report(1, cuts.counts());
}

}  // namespace
}  // namespace vexqt
