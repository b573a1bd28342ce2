#include "vexqt/saving/FileTransaction.h"

#include <algorithm>
#include <cassert>
#include <exception>
#include <utility>

#include "vexqt/saving/Journal.h"
#include "vexqt/saving/NamedFile.h"

namespace vexqt {

namespace fs = std::filesystem;

namespace {

/// How much is written at once, and between two reports of progress.
constexpr std::size_t kBlock = std::size_t{4} << 20;

/// What of a failure can be said; nothing if there is none.
template <class Work>
std::optional<SaveFailure> attempt(Work&& work) {
    try {
        work();
        return std::nullopt;
    } catch (const SaveFailure& failure) {
        return failure;
    }
}

/// Adds up what was done, and reports it now and then.
class Progress {
public:
    Progress(const CopyProgress& report, std::uint64_t total) : report_(report), total_(total) {}

    void add(std::uint64_t bytes) {
        done_ += bytes;
        if (!report_ || (done_ - reported_ < kBlock && done_ != total_)) return;
        reported_ = done_;
        report_(done_, total_);
    }

private:
    const CopyProgress& report_;
    std::uint64_t total_, done_ = 0, reported_ = 0;
};

/// The file as it will be when a few bytes of it are other ones.
class FileWith final : public ReadOnlyFile {
public:
    FileWith(const FileWrite& patch, File& file) : patch_(patch), file_(file) {}

    std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> into,
                       std::error_code& error) override {
        const std::size_t count = file_.readAt(offset, into, error);
        const ByteView bytes = patch_.bytes.view();
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const std::uint64_t at = patch_.offset + i;
            if (at >= offset && at - offset < count)
                into[static_cast<std::size_t>(at - offset)] = bytes[i];
        }
        return count;
    }
    FileIdentity identity(std::error_code& error) override { return file_.identity(error); }

private:
    const FileWrite& patch_;
    File& file_;
};

}  // namespace

/// One change of one open file.
class FileTransaction::Change {
public:
    Change(FileTransaction& owner, const FileChange& change)
        : change_(change),
          files_(owner.files_),
          movie_(*owner.file_, ""),
          path_(owner.path_),
          before_(owner.before_),
          notes_(owner.notes_) {}
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;
    virtual ~Change() = default;

    /// Throws a SaveFailure, or what the callbacks throw.
    virtual void make(const Callbacks& callbacks) = 0;
    /// After make() has failed. Throws a SaveFailure that says how things are now.
    virtual void takeBack() = 0;
    virtual void writeUndoRecord(std::unique_ptr<File> into, const fs::path& name) = 0;

    const FileChange& change() const { return change_; }
    const FileIdentity& after() const { return after_; }

protected:
    /// Writes the part that lies between two offsets, which may be all of it or nothing.
    void write(const FileWrite& write, std::uint64_t begin, std::uint64_t end, Progress& progress) {
        begin = std::max(begin, write.offset);
        end = std::min(end, write.range().end());
        while (begin < end) {
            const auto count =
                static_cast<std::size_t>(std::min<std::uint64_t>(end - begin, kBlock));
            movie_.write(begin, write.bytes.view().subspan(
                                    static_cast<std::size_t>(begin - write.offset), count));
            progress.add(count);
            begin += count;
        }
    }
    /// Backwards, because what makes the file longer is what a full disk has no room for.
    void writeBackwards(std::uint64_t begin, std::uint64_t end, Progress& progress) {
        for (auto at = change_.writes.rbegin(); at != change_.writes.rend(); ++at)
            write(*at, begin, end, progress);
    }

    static void verify(File& file, const Callbacks& callbacks) {
        if (!callbacks.verify || callbacks.verify(file)) return;
        throw SaveFailure{.code = std::make_error_code(std::errc::io_error),
                          .what = "what was written does not read back as it was meant",
                          .reason = SaveFailure::Reason::NotAsMeant};
    }

    void setModifiedBack() {
        std::error_code ignored;  // Somebody who does not own the movie may not.
        movie_.file().setModified(before_.modifiedSeconds, before_.modifiedNanoseconds, ignored);
    }

    FileChange change_;
    FileSystem& files_;
    NamedFile movie_;
    fs::path path_;
    FileIdentity before_, after_;
    std::vector<std::string>& notes_;
};

class FileTransaction::JournaledChange final : public Change {
public:
    JournaledChange(FileTransaction& owner, const FileChange& change)
        : Change(owner, change), journalPath_(journalPathOf(path_)) {}

    void make(const Callbacks& callbacks) override {
        Progress progress(callbacks.progress, bytesKept() + change_.bytesWritten());
        keepOldBytes(progress);
        movieIsTouched_ = true;
        writeBackwards(0, change_.newLength, progress);
        if (change_.newLength < change_.oldLength) movie_.truncate(change_.newLength);
        movie_.flush();
        verify(movie_.file(), callbacks);
        after_ = movie_.identity();
        commit();
    }

