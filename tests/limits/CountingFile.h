// A file that counts what is read of it, and that can be as long as no disk is.
#pragma once

#include <algorithm>

#include "vexqt/platform/files.h"

namespace vexqt::testing {

/// The first bytes of a file and the last; between them lie zeros that nobody has to keep.
class CountingFile final : public ReadOnlyFile {
public:
    CountingFile(Bytes first, std::uint64_t between, Bytes last)
        : first_(std::move(first)), between_(between), last_(std::move(last)) {}

    std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> into,
                       std::error_code& error) override {
        error.clear();
        const std::uint64_t there = offset < length() ? length() - offset : 0;
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), there));
        for (std::size_t i = 0; i < count; ++i) into[i] = byteAt(offset + i);
        bytesRead_ += count;
        ++reads_;
        return count;
    }
    FileIdentity identity(std::error_code& error) override {
        error.clear();
        return {.size = length(), .isRegular = true};
    }

    std::uint64_t bytesRead() const { return bytesRead_; }
    std::uint64_t reads() const { return reads_; }

private:
    std::uint64_t length() const { return first_.size() + between_ + last_.size(); }
    std::uint8_t byteAt(std::uint64_t offset) const {
        if (offset < first_.size()) return first_[static_cast<std::size_t>(offset)];
        offset -= first_.size();
        return offset < between_ ? std::uint8_t{0}
                                 : last_[static_cast<std::size_t>(offset - between_)];
    }

    Bytes first_;
    std::uint64_t between_;
    Bytes last_;
    std::uint64_t bytesRead_ = 0, reads_ = 0;
};

}  // namespace vexqt::testing
