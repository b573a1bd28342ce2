// The file operations that reading and saving a movie take, behind interfaces that tests replace:
// by files in memory, by a disk that is full, by a machine that stops between two writes.
//
// Every operation clears the error code or says in it, in the system's terms, why it failed. An
// operation that a signal interrupts goes on; a read or write that the system cuts short is
// completed or fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <system_error>
#include <vector>

#include "vexqt/export.h"
#include "vexqt/platform/bytes_types.h"

namespace vexqt {

/// Which file it is, and in which state: equal as long as nobody has written to it.
struct FileIdentity {
    /// Together unique on a machine.
    std::uint64_t device = 0, inode = 0;
    std::uint64_t size = 0;                ///< In bytes.
    std::int64_t modifiedSeconds = 0;      ///< Since 1970.
    std::int64_t modifiedNanoseconds = 0;  ///< The part of a second.
    bool isRegular = false;                ///< False for folders, pipes and devices.

    bool operator==(const FileIdentity&) const = default;
    /// True for a file, or a copy of it, that nobody has written to in between.
    bool isSameState(const FileIdentity& other) const {
        return size == other.size && modifiedSeconds == other.modifiedSeconds &&
               modifiedNanoseconds == other.modifiedNanoseconds;
    }
    /// True for one file under two names or in two states.
    bool isSameFile(const FileIdentity& other) const {
        return device == other.device && inode == other.inode;
    }
};

/// An open regular file; closed, and its lock given up, when it goes.
class VEXQT_EXPORT File {
public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    virtual ~File() = default;

    /// Fills `into` and returns how much was filled: less than all of it only at the end of the
    /// file, or on an error.
    virtual std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> into,
                               std::error_code& error) = 0;
    /// Writes all the bytes and makes the file longer if need be. After an error any part of them
    /// may have been written.
    virtual void writeAt(std::uint64_t offset, ByteView bytes, std::error_code& error) = 0;
    /// Cuts the file off or makes it longer with zeroes.
    virtual void truncate(std::uint64_t size, std::error_code& error) = 0;
    /// Returns when what was written would survive a power cut.
    virtual void flush(std::error_code& error) = 0;
    /// As the system tells it at this moment.
    virtual FileIdentity identity(std::error_code& error) = 0;
    /// Says that the file was last written to at that time. Only its owner may.
    virtual void setModified(std::int64_t seconds, std::int64_t nanoseconds,
                             std::error_code& error) = 0;
    /// Keeps others who lock it away; operation_would_block if one of them was first.
    virtual void lock(std::error_code& error) = 0;

    /// In bytes.
    std::uint64_t size(std::error_code& error) { return identity(error).size; }
};

/// A file that is there to be looked at: what would change or lock it is bad_file_descriptor.
class VEXQT_EXPORT ReadOnlyFile : public File {
public:
    void writeAt(std::uint64_t, ByteView, std::error_code& error) final { refuse(error); }
    void truncate(std::uint64_t, std::error_code& error) final { refuse(error); }
    void flush(std::error_code& error) final { refuse(error); }
    void setModified(std::int64_t, std::int64_t, std::error_code& error) final { refuse(error); }
    void lock(std::error_code& error) final { refuse(error); }

private:
    static void refuse(std::error_code& error) {
        error = std::make_error_code(std::errc::bad_file_descriptor);
    }
};

/// What becomes of a file that has the name already.
enum class IfExists { Replace, Refuse };

/// Bytes done, of how many.
using CopyProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

/// Where files are. Functions that return a file return null on an error.
///
/// Only regular files are opened: a folder is is_a_directory, a pipe or device not_supported, and
/// none of them blocks.
class VEXQT_EXPORT FileSystem {
public:
    FileSystem() = default;
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;
    virtual ~FileSystem() = default;

    /// Opens what is there.
    virtual std::unique_ptr<File> openForReading(const std::filesystem::path& path,
                                                 std::error_code& error) = 0;
    /// Opens for reading and writing what is there, as it is.
    virtual std::unique_ptr<File> openForWriting(const std::filesystem::path& path,
                                                 std::error_code& error) = 0;
    /// An empty file, open for reading and writing. One that exists is emptied or file_exists.
    virtual std::unique_ptr<File> create(const std::filesystem::path& path, IfExists ifExists,
                                         std::error_code& error) = 0;
    /// A new and empty file that its owner alone may read and write; file_exists if something has
    /// that name.
    virtual std::unique_ptr<File> createPrivate(const std::filesystem::path& path,
                                                std::error_code& error) = 0;
    /// A new file with the bytes, permissions and extended attributes of another, open for reading
    /// and writing.
    /// Blocks are shared where the system can, holes stay holes. After an error nothing is left of
    /// it. The new file must not exist yet.
    virtual std::unique_ptr<File> copy(const std::filesystem::path& from,
                                       const std::filesystem::path& to,
                                       const CopyProgress& progress, std::error_code& error) = 0;

    /// What is at a path, symbolic links followed; absent, without an error, if nothing is.
    virtual std::optional<FileIdentity> identityOf(const std::filesystem::path& path,
                                                   std::error_code& error) = 0;
    /// The absolute path of what exists, free of symbolic links and dots.
    virtual std::filesystem::path resolve(const std::filesystem::path& path,
                                          std::error_code& error) = 0;
    /// Replaces, in one step, what was at the new path.
    virtual void rename(const std::filesystem::path& from, const std::filesystem::path& to,
                        std::error_code& error) = 0;
    /// The name goes; the bytes live on while somebody has the file open.
    virtual void remove(const std::filesystem::path& path, std::error_code& error) = 0;
    /// Makes a folder, and those above it that are missing, for their owner alone. One that exists
    /// stays as it is.
    virtual void makePrivateFolder(const std::filesystem::path& folder, std::error_code& error) = 0;
    /// The names of what is in a folder, in no order.
    virtual std::vector<std::filesystem::path> list(const std::filesystem::path& folder,
                                                    std::error_code& error) = 0;
    /// Returns when the names in a folder, new and gone, would survive a power cut.
    virtual void flushDirectory(const std::filesystem::path& directory, std::error_code& error) = 0;

    /// Whether anything is at a path.
    bool exists(const std::filesystem::path& path, std::error_code& error) {
        return identityOf(path, error).has_value();
    }
};

/// The files of this machine.
VEXQT_EXPORT FileSystem& systemFiles();

}  // namespace vexqt
