// Files of numbered bytes, and changes of them.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vexqt/saving/FileChange.h"

namespace vexqt::testing {

/// Bytes none of which looks like its neighbours: those of one salt differ from those of another.
inline Bytes someBytes(std::size_t count, std::uint8_t salt = 0) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>((i * 31 + (i >> 8) * 7 + 1) ^ (salt * 85U));
    return bytes;
}

/// New bytes for a range.
struct Patch {
    std::uint64_t offset;
    std::size_t length;
};

inline FileChange changeOf(std::uint64_t oldLength, std::uint64_t newLength,
                           const std::vector<Patch>& patches, std::optional<Patch> flip = {}) {
    FileChange change;
    change.oldLength = oldLength;
    change.newLength = newLength;
    std::uint8_t salt = 1;
    const auto writeOf = [&](const Patch& patch) {
        return FileWrite{patch.offset, SharedBytes::copyOf(someBytes(patch.length, salt++))};
    };
    for (const Patch& patch : patches) change.writes.push_back(writeOf(patch));
    if (flip) change.flip = writeOf(*flip);
    return change;
}

/// What a file becomes.
inline Bytes changed(Bytes bytes, const FileChange& change) {
    bytes.resize(static_cast<std::size_t>(change.newLength));
    const auto put = [&](const FileWrite& write) {
        std::ranges::copy(write.bytes.view(),
                          bytes.begin() + static_cast<std::ptrdiff_t>(write.offset));
    };
    for (const FileWrite& write : change.writes) put(write);
    if (change.flip) put(*change.flip);
    return bytes;
}

}  // namespace vexqt::testing
