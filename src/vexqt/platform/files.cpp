#include "vexqt/platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#ifdef __linux__
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#endif

namespace vexqt {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kLastOffset = std::numeric_limits<off_t>::max();

std::error_code lastError() { return {errno, std::generic_category()}; }

/// Makes a system call until no signal interrupts it, and says how it went. Calls that return a
/// negative number have failed.
template <class Call>
auto uninterrupted(std::error_code& error, Call&& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    error = result < 0 ? lastError() : std::error_code();
    return result;
}

/// A file descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }

    operator int() const { return number_; }

private:
    int number_;
};

Descriptor open(const char* path, int flags, std::error_code& error, mode_t mode = 0) {
    return Descriptor(
        uninterrupted(error, [&] { return ::open(path, flags | O_CLOEXEC | O_NOCTTY, mode); }));
}

FileIdentity identityFrom(const struct stat& status) {
    return {
        .device = status.st_dev,
        .inode = status.st_ino,
        .size = static_cast<std::uint64_t>(status.st_size),
        .modifiedSeconds = status.st_mtim.tv_sec,
        .modifiedNanoseconds = status.st_mtim.tv_nsec,
        .isRegular = S_ISREG(status.st_mode),
    };
}

class SystemFile final : public File {
public:
    /// Of no file yet.
    SystemFile() : descriptor_(-1) {}
    void adopt(Descriptor descriptor) { descriptor_ = std::move(descriptor); }

    std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> into,
                       std::error_code& error) override {
        error.clear();
        if (offset > kLastOffset) return 0;
        const std::size_t wanted = std::min<std::uint64_t>(into.size(), kLastOffset - offset);
        std::size_t done = 0;
        while (done < wanted) {
            const ssize_t count = uninterrupted(error, [&] {
                return ::pread(descriptor_, into.data() + done, wanted - done,
                               static_cast<off_t>(offset + done));
            });
            if (count <= 0) break;
            done += static_cast<std::size_t>(count);
        }
        return done;
    }

    void writeAt(std::uint64_t offset, ByteView bytes, std::error_code& error) override {
        error.clear();
        if (offset > kLastOffset || bytes.size() > kLastOffset - offset) {
            error = std::make_error_code(std::errc::file_too_large);
            return;
        }
        while (!bytes.empty()) {
            const ssize_t count = uninterrupted(error, [&] {
                return ::pwrite(descriptor_, bytes.data(), bytes.size(),
                                static_cast<off_t>(offset));
            });
            if (count == 0) error = std::make_error_code(std::errc::io_error);
            if (error) return;
            bytes = bytes.subspan(static_cast<std::size_t>(count));
            offset += static_cast<std::uint64_t>(count);
        }
    }

    void truncate(std::uint64_t size, std::error_code& error) override {
        if (size > kLastOffset) {
            error = std::make_error_code(std::errc::file_too_large);
            return;
        }
        uninterrupted(error, [&] { return ::ftruncate(descriptor_, static_cast<off_t>(size)); });
    }

    void flush(std::error_code& error) override {
        uninterrupted(error, [&] { return ::fsync(descriptor_); });
    }

    FileIdentity identity(std::error_code& error) override {
        struct stat status = {};
        uninterrupted(error, [&] { return ::fstat(descriptor_, &status); });
        return error ? FileIdentity() : identityFrom(status);
    }

    void setModified(std::int64_t seconds, std::int64_t nanoseconds,
                     std::error_code& error) override {
        const timespec times[] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                  {.tv_sec = seconds, .tv_nsec = nanoseconds}};
        uninterrupted(error, [&] { return ::futimens(descriptor_, times); });
    }

    void lock(std::error_code& error) override {
        uninterrupted(error, [&] { return ::flock(descriptor_, LOCK_EX | LOCK_NB); });
    }

    int descriptor() const { return descriptor_; }

private:
    Descriptor descriptor_;
};

