#include "vexqt/saving/recovery.h"

#include <gtest/gtest.h>

#include "saving/FaultyFileSystem.h"
#include "saving/changes.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/FileTransaction.h"
#include "vexqt/saving/Journal.h"
#include "vexqt/saving/crc64.h"

namespace vexqt {
namespace {

using namespace testing;
namespace fs = std::filesystem;

const fs::path kMovie = "/movies/a.mov";
const fs::path kJournal = "/movies/.a.mov.vexqt-journal";

const FileChange kChange = changeOf(2000, 2300, {{100, 4}, {600, 700}, {1990, 310}});

class RecoveryOfAMovie : public ::testing::Test {
protected:
    RecoveryOfAMovie() {
        files.put(kMovie, old);
        // The journal of a save, caught while that looks at what it has written.
        FileTransaction transaction(files);
        transaction.open(kMovie, *files.identityOf(kMovie, error));
        transaction.apply(kChange, {.progress = {}, .verify = [&](File&) {
                                        journal = files.bytes(kJournal);
                                        return false;
                                    }});
        EXPECT_EQ(files.bytes(kMovie), old);
    }

    /// The save is interrupted when the movie is like that.
    void interrupt(const Bytes& movie) {
        const auto file = files.openForWriting(kMovie, error);
        file->truncate(movie.size(), error);
        file->writeAt(0, movie, error);
        files.put(kJournal, journal);
    }
    void expect(const RecoveryResult& result, Recovery outcome, const Bytes& movie) {
        EXPECT_EQ(result.outcome, outcome) << result.text;
        EXPECT_FALSE(result.text.empty());
        EXPECT_EQ(files.bytes(kMovie), movie);
        const bool isOver = outcome != Recovery::Refused && outcome != Recovery::Failed;
        EXPECT_EQ(files.exists(kJournal, error), !isOver);
        if (outcome != Recovery::NothingToDo) {
            EXPECT_EQ(result.journal, kJournal);
        }
    }

