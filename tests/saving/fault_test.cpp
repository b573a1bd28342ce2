// Every operation of a save, a recovery and an undo fails, once and for good.
#include <gtest/gtest.h>
#include <unistd.h>

#include <iostream>
#include <set>
#include <stdexcept>

#include "saving/FaultyFileSystem.h"
#include "saving/changes.h"
#include "saving/saves.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/FileTransaction.h"
#include "vexqt/saving/UndoStore.h"
#include "vexqt/saving/recovery.h"
#include "vexqt/saving/whole_files.h"

namespace vexqt {
namespace {

using namespace testing;
using Reason = SaveFailure::Reason;
namespace fs = std::filesystem;

const fs::path kMovie = "/movies/a.mov";
const fs::path kJournal = "/movies/.a.mov.vexqt-journal";
const fs::path kStore = "/home/undo";

struct Case {
    const char* what;
    FileChange change;
};

std::vector<Case> changes() {
    return {
        {"patched", changeOf(2000, 2000, {{100, 4}, {900, 600}})},
        {"longer", changeOf(2000, 2600, {{20, 4}, {1900, 700}})},
        {"longer behind a gap", changeOf(2000, 3600, {{20, 4}, {3000, 600}})},
        {"shorter", changeOf(2000, 900, {{800, 100}})},
        {"flipped", changeOf(2000, 2600, {{2000, 600}}, Patch{508, 8})},
    };
}

using Fault = FaultyFileSystem::Fault;

/// A disk in memory that fails.
class FaultyDisk {
public:
    /// Begins anew, with one file.
    FaultyFileSystem& fresh(const fs::path& path, const Bytes& bytes) {
        memory.emplace();
        memory->put(path, bytes);
        return faulty.emplace(*memory);
    }

