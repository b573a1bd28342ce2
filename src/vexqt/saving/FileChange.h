#pragma once

#include <optional>
#include <vector>

#include "vexqt/core/bytes.h"

namespace vexqt {

struct FileWrite {
    std::uint64_t offset = 0;
    SharedBytes bytes;
};

/// What one save does to a file.
struct FileChange {
    std::vector<FileWrite> writes;  ///< Ascending, none overlapping another.
    std::uint64_t oldLength = 0;
    std::uint64_t newLength = 0;
    /// The last write of a change whose other writes all lie at or beyond the old end: the one that
    /// makes them take effect. At most 8 bytes.
    std::optional<FileWrite> flip;
};

}  // namespace vexqt
