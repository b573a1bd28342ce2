#pragma once

#include <memory>
#include <string>

#include "vexqt/platform/files.h"
#include "vexqt/saving/FileChange.h"
#include "vexqt/saving/SaveFailure.h"

namespace vexqt {

/// Throws a SaveFailure that says what was being done, if that failed.
void check(const std::error_code& error, const std::string& doing, FileRange range = {});

/// A file whose operations throw a SaveFailure: "writing 512 bytes at 1032 of NAME: …". They take
/// memory only for that: a movie is taken back where there is none left.
class NamedFile {
public:
    /// An empty name for the movie, which needs none.
    NamedFile(File& file, const std::string& name)
        : file_(file), of_(name.empty() ? "" : " of " + name), name_(name) {}

    File& file() { return file_; }

    /// Fills all of `into`; a file that is too short for it is a failure.
    void read(std::uint64_t offset, std::span<std::uint8_t> into);
    void write(std::uint64_t offset, ByteView bytes);
    void truncate(std::uint64_t size);
    void flush();
    FileIdentity identity();
    /// Keeps others from saving the file, where the file system can.
    void lock();

private:
    std::string subject() const { return name_.empty() ? "the movie" : name_; }

    File& file_;
    std::string of_, name_;
};

/// Reads a file in ascending steps, each a few bytes long, in blocks.
class BlockReader {
public:
    explicit BlockReader(NamedFile& file) : file_(file) { size_ = file.identity().size; }

    std::uint64_t size() const { return size_; }
    /// At most kBlock bytes, valid until the next call; a file that is too short is a failure.
    ByteView at(std::uint64_t offset, std::size_t count);

    static constexpr std::size_t kBlock = std::size_t{64} << 10;

private:
    NamedFile& file_;
    std::uint64_t size_ = 0, start_ = 0;
    Bytes block_;
};

}  // namespace vexqt
