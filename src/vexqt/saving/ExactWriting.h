// What the classes' own way of writing does to atoms that nobody edited.
#pragma once

#include <vector>

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/export.h"
#include "vexqt/saving/Finding.h"

namespace vexqt {

/// Everything in an atom and below that would not come back byte for byte if its class wrote it:
///
/// - "atom-changes": a row is written in another way than it was read, or somebody edited it
/// - "atom-dropped": bytes or a child are not written at all
/// - "atom-refuses": the class cannot write what the atom holds
/// - "size-disagrees": the size field does not tell the number of bytes
VEXQT_EXPORT std::vector<Finding> exactWritingFindings(VexQTAtom& root, std::string_view rootPath);

}  // namespace vexqt
