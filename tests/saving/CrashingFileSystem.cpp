#include "saving/CrashingFileSystem.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vexqt::testing {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPiece = 512;

std::size_t hashOf(std::string_view text) { return std::hash<std::string_view>()(text); }

}  // namespace

std::size_t Disk::hash() const {
    std::size_t hash = 0;
    for (const auto& [path, content] : files) {
        const Bytes& bytes = content.bytes;
        hash = hash * 1'000'003 + hashOf(path.native());
        hash =
            hash * 1'000'003 + hashOf({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    return hash;
}

/// A file, as it is and as it was when it was last flushed.
struct CrashingFileSystem::Node {
    std::uint64_t inode = 0;
    Bytes bytes, durable;
    std::int64_t modified = 0, durableModified = 0, changes = 0;
    const File* lockedBy = nullptr;

    // What the bytes were in between: all of it may be on the disk.
    std::map<std::size_t, std::vector<Bytes>> pieces;
    std::vector<std::size_t> lengths;

    void write(std::size_t offset, ByteView from) {
        const std::size_t end = offset + from.size();
        if (end > bytes.size()) setLength(end);
        std::ranges::copy(from, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
        for (std::size_t piece = offset / kPiece; piece * kPiece < end; ++piece) {
            const ByteView all = ByteView(bytes).subspan(piece * kPiece);
            const ByteView part = all.first(std::min(all.size(), kPiece));
            pieces[piece].emplace_back(part.begin(), part.end());
        }
        modified = ++changes;
    }
    void setLength(std::size_t length) {
        // A write that is cut off between two pieces leaves a length of its own.
        const std::size_t between =
            (std::min(bytes.size(), length) + std::max(bytes.size(), length)) / 2 / kPiece * kPiece;
        if (length > bytes.size() && between > bytes.size()) lengths.push_back(between);
        lengths.push_back(length);
        bytes.resize(length);
        modified = ++changes;
    }
    void flush() {
        durable = bytes;
        durableModified = modified;
        pieces.clear();
        lengths.clear();
    }

    /// In how many ways each part of it may be on the disk.
    void addWays(std::vector<std::size_t>& ways) const {
        ways.push_back(lengths.size() + 1);
        for (const auto& [piece, versions] : pieces) ways.push_back(versions.size() + 1);
    }
    Bytes chosen(std::vector<std::size_t>::const_iterator& choice) const {
        Bytes disk = durable;
        const std::size_t lengthChoice = *choice++;
        disk.resize(lengthChoice == 0 ? durable.size() : lengths[lengthChoice - 1]);
        for (const auto& [piece, versions] : pieces) {
            const std::size_t pieceChoice = *choice++;
            const std::size_t start = piece * kPiece;
            if (pieceChoice == 0 || start >= disk.size()) continue;
            const Bytes& version = versions[pieceChoice - 1];
            std::copy_n(version.begin(), std::min(version.size(), disk.size() - start),
                        disk.begin() + static_cast<std::ptrdiff_t>(start));
        }
        return disk;
    }
};

class CrashingFileSystem::OpenFile final : public File {
public:
    OpenFile(const CrashingFileSystem& files, std::shared_ptr<Node> node)
        : files_(files), node_(std::move(node)) {}
    ~OpenFile() override {
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
        node_->write(offset, bytes);
        files_.done();
    }
    void truncate(std::uint64_t size, std::error_code& error) override {
        error.clear();
        node_->setLength(size);
        files_.done();
    }
    void flush(std::error_code& error) override {
        error.clear();
        node_->flush();
        files_.done();
    }
    FileIdentity identity(std::error_code& error) override {
        error.clear();
        return {.device = files_.device_,
                .inode = node_->inode,
                .size = node_->bytes.size(),
                .modifiedSeconds = node_->modified,
                .modifiedNanoseconds = 0,
                .isRegular = true};
    }
    void setModified(std::int64_t seconds, std::int64_t /*nanoseconds*/,
                     std::error_code& error) override {
        error.clear();
        node_->modified = seconds;
        files_.done();
    }
    void lock(std::error_code& error) override {
        error.clear();
        if (node_->lockedBy == nullptr) node_->lockedBy = this;
        if (node_->lockedBy != this) error = std::make_error_code(std::errc::operation_would_block);
    }

private:
    const CrashingFileSystem& files_;
    std::shared_ptr<Node> node_;
};

void CrashingFileSystem::NameChange::apply(Names& names) const {
    // A name that never reached the disk cannot be taken away from it.
    if (!from.empty() && names.erase(from) == 0 && to.empty()) return;
    if (!to.empty()) names[to] = node;
}

CrashingFileSystem::CrashingFileSystem(const Disk& disk) : device_(disk.device) {
    for (const auto& [path, content] : disk.files) {
        auto node = std::make_shared<Node>();
        node->inode = content.inode;
        node->bytes = node->durable = content.bytes;
        node->modified = node->durableModified = content.modified;
        node->changes = 1'000 + content.modified;
        inodes_ = std::max(inodes_, content.inode);
        names_[path] = std::move(node);
    }
    durableNames_ = names_;
}

Disk CrashingFileSystem::disk() const {
    Disk disk = {.device = device_, .files = {}};
    for (const auto& [path, node] : names_)
        disk.files[path] = {node->inode, node->bytes, node->modified};
    return disk;
}

std::size_t CrashingFileSystem::forEachDisk(std::size_t most, std::size_t randomOnes,
                                            std::mt19937& random,
                                            const std::function<void(const Disk&)>& visit) const {
    // Every file that has, had or will have a name.
    std::map<std::uint64_t, const Node*> nodes;
    for (const auto& [path, node] : durableNames_) nodes[node->inode] = node.get();
    for (const NameChange& change : unflushed_)
        if (change.node) nodes[change.node->inode] = change.node.get();

    std::vector<std::size_t> ways(unflushed_.size(), 2);
    for (const auto& [inode, node] : nodes) node->addWays(ways);
    std::size_t count = 1;
    for (const std::size_t way : ways) count = std::min(count * way, most + 1);

    std::vector<std::size_t> choices(ways.size());
    const auto visitChoices = [&] {
        auto choice = choices.cbegin();
        Names names = durableNames_;
        for (const NameChange& change : unflushed_)
            if (*choice++ != 0) change.apply(names);
        std::map<std::uint64_t, Disk::Content> contents;
        for (const auto& [inode, node] : nodes) {
            const std::int64_t modified =
                random() % 2 != 0 ? node->modified : node->durableModified;
            Bytes bytes = node->chosen(choice);
            contents[inode] = {inode, std::move(bytes), modified};
            if (contents[inode].bytes == node->durable)
                contents[inode].modified = node->durableModified;
        }
        Disk disk = {.device = device_, .files = {}};
        for (const auto& [path, node] : names) disk.files[path] = contents[node->inode];
        visit(disk);
    };

    if (count <= most) {
        for (std::size_t number = 0; number < count; ++number) {
            std::size_t rest = number;
            for (std::size_t i = 0; i < ways.size(); ++i) {
                choices[i] = rest % ways[i];
                rest /= ways[i];
            }
            visitChoices();
        }
        return count;
    }
    for (std::size_t i = 0; i < randomOnes; ++i) {
        for (std::size_t j = 0; j < ways.size(); ++j) {
            if (i == 0) choices[j] = 0;            // Nothing has reached the disk.
            if (i == 1) choices[j] = ways[j] - 1;  // All has.
            if (i > 1) choices[j] = random() % ways[j];
        }
        visitChoices();
    }
    return randomOnes;
}

std::shared_ptr<CrashingFileSystem::Node> CrashingFileSystem::find(const fs::path& path,
                                                                   std::error_code& error) const {
    error.clear();
    const auto found = names_.find(path);
    if (found != names_.end()) return found->second;
    error = std::make_error_code(std::errc::no_such_file_or_directory);
    return nullptr;
}

void CrashingFileSystem::change(NameChange change) {
    change.apply(names_);
    unflushed_.push_back(std::move(change));
    done();
}

std::unique_ptr<File> CrashingFileSystem::openForReading(const fs::path& path,
                                                         std::error_code& error) {
    return openForWriting(path, error);
}

std::unique_ptr<File> CrashingFileSystem::openForWriting(const fs::path& path,
                                                         std::error_code& error) {
    auto node = find(path, error);
    return node ? std::make_unique<OpenFile>(*this, std::move(node)) : nullptr;
}

std::unique_ptr<File> CrashingFileSystem::create(const fs::path& path, IfExists ifExists,
                                                 std::error_code& error) {
    if (auto node = find(path, error)) {
        if (ifExists == IfExists::Refuse) {
            error = std::make_error_code(std::errc::file_exists);
            return nullptr;
        }
        node->setLength(0);
        done();
        return std::make_unique<OpenFile>(*this, std::move(node));
    }
    error.clear();
    auto node = std::make_shared<Node>();
    node->inode = ++inodes_;
    change({{}, path, node});
    return std::make_unique<OpenFile>(*this, std::move(node));
}

std::unique_ptr<File> CrashingFileSystem::createPrivate(const fs::path& path,
                                                        std::error_code& error) {
    return create(path, IfExists::Refuse, error);
}

std::unique_ptr<File> CrashingFileSystem::copy(const fs::path& /*from*/, const fs::path& /*to*/,
                                               const CopyProgress& /*progress*/,
                                               std::error_code& error) {
    error = std::make_error_code(std::errc::not_supported);
    return nullptr;
}

std::optional<FileIdentity> CrashingFileSystem::identityOf(const fs::path& path,
                                                           std::error_code& error) {
    auto node = find(path, error);
    error.clear();
    if (!node) return std::nullopt;
    return OpenFile(*this, std::move(node)).identity(error);
}

fs::path CrashingFileSystem::resolve(const fs::path& path, std::error_code& error) {
    return find(path, error) ? path : fs::path();
}

void CrashingFileSystem::rename(const fs::path& from, const fs::path& to, std::error_code& error) {
    if (auto node = find(from, error)) change({from, to, std::move(node)});
}

void CrashingFileSystem::remove(const fs::path& path, std::error_code& error) {
    if (find(path, error)) change({path, {}, nullptr});
}

void CrashingFileSystem::makePrivateFolder(const fs::path& /*folder*/, std::error_code& error) {
    error.clear();
}

std::vector<fs::path> CrashingFileSystem::list(const fs::path& folder, std::error_code& error) {
    error.clear();
    std::vector<fs::path> names;
    for (const auto& [path, node] : names_)
        if (path.parent_path() == folder) names.push_back(path.filename());
    return names;
}

void CrashingFileSystem::flushDirectory(const fs::path& directory, std::error_code& error) {
    error.clear();
    std::erase_if(unflushed_, [&](const NameChange& change) {
        const fs::path& path = change.to.empty() ? change.from : change.to;
        if (path.parent_path() != directory) return false;
        change.apply(durableNames_);
        return true;
    });
    done();
}

}  // namespace vexqt::testing
