// What a save does to the bytes of a file.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "vexqt/core/bytes.h"
#include "vexqt/export.h"

namespace vexqt {

/// Bytes of a file that lie together.
struct FileRange {
    /// In bytes from the start of the file.
    std::uint64_t offset = 0, length = 0;

    /// Where the first byte behind it is.
    std::uint64_t end() const { return offset + length; }
    /// Whether both have a byte in common.
    bool overlaps(const FileRange& other) const {
        return offset < other.end() && other.offset < end();
    }
    bool operator==(const FileRange&) const = default;
};

/// Bytes and where they go.
struct FileWrite {
    std::uint64_t offset = 0;  ///< Where the first byte goes.
    SharedBytes bytes;         ///< What stands there afterwards.

    /// What is written over.
    FileRange range() const { return {offset, bytes.size()}; }
};

/// All that changes in one file, which is done as a whole or not at all.
struct VEXQT_EXPORT FileChange {
    /// In the order of their offsets, none reaching into the next. What the file becomes longer by
    /// and none of them covers is zeros; where there is a flip they cover all of it.
    std::vector<FileWrite> writes;
    /// Of the file, in bytes.
    std::uint64_t oldLength = 0, newLength = 0;

    /// The few bytes that make the writes count, where all of these lie behind the old end: they
    /// turn the type of the old movie into that of free space. Until then the old movie, which
    /// comes first in the file, is the one that readers take; from then on it is the new one. No
    /// journal is needed.
    ///
    /// Torn by a power cut they leave a type that no reader knows, and the new movie counts.
    std::optional<FileWrite> flip;

    static constexpr std::size_t kLongestFlip = 8;  ///< In bytes: few enough for no disk to tear.

    /// Whether the file stays as it is.
    bool isEmpty() const;
    /// What is wrong with it, empty if nothing is.
    std::string_view flaw() const;
    /// How many bytes are written, the flip included.
    std::uint64_t bytesWritten() const;

    /// A range whose bytes change, and the bytes that it gets.
    struct Touched {
        FileRange range;    ///< Of the old or the new file.
        ByteView newBytes;  ///< None for what is cut off.
    };
    /// In the order of their offsets: the flip, the writes, what is cut off.
    std::vector<Touched> touched() const;
};

}  // namespace vexqt
