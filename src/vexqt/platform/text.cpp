#include "vexqt/platform/text.h"

#include <unicode/ucol.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

#include "vexqt/platform/error.h"

namespace vexqt {

namespace {

ByteView bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string textOf(ByteView bytes) { return {bytes.begin(), bytes.end()}; }

bool isASCII(ByteView bytes) {
    // Without an early way out, so that many bytes are looked at in one step.
    std::uint8_t bits = 0;
    for (const std::uint8_t byte : bytes) bits |= byte;
    return bits < 0x80;
}

/// Hands each code point to the callee; false at the first that is broken.
template <class Callee>
bool forEachCodePoint(ByteView utf8, Callee&& callee) {
    for (std::size_t i = 0; i < utf8.size();) {
        UChar32 codePoint = 0;
        U8_NEXT(utf8, i, utf8.size(), codePoint);
        if (codePoint < 0) return false;
        callee(codePoint);
    }
    return true;
}

bool isUTF8(ByteView bytes) {
    return isASCII(bytes) || forEachCodePoint(bytes, [](UChar32) {});
}

void append(std::string& text, UChar32 codePoint) {
    char units[U8_MAX_LENGTH];
    std::size_t length = 0;
    U8_APPEND_UNSAFE(units, length, codePoint);
    text.append(units, length);
}

void append(Bytes& bytes, char16_t unit) {
    for (const std::uint8_t byte : std::bit_cast<std::array<std::uint8_t, 2>>(unit)) {
        bytes.push_back(byte);
    }
}

void check(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(status) != 0)
        throw Error(std::string("no order of texts: ") + u_errorName(status));
}

UCollator* naturalCollator() {
    struct Close {
        void operator()(UCollator* collator) const { ucol_close(collator); }
    };
    static const std::unique_ptr<UCollator, Close> collator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<UCollator, Close> root(ucol_open("root", &status));
        ucol_setAttribute(root.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
        ucol_setAttribute(root.get(), UCOL_STRENGTH, UCOL_SECONDARY, &status);
        check(status);
        return root;
    }();
    return collator.get();
}

std::int32_t collatorLength(std::string_view text) {
    constexpr std::size_t longest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(text.size(), longest));
}

}  // namespace

std::optional<std::string> textFromASCII(ByteView bytes) {
    if (!isASCII(bytes)) return std::nullopt;
    return textOf(bytes);
}

std::optional<std::string> textFromUTF8(ByteView bytes) {
    if (!isUTF8(bytes)) return std::nullopt;
    return textOf(bytes);
}

std::optional<std::string> textFromUTF16(ByteView bytes) {
    if (bytes.size() % 2 != 0) return std::nullopt;
    const std::size_t count = bytes.size() / 2;
    std::size_t high = 0;  // Which of a unit's two bytes is the high one.
    const auto unit = [&](std::size_t index) {
        return static_cast<char16_t>(bytes[2 * index + high] << 8 | bytes[2 * index + (1 - high)]);
    };

    const bool marked = count > 0 && unit(0) == 0xFEFF;
    const bool markedLittleEndian = count > 0 && unit(0) == 0xFFFE;
    if (markedLittleEndian) high = 1;

    std::size_t i = marked || markedLittleEndian ? 1 : 0;
    std::string text;
    while (i < count) {
        const char16_t first = unit(i++);
        if (!U16_IS_SURROGATE(first)) {
            append(text, first);
        } else if (U16_IS_LEAD(first) && i < count && U16_IS_TRAIL(unit(i))) {
            append(text, U16_GET_SUPPLEMENTARY(first, unit(i++)));
        } else {
            return std::nullopt;
        }
    }
    return text;
}

std::optional<Bytes> asciiFromText(std::string_view text) {
    const ByteView bytes = bytesOf(text);
    if (!isASCII(bytes)) return std::nullopt;
    return Bytes(bytes.begin(), bytes.end());
}

std::optional<Bytes> utf8FromText(std::string_view text) {
    const ByteView bytes = bytesOf(text);
    if (!isUTF8(bytes)) return std::nullopt;
    return Bytes(bytes.begin(), bytes.end());
}

std::optional<Bytes> utf16FromText(std::string_view text) {
    Bytes bytes;
    append(bytes, u'\uFEFF');
    const bool valid = forEachCodePoint(bytesOf(text), [&](UChar32 codePoint) {
        if (U_IS_BMP(codePoint)) {
            append(bytes, static_cast<char16_t>(codePoint));
        } else {
            append(bytes, static_cast<char16_t>(U16_LEAD(codePoint)));
            append(bytes, static_cast<char16_t>(U16_TRAIL(codePoint)));
        }
    });
    if (!valid) return std::nullopt;
    return bytes;
}

ByteView upToZero(ByteView bytes) {
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
}

std::size_t codePointCount(std::string_view text) {
    const auto beginsCodePoint = [](std::uint8_t byte) { return !U8_IS_TRAIL(byte); };
    const ByteView bytes = bytesOf(text);
    return static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), beginsCodePoint));
}

int compareNaturally(std::string_view a, std::string_view b) {
    UErrorCode status = U_ZERO_ERROR;
    const int order = ucol_strcollUTF8(naturalCollator(), a.data(), collatorLength(a), b.data(),
                                       collatorLength(b), &status);
    check(status);
    return order;
}

}  // namespace vexqt
