// Text in the encodings of movie files, strictly: what does not decode is absent, and nothing is
// replaced on the way.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "vexqt/export.h"
#include "vexqt/platform/bytes_types.h"

namespace vexqt {

/// Absent when a byte is none of ASCII.
VEXQT_EXPORT std::optional<std::string> textFromASCII(ByteView bytes);
/// Absent when the bytes are not valid UTF-8.
VEXQT_EXPORT std::optional<std::string> textFromUTF8(ByteView bytes);
/// Big-endian unless a byte-order mark says otherwise; the mark is no part of the text. An odd
/// number of bytes or half a surrogate pair does not decode.
VEXQT_EXPORT std::optional<std::string> textFromUTF16(ByteView bytes);

/// Absent when a character is none of ASCII.
VEXQT_EXPORT std::optional<Bytes> asciiFromText(std::string_view text);
/// Absent when the text is not valid UTF-8.
VEXQT_EXPORT std::optional<Bytes> utf8FromText(std::string_view text);
/// A byte-order mark and the text in the machine's byte order, the mark alone for an empty text.
/// Absent when the text is not valid UTF-8.
VEXQT_EXPORT std::optional<Bytes> utf16FromText(std::string_view text);

/// The bytes before the first zero byte, all of them if there is none.
VEXQT_EXPORT ByteView upToZero(ByteView bytes);

/// How many code points the text has.
VEXQT_EXPORT std::size_t codePointCount(std::string_view text);

/// Less than, equal to or greater than 0, as people sort names: numbers by their value, capitals
/// like small letters. The same everywhere, whatever the user's language is.
VEXQT_EXPORT int compareNaturally(std::string_view a, std::string_view b);

}  // namespace vexqt
