#include "vexqt/inspector/widgets/FieldText.h"

#include <charconv>
#include <cmath>

#include "vexqt/inspector/ValueFormatter.h"
#include "vexqt/inspector/qt_value.h"
#include "vexqt/inspector/widgets/language_codes.h"

namespace vexqt {

namespace {

/// A zero byte of a code is a character that can be seen.
constexpr QChar kSymbolForNull(u'\u2400');

template <class Float>
QString shortest(Float number) {
    char text[512];
    const Float size = std::abs(number);
    const bool isOfUsualSize = size == 0 || (size >= Float(1e-6) && size < Float(1e15));
    const std::to_chars_result end =
        isOfUsualSize
            ? std::to_chars(std::begin(text), std::end(text), number, std::chars_format::fixed)
            : std::to_chars(std::begin(text), std::end(text), number);
    return QString::fromLatin1(text, end.ptr - text);
}

}  // namespace

void FieldText::configure(const Field& field) {
    if (field.kind == ValueKind::Floating) isSingle_ = field.bits == 32;
    if (field.kind == ValueKind::Number) isSingle_ = true;
    if (field.bits == 0 || field.bits > 64) return;
    if (field.kind == ValueKind::Signed) {
        most_ = std::numeric_limits<std::uint64_t>::max() >> (65 - field.bits);
        least_ = -static_cast<std::int64_t>(most_) - 1;
    }
    if (field.kind == ValueKind::Unsigned) {
        most_ = std::numeric_limits<std::uint64_t>::max() >> (64 - field.bits);
        least_ = 0;
    }
}

void FieldText::setFormatter(const QString& className) {
    formatter_ = formatterNamed(fromQString(className));
    if (formatter_ != nullptr) form_ = Form::Formatted;
    formatterName_ = formatter_ != nullptr ? className : QString();
}

QString FieldText::textFor(const QVariant& value) const {
    if (!value.isValid()) return {};
    if (form_ == Form::Floating) {
        const double number = value.toDouble();
        return isSingle_ ? shortest(static_cast<float>(number)) : shortest(number);
    }
    if (form_ == Form::Formatted && formatter_ != nullptr) {
        QString text = toQString(formatter_->stringForObjectValue(fromVariant(value)));
        return text.replace(QChar::Null, kSymbolForNull);
    }
    return value.toString();
}

std::optional<QVariant> FieldText::valueOf(const QString& text, QString& why) const {
    switch (form_) {
        case Form::Decimal:
            return integerOf(text, why);
        case Form::Floating:
            return floatingOf(text, why);
        case Form::Plain:
            return plainOf(text, why);
        case Form::Formatted:
            return formattedOf(text, why);
        case Form::Language:
            if (const auto code = packedLanguageCode(text.trimmed())) return QVariant(uint{*code});
            return integerOf(text, why);
    }
    return std::nullopt;
}

std::optional<QVariant> FieldText::integerOf(const QString& text, QString& why) const {
    const std::string trimmed = fromQString(text.trimmed());
    std::string_view digits = trimmed;
    const bool isNegative = digits.starts_with('-');
    if (isNegative || digits.starts_with('+')) digits.remove_prefix(1);
    const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (isHexadecimal) digits.remove_prefix(2);

    std::uint64_t size = 0;
    const auto [end, error] =
        std::from_chars(digits.begin(), digits.end(), size, isHexadecimal ? 16 : 10);
    if (error == std::errc::invalid_argument || end != digits.end()) {
        why = tr("“%1” is no whole number.").arg(text);
        return std::nullopt;
    }
    const std::uint64_t mostBelowZero = least_ == 0 ? 0 : ~static_cast<std::uint64_t>(least_) + 1;
    if (error != std::errc() || size > (isNegative ? mostBelowZero : most_)) {
        why = outOfRange();
        return std::nullopt;
    }
    if (isNegative) return QVariant(static_cast<qlonglong>(~size + 1));
    if (least_ < 0 && size <= std::uint64_t{std::numeric_limits<std::int64_t>::max()})
        return QVariant(static_cast<qlonglong>(size));
    return QVariant(static_cast<qulonglong>(size));
}

std::optional<QVariant> FieldText::floatingOf(const QString& text, QString& why) const {
    const std::string trimmed = fromQString(text.trimmed());
    std::string_view digits = trimmed;
    if (digits.starts_with('+')) digits.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), number);
    if (error == std::errc::invalid_argument || end != digits.end()) {
        why = tr("“%1” is no number. A fraction follows a point.").arg(text);
        return std::nullopt;
    }
    if (isSingle_ && error == std::errc()) number = static_cast<float>(number);
    const bool isInRange = error == std::errc() && number >= minimum_ && number <= maximum_;
    const bool isUnbounded = std::isinf(minimum_) && std::isinf(maximum_);
    if (!isInRange && !(std::isnan(number) && isUnbounded)) {
        why = outOfRange();
        return std::nullopt;
    }
    return QVariant(number);
}

std::optional<QVariant> FieldText::plainOf(const QString& text, QString& why) const {
    for (const QChar letter : text) {
        if (!asciiOnly_ || letter.unicode() < 0x80) continue;
        why = tr("“%1” cannot be written here: only ASCII has a place.").arg(letter);
        return std::nullopt;
    }
    return QVariant(text);
}

std::optional<QVariant> FieldText::formattedOf(const QString& text, QString& why) const {
    QString plain = text;
    plain.replace(kSymbolForNull, QChar::Null);
    // Spaces between the prefix and the digits are how the formatter itself fills up a number.
    const QString trimmed = plain.trimmed();
    if (trimmed.startsWith(QLatin1String("0x  ")))
        plain = QLatin1String("0x") + trimmed.mid(2).trimmed();
    Value value;
    if (formatter_ != nullptr && formatter_->getObjectValue(value, fromQString(plain), nullptr))
        return toVariant(value);
    why = formatter_ == formatterNamed("OSTypeFormatter")
              ? tr("“%1” is no code: four ASCII characters at most.").arg(text)
              : tr("“%1” is no hexadecimal number.").arg(text);
    return std::nullopt;
}

QString FieldText::outOfRange() const {
    const QString from = form_ == Form::Floating ? shortest(minimum_) : QString::number(least_);
    const QString to = form_ == Form::Floating ? shortest(maximum_) : QString::number(most_);
    return tr("Only numbers from %1 to %2 have a place here.").arg(from, to);
}

}  // namespace vexqt
