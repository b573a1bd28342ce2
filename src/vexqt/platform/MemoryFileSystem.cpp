#include "vexqt/platform/MemoryFileSystem.h"

#include <algorithm>
#include <utility>

namespace vexqt {

namespace fs = std::filesystem;

/// A file apart from its names.
struct MemoryFileSystem::Node {
    std::uint64_t inode = 0;
    Bytes bytes;
    std::int64_t changes = 0;
    std::int64_t modifiedSeconds = 0, modifiedNanoseconds = 0;
    const File* lockedBy = nullptr;

    /// Time is counted in changes: no two states of a file are of the same time.
    void change() {
        modifiedSeconds = ++changes;
        modifiedNanoseconds = 0;
    }

    FileIdentity identity() const {
        return {.device = 0,
                .inode = inode,
                .size = bytes.size(),
                .modifiedSeconds = modifiedSeconds,
                .modifiedNanoseconds = modifiedNanoseconds,
                .isRegular = true};
    }
};

namespace {

using Node = MemoryFileSystem::Node;

constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 30;

enum class Access { Read, ReadAndWrite };

class MemoryFile final : public File {
public:
    MemoryFile(std::shared_ptr<Node> node, Access access)
        : node_(std::move(node)), access_(access) {}
    ~MemoryFile() override {
        if (node_->lockedBy == this) node_->lockedBy = nullptr;
    }

    std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> into,
                       std::error_code& error) override {
        error.clear();
        if (offset >= node_->bytes.size()) return 0;
        const ByteView there = ByteView(node_->bytes).subspan(offset);
        const std::size_t count = std::min(into.size(), there.size());
        std::ranges::copy(there.first(count), into.begin());
        return count;
    }

    void writeAt(std::uint64_t offset, ByteView bytes, std::error_code& error) override {
        error.clear();
        if (bytes.empty()) return;
        if (offset > kMostBytes) offset = kMostBytes;
        const std::uint64_t end = offset + bytes.size();
        if (!mayBecome(std::max<std::uint64_t>(end, node_->bytes.size()), error)) return;
        if (end > node_->bytes.size()) node_->bytes.resize(end);
        std::ranges::copy(bytes, node_->bytes.begin() + static_cast<std::ptrdiff_t>(offset));
        node_->change();
    }

    void truncate(std::uint64_t size, std::error_code& error) override {
        if (!mayBecome(size, error)) return;
        node_->bytes.resize(size);
        node_->change();
    }

    void flush(std::error_code& error) override { error.clear(); }

    FileIdentity identity(std::error_code& error) override {
        error.clear();
        return node_->identity();
    }

    void setModified(std::int64_t seconds, std::int64_t nanoseconds,
                     std::error_code& error) override {
        error.clear();
        node_->modifiedSeconds = seconds;
        node_->modifiedNanoseconds = nanoseconds;
    }

    void lock(std::error_code& error) override {
        error.clear();
        if (node_->lockedBy == nullptr) node_->lockedBy = this;
        if (node_->lockedBy != this) error = std::make_error_code(std::errc::operation_would_block);
    }

private:
    bool mayBecome(std::uint64_t size, std::error_code& error) const {
        error.clear();
        if (size > kMostBytes) error = std::make_error_code(std::errc::no_space_on_device);
        if (access_ == Access::Read) error = std::make_error_code(std::errc::bad_file_descriptor);
        return !error;
    }

    std::shared_ptr<Node> node_;
    Access access_;
};

std::unique_ptr<File> openNode(std::shared_ptr<Node> node, Access access) {
    if (!node) return nullptr;
    return std::make_unique<MemoryFile>(std::move(node), access);
}

/// The key of a path: "a/../b" and "b" are one file.
fs::path keyOf(const fs::path& path) { return ("/" / path).lexically_normal(); }

}  // namespace

void MemoryFileSystem::put(const fs::path& path, Bytes bytes) {
    std::shared_ptr<Node> node = newNode();
    node->bytes = std::move(bytes);
    nodes_[keyOf(path)] = std::move(node);
}

const Bytes& MemoryFileSystem::bytes(const fs::path& path) const {
    return nodes_.at(keyOf(path))->bytes;
}

