#pragma once

#include "vexqt/inspector/ValueFormatter.h"

namespace vexqt {

/// A number of 32 bits as the four-character code that it is.
///
/// Every byte shows as one character: those above 0x7F as U+0080 to U+00FF, a zero byte as U+0000.
/// Only ASCII is taken back, up to four characters; zero bytes stand for those that are missing.
class VEXQT_INSPECTOR_EXPORT OSTypeFormatter final : public ValueFormatter {
public:
    std::string stringForObjectValue(const Value& value) const override;
    bool getObjectValue(Value& value, std::string_view string,
                        std::string* errorDescription) const override;
};

}  // namespace vexqt
