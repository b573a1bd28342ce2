// Numbers as people read them.
#pragma once

#include <QString>

namespace vexqt::inspector_app {

/// "108 bytes", "1 byte", with the separators of the user's language.
QString bytesText(quint64 count);
/// "3.7 MB (3,680,760 bytes)"; small counts as bytesText.
QString sizeText(quint64 count);
/// "1,234 (0x4D2)".
QString offsetText(quint64 offset);
/// The offset that a person typed, decimal or 0x…, with or without separators.
bool offsetFrom(const QString& text, quint64& offset);

}  // namespace vexqt::inspector_app
