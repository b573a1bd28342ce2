// Every class of atoms, for claims that hold of all of them.
#pragma once

#include "vexqt/vexqt.h"

namespace vexqt::testing {

inline const std::span<const AtomClass* const> kAllClasses = atomClasses();

}  // namespace vexqt::testing