    const Bytes old = someBytes(2000);
    const Bytes saved = changed(old, kChange);
    Bytes journal;
    MemoryFileSystem files;
    std::error_code error;
};

TEST_F(RecoveryOfAMovie, RollsBackWhateverWasDone) {
    Bytes half = old;
    std::copy_n(saved.begin() + 100, 4, half.begin() + 100);
    std::copy_n(saved.begin() + 1024, 276, half.begin() + 1024);
    Bytes longer = old;
    longer.resize(2111, 0xEE);
    for (const Bytes& movie : {old, saved, half, longer}) {
        interrupt(movie);
        expect(recover(files, kMovie), Recovery::RolledBack, old);
    }
}

TEST_F(RecoveryOfAMovie, HasNothingToDoWithoutAJournal) {
    expect(recover(files, kMovie), Recovery::NothingToDo, old);
    EXPECT_EQ(findJournal(files, kMovie, error), std::nullopt);
    EXPECT_FALSE(error);
}

TEST_F(RecoveryOfAMovie, TellsWhereAJournalIs) {
    interrupt(saved);
    EXPECT_EQ(findJournal(files, "/movies/x/../a.mov", error), kJournal);
    EXPECT_EQ(findJournal(files, "/movies/none", error), std::nullopt);
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
}

TEST_F(RecoveryOfAMovie, DiscardsAJournalThatIsNotWhole) {
    interrupt(old);
    const auto file = files.openForWriting(kMovie, error);
    const FileIdentity before = file->identity(error);
    // As it was when the journal was made.
    file->setModified(JournalHeader::decoded(journal)->before.modifiedSeconds, 0, error);
    for (std::size_t length = 0; length < journal.size(); length += 1 + length / 60) {
        SCOPED_TRACE(length);
        files.put(kJournal, Bytes(journal.begin(), journal.begin() + static_cast<long>(length)));
        expect(recover(files, kMovie), Recovery::Discarded, old);
    }
    for (std::size_t at = 0; at < journal.size(); ++at) {
        SCOPED_TRACE(at);
        Bytes torn = journal;
        torn[at] ^= 0x10;
        files.put(kJournal, torn);
        expect(recover(files, kMovie), Recovery::Discarded, old);
    }
    EXPECT_EQ(file->identity(error).size, before.size);
}

TEST_F(RecoveryOfAMovie, LeavesADamagedJournalIfTheMovieWasTouchedSince) {
    interrupt(saved);
    journal.back() ^= 1;
    files.put(kJournal, journal);
    expect(recover(files, kMovie), Recovery::Refused, saved);
    expect(recover(files, kMovie, IfChanged::RecoverAnyway), Recovery::Discarded, saved);
}

TEST_F(RecoveryOfAMovie, LeavesAMovieThatSomebodyElseHasWrittenTo) {
    Bytes edited = saved;
    edited[700] ^= 1;
    Bytes longer = saved;
    longer.push_back(0);
    const Bytes shorter(old.begin(), old.end() - 1);
    for (const Bytes& movie : {edited, longer, shorter}) {
        interrupt(movie);
        expect(recover(files, kMovie), Recovery::Refused, movie);
    }
    interrupt(edited);
    expect(recover(files, kMovie, IfChanged::RecoverAnyway), Recovery::RolledBack, old);
}

TEST_F(RecoveryOfAMovie, DiscardsTheJournalOfAnotherFile) {
    const Bytes other = someBytes(2100, 9);
    files.put(kMovie, other);
    files.put(kJournal, journal);
    expect(recover(files, kMovie), Recovery::Discarded, other);
}

TEST_F(RecoveryOfAMovie, KnowsTheMovieWhereItsNumbersHaveChanged) {
    Bytes half = old;
    std::copy_n(saved.begin() + 600, 424, half.begin() + 600);
    files.put(kMovie, half);  // Another inode.
    files.put(kJournal, journal);
    expect(recover(files, kMovie), Recovery::RolledBack, old);
}

TEST_F(RecoveryOfAMovie, DoesNotDisturbASaveThatGoesOn) {
    FileTransaction transaction(files);
    ASSERT_FALSE(transaction.open(kMovie, *files.identityOf(kMovie, error)));
    const auto verify = [&](File&) {
        const RecoveryResult result = recover(files, kMovie);
        EXPECT_EQ(result.outcome, Recovery::Failed);
        EXPECT_EQ(result.failure->reason, SaveFailure::Reason::Busy);
        return true;
    };
    EXPECT_FALSE(transaction.apply(kChange, {.progress = {}, .verify = verify}));
    EXPECT_EQ(files.bytes(kMovie), saved);
}

/// The save that had the lock was done in the meantime.
TEST_F(RecoveryOfAMovie, HasNothingToDoWhereTheJournalIsGoneOnceTheMovieIsLocked) {
    interrupt(saved);
    FaultyFileSystem watched(files);
    watched.beforeOperation = [&](std::size_t) {
        if (!watched.operations.empty() && watched.operations.back() == "lock")
            files.remove(kJournal, error);
    };
    const RecoveryResult result = recover(watched, kMovie);
    EXPECT_EQ(result.outcome, Recovery::NothingToDo);
    EXPECT_EQ(result.text, "there is nothing to recover");
    EXPECT_EQ(files.bytes(kMovie), saved);
}

TEST_F(RecoveryOfAMovie, SaysWhichMovieIsMissing) {
    const RecoveryResult result = recover(files, "/movies/none.mov");
    EXPECT_EQ(result.outcome, Recovery::Failed);
    EXPECT_EQ(result.text, "finding /movies/none.mov: No such file or directory");
}

/// A journal is taken for what it is, byte by byte.
TEST_F(RecoveryOfAMovie, JournalsLookLikeThis) {
    const FileChange change = changeOf(1030, 1034, {{2, 3}, {1023, 11}});
    const Bytes movie = someBytes(1030);
    files.put(kMovie, movie);
    const FileIdentity before = *files.identityOf(kMovie, error);
    Bytes bytes;
    {
        FileTransaction transaction(files);
        ASSERT_FALSE(transaction.open(kMovie, before));
        EXPECT_FALSE(transaction.apply(change, {.progress = {}, .verify = [&](File&) {
                                                    bytes = files.bytes(kJournal);
                                                    return true;
                                                }}));
    }
    const auto newBytes = [&](std::size_t write, std::size_t offset, std::size_t count) {
        return Crc64::of(change.writes[write].bytes.view().subspan(offset, count));
    };
    const auto oldBytes = [&](std::size_t offset, std::size_t count) {
        return ByteView(movie).subspan(offset, count);
    };
    ByteWriter body;
    body.u64(2);
    body.u64(3);
    body.u64(newBytes(0, 0, 3));
    body.append(oldBytes(2, 3));
    body.u64(1023);
    body.u64(11);
    body.u64(newBytes(1, 0, 1));
    body.append(oldBytes(1023, 1));
    body.u64(newBytes(1, 1, 6));
    body.append(oldBytes(1024, 6));
    body.u64(newBytes(1, 7, 4));
    ByteWriter expected;
    for (const char letter : std::string("VexQTjnl"))
        expected.u8(static_cast<std::uint8_t>(letter));
    expected.u32(1);
    expected.u32(0);
    expected.u64(before.device);
    expected.u64(before.inode);
    expected.u64(1030);
    expected.u64(static_cast<std::uint64_t>(before.modifiedSeconds));
    expected.u64(static_cast<std::uint64_t>(before.modifiedNanoseconds));
    expected.zeros(40);
    expected.u64(1034);
    expected.u64(body.length());
    expected.u64(Crc64::of(body.view()));
    expected.u64(Crc64::of(expected.view()));
    expected.append(body.view());
    EXPECT_EQ(bytes, expected.release());
    EXPECT_EQ(Journal::lengthFor(change), bytes.size());
}

/// One whose checksums are right and whose body is not does not get anywhere either.
TEST_F(RecoveryOfAMovie, DiscardsAJournalThatMakesNoSense) {
    const auto identity = *files.identityOf(kMovie, error);
    const auto bodyOf = [](std::initializer_list<std::uint64_t> numbers, std::size_t rest) {
        ByteWriter body;
        for (const std::uint64_t number : numbers) body.u64(number);
        body.zeros(rest);
        return body.release();
    };
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    const struct {
        const char* what;
        Bytes body;
    } cases[] = {
        {"half a range", bodyOf({5}, 7)},
        {"a range without bytes", bodyOf({5, 10}, 0)},
        {"a piece cut short", bodyOf({5, 10, 0}, 9)},
        {"a range past the end", bodyOf({1995, 10, 0}, 10)},
        {"past all offsets", bodyOf({kMost, 1, 0}, 1)},
        {"a length past all offsets", bodyOf({5, kMost, 0}, 507)},
        {"in no order", bodyOf({20, 1, 0, 5, 1}, 20)},
    };
    for (const auto& [what, body] : cases) {
        SCOPED_TRACE(what);
        JournalHeader header = {.before = identity, .after = {}, .newLength = 2000};
        header.bodyLength = body.size();
        header.bodyChecksum = Crc64::of(body);
        Bytes bytes = header.encoded();
        bytes.insert(bytes.end(), body.begin(), body.end());
        files.put(kJournal, bytes);
        expect(recover(files, kMovie), Recovery::Discarded, old);
    }
}

TEST(JournalHeaders, AreNoneInFewerBytesThanTheyTake) {
    const Bytes bytes = JournalHeader().encoded();
    EXPECT_TRUE(JournalHeader::decoded(bytes));
    EXPECT_FALSE(JournalHeader::decoded(ByteView(bytes).first(bytes.size() - 1)));
    EXPECT_FALSE(JournalHeader::decoded({}));
}

TEST(JournalPath, IsHiddenBesideTheMovie) {
    EXPECT_EQ(journalPathOf("/x/y.mov"), "/x/.y.mov.vexqt-journal");
}

TEST(JournalPath, FitsIntoEveryFileSystem) {
    const std::string longest(128, 'a');
    EXPECT_EQ(journalPathOf("/x/" + longest), "/x/." + longest + ".vexqt-journal");
    std::set<fs::path> paths;
    for (std::size_t length = 129; length <= 255; ++length) {
        const fs::path path = journalPathOf("/x/" + std::string(length, 'a'));
        EXPECT_EQ(path.filename().string().size(), 143U);
        EXPECT_EQ(path.parent_path(), "/x");
        paths.insert(path);
    }
    EXPECT_EQ(paths.size(), 127U) << "long names are told apart";
    // The cut would fall into the middle of a character.
    for (std::size_t shift = 0; shift < 3; ++shift) {
        std::string name(shift, 'a');
        while (name.size() < 200) name += "\u20AC";
        const std::string kept = journalPathOf(name).filename().string();
        EXPECT_LE(kept.size(), 143U);
        const std::size_t cut = kept.find('~');
        EXPECT_EQ((cut - 1 - shift) % 3, 0U) << kept;
    }
    // No character begins in there at all.
    const std::string broken = journalPathOf(std::string(200, '\x80')).filename().string();
    EXPECT_EQ(broken.find('~'), 1U);
}

TEST(Crc64, IsThatOfXz) {
    const std::string digits = "123456789";
    EXPECT_EQ(Crc64::of(Bytes(digits.begin(), digits.end())), 0x995DC9BBDF1939FAU);
    EXPECT_EQ(Crc64::of({}), 0U);
    EXPECT_EQ(digestOf(digits), "995dc9bbdf1939fa");
}

TEST(Crc64, IsTheSameInOneGoAndInParts) {
    const Bytes bytes = someBytes(100);
    for (std::size_t first = 0; first <= bytes.size(); ++first) {
        Crc64 crc;
        crc.add(ByteView(bytes).first(first));
        crc.add(ByteView(bytes).subspan(first));
        EXPECT_EQ(crc.value(), Crc64::of(bytes));
    }
}

}  // namespace
}  // namespace vexqt
