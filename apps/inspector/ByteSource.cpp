#include "apps/inspector/ByteSource.h"

namespace vexqt::inspector_app {

std::unique_ptr<FileBytes> FileBytes::open(const std::filesystem::path& path) {
    std::error_code error;
    auto file = systemFiles().openForReading(path, error);
    if (!file) return nullptr;
    const std::uint64_t length = file->size(error);
    if (error) return nullptr;
    return std::unique_ptr<FileBytes>(new FileBytes(std::move(file), length));
}

QByteArray FileBytes::read(quint64 offset, qsizetype count) {
    QByteArray bytes(count, Qt::Uninitialized);
    std::error_code error;
    const std::span<std::uint8_t> into(reinterpret_cast<std::uint8_t*>(bytes.data()),
                                       static_cast<std::size_t>(count));
    const std::size_t there = file_->readAt(offset, into, error);
    bytes.truncate(error ? 0 : static_cast<qsizetype>(there));
    return bytes;
}

QByteArray MemoryBytes::read(quint64 offset, qsizetype count) {
    if (offset >= bytes_.size()) return {};
    const ByteView rest = bytes_.view().subspan(static_cast<std::size_t>(offset));
    const ByteView there = rest.first(std::min(rest.size(), static_cast<std::size_t>(count)));
    return {reinterpret_cast<const char*>(there.data()), static_cast<qsizetype>(there.size())};
}

}  // namespace vexqt::inspector_app
