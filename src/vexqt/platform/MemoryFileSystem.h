#pragma once

#include <map>
#include <set>

#include "vexqt/export.h"
#include "vexqt/platform/files.h"

namespace vexqt {

/// Files in memory, for tests and for what has no file. It keeps the rules of the files of a
/// machine: names and files are two things, so a removed file lives on while it is open.
///
/// Folders are not told apart from parts of names and always exist. A file holds a gigabyte at
/// most; more is no_space_on_device.
class VEXQT_EXPORT MemoryFileSystem final : public FileSystem {
public:
    struct Node;

    /// Makes or replaces the file at a path.
    void put(const std::filesystem::path& path, Bytes bytes);
    /// The bytes of the file at a path, which must exist.
    const Bytes& bytes(const std::filesystem::path& path) const;
    /// The paths of all files.
    std::set<std::filesystem::path> paths() const;

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

private:
    /// Null, with an error, if there is no such file.
    std::shared_ptr<Node> find(const std::filesystem::path& path, std::error_code& error) const;
    /// A file that has no name yet. Names are given last: what fails before leaves no file.
    std::shared_ptr<Node> newNode();

    std::map<std::filesystem::path, std::shared_ptr<Node>> nodes_;
    std::uint64_t inodes_ = 0;
};

}  // namespace vexqt
