#include "vexqt/saving/recovery.h"

#include "vexqt/saving/Journal.h"
#include "vexqt/saving/NamedFile.h"

namespace vexqt {

namespace fs = std::filesystem;

namespace {

/// One recovery, with the movie and the journal open.
class Recoverer {
public:
    Recoverer(FileSystem& files, const fs::path& path, const fs::path& journalPath)
        : files_(files), path_(path), journalPath_(journalPath) {}

    RecoveryResult recover(IfChanged ifChanged) {
        std::error_code error;
        const std::unique_ptr<File> file = files_.openForWriting(path_, error);
        check(error, "opening " + path_.string() + " for writing");
        NamedFile movie(*file, "");
        movie.lock();

        // Only now: the lock may have been that of a save which has removed its journal.
        std::unique_ptr<File> journalFile = files_.openForReading(journalPath_, error);
        if (error == std::errc::no_such_file_or_directory) return {};
        check(error, "opening the journal " + journalPath_.string());
        Journal::Found found = Journal::read(std::move(journalFile), journalPath_);

        if (!found.whole) return recoverFromDamaged(found.header, movie.identity(), ifChanged);
        const bool mayBeOurs = found.whole->compare(movie).isOldOrNew;
        if (!mayBeOurs && !movie.identity().isSameFile(found.whole->header().before)) {
            removeJournal();
            return result(Recovery::Discarded,
                          "the journal of another file was removed; the movie was not touched");
        }
        if (!mayBeOurs && ifChanged == IfChanged::Refuse)
            return result(Recovery::Refused,
                          "where a save was interrupted, the movie is neither as it was before nor "
                          "as it was to be: somebody else seems to have written to it; it and the "
                          "journal " +
                              journalPath_.string() + " are as they were");
        found.whole->putBack(movie);
        removeJournal();
        return result(Recovery::RolledBack,
                      "the movie is what it was before its save was interrupted");
    }

private:
    /// A save does not touch the movie before its journal is whole.
    RecoveryResult recoverFromDamaged(const std::optional<JournalHeader>& header,
                                      const FileIdentity& movie, IfChanged ifChanged) {
        const bool isTouched =
            header && movie.isSameFile(header->before) && !movie.isSameState(header->before);
        if (isTouched && ifChanged == IfChanged::Refuse)
            return result(Recovery::Refused,
                          "the journal " + journalPath_.string() +
                              " is damaged, and the movie is not as it was when that was made; "
                              "both are as they were");
        removeJournal();
        return result(Recovery::Discarded,
                      "a journal that had not been finished was removed; the "
                      "save had not touched the movie");
    }

    void removeJournal() {
        std::error_code error;
        files_.remove(journalPath_, error);
        check(error, "removing the journal " + journalPath_.string());
        files_.flushDirectory(journalPath_.parent_path(), error);
        check(error, "flushing " + journalPath_.parent_path().string());
    }

    RecoveryResult result(Recovery outcome, std::string text) const {
        return {
            .outcome = outcome, .text = std::move(text), .journal = journalPath_, .failure = {}};
    }

    FileSystem& files_;
    fs::path path_, journalPath_;
};

}  // namespace

std::optional<fs::path> findJournal(FileSystem& files, const fs::path& path,
                                    std::error_code& error) {
    const fs::path resolved = files.resolve(path, error);
    if (error) return std::nullopt;
    fs::path journal = journalPathOf(resolved);
    if (!files.exists(journal, error)) return std::nullopt;
    return journal;
}

RecoveryResult recover(FileSystem& files, const fs::path& path, IfChanged ifChanged) {
    fs::path journal;
    try {
        std::error_code error;
        const fs::path resolved = files.resolve(path, error);
        check(error, "finding " + path.string());
        journal = journalPathOf(resolved);
        const bool exists = files.exists(journal, error);
        check(error, "looking for " + journal.string());
        RecoveryResult result;
        if (exists) result = Recoverer(files, resolved, journal).recover(ifChanged);
        if (result.text.empty()) result.text = "there is nothing to recover";
        return result;
    } catch (const SaveFailure& failure) {
        return {.outcome = Recovery::Failed,
                .text = failure.what,
                .journal = journal,
                .failure = failure};
    }
}

}  // namespace vexqt
