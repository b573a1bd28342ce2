#pragma once

#include <vector>

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/export.h"
#include "vexqt/platform/files.h"

namespace vexqt {

/// One top-level atom, as its header in the file says.
struct RootExtent {
    OSType type = 0;               ///< The four-character code.
    std::uint64_t start = 0;       ///< Of the first header byte.
    std::size_t headerLength = 8;  ///< 8, or 16 with an extended size.
    std::uint64_t length = 0;      ///< Header included; no more than the file holds.
    bool isOpenEnded = false;      ///< A size of 0: it reaches to the end of the file.
    bool isCut = false;            ///< It claims more than the file holds.

    /// Where the first byte behind it is.
    std::uint64_t end() const { return start + length; }
    /// Whether its contents mean nothing.
    bool isFreeSpace() const { return type == "free"_os || type == "skip"_os; }
};

/// What lies where in a file, from header to header. Only headers are read.
struct VEXQT_EXPORT FileLayout {
    std::vector<RootExtent> atoms;  ///< In file order.
    std::uint64_t fileLength = 0;   ///< In bytes.

    /// Where the last atom ends; less than the file's length where bytes are left that are no atom.
    std::uint64_t end() const { return atoms.empty() ? 0 : atoms.back().end(); }
    /// The atom that begins there; null for none.
    const RootExtent* atomAt(std::uint64_t start) const;

    /// Reads the headers of an open file. What cannot be read ends the list, with an error.
    static FileLayout of(File& file, std::error_code& error);
};

}  // namespace vexqt
