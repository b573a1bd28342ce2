// Whether the bytes that a save will write stand for what is in memory.
#pragma once

#include <optional>
#include <string>

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/export.h"

namespace vexqt {

enum class SaveForm;

/// Where new bytes do not read as they were meant.
struct Misreading {
    std::string path;     ///< The atom.
    std::string message;  ///< A sentence for people.
};

/// Reads a new root atom, whose bytes begin 8 before the end of its header, and compares it with
/// the one in memory: whether each row has the bytes that stand for what was set, and whether they
/// read as what the class itself writes for it does. Some codecs read another value than they
/// wrote, and that is no misreading.
VEXQT_EXPORT std::optional<Misreading> misreadingOf(const VexQTAtom& meant,
                                                    const SharedBytes& bytes,
                                                    std::uint64_t offsetInFile,
                                                    const std::string& path, SaveForm form);

/// Why a strict reading of a root atom's bytes fails; absent where it does not.
VEXQT_EXPORT std::optional<Misreading> strictFailure(const AtomClass& cls, const SharedBytes& bytes,
                                                     std::uint64_t offsetInFile,
                                                     const std::string& path);

}  // namespace vexqt
