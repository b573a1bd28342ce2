// One value and the text that stands for it, as the value's field says.
#pragma once

#include <string>
#include <string_view>

#include "vexqt/core/field.h"

namespace vexqt::cli {

/// The value for people, on one line: 'vide', 0x0000000F (15), 2001-01-01 00:00:00 UTC, "a text".
std::string readableText(const Field& field, const Value& value);

/// The value that a text stands for. What `get` prints of a value can be given back.
///
/// Integers are decimal or hexadecimal with 0x in front; codes are their four characters or 0x and
/// eight digits; a matrix is nine numbers, a colour #RRGGBB, #RRGGBBAA, three or four numbers for
/// red, green, blue and alpha, or one or two for a grey level and alpha; bytes are hexadecimal
/// digits. "null" makes anything but a text absent where the field allows it.
///
/// \throws ValueError, saying what was expected, also for an integer that the field cannot hold.
Value valueFromText(const Field& field, std::string_view text);

/// Whether a value that was set is the one that is read, but for what the fractions of a
/// fixed-point number or the bytes of a colour have no room for.
bool isSameButForRounding(const Value& meant, const Value& read);

}  // namespace vexqt::cli