    void takeBack() override {
        try {
            if (movieIsTouched_) journal_->putBack(movie_);
        } catch (SaveFailure& failure) {
            failure.what = "putting the old bytes back failed as well (" + failure.what +
                           "), they are kept in " + journalPath_.string();
            failure.reason = SaveFailure::Reason::RollBackFailed;
            throw;
        }
        if (!journalIsThere_) return;
        std::error_code error;
        files_.remove(journalPath_, error);
        check(error, "the movie is as it was, but its journal " + journalPath_.string() +
                         " cannot be removed");
        // A journal that comes back puts back what is there.
        files_.flushDirectory(journalPath_.parent_path(), error);
    }

    void writeUndoRecord(std::unique_ptr<File> into, const fs::path& name) override {
        NamedFile record(*into, name.string());
        journal_->writeUndoRecord(record, after_);
        record.flush();
    }

private:
    std::uint64_t bytesKept() const {
        std::uint64_t count = 0;
        for (const auto& [range, newBytes] : change_.touched())
            count +=
                std::min(range.end(), std::max(range.offset, change_.oldLength)) - range.offset;
        return count;
    }

    void keepOldBytes(Progress& progress) {
        // What the journal tells of the movie may itself have been written a moment ago.
        movie_.flush();
        std::error_code error;
        std::unique_ptr<File> file = files_.createPrivate(journalPath_, error);
        journalIsThere_ = file != nullptr;
        check(error, "making the journal " + journalPath_.string());
        BlockReader old(movie_);
        const auto oldBytes = [&](std::uint64_t offset, std::size_t count) {
            progress.add(count);
            return old.at(offset, count);
        };
        journal_.emplace(Journal::write(
            std::move(file), journalPath_,
            {.before = before_, .after = {}, .newLength = change_.newLength}, change_, oldBytes));
        journal_->flush();
        flushFolder();
    }

    void flushFolder() {
        std::error_code error;
        files_.flushDirectory(journalPath_.parent_path(), error);
        check(error, "flushing " + journalPath_.parent_path().string());
    }

    void commit() {
        std::error_code error;
        const std::string removing = "removing the journal " + journalPath_.string();
        files_.remove(journalPath_, error);
        check(error, removing);
        journalIsThere_ = false;
        // The new movie is whole and on the disk. To take it back now, without a journal that
        // could be relied on, would be the greater danger: nothing is thrown any more.
        try {
            if (const auto failure = attempt([&] { flushFolder(); }))
                notes_.push_back(failure->what +
                                 "; if the power fails now, the old movie may come back");
        } catch (const std::bad_alloc&) {
            // Then there is no memory for a note either.
        }
    }

    fs::path journalPath_;
    std::optional<Journal> journal_;  // Open, so its bytes are there after it was removed.
    bool journalIsThere_ = false, movieIsTouched_ = false;
};

class FileTransaction::FlippedChange final : public Change {
public:
    FlippedChange(FileTransaction& owner, const FileChange& change) : Change(owner, change) {}

    void make(const Callbacks& callbacks) override {
        Progress progress(callbacks.progress, change_.bytesWritten());
        oldFlip_ = SharedBytes(change_.flip->bytes.size());
        movie_.read(change_.flip->offset, oldFlip_.fill());
        writeTail(progress);
        FileWith asItWillBe(*change_.flip, movie_.file());
        verify(asItWillBe, callbacks);
        isFlipped_ = true;
        write(*change_.flip, 0, change_.oldLength, progress);
        movie_.flush();
        after_ = movie_.identity();
    }

    void takeBack() override {
        if (isFlipped_) flipBack();
        try {
            if (movie_.identity().size != change_.oldLength) movie_.truncate(change_.oldLength);
            setModifiedBack();
            movie_.flush();
        } catch (SaveFailure& failure) {
            failure.what =
                "the movie is as it was, but bytes were left behind its end (" + failure.what + ")";
            throw;
        }
    }

    void writeUndoRecord(std::unique_ptr<File> into, const fs::path& name) override {
        const auto oldBytes = [&](std::uint64_t offset, std::size_t count) {
            return oldFlip_.view().subspan(static_cast<std::size_t>(offset - change_.flip->offset),
                                           count);
        };
        Journal::write(std::move(into), name,
                       {.kind = JournalHeader::Kind::Undo,
                        .before = before_,
                        .after = after_,
                        .newLength = change_.newLength},
                       change_, oldBytes)
            .flush();
    }

private:
    /// The size and type of what now follows the old end come last. Until all the rest is on the
    /// disk the size is 0, where readers stop, and never that of a movie half of which is missing.
    void writeTail(Progress& progress) {
        constexpr std::uint64_t kHeader = 8;
        const std::uint64_t rest = change_.oldLength + kHeader;
        writeBackwards(rest, change_.newLength, progress);
        movie_.flush();
        if (change_.newLength == change_.oldLength) return;
        writeBackwards(change_.oldLength, rest, progress);
        movie_.flush();
    }