    std::optional<MemoryFileSystem> memory;
    std::optional<FaultyFileSystem> faulty;
};

std::string described(const Fault& fault, const FaultyFileSystem& files) {
    return files.operations[fault.first] + " " + std::to_string(fault.first) + " " +
           (fault.error ? fault.error.message() : "short read") +
           (fault.forGood ? " for good" : " once") + (fault.doesHalf ? ", half of it" : "");
}

std::size_t faults = 0;
/// The operations that have failed, so that none is left out.
std::set<std::string> failed;

/// Sets the fault when its operations begin to count; none, to see how many there are.
using Work = std::function<void(FaultyFileSystem&, const std::optional<Fault>&)>;

/// Does some work with every fault that it can meet, and calls after each.
void forEachFault(const std::function<FaultyFileSystem&()>& fresh, const Work& work,
                  const std::function<void(const Fault&, const FaultyFileSystem&)>& check) {
    FaultyFileSystem& whole = fresh();
    work(whole, std::nullopt);
    const std::size_t count = whole.operations.size();
    std::vector<std::error_code> errors = {{}};
    for (const int number : {EIO, ENOSPC, EINTR, EROFS, EDQUOT})
        errors.emplace_back(number, std::generic_category());
    const auto tryIt = [&](const Fault& fault) {
        FaultyFileSystem& files = fresh();
        work(files, fault);
        ASSERT_GT(files.operations.size(), fault.first);
        ++faults;
        SCOPED_TRACE(described(fault, files));
        check(fault, files);
    };
    for (const std::error_code& error : errors)
        for (std::size_t first = 0; first < count; ++first)
            for (const bool forGood : {false, true})
                for (const bool doesHalf : {false, true}) tryIt({error, first, forGood, doesHalf});
}

TEST(Fault, OfASaveIsReportedAndTheOldBytesStay) {
    const Bytes old = someBytes(2000);
    faults = 0;
    failed.clear();
    for (const Case& test : changes()) {
        const FileChange& change = test.change;
        const Bytes saved = changed(old, change);
        FaultyDisk disk;
        auto& memory = disk.memory;
        std::optional<SaveFailure> failure;
        std::vector<std::string> notes;
        const auto fresh = [&]() -> FaultyFileSystem& { return disk.fresh(kMovie, old); };
        const auto save = [&](FaultyFileSystem& files, const std::optional<Fault>& fault) {
            files.setFault(fault);
            std::error_code error;
            const FileIdentity read = *memory->identityOf(kMovie, error);
            FileTransaction transaction(files);
            failure = transaction.open(kMovie, read);
            if (!failure) failure = transaction.apply(change);
            notes = transaction.notes();
        };
        forEachFault(fresh, save, [&](const Fault& fault, const FaultyFileSystem& files) {
            const std::string operation = files.operations[fault.first];
            if (!fault.error && operation != "read" && !fault.forGood) {
                EXPECT_FALSE(failure);
                return;
            }
            failed.insert(operation);
            SCOPED_TRACE(std::string(test.what) + (failure ? ": " + failure->what : ""));
            const bool isLeft = memory->paths().contains(kJournal);
            if (!failure) {
                // What is done when the new movie has been written and nothing can be lost.
                EXPECT_TRUE(memory->bytes(kMovie) == saved);
                EXPECT_FALSE(isLeft);
                EXPECT_TRUE(!fault.error || operation == "flushDirectory");
                EXPECT_EQ(notes.size(), fault.error ? 1U : 0U);
                return;
            }
            EXPECT_EQ(failure->code,
                      fault.error ? fault.error : std::make_error_code(std::errc::io_error));
            EXPECT_EQ(failure->what.find('\n'), std::string::npos);
            // What the rollback could not do is left to be done.
            const bool isHalf = failure->reason == Reason::RollBackFailed;
            if (change.flip) {
                EXPECT_FALSE(isLeft);
                const Bytes& now = memory->bytes(kMovie);
                if (!isHalf && failure->what.find("left behind") == std::string::npos) {
                    EXPECT_TRUE(now == old);
                } else {
                    // All of the new one is there, and either one counts.
                    ASSERT_GE(now.size(), old.size());
                    EXPECT_TRUE(fault.forGood);
                }
                return;
            }
            if (!isHalf) {
                EXPECT_TRUE(memory->bytes(kMovie) == old);
            }
            EXPECT_TRUE(fault.forGood || (!isHalf && !isLeft));
            if (isHalf) {
                EXPECT_TRUE(isLeft);
            }
            if (isLeft) {
                EXPECT_NE(failure->what.find(kJournal.string()), std::string::npos);
            }
            // And it can be done.
            RecoveryResult result = recover(*memory, kMovie);
            EXPECT_EQ(result.outcome != Recovery::NothingToDo, isLeft) << result.text;
            if (result.outcome == Recovery::Refused) {
                // No disk does half of a piece, but a file system over a network may.
                EXPECT_TRUE(isHalf && fault.doesHalf);
                result = recover(*memory, kMovie, IfChanged::RecoverAnyway);
            }
            EXPECT_TRUE(memory->bytes(kMovie) == old) << result.text;
            EXPECT_EQ(memory->paths(), std::set<fs::path>{kMovie});
        });
        if (HasFailure()) break;
    }
    EXPECT_EQ(failed, (std::set<std::string>{"resolve", "openForWriting", "lock", "identity",
                                             "identityOf", "createPrivate", "read", "write",
                                             "truncate", "flush", "flushDirectory", "remove"}));
    std::cout << "[  FAULTS  ] " << faults << "\n";
}

TEST(Fault, OfARollbackLeavesTheJournal) {
    const Bytes old = someBytes(2000);
    const FileChange change = changeOf(2000, 2600, {{20, 4}, {1900, 700}});
    FaultyDisk disk;
    auto& memory = disk.memory;
    std::optional<SaveFailure> failure;
    const auto fresh = [&]() -> FaultyFileSystem& { return disk.fresh(kMovie, old); };
    const auto save = [&](FaultyFileSystem& files, const std::optional<Fault>& fault) {
        std::error_code error;
        FileTransaction transaction(files);
        failure = transaction.open(kMovie, *memory->identityOf(kMovie, error));
        if (failure) return;
        failure = transaction.apply(change, {.progress = {}, .verify = [&](File&) {
                                                 files.setFault(fault);
                                                 return false;
                                             }});
    };
    std::size_t rollbacksFailed = 0;
    forEachFault(fresh, save, [&](const Fault& fault, const FaultyFileSystem&) {
        ASSERT_TRUE(failure);
        SCOPED_TRACE(failure->what);
        if (failure->reason == Reason::RollBackFailed) {
            ++rollbacksFailed;
            EXPECT_NE(failure->what.find("putting the old bytes back failed as well"),
                      std::string::npos);
            EXPECT_NE(failure->what.find("they are kept in " + kJournal.string()),
                      std::string::npos);
        } else {
            EXPECT_EQ(failure->reason, Reason::NotAsMeant);
            EXPECT_TRUE(memory->bytes(kMovie) == old);
        }
        if (recover(*memory, kMovie).outcome == Recovery::Refused) {
            EXPECT_TRUE(fault.doesHalf);
            recover(*memory, kMovie, IfChanged::RecoverAnyway);
        }
        EXPECT_TRUE(memory->bytes(kMovie) == old);
        EXPECT_EQ(memory->paths(), std::set<fs::path>{kMovie});
    });
    EXPECT_GT(rollbacksFailed, 20U);
}

/// What stops a save may come from the callbacks, and what stops its rollback from the disk.
TEST(Fault, OfARollbackIsToldWhereACallbackHasThrown) {
    for (const bool isPoor : {false, true}) {
        MemoryFileSystem memory;
        memory.put(kMovie, someBytes(2000));
        FaultyFileSystem files(memory);
        std::error_code error;
        std::optional<FileTransaction> transaction(files);
        ASSERT_FALSE(transaction->open(kMovie, *memory.identityOf(kMovie, error)));
        const auto stop = [&](File&) -> bool {
            if (isPoor) {
                files.beforeOperation = [](std::size_t) { throw std::bad_alloc(); };
            } else {
                files.setFault(Fault{std::make_error_code(std::errc::io_error), 0, true});
            }
            throw std::runtime_error("stop");
        };
        const auto failure =
            transaction->apply(changeOf(2000, 2000, {{100, 4}}), {.progress = {}, .verify = stop});
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->reason, Reason::RollBackFailed);
        EXPECT_EQ(failure->code, isPoor ? std::errc::not_enough_memory : std::errc::io_error);
        EXPECT_EQ(failure->what.find("the save was stopped; putting the old bytes back failed"), 0U)
            << failure->what;
        transaction.reset();
        EXPECT_EQ(recover(memory, kMovie).outcome, Recovery::RolledBack);
        EXPECT_EQ(memory.bytes(kMovie), someBytes(2000));
    }
}

TEST(Fault, OfARecoveryIsReportedAndItCanBeDoneAgain) {
    const Bytes old = someBytes(2000);
    faults = 0;
    for (const Case& test : changes()) {
        const FileChange& change = test.change;
        if (change.flip) continue;
        // A save that was interrupted before its last step.
        MemoryFileSystem source;
        source.put(kMovie, old);
        std::error_code error;
        Bytes journal;
        {
            FileTransaction transaction(source);
            ASSERT_FALSE(transaction.open(kMovie, *source.identityOf(kMovie, error)));
            ASSERT_FALSE(transaction.apply(change, {.progress = {}, .verify = [&](File&) {
                                                        journal = source.bytes(kJournal);
                                                        return true;
                                                    }}));
        }
        FaultyDisk disk;
        auto& memory = disk.memory;
        RecoveryResult result;
        const auto fresh = [&]() -> FaultyFileSystem& {
            FaultyFileSystem& files = disk.fresh(kMovie, source.bytes(kMovie));
            memory->put(kJournal, journal);
            return files;
        };
        const auto work = [&](FaultyFileSystem& files, const std::optional<Fault>& fault) {
            files.setFault(fault);
            result = recover(files, kMovie);
        };
        forEachFault(fresh, work, [&](const Fault& fault, const FaultyFileSystem&) {
            SCOPED_TRACE(result.text);
            if (result.outcome == Recovery::Failed) {
                ASSERT_TRUE(result.failure);
                EXPECT_EQ(result.failure->code,
                          fault.error ? fault.error : std::make_error_code(std::errc::io_error));
                result = recover(*memory, kMovie);
                if (result.outcome == Recovery::Refused) {
                    EXPECT_TRUE(fault.doesHalf);
                    recover(*memory, kMovie, IfChanged::RecoverAnyway);
                }
            } else {
                EXPECT_EQ(result.outcome, Recovery::RolledBack);
            }
            EXPECT_TRUE(memory->bytes(kMovie) == old);
            EXPECT_EQ(memory->paths(), std::set<fs::path>{kMovie});
        });
    }
    std::cout << "[  FAULTS  ] " << faults << "\n";
}

TEST(Fault, OfARecordIsANote) {
    const Bytes old = someBytes(2000);
    faults = 0;
    for (const Case& test : changes()) {
        const FileChange& change = test.change;
        const Bytes saved = changed(old, change);
        FaultyDisk disk;
        auto& memory = disk.memory;
        std::optional<std::string> note;
        const auto fresh = [&]() -> FaultyFileSystem& { return disk.fresh(kMovie, old); };
        const auto work = [&](FaultyFileSystem& files, const std::optional<Fault>& fault) {
            std::error_code error;
            FileTransaction transaction(files);
            ASSERT_FALSE(transaction.open(kMovie, *memory->identityOf(kMovie, error)));
            ASSERT_FALSE(transaction.apply(change));
            files.setFault(fault);
            note = UndoStore(files, kStore).keep(transaction);
        };
        forEachFault(fresh, work, [&](const Fault& fault, const FaultyFileSystem&) {
            SCOPED_TRACE(note.value_or("kept"));
            EXPECT_TRUE(memory->bytes(kMovie) == saved);
            if (note) {
                EXPECT_EQ(note->find("this save cannot be undone: "), 0U);
                if (!fault.forGood) {
                    EXPECT_EQ(memory->paths(), std::set<fs::path>{kMovie});
                }
                return;
            }
            EXPECT_EQ(undo(*memory, UndoStore(*memory, kStore), kMovie).outcome,
                      UndoResult::Outcome::Undone);
            EXPECT_TRUE(memory->bytes(kMovie) == old);
        });
    }
    std::cout << "[  FAULTS  ] " << faults << "\n";
}

TEST(Fault, OfAnUndoIsReportedAndItCanBeDoneAgain) {
    const Bytes old = someBytes(2000);
    faults = 0;
    for (const Case& test : changes()) {
        const FileChange& change = test.change;
        FaultyDisk disk;
        auto& memory = disk.memory;
        UndoResult result;
        const auto fresh = [&]() -> FaultyFileSystem& {
            FaultyFileSystem& files = disk.fresh(kMovie, old);
            std::error_code error;
            FileTransaction transaction(*memory);
            EXPECT_FALSE(transaction.open(kMovie, *memory->identityOf(kMovie, error)));
            EXPECT_FALSE(transaction.apply(change));
            EXPECT_EQ(UndoStore(*memory, kStore).keep(transaction), std::nullopt);
            return files;
        };
        const auto work = [&](FaultyFileSystem& files, const std::optional<Fault>& fault) {
            files.setFault(fault);
            result = undo(files, UndoStore(files, kStore), kMovie);
        };
        forEachFault(fresh, work, [&](const Fault& fault, const FaultyFileSystem&) {
            SCOPED_TRACE(std::string(test.what) + ": " + result.text);
            if (result.outcome == UndoResult::Outcome::Failed) {
                EXPECT_TRUE(result.failure);
                if (recover(*memory, kMovie).outcome == Recovery::Refused) {
                    EXPECT_TRUE(fault.doesHalf);
                    recover(*memory, kMovie, IfChanged::RecoverAnyway);
                }
                EXPECT_TRUE(memory->bytes(kMovie) == changed(old, change));
                result = undo(*memory, UndoStore(*memory, kStore), kMovie);
            }
            EXPECT_EQ(result.outcome, UndoResult::Outcome::Undone);
            EXPECT_TRUE(memory->bytes(kMovie) == old);
        });
    }
    std::cout << "[  FAULTS  ] " << faults << "\n";
}

TEST(Fault, FileSystemsWithoutLocksAreSavedTo) {
    for (const int number : {ENOLCK, ENOSYS, EOPNOTSUPP}) {
        MemoryFileSystem memory;
        memory.put(kMovie, someBytes(2000));
        FaultyFileSystem files(memory);
        std::error_code error;
        const FileIdentity read = *memory.identityOf(kMovie, error);
        {
            FileTransaction transaction(files);
            ASSERT_FALSE(transaction.open(kMovie, read));
            ASSERT_GE(files.operations.size(), 3U);
            ASSERT_EQ(files.operations[2], "lock");
        }
        files.setFault(Fault{{number, std::generic_category()}, 2});
        FileTransaction transaction(files);
        EXPECT_FALSE(transaction.open(kMovie, read));
    }
}

TEST(Fault, TheTextSaysWhatHappenedAndHowTheMovieIs) {
    MemoryFileSystem memory;
    memory.put(kMovie, someBytes(2000));
    FaultyFileSystem files(memory);
    std::error_code error;
    const FileIdentity read = *memory.identityOf(kMovie, error);
    const auto save = [&](const std::optional<Fault>& fault, std::size_t length) {
        files.setFault(fault);
        FileTransaction transaction(files);
        auto failure = transaction.open(kMovie, read);
        return failure ? failure : transaction.apply(changeOf(2000, 2000, {{1032, length}}));
    };
    memory.put(kJournal, {});
    memory.remove(kJournal, error);
    const std::error_code full = std::make_error_code(std::errc::no_space_on_device);
    // Of the writes, two are to the journal.
    const auto failureOfWrite = [&](std::size_t number, std::size_t length = 512) {
        for (std::size_t first = 0;; ++first) {
            const auto failure = save(Fault{full, first}, length);
            if (files.operations[first] == "write" && number-- == 0) return *failure;
        }
    };
    const SaveFailure ofMovie = failureOfWrite(2);
    EXPECT_EQ(ofMovie.what,
              "writing 512 bytes at 1032: No space left on device; the movie is as it was");
    EXPECT_EQ(ofMovie.offset, 1032U);
    EXPECT_EQ(ofMovie.length, 512U);
    EXPECT_EQ(failureOfWrite(2, 1).what,
              "writing 1 byte at 1032: No space left on device; the movie is as it was");
    EXPECT_EQ(failureOfWrite(0).what,
              "writing 544 bytes at 128 of /movies/.a.mov.vexqt-journal: No space left on device; "
              "the movie is as it was");
}

// MARK: Through the operations that people call

/// A way of saving, with a movie and an edit that take it.
struct SaveCase {
    const char* what;
    SavePlan::Way way;
    Bytes movie;
    Editing edit;
    SaveForm form = SaveForm::Surgical;
};

std::vector<SaveCase> saveCases() {
    using Way = SavePlan::Way;
    const Bytes media = atomClaiming(0, "mdat"_os, {Bytes(900, 0xDA)});
    const Bytes cut = atomClaiming(2000, "mdat"_os, {Bytes(900, 0xDA)});
    return {
        {"patched", Way::Patch, join({kFileType, movie(600), kMedia}), setTimeScale},
        {"in the old place", Way::InOldPlace, join({kFileType, movie(600), kMedia}), shrink},
        {"longer", Way::InOldPlace, join({kFileType, kMedia, movie(600)}), grow(700)},
        {"shorter", Way::InOldPlace, join({kFileType, kMedia, movie(600)}), shrink},
        {"moved and flipped", Way::Move, join({kFileType, movie(600), kMedia}), grow(700)},
        {"moved with a journal", Way::Move, join({kFileType, movie(8), media}), grow(700)},
        {"exactly", Way::Move, join({kFileType, kMedia, movie(600)}), setTimeScale,
         SaveForm::Exact},
        {"exactly, behind a gap", Way::Move, join({kFileType, movie(8), cut}), setTimeScale,
         SaveForm::Exact},
    };
}

/// A disk with a movie that was read from it and edited.
class EditedMovie : public FaultyDisk {
public:
    EditedMovie() { writeFile(path, movieHeaderOnly()); }

