#pragma once

#include <string>
#include <string_view>

#include "vexqt/core/Value.h"
#include "vexqt/inspector/export.h"

namespace vexqt {

/// Turns a number into text for people, and what they type back into a number. Keeps no state.
class VEXQT_INSPECTOR_EXPORT ValueFormatter {
public:
    virtual ~ValueFormatter() = default;

    /// Empty for a value that is no number.
    virtual std::string stringForObjectValue(const Value& value) const = 0;
    /// False, with the value as it was, for a text that names no number. The description of the
    /// error is never written; it may be null.
    virtual bool getObjectValue(Value& value, std::string_view string,
                                std::string* errorDescription) const = 0;
};

/// The formatter of a class name such as "Hex4ByteFormatter"; null for any other name.
VEXQT_INSPECTOR_EXPORT const ValueFormatter* formatterNamed(std::string_view className);

}  // namespace vexqt
