#include "vexqt/saving/UndoStore.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <map>
#include <utility>

#include "vexqt/saving/Journal.h"
#include "vexqt/saving/crc64.h"

namespace vexqt {

namespace fs = std::filesystem;

namespace {

std::int64_t secondsNow() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

constexpr std::string_view kEnding = ".undo", kPartEnding = ".part";

std::string mebibytes(std::uint64_t bytes) {
    return std::to_string((bytes >> 20) + ((bytes & 0xFFFFF) != 0 ? 1 : 0)) + " MiB";
}

}  // namespace

/// What the name of a record tells: "DIGEST-SEQUENCE-SECONDS.undo", and ".part" behind that of one
/// that is being written.
struct UndoStore::Record {
    std::string digest;  ///< Of the path of the movie, which is thereby kept nowhere.
    std::uint64_t sequence = 0;
    std::int64_t seconds = 0;
    bool isPart = false;

    std::string name() const {
        return digest + "-" + std::to_string(sequence) + "-" + std::to_string(seconds) +
               std::string(kEnding);
    }

    static std::optional<Record> named(std::string_view name) {
        Record record;
        record.isPart = name.ends_with(kPartEnding);
        if (record.isPart) name.remove_suffix(kPartEnding.size());
        const std::size_t digits = name.find('-');
        if (digits == std::string_view::npos) return std::nullopt;
        record.digest = name.substr(0, digits);
        const char* const end = name.data() + name.size();
        const auto [dash, sequenceError] =
            std::from_chars(name.data() + digits + 1, end, record.sequence);
        if (sequenceError != std::errc() || dash == end) return std::nullopt;
        const auto [rest, secondsError] = std::from_chars(dash + 1, end, record.seconds);
        // Nobody else's file is taken for a record: the name must be the one that we would give.
        if (secondsError != std::errc() || record.name() != name) return std::nullopt;
        return record;
    }
};

std::optional<fs::path> UndoStore::folderOfUser() {
    const auto variable = [](const char* name) -> std::string_view {
        const char* value = std::getenv(name);
        return value != nullptr ? value : "";
    };
    if (variable("VEXQT_UNDO") == "off") return std::nullopt;
    fs::path state = variable("XDG_STATE_HOME");
    if (!state.is_absolute()) {
        const fs::path home = variable("HOME");
        if (!home.is_absolute()) return std::nullopt;
        state = home / ".local" / "state";
    }
    return state / "vexqt" / "undo";
}

UndoStore::UndoStore(FileSystem& files, std::optional<fs::path> folder, const Limits& limits,
                     Clock clock)
    : files_(files),
      folder_(std::move(folder)),
      limits_(limits),
      clock_(clock ? std::move(clock) : secondsNow) {}

std::optional<std::string> UndoStore::keep(FileTransaction& transaction) {
    if (!folder_ || !transaction.canBeUndone()) return std::nullopt;
    const std::string why = "this save cannot be undone: ";
    const std::uint64_t length = transaction.undoRecordLength();
    if (length > limits_.bytesOfARecord)
        return why + "it would take " + mebibytes(length) + " to keep what it changed, " +
               mebibytes(limits_.bytesOfARecord) + " at most are kept";

    Record record;
    fs::path part;
    bool isPartOurs = false;
    const auto removePart = [&] {
        std::error_code ignored;
        if (isPartOurs) files_.remove(part, ignored);
    };
    try {
        std::error_code error;
        files_.makePrivateFolder(*folder_, error);
        check(error, "making " + folder_->string());
        std::vector<Record> records = list(error);
        check(error, "looking into " + folder_->string());

        record.digest = digestOf(transaction.path().string());
        record.seconds = clock_();
        for (const Record& other : records)
            if (other.digest == record.digest)
                record.sequence = std::max(record.sequence, other.sequence + 1);

        const fs::path path = *folder_ / record.name();
        part = path.string() + std::string(kPartEnding);
        std::unique_ptr<File> file = files_.createPrivate(part, error);
        isPartOurs = file != nullptr;
        check(error, "making " + part.string());
        if (const auto failure = transaction.writeUndoRecord(std::move(file), part)) throw *failure;
        files_.rename(part, path, error);
        check(error, "renaming " + part.string());
        letGo(std::move(records), record);
        return std::nullopt;
    } catch (const SaveFailure& failure) {
        removePart();
        return why + failure.what;
    } catch (...) {  // For want of memory.
        removePart();
        throw;
    }
}

std::vector<fs::path> UndoStore::recordsOf(const fs::path& movie, std::error_code& error) const {
    std::vector<Record> records = list(error);
    const std::string digest = digestOf(movie.string());
    std::erase_if(records,
                  [&](const Record& record) { return record.isPart || record.digest != digest; });
    std::ranges::sort(records, std::greater(), &Record::sequence);
    std::vector<fs::path> paths;
    for (const Record& record : records) paths.push_back(*folder_ / record.name());
    return paths;
}

std::vector<UndoStore::Record> UndoStore::list(std::error_code& error) const {
    std::vector<Record> records;
    error.clear();
    if (!folder_) return records;
    for (const fs::path& name : files_.list(*folder_, error))
        if (auto record = Record::named(name.string())) records.push_back(std::move(*record));
    if (error == std::errc::no_such_file_or_directory) error.clear();
    return records;
}

void UndoStore::letGo(std::vector<Record> records, const Record& kept) const {
    std::error_code ignored;  // What cannot be removed now can be removed the next time.
    const auto remove = [&](const Record& record) {
        const std::string ending(record.isPart ? kPartEnding : "");
        files_.remove(*folder_ / (record.name() + ending), ignored);
    };
    const auto identityOf = [&](const Record& record) {
        return files_.identityOf(*folder_ / record.name(), ignored).value_or(FileIdentity());
    };

    // One that is being written belongs to a save that goes on elsewhere, or to one that died.
    constexpr std::int64_t kAnHour = std::int64_t{60} * 60;
    std::ranges::sort(records, [](const Record& a, const Record& b) {
        return std::pair(a.seconds, a.sequence) > std::pair(b.seconds, b.sequence);
    });
    std::map<std::string, std::size_t> countOfFile = {{kept.digest, 1}};
    std::size_t count = 1;
    std::uint64_t bytes = identityOf(kept).size;
    for (const Record& record : records) {
        const std::int64_t age = kept.seconds - record.seconds;
        if (record.isPart) {
            if (age > kAnHour) remove(record);
            continue;
        }
        const std::uint64_t size = identityOf(record).size;
        if (age > limits_.seconds || countOfFile[record.digest] >= limits_.recordsOfAFile ||
            count >= limits_.records || bytes + size > limits_.bytes) {
            remove(record);
            continue;
        }
        ++countOfFile[record.digest];
        ++count;
        bytes += size;
    }
}

// MARK: Undoing

namespace {

/// Records that lie one upon the other.
class Undoer {
public:
    Undoer(FileSystem& files, const fs::path& path, std::vector<fs::path> records)
        : files_(files), path_(path), records_(std::move(records)) {}

