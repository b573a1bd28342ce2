// Text from a file made safe for a line of output.
#pragma once

#include <string>
#include <string_view>

namespace vexqt::cli {

/// How much of the text the first character takes: 1 to 4 bytes of well-formed UTF-8, 0 where it
/// begins with none.
std::size_t lengthOfCharacter(std::string_view text);

/// The text with every control character and every byte that is no UTF-8 as \xNN, so that it stays
/// on its line and a terminal obeys none of it.
std::string printable(std::string_view text);

/// How many columns a text takes that printable() gave back: one a character.
std::size_t columnsOf(std::string_view text);

}  // namespace vexqt::cli