std::unique_ptr<SystemFile> openRegular(const fs::path& path, int flags, std::error_code& error,
                                        mode_t mode = 0666) {
    // Made first, so that no new file is left behind for want of memory.
    auto file = std::make_unique<SystemFile>();
    // Without O_NONBLOCK, opening a pipe would wait for somebody at its other end.
    Descriptor descriptor = open(path.c_str(), flags | O_NONBLOCK, error, mode);
    if (error) return nullptr;
    struct stat status = {};
    uninterrupted(error, [&] { return ::fstat(descriptor, &status); });
    if (error) return nullptr;
    if (!S_ISREG(status.st_mode)) {
        error = std::make_error_code(S_ISDIR(status.st_mode) ? std::errc::is_a_directory
                                                             : std::errc::not_supported);
        return nullptr;
    }
    file->adopt(std::move(descriptor));
    return file;
}

/// Makes the new file share the old one's blocks, on file systems that can.
bool shareBlocks(int from, int to) {
#ifdef FICLONE
    return ::ioctl(to, FICLONE, from) == 0;
#else
    return false;
#endif
}

/// Copies without a way through this process; gives how many bytes, 0 or less where that cannot be.
ssize_t copyInKernel(int from, int to, off_t offset, std::size_t count) {
#ifdef __linux__
    off_t source = offset, target = offset;
    return ::copy_file_range(from, &source, to, &target, count, 0);
#else
    return -1;
#endif
}

/// Copies the tags and comments that people have given a file, as far as the file systems take
/// them.
void copyAttributes(int from, int to) {
#ifdef __linux__
    std::string names(
        static_cast<std::size_t>(std::max<ssize_t>(::flistxattr(from, nullptr, 0), 0)), '\0');
    const ssize_t length = ::flistxattr(from, names.data(), names.size());
    names.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    Bytes value(std::size_t{64} << 10);  // None is longer.
    for (std::size_t at = 0; at < names.size(); at += std::strlen(names.c_str() + at) + 1) {
        const char* const name = names.c_str() + at;
        if (!std::string_view(name).starts_with("user.")) continue;
        const ssize_t count = ::fgetxattr(from, name, value.data(), value.size());
        if (count >= 0) ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(count), 0);
    }
#endif
}

/// Copies the ranges of a file that hold data; the rest of the new one stays a hole.
class Copier {
public:
    Copier(SystemFile& from, SystemFile& to, const CopyProgress& progress)
        : from_(from), to_(to), progress_(progress) {}

    void copy(std::error_code& error) {
        size_ = from_.size(error);
        if (error) return;
        if (!shareBlocks(from_.descriptor(), to_.descriptor())) {
            to_.truncate(size_, error);
            for (std::uint64_t at = 0; !error && at < size_;) {
                const auto [begin, end] = dataFrom(at);
                copyRange(begin, end, error);
                at = end;
            }
        }
        if (!error) report(size_);
    }

private:
    static constexpr std::size_t kStep = std::size_t{16} << 20;

    struct Range {
        std::uint64_t begin, end;
    };

    /// The next range that is no hole, an empty one at the end of the file. All the rest where the
    /// file system knows no holes.
    Range dataFrom(std::uint64_t offset) const {
        const off_t begin = ::lseek(from_.descriptor(), static_cast<off_t>(offset), SEEK_DATA);
        if (begin < 0) return {errno == ENXIO ? size_ : offset, size_};
        const off_t end = ::lseek(from_.descriptor(), begin, SEEK_HOLE);
        if (end <= begin) return {offset, size_};
        return {std::min(static_cast<std::uint64_t>(begin), size_),
                std::min(static_cast<std::uint64_t>(end), size_)};
    }

    void copyRange(std::uint64_t begin, std::uint64_t end, std::error_code& error) {
        while (!error && begin < end) {
            begin += copySome(begin, std::min<std::uint64_t>(end - begin, kStep), error);
            if (!error) report(begin);
        }
    }

    std::size_t copySome(std::uint64_t offset, std::size_t count, std::error_code& error) {
        const ssize_t copied =
            copyInKernel(from_.descriptor(), to_.descriptor(), static_cast<off_t>(offset), count);
        if (copied > 0) return static_cast<std::size_t>(copied);

        // Why the system would not does not matter: this way works, or says what is wrong.
        buffer_.resize(count);
        const std::size_t got = from_.readAt(offset, buffer_, error);
        if (!error && got < count) error = std::make_error_code(std::errc::io_error);
        if (!error) to_.writeAt(offset, buffer_, error);
        return got;
    }

    void report(std::uint64_t done) const {
        if (progress_) progress_(done, size_);
    }

    SystemFile& from_;
    SystemFile& to_;
    const CopyProgress& progress_;
    std::uint64_t size_ = 0;
    Bytes buffer_;
};