    FaultyFileSystem& fresh(const SaveCase& test) {
        FaultyFileSystem& files = FaultyDisk::fresh(path, test.movie);
        std::error_code error;
        // The path of the asset comes from a file that has the same on the real disk.
        asset = VexQTAsset::initWithURL(path, error);
        asset->readMainAtomsWithFileHandle(*memory->openForReading(path, error),
                                           {.tolerant = true});
        test.edit(*asset);
        return files;
    }
    const Bytes& bytes() const { return memory->bytes(path); }
    /// All but the movie.
    std::set<fs::path> others() const {
        auto paths = memory->paths();
        paths.erase(path);
        return paths;
    }

    TemporaryFolder folder;
    const fs::path path = fs::canonical(folder.path()) / "a.mov";
    std::unique_ptr<VexQTAsset> asset;

private:
    static Bytes movieHeaderOnly() { return join({kFileType, movie(8)}); }
};

/// One line that says which bytes or which file it was about.
void expectOneLineThatSaysWhat(const SaveFailure& failure) {
    EXPECT_EQ(failure.what.find('\n'), std::string::npos);
    const bool namesRange = failure.what.find(" bytes at ") != std::string::npos ||
                            failure.what.find(" byte at ") != std::string::npos;
    const bool namesFile = failure.what.find('/') != std::string::npos ||
                           failure.what.find("movie") != std::string::npos ||
                           failure.what.find("the copy") != std::string::npos ||
                           failure.what.find("the length") != std::string::npos;
    EXPECT_TRUE(namesRange || namesFile) << failure.what;
}

TEST(Fault, OfSavingInPlaceLeavesTheOldMovieAndNothingBesideIt) {
    EditedMovie movie;
    faults = 0;
    failed.clear();
    std::size_t saves = 0;
    for (const SaveCase& test : saveCases()) {
        SaveResult result;
        const auto fresh = [&]() -> FaultyFileSystem& { return movie.fresh(test); };
        const auto save = [&](FaultyFileSystem& files, const std::optional<Fault>& fault) {
            files.setFault(fault);
            UndoStore store(files, kStore);
            result = saveInPlace(*movie.asset, {.form = test.form, .force = true, .undo = &store},
                                 files);
        };
        save(fresh(), std::nullopt);
        ASSERT_EQ(result.outcome, SaveResult::Outcome::Saved) << test.what;
        ASSERT_EQ(result.plan.way(), test.way) << test.what;
        const Bytes saved = movie.bytes();
        ASSERT_NE(saved, test.movie);

        forEachFault(fresh, save, [&](const Fault& fault, const FaultyFileSystem& files) {
            SCOPED_TRACE(test.what + (result.failure ? ": " + result.failure->what : ""));
            if (result.outcome == SaveResult::Outcome::Saved) {
                ++saves;
                EXPECT_TRUE(movie.bytes() == saved);
                // People are told of a save that may not last or cannot be undone; this one can.
                if (result.notes.empty()) {
                    undo(*movie.memory, UndoStore(*movie.memory, kStore), movie.path);
                    EXPECT_TRUE(movie.bytes() == test.movie);
                }
                return;
            }
            failed.insert(files.operations[fault.first]);
            if (result.outcome == SaveResult::Outcome::Refused) {
                EXPECT_FALSE(fault.error) << "only a file that ends early looks like another one";
                EXPECT_FALSE(result.plan.canBeForced());
            } else {
                ASSERT_TRUE(result.failure);
                expectOneLineThatSaysWhat(*result.failure);
            }
            if (!fault.forGood) {
                EXPECT_TRUE(movie.bytes() == test.movie);
                EXPECT_EQ(movie.others(), std::set<fs::path>());
                return;
            }
            // What a disk that is gone for good did not let be taken back is taken back later.
            recover(*movie.memory, movie.path, IfChanged::RecoverAnyway);
            const Bytes& now = movie.bytes();
            ASSERT_GE(now.size(), test.movie.size());
            const bool isFlipped = test.way == SavePlan::Way::Move && now != test.movie;
            if (isFlipped) {
                const auto asset = VexQTAsset::initWithData(now, {.tolerant = true});
                EXPECT_NE(asset->moovAtom(), nullptr);
            } else {
                EXPECT_TRUE(now == test.movie);
            }
            EXPECT_EQ(movie.others(), std::set<fs::path>());
        });
        if (HasFailure()) break;
    }
    EXPECT_EQ(failed, (std::set<std::string>{"resolve", "openForWriting", "lock", "identity",
                                             "identityOf", "createPrivate", "read", "write",
                                             "truncate", "flush", "flushDirectory", "remove"}));
    std::cout << "[  FAULTS  ] " << faults << ", saved all the same " << saves << "\n";
}

TEST(Fault, OfSavingACopyLeavesTheMovieAndWhatHadTheNameOfTheCopy) {
    EditedMovie movie;
    const fs::path copy = movie.path.parent_path() / "b.mov";
    const Bytes there = someBytes(700);
    faults = 0;
    failed.clear();
    for (const bool isFromMemory : {false, true}) {
        for (const SaveCase& test : saveCases()) {
            SaveResult result;
            const auto fresh = [&]() -> FaultyFileSystem& {
                FaultyFileSystem& files = movie.fresh(test);
                movie.memory->put(copy, there);
                return files;
            };
            const auto save = [&](FaultyFileSystem& files, const std::optional<Fault>& fault) {
                files.setFault(fault);
                const SaveOptions options = {.form = test.form, .force = true};
                result = isFromMemory ? saveCopy(*movie.asset, test.movie, copy, options, files)
                                      : saveCopy(*movie.asset, copy, options, files);
            };
            save(fresh(), std::nullopt);
            ASSERT_EQ(result.outcome, SaveResult::Outcome::Saved) << test.what;
            const Bytes saved = movie.memory->bytes(copy);
            ASSERT_NE(saved, test.movie);

            forEachFault(fresh, save, [&](const Fault& fault, const FaultyFileSystem& files) {
                SCOPED_TRACE(test.what + (result.failure ? ": " + result.failure->what : ""));
                EXPECT_TRUE(movie.bytes() == test.movie);
                if (!fault.forGood) {
                    EXPECT_EQ(movie.others(), std::set<fs::path>{copy});
                }
                const Bytes& now = movie.memory->bytes(copy);
                if (result.outcome == SaveResult::Outcome::Saved) {
                    EXPECT_TRUE(now == saved);
                    const bool isToldOf = files.operations[fault.first] == "flushDirectory";
                    EXPECT_EQ(result.notes.size(), isToldOf && fault.error ? 1U : 0U);
                    return;
                }
                failed.insert(files.operations[fault.first]);
                EXPECT_TRUE(now == there);
                if (result.outcome == SaveResult::Outcome::Refused) {
                    EXPECT_FALSE(fault.error);
                    return;
                }
                ASSERT_TRUE(result.failure);
                expectOneLineThatSaysWhat(*result.failure);
            });
            if (HasFailure()) return;
        }
    }
    EXPECT_EQ(failed,
              (std::set<std::string>{"identityOf", "resolve", "openForReading", "identity", "read",
                                     "copy", "create", "write", "truncate", "flush", "rename"}));
    std::cout << "[  FAULTS  ] " << faults << "\n";
}

/// A disk that keeps something else than what it was given.
TEST(Fault, OfWhatWasWrittenIsSeenWhenItIsReadBack) {
    EditedMovie movie;
    const fs::path copy = movie.path.parent_path() / "b.mov";
    const SaveCase test = saveCases()[0];
    const std::size_t timeScale = kFileType.size() + 8 + 20;
    const std::size_t sizeOfMedia = kFileType.size() + testing::movie(600).size() + 3;
    for (const bool isCopy : {false, true}) {
        for (const std::size_t at : {timeScale + 1, sizeOfMedia}) {
            SCOPED_TRACE(std::to_string(at) + (isCopy ? " of a copy" : ""));
            FaultyFileSystem& files = movie.fresh(test);
            // The first two writes of a save in place are those of its journal.
            const std::ptrdiff_t writes = isCopy ? 1 : 3;
            files.beforeOperation = [&](std::size_t) {
                if (std::ranges::count(files.operations, "write") != writes) return;
                std::error_code error;
                const fs::path written = isCopy ? *movie.others().begin() : movie.path;
                const auto file = movie.memory->openForWriting(written, error);
                if (file) file->writeAt(at, Bytes{0x68}, error);
            };
            const SaveResult result = isCopy ? saveCopy(*movie.asset, copy, {}, files)
                                             : saveInPlace(*movie.asset, {}, files);
            EXPECT_EQ(result.outcome, SaveResult::Outcome::Failed);
            ASSERT_TRUE(result.failure);
            EXPECT_EQ(result.failure->reason, Reason::NotAsMeant) << result.failure->what;
            EXPECT_FALSE(movie.others().contains(copy));
        }
    }
}

/// The header of free space that closes the gap behind a shorter movie is no atom of the movie.
TEST(Fault, OfTheFreeSpaceThatWasWrittenIsSeenToo) {
    EditedMovie movie;
    const SaveCase shorter = {"", SavePlan::Way::InOldPlace,
                              join({kFileType, testing::movie(600), kMedia}), shrink};
    FaultyFileSystem& files = movie.fresh(shorter);
    // A size that lets the free space swallow the media and end with it.
    const std::size_t free = kFileType.size() + testing::movie(600).size() - 608;
    files.beforeOperation = [&](std::size_t) {
        std::error_code error;
        const auto file = movie.memory->openForWriting(movie.path, error);
        Bytes type(4);
        if (file->readAt(free + 4, type, error) == 4 && type == text("free"))
            file->writeAt(free, u32(static_cast<std::uint32_t>(608 + kMedia.size())), error);
    };
    const SaveResult result = saveInPlace(*movie.asset, {}, files);
    EXPECT_EQ(result.outcome, SaveResult::Outcome::Failed);
    ASSERT_TRUE(result.failure);
    EXPECT_EQ(result.failure->reason, Reason::NotAsMeant) << result.failure->what;
}

TEST(Plan, OfAFileThatCannotBeReadIsAnError) {
    EditedMovie movie;
    FaultyFileSystem& files = movie.fresh(saveCases()[0]);
    std::error_code error;
    const auto file = files.openForReading(movie.path, error);
    files.setFault(Fault{std::make_error_code(std::errc::io_error), 0, true});
    EXPECT_THROW(SavePlan::of(*movie.asset, *file, SaveForm::Surgical), Error);
}

TEST(Copy, ThatIsRefusedCopiesNothingFirst) {
    EditedMovie movie;
    const SaveCase refused = {
        "", SavePlan::Way::Move,
        join({kFileType, testing::movie(8), atom("moof"_os, {atom("mfhd"_os, {u32(1)})}), kMedia}),
        grow(40)};
    FaultyFileSystem& files = movie.fresh(refused);
    const SaveResult result = saveCopy(*movie.asset, movie.folder / "b.mov", {}, files);
    EXPECT_EQ(result.outcome, SaveResult::Outcome::Refused);
    EXPECT_EQ(std::ranges::count(files.operations, "copy"), 0);
    EXPECT_EQ(std::ranges::count(files.operations, "write"), 0);
}

TEST(Copy, PassesOverWhatAKilledProcessOfTheSameNumberHasLeft) {
    EditedMovie movie;
    FaultyFileSystem& files = movie.fresh(saveCases()[0]);
    const fs::path copy = movie.path.parent_path() / "b.mov";
    const fs::path left =
        movie.path.parent_path() / (".b.mov.vexqt-" + std::to_string(::getpid()) + "-0");
    movie.memory->put(left, zeros(9));
    EXPECT_EQ(saveCopy(*movie.asset, copy, {}, files).outcome, SaveResult::Outcome::Saved);
    EXPECT_EQ(movie.others(), (std::set<fs::path>{copy, left}));
    EXPECT_EQ(movie.memory->bytes(left), zeros(9));
}

TEST(Copy, GivesUpWhereAHundredNamesAreTaken) {
    MemoryFileSystem files;
    for (int number = 0; number < 100; ++number)
        files.put("/.b.mov.vexqt-" + std::to_string(::getpid()) + "-" + std::to_string(number), {});
    const auto failure = writeWhole("/b.mov", Bytes{1}, files);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, std::errc::file_exists);
    EXPECT_EQ(files.paths().size(), 100U);