    /// Nothing is cut off before the old movie is known to count again.
    void flipBack() {
        try {
            movie_.write(change_.flip->offset, oldFlip_.view());
            movie_.flush();
        } catch (SaveFailure& failure) {
            failure.what = "making the old movie count again failed as well (" + failure.what +
                           "), the file has it and the new one, both of them whole";
            failure.reason = SaveFailure::Reason::RollBackFailed;
            throw;
        }
    }

    SharedBytes oldFlip_;
    bool isFlipped_ = false;
};

FileTransaction::FileTransaction(FileSystem& files) : files_(files) {}

FileTransaction::~FileTransaction() = default;

std::optional<SaveFailure> FileTransaction::open(const fs::path& path,
                                                 const FileIdentity& expected) {
    auto failure = attempt([&] {
        std::error_code error;
        path_ = files_.resolve(path, error);
        check(error, "finding " + path.string());
        file_ = files_.openForWriting(path_, error);
        if (error == std::errc::not_supported)
            throw SaveFailure{.code = error, .what = path.string() + " is not a file on a disk"};
        check(error, "opening " + path.string() + " for writing");

        NamedFile movie(*file_, "");
        movie.lock();
        const fs::path journal = journalPathOf(path_);
        const bool isInterrupted = files_.exists(journal, error);
        check(error, "looking for " + journal.string());
        if (isInterrupted)
            throw SaveFailure{.code = std::make_error_code(std::errc::file_exists),
                              .what = "an interrupted save has left " + journal.string() +
                                      ", which is to be recovered first",
                              .reason = SaveFailure::Reason::RecoveryNeeded};

        before_ = movie.identity();
        checkUnchanged(expected);
    });
    if (failure) file_.reset();
    return failure;
}

void FileTransaction::checkUnchanged(const FileIdentity& other) const {
    if (before_ == other) return;
    throw SaveFailure{.code = std::make_error_code(std::errc::io_error),
                      .what = path_.string() + " has changed since it was read",
                      .reason = SaveFailure::Reason::Changed};
}

std::optional<SaveFailure> FileTransaction::apply(const FileChange& change,
                                                  const Callbacks& callbacks) {
    std::string_view flaw = change.flaw();
    assert(file_ && !change_);
    if (flaw.empty() && change.oldLength != before_.size) flaw = "it is for another length";
    if (!flaw.empty())
        return SaveFailure{.code = std::make_error_code(std::errc::invalid_argument),
                           .what = "the change is not in order: " + std::string(flaw)};
    if (change.isEmpty()) return std::nullopt;
    if (auto failure = attempt([&] { checkUnchanged(NamedFile(*file_, "").identity()); }))
        return failure;

    std::unique_ptr<Change> made;
    if (change.flip)
        made = std::make_unique<FlippedChange>(*this, change);
    else
        made = std::make_unique<JournaledChange>(*this, change);

    const auto takeBack = [&]() -> std::optional<SaveFailure> {
        try {
            return attempt([&] { made->takeBack(); });
        } catch (const std::exception& error) {  // There was no memory for a buffer.
            return SaveFailure{.code = std::make_error_code(std::errc::not_enough_memory),
                               .what = std::string("putting the old bytes back failed as well (") +
                                       error.what() + ")",
                               .reason = SaveFailure::Reason::RollBackFailed};
        }
    };
    try {
        made->make(callbacks);
    } catch (SaveFailure& failure) {
        const auto second = takeBack();
        failure.what += "; " + (second ? second->what : "the movie is as it was");
        if (second && second->reason == SaveFailure::Reason::RollBackFailed)
            failure.reason = second->reason;
        return failure;
    } catch (...) {  // Of the callbacks, or for want of memory.
        auto second = takeBack();
        if (!second) throw;
        second->what = "the save was stopped; " + second->what;
        return second;
    }
    change_ = std::move(made);
    return std::nullopt;
}

const FileIdentity& FileTransaction::identityAfter() const { return change_->after(); }

std::uint64_t FileTransaction::undoRecordLength() const {
    return Journal::lengthFor(change_->change());
}

std::optional<SaveFailure> FileTransaction::writeUndoRecord(std::unique_ptr<File> into,
                                                            const fs::path& name) {
    return attempt([&] { change_->writeUndoRecord(std::move(into), name); });
}

}  // namespace vexqt
