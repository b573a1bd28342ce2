#include "apps/vexqt/value_text.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>

#include "apps/vexqt/json_document.h"
#include "apps/vexqt/printable.h"
#include "vexqt/core/codecs.h"
#include "vexqt/core/os_type.h"
#include "vexqt/platform/text.h"

namespace vexqt::cli {

namespace {

/// Bits that a value has in the file, at most those that it has in memory.
int bitsOf(const Field& field) {
    const std::size_t inMemory = field.bits != 0 ? field.bits : 64;
    const std::size_t inFile = field.width != 0 ? 8 * field.width : inMemory;
    return static_cast<int>(std::min(inMemory, inFile));
}

std::uint64_t maskOf(int bits) {
    return bits >= 64 ? std::numeric_limits<std::uint64_t>::max() : (std::uint64_t{1} << bits) - 1;
}

// MARK: Values as text

std::string hexadecimal(const Field& field, std::uint64_t number) {
    const int bits = bitsOf(field);
    return fmt::format("0x{:0{}X}", number & maskOf(bits), bits / 4);
}

std::string colorText(const Color& color) {
    const auto percent = [](double part) { return fmt::format("{:.1f} %", part * 100); };
    if (color.isGrey())
        return fmt::format("grey {}, alpha {}", percent(color.white()), percent(color.alpha()));
    const auto byte = [](double part) {
        return static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * 255));
    };
    return fmt::format("#{:02X}{:02X}{:02X}  red {}, green {}, blue {}, alpha {}",
                       byte(color.red()), byte(color.green()), byte(color.blue()),
                       percent(color.red()), percent(color.green()), percent(color.blue()),
                       percent(color.alpha()));
}

}  // namespace

std::string readableText(const Field& field, const Value& value) {
    if (value.isAbsent()) return "absent";
    if (field.display != Display::Plain) {
        if (const auto number = integerFrom(value)) {
            if (field.display == Display::Code)
                return "'" + printable(textFromCode(static_cast<OSType>(*number))) + "'";
            const std::string plain = bareText(field, value);
            return hexadecimal(field, *number) + (*number > 9 ? " (" + plain + ")" : "");
        }
    }
    if (const auto* text = std::get_if<std::string>(&value)) return '"' + printable(*text) + '"';
    if (const auto* date = std::get_if<Date>(&value)) {
        std::string written = textFromDate(*date);
        std::ranges::replace(written, 'T', ' ');
        if (written.ends_with('Z')) written.replace(written.size() - 1, 1, " UTC");
        return written;
    }
    if (const auto* color = std::get_if<Color>(&value)) return colorText(*color);
    if (const auto* picture = std::get_if<Picture>(&value))
        return fmt::format("{} x {} pixels", picture->width(), picture->height());
    return bareText(field, value);
}

// MARK: Text as values

namespace {

[[noreturn]] void expected(const std::string& what, std::string_view text) {
    static constexpr std::size_t kMost = 60;
    const bool isLong = text.size() > kMost;
    throw ValueError(what + " expected, not '" +
                     printable(text.substr(0, isLong ? kMost : text.size())) +
                     (isLong ? "…'" : "'"));
}

std::string_view trimmed(std::string_view text) {
    static constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

template <class T>
std::optional<T> wholly(std::string_view digits, int base) {
    T number{};
    const char* end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, number, base);
    if (digits.empty() || read.ec != std::errc() || read.ptr != end) return std::nullopt;
    return number;
}

std::optional<double> floatingFrom(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || !std::isfinite(number)) return std::nullopt;
    return number;
}

/// Numbers parted by blanks or commas, brackets around all of them allowed.
std::optional<std::vector<double>> numbersFrom(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('[') && text.ends_with(']'))
        text = trimmed(text.substr(1, text.size() - 2));
    std::vector<double> numbers;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(", \t\r\n"), text.size());
        const auto number = floatingFrom(text.substr(0, end));
        if (!number) return std::nullopt;
        numbers.push_back(*number);
        text = trimmed(text.substr(end));
        if (text.starts_with(',')) {
            text = trimmed(text.substr(1));
            if (text.empty()) return std::nullopt;
        }
    }
    return numbers;
}

Value codeFrom(std::string_view text) {
    if (text.size() == 10 && (text.starts_with("0x") || text.starts_with("0X")))
        if (const auto code = wholly<OSType>(text.substr(2), 16)) return *code;
    const OSType code = codeFromText(text);
    if (code == kAnyType && text != "????")
        expected("a code of four characters, or 0x and eight hexadecimal digits,", text);
    return code;
}

