// Files on a machine whose power may fail after any operation.
//
// What was written since a file was flushed may have reached the disk or not, every 512-byte piece
// and every length by itself, and so may every name that was made or removed since its folder was
// flushed. The power does not fail in the middle of a test: instead, the test is called after every
// operation and asks for the disks that a failure at this moment could leave.
#pragma once

#include <functional>
#include <map>
#include <random>
#include <vector>

#include "vexqt/platform/files.h"

namespace vexqt::testing {

/// What is on a disk when the machine starts.
struct Disk {
    struct Content {
        std::uint64_t inode = 0;
        Bytes bytes;
        std::int64_t modified = 0;
    };
    std::uint64_t device = 1;
    std::map<std::filesystem::path, Content> files;

    /// Equal for disks with the same names and bytes.
    std::size_t hash() const;
};

class CrashingFileSystem final : public FileSystem {
public:
    explicit CrashingFileSystem(const Disk& disk);

    /// Called after each operation that changes something.
    std::function<void()> afterOperation;

    /// Calls with the disks that a power cut could leave now: all of them, or as many random ones
    /// as is said where there are too many to try. Returns how many.
    std::size_t forEachDisk(std::size_t most, std::size_t randomOnes, std::mt19937& random,
                            const std::function<void(const Disk&)>& visit) const;
    /// The disk after everything was flushed.
    Disk disk() const;

    std::unique_ptr<File> openForReading(const std::filesystem::path& path,
                                         std::error_code& error) override;
    std::unique_ptr<File> openForWriting(const std::filesystem::path& path,
                                         std::error_code& error) override;
    std::unique_ptr<File> create(const std::filesystem::path& path, IfExists ifExists,
                                 std::error_code& error) override;
    std::unique_ptr<File> createPrivate(const std::filesystem::path& path,
                                        std::error_code& error) override;
    std::unique_ptr<File> copy(const std::filesystem::path& from, const std::filesystem::path& to,
                               const CopyProgress& progress, std::error_code& error) override;
    std::optional<FileIdentity> identityOf(const std::filesystem::path& path,
                                           std::error_code& error) override;
    std::filesystem::path resolve(const std::filesystem::path& path,
                                  std::error_code& error) override;
    void rename(const std::filesystem::path& from, const std::filesystem::path& to,
                std::error_code& error) override;
    void remove(const std::filesystem::path& path, std::error_code& error) override;
    void makePrivateFolder(const std::filesystem::path& folder, std::error_code& error) override;
    std::vector<std::filesystem::path> list(const std::filesystem::path& folder,
                                            std::error_code& error) override;
    void flushDirectory(const std::filesystem::path& directory, std::error_code& error) override;

    struct Node;

private:
    class OpenFile;
    using Names = std::map<std::filesystem::path, std::shared_ptr<Node>>;
    /// A name was made (`from` is empty), removed (`to` is empty) or changed.
    struct NameChange {
        std::filesystem::path from, to;
        std::shared_ptr<Node> node;

        void apply(Names& names) const;
    };

    std::shared_ptr<Node> find(const std::filesystem::path& path, std::error_code& error) const;
    void change(NameChange change);
    void done() const {
        if (afterOperation) afterOperation();
    }

    std::uint64_t device_, inodes_ = 0;
    Names names_, durableNames_;
    std::vector<NameChange> unflushed_;
};

}  // namespace vexqt::testing
