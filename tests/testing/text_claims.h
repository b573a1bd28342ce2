// What holds of every input of the command, beside claims.h.
#pragma once

#include "testing/claims.h"

namespace vexqt::testing {

/// A movie's JSON is JSON and UTF-8, in both layouts; its atoms, texts and numbers are those of the
/// tree. What `get` prints of a value that can be set gives that value back, and the path of every
/// atom leads to it.
void checkJson(ByteView movie);

/// A text that may be a path, and one that may be a value, name something in a movie and fit in it,
/// or are an Error.
void checkPath(Decisions& decisions);

}  // namespace vexqt::testing