Value unsignedFrom(const Field& field, std::string_view text) {
    const std::uint64_t most = field.range.isKnown()
                                   ? static_cast<std::uint64_t>(field.range.end) - 1
                                   : maskOf(bitsOf(field));
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    const auto number =
        isHex ? wholly<std::uint64_t>(text.substr(2), 16) : wholly<std::uint64_t>(text, 10);
    if (!number || *number > most) expected(fmt::format("a whole number from 0 to {}", most), text);
    return *number;
}

/// Hexadecimal digits are the bits of the number: 0xFFFFFFFF is -1 in 32 bits.
Value signedFrom(const Field& field, std::string_view text) {
    // Without a sign in the file, whatever it is held in.
    if (field.range.isKnown() && field.range.least == 0)
        return static_cast<std::int64_t>(*integerFrom(unsignedFrom(field, text)));
    const int bits = bitsOf(field);
    const auto most = static_cast<std::int64_t>(maskOf(bits) >> 1);
    if (text.starts_with("0x") || text.starts_with("0X")) {
        const auto pattern = wholly<std::uint64_t>(text.substr(2), 16);
        if (pattern && *pattern <= maskOf(bits)) {
            const std::uint64_t sign = std::uint64_t{1} << (bits - 1);
            return static_cast<std::int64_t>((*pattern ^ sign) - sign);
        }
    }
    const auto number = wholly<std::int64_t>(text, 10);
    if (!number || *number > most || *number < -most - 1)
        expected(fmt::format("a whole number from {} to {}", -most - 1, most), text);
    return *number;
}

/// Fixed-point numbers would lose their highest bits silently.
double floatingFrom(NumberRange range, std::string_view text) {
    const auto number = floatingFrom(text);
    if (!range.isKnown()) {
        if (!number) expected("a number", text);
    } else if (!number || !range.has(*number)) {
        expected(fmt::format("a number from {} to less than {}", range.least, range.end), text);
    }
    return *number;
}

Value numberObjectFrom(std::string_view text) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (const auto number =
            isHex ? wholly<std::uint64_t>(text.substr(2), 16) : wholly<std::uint64_t>(text, 10))
        return Number(*number);
    if (const auto number = wholly<std::int64_t>(text, 10)) return Number(*number);
    const auto number = floatingFrom(text);
    if (!number) expected("a number", text);
    return Number(static_cast<float>(*number));
}

/// A date of 32 bits in the file counts seconds from 1904 and would wrap silently.
Value dateFrom(const Field& field, std::string_view text) {
    const auto date = dateFromText(text);
    if (!date) expected("a date such as 2001-01-31T12:00:00Z", text);
    const Date last = MacDate::epoch + std::chrono::seconds(maskOf(32));
    if (field.width == MacDate::width && (*date < MacDate::epoch || *date > last))
        expected("a date from " + textFromDate(MacDate::epoch) + " to " + textFromDate(last), text);
    return *date;
}

Value booleanFrom(std::string_view text) {
    if (text == "true" || text == "yes" || text == "1") return true;
    if (text == "false" || text == "no" || text == "0") return false;
    expected("true or false", text);
}

Value bytesFrom(std::string_view text) {
    Bytes bytes;
    std::string digits;
    for (const char c : text) {
        if (c == ' ') continue;
        digits += c;
        if (digits.size() < 2) continue;
        const auto byte = wholly<std::uint8_t>(digits, 16);
        if (!byte) expected("bytes of two hexadecimal digits each", text);
        bytes.push_back(*byte);
        digits.clear();
    }
    if (!digits.empty()) expected("bytes of two hexadecimal digits each", text);
    return bytes;
}

/// The components of a colour as JSON has it: {"red": 1, "green": 0.5, "blue": 0, "alpha": 1}.
std::optional<Color> colorFromObject(std::string_view text) {
    struct {
        std::optional<double> red, green, blue, white, alpha;
    } parts;
    text = trimmed(text.substr(1, text.size() - 2));
    while (!text.empty()) {
        const std::size_t colon = text.find(':');
        const std::size_t end = std::min(text.find(','), text.size());
        if (colon == std::string_view::npos || colon > end) return std::nullopt;
        const std::string_view name = trimmed(text.substr(0, colon));
        const auto number = floatingFrom(text.substr(colon + 1, end - colon - 1));
        std::optional<double>* part = name == "\"red\""     ? &parts.red
                                      : name == "\"green\"" ? &parts.green
                                      : name == "\"blue\""  ? &parts.blue
                                      : name == "\"white\"" ? &parts.white
                                      : name == "\"alpha\"" ? &parts.alpha
                                                            : nullptr;
        if (part == nullptr || !number) return std::nullopt;
        *part = number;
        text = trimmed(text.substr(std::min(end + 1, text.size())));
    }
    const double alpha = parts.alpha.value_or(1.0);
    if (parts.white) return Color::grey(*parts.white, alpha);
    if (!parts.red || !parts.green || !parts.blue) return std::nullopt;
    return Color::rgb(*parts.red, *parts.green, *parts.blue, alpha);
}

