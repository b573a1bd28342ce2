// Changing a file so that a crash at any moment leaves the old file or the new one.
//
// Where all that is new lies behind the old end, it is written there and then made to count by the
// change of a few bytes. Before that the file has the old movie as it was, and bytes behind its end
// which no reader takes for more than an empty atom or a second movie, and the first one counts.
//
// Everywhere else the old bytes are first kept in a journal beside the file. While that is there
// the change has not happened, and recover() takes back what was done of it; it is removed when all
// that is new is on the disk.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vexqt/export.h"
#include "vexqt/platform/files.h"
#include "vexqt/saving/FileChange.h"
#include "vexqt/saving/SaveFailure.h"

namespace vexqt {

/// One change of one file.
class VEXQT_EXPORT FileTransaction {
public:
    /// Told of the change while it is made.
    struct Callbacks {
        /// Bytes kept and written, of how many. It may throw to stop, and the file is as it was.
        CopyProgress progress;
        /// Looks at the file as it will be, before it counts; false takes all back. It may throw.
        std::function<bool(File&)> verify;
    };

    /// For a file of these; nothing is opened yet.
    explicit FileTransaction(FileSystem& files);
    FileTransaction(const FileTransaction&) = delete;
    FileTransaction& operator=(const FileTransaction&) = delete;
    ~FileTransaction();

    /// Opens the file and keeps others from saving it until this object goes. Fails if it is not
    /// the expected file in the expected state, or if a journal lies beside it.
    std::optional<SaveFailure> open(const std::filesystem::path& path,
                                    const FileIdentity& expected);

    /// The file, once it is open. It is there to be read.
    File& file() { return *file_; }
    /// Free of symbolic links.
    const std::filesystem::path& path() const { return path_; }

    /// Changes the open file, once. After a failure the file is as it was, unless the failure says
    /// otherwise.
    std::optional<SaveFailure> apply(const FileChange& change, const Callbacks& callbacks = {});
    /// What a person should know about a change that went well.
    const std::vector<std::string>& notes() const { return notes_; }

    /// True after a change that changed something.
    bool canBeUndone() const { return change_ != nullptr; }
    /// The file as the change left it.
    const FileIdentity& identityAfter() const;
    /// In bytes; 0 before a change that can be undone.
    std::uint64_t undoRecordLength() const;
    /// Writes the record with which undo() takes the change back.
    std::optional<SaveFailure> writeUndoRecord(std::unique_ptr<File> into,
                                               const std::filesystem::path& name);

private:
    class Change;
    class JournaledChange;
    class FlippedChange;

    void checkUnchanged(const FileIdentity& other) const;

    FileSystem& files_;
    std::filesystem::path path_;
    std::unique_ptr<File> file_;
    FileIdentity before_;
    std::unique_ptr<Change> change_;
    std::vector<std::string> notes_;
};

}  // namespace vexqt