    EditedMovie movie;
    FaultyFileSystem& disk = movie.fresh(saveCases()[0]);
    const fs::path folder = movie.path.parent_path();
    for (const fs::path& path : files.paths()) movie.memory->put(folder / path.filename(), {});
    const SaveResult result = saveCopy(*movie.asset, folder / "b.mov", {}, disk);
    EXPECT_EQ(result.outcome, SaveResult::Outcome::Failed);
    EXPECT_EQ(result.failure->code, std::errc::file_exists);
    EXPECT_EQ(movie.others().size(), 100U);
}

TEST(Copy, IsMadeUnderANameThatFitsWhateverItsOwnIs) {
    std::string euros;
    while (euros.size() < 240) euros += "\u20AC";
    // The last has no byte at which a character begins.
    for (const std::string& name : {std::string(240, 'a'), euros, std::string(240, '\x80')}) {
        MemoryFileSystem memory;
        FaultyFileSystem files(memory);
        std::string draft;
        files.beforeRename = [&] { draft = memory.paths().begin()->filename().string(); };
        const fs::path path = "/" + name;
        EXPECT_FALSE(writeWhole(path, Bytes{1}, files));
        EXPECT_EQ(memory.paths(), std::set<fs::path>{path});
        EXPECT_LE(draft.size(), 143U);
        const std::size_t kept = draft.find(".vexqt-") - 1;
        EXPECT_EQ(kept, name[0] == 'a' ? 100U : name == euros ? 99U : 0U) << draft;
        EXPECT_EQ(draft.substr(1, kept), name.substr(0, kept));

        EditedMovie movie;
        FaultyFileSystem& disk = movie.fresh(saveCases()[0]);
        const fs::path copy = movie.path.parent_path() / name;
        std::set<fs::path> drafts;
        disk.beforeRename = [&] { drafts = movie.others(); };
        EXPECT_EQ(saveCopy(*movie.asset, copy, {}, disk).outcome, SaveResult::Outcome::Saved);
        ASSERT_EQ(drafts.size(), 1U);
        EXPECT_EQ(drafts.begin()->filename(), draft);
    }
}

