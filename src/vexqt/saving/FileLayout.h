#pragma once

#include <vector>

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/export.h"
#include "vexqt/platform/files.h"

namespace vexqt {

/// One top-level atom, as its header in the file says.
struct RootExtent {
    OSType type = 0;
    std::uint64_t start = 0;
    std::size_t headerLength = 8;
    std::uint64_t length = 0;  ///< Header included; no more than the file holds.
    bool isOpenEnded = false;  ///< A size of 0: it reaches to the end of the file.
    bool isCut = false;        ///< It claims more than the file holds.

    std::uint64_t end() const { return start + length; }
    bool isFreeSpace() const { return type == "free"_os || type == "skip"_os; }
};

/// What lies where in a file, from header to header. Only headers are read.
struct VEXQT_EXPORT FileLayout {
    std::vector<RootExtent> atoms;
    std::uint64_t fileLength = 0;

    /// Where the last atom ends; less than the file's length where bytes are left that are no atom.
    std::uint64_t end() const { return atoms.empty() ? 0 : atoms.back().end(); }
    /// The atom that begins there; null for none.
    const RootExtent* atomAt(std::uint64_t start) const;

    static FileLayout of(File& file, std::error_code& error);
};

}  // namespace vexqt
