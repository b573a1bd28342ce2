#include "vexqt/saving/NamedFile.h"

#include <algorithm>

namespace vexqt {

static std::string textOf(FileRange range) {
    return std::to_string(range.length) + (range.length == 1 ? " byte at " : " bytes at ") +
           std::to_string(range.offset);
}

void check(const std::error_code& error, const std::string& doing, FileRange range) {
    if (!error) return;
    throw SaveFailure{.code = error,
                      .what = doing + ": " + error.message(),
                      .offset = range.offset,
                      .length = range.length};
}

void NamedFile::read(std::uint64_t offset, std::span<std::uint8_t> into) {
    std::error_code error;
    const FileRange range = {offset, into.size()};
    const std::size_t count = file_.readAt(offset, into, error);
    if (error) check(error, "reading " + textOf(range) + of_, range);
    if (count == into.size()) return;
    throw SaveFailure{
        .code = std::make_error_code(std::errc::io_error),
        .what = "reading " + textOf(range) + of_ + ": only " + std::to_string(count) + " there",
        .offset = range.offset,
        .length = range.length};
}

void NamedFile::write(std::uint64_t offset, ByteView bytes) {
    std::error_code error;
    const FileRange range = {offset, bytes.size()};
    file_.writeAt(offset, bytes, error);
    if (error) check(error, "writing " + textOf(range) + of_, range);
}

void NamedFile::truncate(std::uint64_t size) {
    std::error_code error;
    file_.truncate(size, error);
    if (error) check(error, "setting the length" + of_ + " to " + std::to_string(size) + " bytes");
}

void NamedFile::flush() {
    std::error_code error;
    file_.flush(error);
    if (error) check(error, "flushing " + subject());
}

FileIdentity NamedFile::identity() {
    std::error_code error;
    const FileIdentity identity = file_.identity(error);
    if (error) check(error, "asking for the length" + of_);
    return identity;
}

void NamedFile::lock() {
    std::error_code error;
    file_.lock(error);
    if (error == std::errc::operation_would_block) {
        throw SaveFailure{.code = error,
                          .what = "somebody else is saving " + subject(),
                          .reason = SaveFailure::Reason::Busy};
    }
    // Some network file systems know no locks.
    if (error == std::errc::not_supported || error == std::errc::no_lock_available ||
        error == std::errc::function_not_supported)
        return;
    check(error, "locking " + subject());
}

ByteView BlockReader::at(std::uint64_t offset, std::size_t count) {
    const std::uint64_t inside = offset - start_;  // Wraps in front of the block.
    if (inside > block_.size() || count > block_.size() - inside) {
        const std::uint64_t there = offset < size_ ? size_ - offset : 0;
        block_.resize(
            std::max(count, static_cast<std::size_t>(std::min<std::uint64_t>(there, kBlock))));
        start_ = offset;
        file_.read(offset, block_);
    }
    return ByteView(block_).subspan(static_cast<std::size_t>(offset - start_), count);
}

}  // namespace vexqt
