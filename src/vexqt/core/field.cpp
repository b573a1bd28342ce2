#include "vexqt/core/field.h"

namespace vexqt {

void throwWrongKind() { throw ValueError("a value of the wrong kind"); }

}  // namespace vexqt