class SystemFiles final : public FileSystem {
public:
    std::unique_ptr<File> openForReading(const fs::path& path, std::error_code& error) override {
        return openRegular(path, O_RDONLY, error);
    }

    std::unique_ptr<File> openForWriting(const fs::path& path, std::error_code& error) override {
        return openRegular(path, O_RDWR, error);
    }

    std::unique_ptr<File> create(const fs::path& path, IfExists ifExists,
                                 std::error_code& error) override {
        return openRegular(
            path, O_RDWR | O_CREAT | (ifExists == IfExists::Replace ? O_TRUNC : O_EXCL), error);
    }

    std::unique_ptr<File> createPrivate(const fs::path& path, std::error_code& error) override {
        return openRegular(path, O_RDWR | O_CREAT | O_EXCL, error, 0600);
    }

    std::unique_ptr<File> copy(const fs::path& from, const fs::path& to,
                               const CopyProgress& progress, std::error_code& error) override {
        const auto source = openRegular(from, O_RDONLY, error);
        if (error) return nullptr;
        auto target = openRegular(to, O_RDWR | O_CREAT | O_EXCL, error);
        if (error) return nullptr;
        try {
            copyPermissions(*source, *target, error);
            copyAttributes(source->descriptor(), target->descriptor());
            if (!error) Copier(*source, *target, progress).copy(error);
        } catch (...) {  // Of the progress, or for want of memory.
            ::unlink(to.c_str());
            throw;
        }
        if (!error) return target;
        ::unlink(to.c_str());
        return nullptr;
    }

    std::optional<FileIdentity> identityOf(const fs::path& path, std::error_code& error) override {
        struct stat status = {};
        uninterrupted(error, [&] { return ::stat(path.c_str(), &status); });
        if (!error) return identityFrom(status);
        if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory) {
            error.clear();
        }
        return std::nullopt;
    }

    fs::path resolve(const fs::path& path, std::error_code& error) override {
        return fs::canonical(path, error);
    }

    void rename(const fs::path& from, const fs::path& to, std::error_code& error) override {
        uninterrupted(error, [&] { return ::rename(from.c_str(), to.c_str()); });
    }

    void remove(const fs::path& path, std::error_code& error) override {
        uninterrupted(error, [&] { return ::unlink(path.c_str()); });
    }

    void makePrivateFolder(const fs::path& folder, std::error_code& error) override {
        if (fs::is_directory(folder, error)) return;
        if (folder.has_relative_path() && folder.has_parent_path()) {
            makePrivateFolder(folder.parent_path(), error);
            if (error) return;
        }
        uninterrupted(error, [&] { return ::mkdir(folder.c_str(), 0700); });
        // Another process may have made it since.
        std::error_code ignored;
        if (error == std::errc::file_exists && fs::is_directory(folder, ignored)) error.clear();
    }

    std::vector<fs::path> list(const fs::path& folder, std::error_code& error) override {
        // The standard library's iterator ends the program where there is no memory for it.
        std::vector<fs::path> names;
        const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), ::closedir);
        if (!entries) {
            error = lastError();
            return names;
        }
        while (true) {
            errno = 0;
            const dirent* const entry = ::readdir(entries.get());
            error = lastError();
            if (entry == nullptr) return names;
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") names.emplace_back(name);
        }
    }

    void flushDirectory(const fs::path& directory, std::error_code& error) override {
        const char* const named = directory.empty() ? "." : directory.c_str();
        const Descriptor descriptor = open(named, O_RDONLY | O_DIRECTORY, error);
        if (error) return;
        uninterrupted(error, [&] { return ::fsync(descriptor); });
        // Some network file systems cannot, and have nothing to flush.
        if (error == std::errc::invalid_argument) error.clear();
    }

private:
    static void copyPermissions(const SystemFile& from, const SystemFile& to,
                                std::error_code& error) {
        struct stat status = {};
        uninterrupted(error, [&] { return ::fstat(from.descriptor(), &status); });
        if (error) return;
        uninterrupted(error, [&] { return ::fchmod(to.descriptor(), status.st_mode & 0777); });
    }
};

}  // namespace

FileSystem& systemFiles() {
    static SystemFiles files;
    return files;
}

}  // namespace vexqt
