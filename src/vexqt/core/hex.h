// Bytes as text for people.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vexqt/export.h"
#include "vexqt/platform/bytes_types.h"

namespace vexqt {

/// Two upper-case hexadecimal digits and a space for every byte, so the text ends with a space.
VEXQT_EXPORT std::string hexRepresentation(ByteView bytes);
/// One character a byte: itself from 0x20 to 0x7E, else a point.
VEXQT_EXPORT std::string asciiRepresentation(ByteView bytes);
/// Gives no data, whatever the text: hosts look for the function, none relies on a result.
VEXQT_EXPORT std::optional<Bytes> dataFromHex(std::string_view text);

}  // namespace vexqt
