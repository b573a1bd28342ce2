// Every class of atoms that there is, for those who describe them all.
#pragma once

#include "vexqt/core/AtomClass.h"

namespace vexqt {

/// Sorted by the names of the classes, that of generic atoms first. A new class adds its line in
/// the source.
VEXQT_EXPORT std::span<const AtomClass* const> atomClasses();

}  // namespace vexqt
