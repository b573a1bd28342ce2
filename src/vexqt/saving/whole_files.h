// Writing files that are there as a whole or not at all.
#pragma once

#include <filesystem>
#include <optional>

#include "vexqt/platform/files.h"
#include "vexqt/saving/SaveFailure.h"

namespace vexqt {

/// Writes a file that takes its name only when all of it is on the disk, and replaces what had that
/// name. A symbolic link stays one. After a failure what had the name still has it.
VEXQT_EXPORT std::optional<SaveFailure> writeWhole(const std::filesystem::path& path,
                                                   ByteView bytes,
                                                   FileSystem& files = systemFiles());

}  // namespace vexqt
