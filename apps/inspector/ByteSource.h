#pragma once

#include <QByteArray>
#include <memory>

#include "vexqt/core/bytes.h"
#include "vexqt/platform/files.h"

namespace vexqt::inspector_app {

/// Bytes that are read a window at a time.
class ByteSource {
public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;

    virtual quint64 length() const = 0;
    /// As many of the bytes as are there and can be read.
    virtual QByteArray read(quint64 offset, qsizetype count) = 0;
};

/// An open file, as long as it was when it was opened.
class FileBytes : public ByteSource {
public:
    /// Null where the file cannot be read.
    static std::unique_ptr<FileBytes> open(const std::filesystem::path& path);

    quint64 length() const override { return length_; }
    QByteArray read(quint64 offset, qsizetype count) override;

private:
    FileBytes(std::unique_ptr<File> file, quint64 length)
        : file_(std::move(file)), length_(length) {}

    std::unique_ptr<File> file_;
    quint64 length_;
};

class MemoryBytes : public ByteSource {
public:
    explicit MemoryBytes(SharedBytes bytes) : bytes_(std::move(bytes)) {}

    quint64 length() const override { return bytes_.size(); }
    QByteArray read(quint64 offset, qsizetype count) override;

private:
    SharedBytes bytes_;
};

}  // namespace vexqt::inspector_app
