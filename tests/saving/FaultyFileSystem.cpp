#include "saving/FaultyFileSystem.h"

namespace vexqt::testing {

namespace fs = std::filesystem;

class FaultyFileSystem::FaultyFile final : public File {
public:
    FaultyFile(FaultyFileSystem& files, std::unique_ptr<File> base)
        : files_(files), base_(std::move(base)) {}

    std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> into,
                       std::error_code& error) override {
        const Fault* fault = files_.fault("read");
        if (fault == nullptr) return base_->readAt(offset, into, error);
        const std::size_t count = base_->readAt(offset, into.first(into.size() / 2), error);
        error = fault->error;
        return count;
    }
    void writeAt(std::uint64_t offset, ByteView bytes, std::error_code& error) override {
        const Fault* fault = files_.fault("write");
        if (fault == nullptr) {
            base_->writeAt(offset, bytes, error);
            return;
        }
        if (fault->doesHalf) base_->writeAt(offset, bytes.first(bytes.size() / 2), error);
        error = fault->error;
    }
    void truncate(std::uint64_t size, std::error_code& error) override {
        if (!files_.fails("truncate", error)) base_->truncate(size, error);
    }
    void flush(std::error_code& error) override {
        if (!files_.fails("flush", error)) base_->flush(error);
    }
    FileIdentity identity(std::error_code& error) override {
        return files_.fails("identity", error) ? FileIdentity() : base_->identity(error);
    }
    void setModified(std::int64_t seconds, std::int64_t nanoseconds,
                     std::error_code& error) override {
        if (!files_.fails("setModified", error)) base_->setModified(seconds, nanoseconds, error);
    }
    void lock(std::error_code& error) override {
        if (!files_.fails("lock", error)) base_->lock(error);
    }

private:
    FaultyFileSystem& files_;
    std::unique_ptr<File> base_;
};

const FaultyFileSystem::Fault* FaultyFileSystem::fault(const char* operation) {
    const std::size_t number = operations.size();
    if (beforeOperation) beforeOperation(number);
    operations.emplace_back(operation);
    if (!fault_ || number < fault_->first || (number > fault_->first && !fault_->forGood))
        return nullptr;
    // Reading that ends early is nothing that other operations have.
    return fault_->error || operations.back() == "read" ? &*fault_ : nullptr;
}

bool FaultyFileSystem::fails(const char* operation, std::error_code& error) {
    const Fault* found = fault(operation);
    if (found != nullptr) error = found->error;
    return found != nullptr;
}

std::unique_ptr<File> FaultyFileSystem::wrapped(std::unique_ptr<File> file) {
    return file ? std::make_unique<FaultyFile>(*this, std::move(file)) : nullptr;
}

std::unique_ptr<File> FaultyFileSystem::openForReading(const fs::path& path,
                                                       std::error_code& error) {
    if (fails("openForReading", error)) return nullptr;
    return wrapped(base_.openForReading(path, error));
}

std::unique_ptr<File> FaultyFileSystem::openForWriting(const fs::path& path,
                                                       std::error_code& error) {
    if (fails("openForWriting", error)) return nullptr;
    return wrapped(base_.openForWriting(path, error));
}

std::unique_ptr<File> FaultyFileSystem::create(const fs::path& path, IfExists ifExists,
                                               std::error_code& error) {
    if (fails("create", error)) return nullptr;
    return wrapped(base_.create(path, ifExists, error));
}

std::unique_ptr<File> FaultyFileSystem::createPrivate(const fs::path& path,
                                                      std::error_code& error) {
    if (fails("createPrivate", error)) return nullptr;
    return wrapped(base_.createPrivate(path, error));
}

std::unique_ptr<File> FaultyFileSystem::copy(const fs::path& from, const fs::path& to,
                                             const CopyProgress& progress, std::error_code& error) {
    if (fails("copy", error)) return nullptr;
    return wrapped(base_.copy(from, to, progress, error));
}

std::optional<FileIdentity> FaultyFileSystem::identityOf(const fs::path& path,
                                                         std::error_code& error) {
    if (fails("identityOf", error)) return std::nullopt;
    return base_.identityOf(path, error);
}

fs::path FaultyFileSystem::resolve(const fs::path& path, std::error_code& error) {
    return fails("resolve", error) ? fs::path() : base_.resolve(path, error);
}

void FaultyFileSystem::rename(const fs::path& from, const fs::path& to, std::error_code& error) {
    if (beforeRename) beforeRename();
    if (!fails("rename", error)) base_.rename(from, to, error);
}

void FaultyFileSystem::remove(const fs::path& path, std::error_code& error) {
    if (beforeRemoval) beforeRemoval();
    if (!fails("remove", error)) base_.remove(path, error);
}

void FaultyFileSystem::makePrivateFolder(const fs::path& folder, std::error_code& error) {
    if (!fails("makePrivateFolder", error)) base_.makePrivateFolder(folder, error);
}

std::vector<fs::path> FaultyFileSystem::list(const fs::path& folder, std::error_code& error) {
    if (fails("list", error)) return {};
    return base_.list(folder, error);
}

void FaultyFileSystem::flushDirectory(const fs::path& directory, std::error_code& error) {
    if (beforeFlushOfDirectory) beforeFlushOfDirectory();
    if (!fails("flushDirectory", error)) base_.flushDirectory(directory, error);
}

}  // namespace vexqt::testing