std::set<fs::path> MemoryFileSystem::paths() const {
    std::set<fs::path> paths;
    for (const auto& [path, node] : nodes_) paths.insert(path);
    return paths;
}

std::unique_ptr<File> MemoryFileSystem::openForReading(const fs::path& path,
                                                       std::error_code& error) {
    return openNode(find(path, error), Access::Read);
}

std::unique_ptr<File> MemoryFileSystem::openForWriting(const fs::path& path,
                                                       std::error_code& error) {
    return openNode(find(path, error), Access::ReadAndWrite);
}

std::unique_ptr<File> MemoryFileSystem::create(const fs::path& path, IfExists ifExists,
                                               std::error_code& error) {
    std::shared_ptr<Node> node = find(path, error);
    if (node && ifExists == IfExists::Refuse) {
        error = std::make_error_code(std::errc::file_exists);
        return nullptr;
    }
    error.clear();
    if (!node) {
        node = newNode();
        auto file = openNode(node, Access::ReadAndWrite);
        nodes_[keyOf(path)] = std::move(node);
        return file;
    }
    node->bytes.clear();
    node->change();
    return openNode(std::move(node), Access::ReadAndWrite);
}

std::unique_ptr<File> MemoryFileSystem::createPrivate(const fs::path& path,
                                                      std::error_code& error) {
    return create(path, IfExists::Refuse, error);
}

std::unique_ptr<File> MemoryFileSystem::copy(const fs::path& from, const fs::path& to,
                                             const CopyProgress& progress, std::error_code& error) {
    const std::shared_ptr<Node> source = find(from, error);
    if (!source) return nullptr;
    if (nodes_.contains(keyOf(to))) {
        error = std::make_error_code(std::errc::file_exists);
        return nullptr;
    }
    std::shared_ptr<Node> node = newNode();
    node->bytes = source->bytes;
    auto file = openNode(node, Access::ReadAndWrite);
    if (progress) progress(source->bytes.size(), source->bytes.size());
    nodes_[keyOf(to)] = std::move(node);
    return file;
}

std::optional<FileIdentity> MemoryFileSystem::identityOf(const fs::path& path,
                                                         std::error_code& error) {
    const std::shared_ptr<Node> node = find(path, error);
    error.clear();
    if (!node) return std::nullopt;
    return node->identity();
}

fs::path MemoryFileSystem::resolve(const fs::path& path, std::error_code& error) {
    return find(path, error) ? keyOf(path) : fs::path();
}

void MemoryFileSystem::rename(const fs::path& from, const fs::path& to, std::error_code& error) {
    std::shared_ptr<Node> node = find(from, error);
    if (!node || keyOf(from) == keyOf(to)) return;
    const fs::path fromKey = keyOf(from);
    nodes_[keyOf(to)] = std::move(node);
    nodes_.erase(fromKey);
}

void MemoryFileSystem::remove(const fs::path& path, std::error_code& error) {
    if (find(path, error)) nodes_.erase(keyOf(path));
}

void MemoryFileSystem::makePrivateFolder(const fs::path& /*folder*/, std::error_code& error) {
    error.clear();
}

std::vector<fs::path> MemoryFileSystem::list(const fs::path& folder, std::error_code& error) {
    error.clear();
    std::vector<fs::path> names;
    for (const auto& [path, node] : nodes_)
        if (path.parent_path() == keyOf(folder / "name").parent_path())
            names.push_back(path.filename());
    return names;
}

void MemoryFileSystem::flushDirectory(const fs::path& /*directory*/, std::error_code& error) {
    error.clear();
}

std::shared_ptr<Node> MemoryFileSystem::find(const fs::path& path, std::error_code& error) const {
    error.clear();
    const auto found = nodes_.find(keyOf(path));
    if (found != nodes_.end()) return found->second;
    error = std::make_error_code(std::errc::no_such_file_or_directory);
    return nullptr;
}

std::shared_ptr<Node> MemoryFileSystem::newNode() {
    auto node = std::make_shared<Node>();
    node->inode = ++inodes_;
    return node;
}

}  // namespace vexqt