TEST(Copy, ThatHasItsNameIsMadeThoughThereIsNoMemoryLeft) {
    EditedMovie movie;
    FaultyFileSystem& files = movie.fresh(saveCases()[0]);
    const fs::path copy = movie.path.parent_path() / "b.mov";
    files.beforeFlushOfDirectory = [] { throw std::bad_alloc(); };
    EXPECT_EQ(saveCopy(*movie.asset, copy, {}, files).outcome, SaveResult::Outcome::Saved);
    EXPECT_EQ(movie.others(), std::set<fs::path>{copy});
}

TEST(Copy, ThatHasNotItsNameIsRemovedWhereThereIsMemoryForThat) {
    EditedMovie movie;
    const fs::path copy = movie.path.parent_path() / "b.mov";
    for (const bool isRemoved : {true, false}) {
        FaultyFileSystem& files = movie.fresh(saveCases()[0]);
        files.beforeRename = [] { throw std::bad_alloc(); };
        files.beforeRemoval = [&] {
            if (!isRemoved) throw std::bad_alloc();
        };
        EXPECT_THROW(saveCopy(*movie.asset, copy, {}, files), std::bad_alloc);
        EXPECT_EQ(movie.others().size(), isRemoved ? 0U : 1U);
        EXPECT_FALSE(movie.others().contains(copy));
    }
}

