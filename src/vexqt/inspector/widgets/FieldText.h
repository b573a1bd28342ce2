#pragma once

#include <QCoreApplication>
#include <QVariant>
#include <limits>
#include <optional>

#include "vexqt/core/field.h"

namespace vexqt {

class ValueFormatter;

/// How a value stands as text in a field, and which texts name a value.
///
/// Digits and decimal points are those of the C locale wherever the program runs, so that what was
/// copied from one machine can be pasted on another.
class FieldText {
    Q_DECLARE_TR_FUNCTIONS(vexqt::FieldText)

public:
    enum class Form {
        Decimal,    ///< An integer, also taken in hexadecimal after 0x.
        Floating,   ///< The shortest text that reads back as the same number.
        Plain,      ///< A text as it is.
        Formatted,  ///< As the formatter says.
        Language    ///< An integer, also taken as the three letters of ISO 639-2/T.
    };

    explicit FieldText(Form form) : form_(form) {}
    explicit FieldText(const ValueFormatter& formatter)
        : form_(Form::Formatted), formatter_(&formatter) {}

    Form form() const { return form_; }
    /// Takes over the width of a number; a formatter stays.
    void configure(const Field& field);
    /// By its class name, such as "OSTypeFormatter"; an empty or unknown name leaves the field
    /// without one.
    void setFormatter(const QString& className);
    const QString& formatter() const { return formatterName_; }
    /// Of a floating number; both ends belong to it.
    void setMinimum(double minimum) { minimum_ = minimum; }
    double minimum() const { return minimum_; }
    void setMaximum(double maximum) { maximum_ = maximum; }
    double maximum() const { return maximum_; }
    /// Whether a text is kept in bytes of seven bits, so that other letters cannot be written.
    void setAsciiOnly(bool asciiOnly) { asciiOnly_ = asciiOnly; }
    bool isAsciiOnly() const { return asciiOnly_; }

    /// Empty for an absent value.
    QString textFor(const QVariant& value) const;
    /// Absent for a text that names no value of this field, and then `why` says it to people.
    std::optional<QVariant> valueOf(const QString& text, QString& why) const;

private:
    std::optional<QVariant> integerOf(const QString& text, QString& why) const;
    std::optional<QVariant> floatingOf(const QString& text, QString& why) const;
    std::optional<QVariant> plainOf(const QString& text, QString& why) const;
    std::optional<QVariant> formattedOf(const QString& text, QString& why) const;
    QString outOfRange() const;

    Form form_;
    QString formatterName_;
    const ValueFormatter* formatter_ = nullptr;  ///< Null for none.
    std::int64_t least_ = std::numeric_limits<std::int64_t>::min();
    std::uint64_t most_ = std::numeric_limits<std::uint64_t>::max();
    bool isSingle_ = false;  ///< Whether a floating number is kept in 32 bits.
    bool asciiOnly_ = false;
    double minimum_ = -std::numeric_limits<double>::infinity();
    double maximum_ = std::numeric_limits<double>::infinity();
};

}  // namespace vexqt
