// A file that takes its name only when it is whole.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "vexqt/saving/NamedFile.h"

namespace vexqt {

/// A file beside the one that it is to become, removed if it never does. Failures are thrown as
/// SaveFailure.
class Draft {
public:
    /// A symbolic link stays one: what it leads to will be replaced. Fails where the target is no
    /// regular file, or the original itself under any name; that is said without the name, for
    /// those who put it in front.
    Draft(FileSystem& files, const std::filesystem::path& target,
          const std::optional<FileIdentity>& original = std::nullopt);
    ~Draft();
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    void create();
    void copy(const std::filesystem::path& from, const CopyProgress& progress);
    /// Open for reading and writing once it was created or copied.
    NamedFile& file() { return *named_; }
    /// Flushes it and gives it its name. Returns what a person should know all the same.
    std::optional<std::string> finish();
    /// Whether it has its name.
    bool isFinished() const { return isFinished_; }

private:
    template <class Make>
    void make(const std::string& doing, const Make& makeFile);

    FileSystem& files_;
    std::filesystem::path target_, path_;
    std::unique_ptr<File> file_;
    std::optional<NamedFile> named_;
    bool isOurs_ = false, isFinished_ = false;
};

}  // namespace vexqt