TEST(Fault, OfWritingAWholeFileLeavesWhatHadItsName) {
    const fs::path path = "/texts/a.json";
    const Bytes old = someBytes(300), bytes = someBytes(900, 1);
    FaultyDisk disk;
    auto& memory = disk.memory;
    std::optional<SaveFailure> failure;
    const auto fresh = [&]() -> FaultyFileSystem& { return disk.fresh(path, old); };
    const auto write = [&](FaultyFileSystem& files, const std::optional<Fault>& fault) {
        files.setFault(fault);
        failure = writeWhole(path, bytes, files);
    };
    write(fresh(), std::nullopt);
    ASSERT_FALSE(failure);
    EXPECT_EQ(memory->bytes(path), bytes);
    forEachFault(fresh, write, [&](const Fault& fault, const FaultyFileSystem&) {
        EXPECT_TRUE(memory->bytes(path) == (failure ? old : bytes));
        if (!fault.forGood) {
            EXPECT_EQ(memory->paths(), std::set<fs::path>{path});
        }
        if (failure) expectOneLineThatSaysWhat(*failure);
    });
}

TEST(Fault, OfASaveIsTextThatSaysWhatHappened) {
    EditedMovie movie;
    const SaveCase test = saveCases()[0];
    const std::error_code full = std::make_error_code(std::errc::no_space_on_device);
    const auto textOf = [&](bool isCopy, std::string_view operation, std::size_t number) {
        for (std::size_t first = 0;; ++first) {
            FaultyFileSystem& files = movie.fresh(test);
            files.setFault(Fault{full, first});
            const SaveResult result =
                isCopy ? saveCopy(*movie.asset, movie.path.parent_path() / "b.mov", {}, files)
                       : saveInPlace(*movie.asset, {}, files);
            if (files.operations.at(first) == operation && number-- == 0)
                return result.failure->what;
        }
    };
    EXPECT_EQ(textOf(false, "read", 0),
              "reading the headers of the movie: No space left on device; the movie is as it was");
    EXPECT_EQ(textOf(true, "write", 0),
              "writing 3 bytes at 49 of the copy: No space left on device");
    EXPECT_EQ(textOf(true, "copy", 0),
              "copying " + movie.path.string() + ": No space left on device");
}

}  // namespace
}  // namespace vexqt