    UndoResult undo() {
        Journal record = read(records_.front());
        FileTransaction transaction(files_);
        std::error_code error;
        const auto before = files_.identityOf(path_, error);
        check(error, "looking for " + path_.string());
        if (const auto failure = transaction.open(path_, before.value_or(FileIdentity())))
            throw *failure;

        NamedFile movie(transaction.file(), "");
        const Journal::Comparison now = record.compare(movie);
        const JournalHeader& header = record.header();
        if (now.isOld && before->isSameState(header.before)) {
            letGo();
            return {
                UndoResult::Outcome::AlreadyUndone, "the last save had been undone already", {}};
        }
        if (!now.isNew || !before->isSameState(header.after))
            return {UndoResult::Outcome::Changed,
                    path_.string() +
                        " was changed by somebody else after its last save, which "
                        "can no more be undone",
                    {}};

        const auto verify = [&](File& file) {
            NamedFile undone(file, "");
            if (!record.compare(undone).isOld) return false;
            std::error_code ignored;  // Somebody who does not own the movie may not.
            file.setModified(header.before.modifiedSeconds, header.before.modifiedNanoseconds,
                             ignored);
            undone.flush();
            return true;
        };
        FileChange change = record.backwards();
        UndoResult undone = {UndoResult::Outcome::Undone, "the last save was undone", {}, {}};
        if (const auto failure = transaction.apply(change, {.progress = {}, .verify = verify}))
            throw *failure;
        undone.change = std::move(change);
        try {
            restackOn(header.before, transaction.identityAfter());
            letGo();
        } catch (const std::bad_alloc&) {
            // What stays of the records is seen to be undone already.
        }
        return undone;
    }

private:
    Journal read(const fs::path& path, bool forWriting = false) {
        std::error_code error;
        std::unique_ptr<File> file =
            forWriting ? files_.openForWriting(path, error) : files_.openForReading(path, error);
        check(error, "opening " + path.string());
        Journal::Found found = Journal::read(std::move(file), path);
        if (found.whole && found.header->kind == JournalHeader::Kind::Undo)
            return std::move(*found.whole);
        throw SaveFailure{.code = std::make_error_code(std::errc::io_error),
                          .what = path.string() + ", which tells how to undo, is damaged"};
    }

    /// Where the time of modification cannot be set back, the record below has to know the file by
    /// its new one.
    void restackOn(const FileIdentity& before, const FileIdentity& now) {
        if (records_.size() < 2 || now.isSameState(before)) return;
        try {
            Journal below = read(records_[1], true);
            if (below.header().after.isSameState(before)) below.setAfter(now);
        } catch (const SaveFailure&) {
            // The one below cannot be undone then, and will say so.
        }
    }

    void letGo() {
        std::error_code ignored;  // If it stays it is seen to be undone already.
        files_.remove(records_.front(), ignored);
    }

    FileSystem& files_;
    fs::path path_;
    std::vector<fs::path> records_;
};

}  // namespace

UndoResult undo(FileSystem& files, const UndoStore& store, const fs::path& path) {
    try {
        std::error_code error;
        const fs::path resolved = files.resolve(path, error);
        check(error, "finding " + path.string());
        auto records = store.recordsOf(resolved, error);
        check(error, "looking for what to undo");
        if (records.empty())
            return {UndoResult::Outcome::NothingToUndo, "there is nothing to undo", {}};
        return Undoer(files, resolved, std::move(records)).undo();
    } catch (const SaveFailure& failure) {
        return {UndoResult::Outcome::Failed, failure.what, failure};
    }
}

}  // namespace vexqt
