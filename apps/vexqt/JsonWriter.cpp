#include "apps/vexqt/JsonWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "apps/vexqt/printable.h"

namespace vexqt::cli {

namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::size_t kLongestNumber = 32;

/// Whether a byte stands for itself in a JSON string, wherever it occurs.
constexpr bool isPlain(char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; }

void appendEscaped(std::string& out, std::uint8_t codePoint) {
    switch (codePoint) {
        case '"':
            out += "\\\"";
            return;
        case '\\':
            out += "\\\\";
            return;
        case '\b':
            out += "\\b";
            return;
        case '\f':
            out += "\\f";
            return;
        case '\n':
            out += "\\n";
            return;
        case '\r':
            out += "\\r";
            return;
        case '\t':
            out += "\\t";
            return;
        default:
            out += "\\u00";
            out += kDigits[codePoint >> 4];
            out += kDigits[codePoint & 0xF];
    }
}

/// Takes one character from the front of the text.
void appendCharacter(std::string& out, std::string_view& text) {
    const std::size_t length = lengthOfCharacter(text);
    const auto first = static_cast<std::uint8_t>(text[0]);
    if (length == 0) {
        out += "\xEF\xBF\xBD";
    } else if (length == 1) {
        appendEscaped(out, first);
    } else if (length == 2 && first == 0xC2 && static_cast<std::uint8_t>(text[1]) < 0xA0) {
        appendEscaped(out, static_cast<std::uint8_t>(text[1]));
    } else {
        out += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
}

}  // namespace

std::string jsonText(std::string_view utf8) {
    TextOutput out;
    JsonWriter(out, JsonWriter::Layout::OneLine).text(utf8);
    return out.text();
}

std::string JsonWriter::gap() const {
    if (!isIndented_ || open_.empty() || !open_.back().isSpread) return {};
    return '\n' + std::string(2 * open_.size(), ' ');
}

void JsonWriter::beforeElement() {
    if (followsKey_) {
        followsKey_ = false;
        return;
    }
    if (open_.empty()) return;
    Level& level = open_.back();
    if (!level.isEmpty) out_.write(",");
    if (level.isSpread) {
        out_.write(gap());
    } else if (!level.isEmpty) {
        out_.write(blank());
    }
    level.isEmpty = false;
}

void JsonWriter::key(std::string_view name) {
    beforeElement();
    writeQuoted(name);
    out_.write(":");
    out_.write(blank());
    followsKey_ = true;
}

void JsonWriter::begin(char bracket, Form form) {
    beforeElement();
    out_.write({&bracket, 1});
    // Inside of what is inline nothing is spread.
    const bool isSpread =
        isIndented_ && form == Form::Spread && (open_.empty() || open_.back().isSpread);
    open_.push_back({.isSpread = isSpread, .isEmpty = true});
}

void JsonWriter::end(char bracket) {
    const Level level = open_.back();
    open_.pop_back();
    if (level.isSpread && !level.isEmpty) {
        out_.write("\n");
        out_.write(std::string(2 * open_.size(), ' '));
    }
    out_.write({&bracket, 1});
}

void JsonWriter::element(std::string_view text) {
    beforeElement();
    out_.write(text);
}

void JsonWriter::number(std::uint64_t value) {
    beforeElement();
    char* room = out_.room(kLongestNumber);
    out_.advance(std::to_chars(room, room + kLongestNumber, value).ptr);
}

void JsonWriter::number(std::int64_t value) {
    beforeElement();
    char* room = out_.room(kLongestNumber);
    out_.advance(std::to_chars(room, room + kLongestNumber, value).ptr);
}

void JsonWriter::number(double value) {
    if (!std::isfinite(value)) return null();
    // Without a point it would read back as an integer, which has no such zero.
    if (value == 0 && std::signbit(value)) return element("-0.0");
    beforeElement();
    char* room = out_.room(kLongestNumber);
    out_.advance(std::to_chars(room, room + kLongestNumber, value).ptr);
}

void JsonWriter::text(std::string_view utf8) {
    beforeElement();
    writeQuoted(utf8);
}

void JsonWriter::writeQuoted(std::string_view utf8) {
    out_.write("\"");
    while (!utf8.empty()) {
        const auto plainEnd = std::ranges::find_if_not(utf8, isPlain);
        const auto plain = static_cast<std::size_t>(plainEnd - utf8.begin());
        out_.write(utf8.substr(0, plain));
        utf8.remove_prefix(plain);
        if (utf8.empty()) break;
        std::string escaped;
        appendCharacter(escaped, utf8);
        out_.write(escaped);
    }
    out_.write("\"");
}

void JsonWriter::hex(ByteView bytes) {
    static constexpr std::size_t kBytesAtOnce = 4096;
    beforeElement();
    out_.write("\"");
    while (!bytes.empty()) {
        const ByteView part = bytes.first(std::min(bytes.size(), kBytesAtOnce));
        char* at = out_.room(2 * part.size());
        for (const std::uint8_t byte : part) {
            *at++ = kDigits[byte >> 4];
            *at++ = kDigits[byte & 0xF];
        }
        out_.advance(at);
        bytes = bytes.subspan(part.size());
    }
    out_.write("\"");
}

}  // namespace vexqt::cli
