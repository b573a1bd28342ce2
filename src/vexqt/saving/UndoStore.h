// Taking saves back, the last one first.
//
// The records lie in a folder of the user's, never beside the movies. A record is found by the path
// of its movie and used only if the movie is, byte for byte where the save wrote, and in length and
// time of modification, what the save left.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vexqt/export.h"
#include "vexqt/saving/FileTransaction.h"

namespace vexqt {

/// The records of saves, in one folder.
class VEXQT_EXPORT UndoStore {
public:
    /// What is older, more or longer than this is not kept.
    struct Limits {
        std::size_t recordsOfAFile = 20;                         ///< Of one movie.
        std::size_t records = 10'000;                            ///< Of all movies.
        std::uint64_t bytesOfARecord = std::uint64_t{64} << 20;  ///< A longer one is not kept.
        std::uint64_t bytes = std::uint64_t{256} << 20;          ///< Of all records.
        std::int64_t seconds = std::int64_t{30} * 24 * 60 * 60;  ///< How long a record is kept.
    };
    /// Seconds since 1970.
    using Clock = std::function<std::int64_t()>;

    /// $XDG_STATE_HOME/vexqt/undo, or ~/.local/state/vexqt/undo. None if the environment says
    /// VEXQT_UNDO=off, or if there is no home.
    static std::optional<std::filesystem::path> folderOfUser();

    /// Without a folder nothing is kept.
    UndoStore(FileSystem& files, std::optional<std::filesystem::path> folder)
        : UndoStore(files, std::move(folder), Limits(), {}) {}
    /// With limits and a clock of its own, for tests; an empty clock is the system's.
    UndoStore(FileSystem& files, std::optional<std::filesystem::path> folder, const Limits& limits,
              Clock clock);

    /// Keeps the record of a change while its file is locked, and lets go of old ones. Returns what
    /// a person should know if it could not: that is no reason to call the save failed.
    std::optional<std::string> keep(FileTransaction& transaction);

    /// The records of a file, the newest first. The path is free of symbolic links.
    std::vector<std::filesystem::path> recordsOf(const std::filesystem::path& movie,
                                                 std::error_code& error) const;

private:
    struct Record;

    std::vector<Record> list(std::error_code& error) const;
    void letGo(std::vector<Record> records, const Record& kept) const;

    FileSystem& files_;
    std::optional<std::filesystem::path> folder_;
    Limits limits_;
    Clock clock_;
};

/// What came of taking a save back.
struct UndoResult {
    /// How the file is now.
    enum class Outcome {
        Undone,         ///< The file is, byte for byte, what it was before its last save.
        AlreadyUndone,  ///< It was that before; only its record was still there.
        NothingToUndo,
        Changed,  ///< Somebody has written to the file since; it is as it was.
        Failed,   ///< It is as it was, unless the failure says otherwise.
    };

    Outcome outcome = Outcome::NothingToUndo;  ///< In one word.
    std::string text;                          ///< For people; says it all.
    std::optional<SaveFailure> failure;        ///< Why, where it failed.
    FileChange change = {};  ///< What was written to undo the save; empty where nothing was.
};

/// Takes back the last save of a file, and with the next call the one before.
VEXQT_EXPORT UndoResult undo(FileSystem& files, const UndoStore& store,
                             const std::filesystem::path& path);

}  // namespace vexqt
