// A movie with a little of everything, for claims about operations rather than about classes.
#pragma once

#include "vexqt/platform/bytes_types.h"

namespace vexqt::testing {

/// It can be read strictly: a file type, media data, and in the movie tracks with tables and
/// sample descriptions, user data and keyed metadata. Behind it lies free space.
Bytes fullMovie();
/// The same with atoms that their classes decline, that are cut short or reach too far.
Bytes brokenMovie();
/// An atom that no class knows.
Bytes sampleAtom();

}  // namespace vexqt::testing
