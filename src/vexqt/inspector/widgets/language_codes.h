// The languages of media and user data: a number that either packs the three letters of ISO 639-2/T
// in five bits each, or counts the languages of the script systems of the format's first years.
#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace vexqt {

/// Smaller codes count the languages of the script systems.
inline constexpr std::uint16_t kFirstPackedLanguage = 0x0400;

/// "eng — English" or "English"; a sentence where the code means nothing.
QString meaningOfLanguageCode(std::uint16_t code);

/// The code that packs three letters; absent for any other text.
std::optional<std::uint16_t> packedLanguageCode(QStringView letters);

}  // namespace vexqt
