// Another file system whose operations fail.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vexqt/platform/files.h"

namespace vexqt::testing {

class FaultyFileSystem final : public FileSystem {
public:
    explicit FaultyFileSystem(FileSystem& base) : base_(base) {}

    struct Fault {
        std::error_code error;  ///< None for reads that end early and say nothing.
        std::size_t first = 0;  ///< The first operation that fails, counted from 0.
        bool forGood = false;   ///< Or only that one.
        bool doesHalf = false;  ///< Writes what half of it is before it fails.
    };
    /// Counting begins again.
    void setFault(const std::optional<Fault>& fault) {
        fault_ = fault;
        operations.clear();
    }
    /// What was done, by name; "write", "flush".
    std::vector<std::string> operations;
    /// Called with the number of each before it is done.
    std::function<void(std::size_t)> beforeOperation;
    /// Called before each of that kind.
    std::function<void()> beforeRemoval, beforeRename, beforeFlushOfDirectory;

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
    class FaultyFile;

    /// The fault that the operation has, which is counted.
    const Fault* fault(const char* operation);
    /// True, with the error, if it fails.
    bool fails(const char* operation, std::error_code& error);
    std::unique_ptr<File> wrapped(std::unique_ptr<File> file);

    FileSystem& base_;
    std::optional<Fault> fault_;
};

}  // namespace vexqt::testing