Value colorFrom(std::string_view text) {
    if (text.starts_with('{') && text.ends_with('}'))
        if (const auto color = colorFromObject(text)) return *color;
    if (text.starts_with('#') && (text.size() == 7 || text.size() == 9)) {
        std::string digits(text.substr(1));
        if (digits.size() == 6) digits += "FF";
        if (const auto number = wholly<std::uint32_t>(digits, 16)) {
            const auto part = [&](int shift) { return (*number >> shift & 0xFF) / 255.0; };
            return Color::rgb(part(24), part(16), part(8), part(0));
        }
    }
    if (const auto parts = numbersFrom(text)) {
        const auto& p = *parts;
        if (p.size() == 1 || p.size() == 2) return Color::grey(p[0], p.size() == 2 ? p[1] : 1.0);
        if (p.size() == 3 || p.size() == 4)
            return Color::rgb(p[0], p[1], p[2], p.size() == 4 ? p[3] : 1.0);
    }
    expected("a colour (#RRGGBB, #RRGGBBAA, red green blue [alpha], or grey [alpha])", text);
}

Value matrixFrom(std::string_view text) {
    const auto numbers = numbersFrom(text);
    Matrix matrix{};
    if (!numbers || numbers->size() != matrix.size()) expected("a matrix of nine numbers", text);
    std::ranges::copy(*numbers, matrix.begin());
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        const bool isInThirdColumn = i % 3 == 2;
        const NumberRange range = isInThirdColumn ? SignedFixed230::range : SignedFixed1616::range;
        if (range.has(matrix[i])) continue;
        expected(fmt::format("a matrix with numbers from {} to less than {} in its {}", range.least,
                             range.end, isInThirdColumn ? "third column" : "first two columns"),
                 text);
    }
    return matrix;
}

}  // namespace

Value valueFromText(const Field& field, std::string_view text) {
    if (field.kind == ValueKind::Text) {
        if (!utf8FromText(text)) expected("text in UTF-8", text);
        return text;
    }
    if (field.display == Display::Code) return codeFrom(text);
    text = trimmed(text);
    if (text == "null" && field.isOptional) return {};
    switch (field.kind) {
        case ValueKind::Boolean:
            return booleanFrom(text);
        case ValueKind::Unsigned:
            return unsignedFrom(field, text);
        case ValueKind::Signed:
            return signedFrom(field, text);
        case ValueKind::Number:
            return numberObjectFrom(text);
        case ValueKind::Data:
            return bytesFrom(text);
        case ValueKind::Transformation:
            return matrixFrom(text);
        case ValueKind::Color:
            return colorFrom(text);
        case ValueKind::Floating:
            return floatingFrom(field.range, text);
        case ValueKind::Instant:
            return dateFrom(field, text);
        case ValueKind::Picture:
            expected("@FILE with a picture", text);
        default:
            throw ValueError("this cannot be given as text");
    }
}

// MARK: Values that were set and read again

namespace {

/// The coarsest fractions are those of numbers in 8.8.
bool isClose(double meant, double read) {
    return std::abs(meant - read) <= std::max(1.0 / 256, std::abs(meant) * 1e-6);
}

std::array<double, 4> componentsOf(const Color& color) {
    if (color.isGrey()) return {color.white(), color.white(), color.white(), color.alpha()};
    return {color.red(), color.green(), color.blue(), color.alpha()};
}

}  // namespace

bool isSameButForRounding(const Value& meant, const Value& read) {
    if (meant == read) return true;
    if (const auto* one = std::get_if<Matrix>(&meant))
        if (const auto* other = std::get_if<Matrix>(&read))
            return std::ranges::equal(*one, *other, isClose);
    if (const auto* one = std::get_if<Color>(&meant))
        if (const auto* other = std::get_if<Color>(&read))
            return std::ranges::equal(componentsOf(*one), componentsOf(*other), isClose);
    if (const auto* one = std::get_if<Picture>(&meant))
        if (const auto* other = std::get_if<Picture>(&read))  // Some formats lose details.
            return one->width() == other->width() && one->height() == other->height();
    const auto one = doubleFrom(meant), other = doubleFrom(read);
    if (!one || !other) return false;
    const auto isWhole = [](const Value& value) {
        const auto* number = std::get_if<Number>(&value);
        return number != nullptr ? !number->isFloat() : !std::holds_alternative<double>(value);
    };
    if (isWhole(meant) && isWhole(read)) return integerFrom(meant) == integerFrom(read);
    return isClose(*one, *other);
}

}  // namespace vexqt::cli
