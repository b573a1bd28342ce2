#include "vexqt/platform/Color.h"

#include "vexqt/platform/error.h"

namespace vexqt {

double Color::component(Kind wanted, std::size_t index) const {
    if (wanted == kind_) return components_[index];
    throw ColorSpaceError(isGrey() ? "a grey-level colour has no red, green and blue"
                                   : "a red-green-blue colour has no grey level");
}

}  // namespace vexqt
