#include "apps/inspector/words.h"

#include <QCoreApplication>
#include <QLocale>
#include <limits>

namespace vexqt::inspector_app {

QString bytesText(quint64 count) {
    // Which form the plural takes depends on no more than the number's last digits.
    static constexpr quint64 kMost = std::numeric_limits<int>::max();
    const int form = static_cast<int>(count <= kMost ? count : 1000 + count % 1000);
    return QCoreApplication::translate("words", "%1 byte(s)", nullptr, form)
        .arg(QLocale().toString(count));
}

QString sizeText(quint64 count) {
    static constexpr quint64 kLeast = 10'000;
    static constexpr quint64 kMost = std::numeric_limits<qint64>::max();
    if (count < kLeast || count > kMost) return bytesText(count);
    const QString rounded =
        QLocale().formattedDataSize(static_cast<qint64>(count), 1, QLocale::DataSizeSIFormat);
    return QCoreApplication::translate("words", "%1 (%2)").arg(rounded, bytesText(count));
}

QString offsetText(quint64 offset) {
    return QCoreApplication::translate("words", "%1 (0x%2)")
        .arg(QLocale().toString(offset), QString::number(offset, 16).toUpper());
}

bool offsetFrom(const QString& text, quint64& offset) {
    QString digits;
    for (const QChar character : text)
        if (!character.isSpace() && character != u'\'' && character != u'_') digits += character;
    bool isNumber = false;
    quint64 value = digits.startsWith(QStringLiteral("0x"), Qt::CaseInsensitive)
                        ? digits.mid(2).toULongLong(&isNumber, 16)
                        : digits.toULongLong(&isNumber, 10);
    if (!isNumber) value = QLocale().toULongLong(digits, &isNumber);
    if (isNumber) offset = value;
    return isNumber;
}

}  // namespace vexqt::inspector_app
