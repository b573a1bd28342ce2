// Movies of every kind of atom, put together from the classes' own tables.
#pragma once

#include "testing/claims.h"

namespace vexqt::testing {

/// The bytes of a class's atom as it is made in memory; a bare header where it cannot be written.
Bytes defaultAtom(const AtomClass& cls);

/// The same inside the containers that it occurs in, up to a root atom.
Bytes defaultAtomInPlace(const AtomClass& cls);

/// A movie whose atoms, sizes and payloads are as decided: mostly what the classes' tables name,
/// with some bytes changed, cut off or added.
Bytes decidedMovie(Decisions& decisions);

}  // namespace vexqt::testing
