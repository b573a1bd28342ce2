#include "vexqt/platform/text.h"

#include <gtest/gtest.h>

#include <bit>
#include <string>

namespace vexqt {
namespace {

using std::string_literals::operator""s;

Bytes bytes(std::string_view text) { return {text.begin(), text.end()}; }

constexpr const char* kNotUTF8[] = {
    "\x80",              // a byte that only continues
    "a\xC3",             // cut short
    "\xE2\x82",          // cut short
    "\xF0\x9F\x98",      // cut short
    "\xC0\x80",          // longer than need be
    "\xE0\x80\x80",      // longer than need be
    "\xED\xA0\x80",      // half a surrogate pair
    "\xF4\x90\x80\x80",  // past the last code point
    "\xFF",              // never a byte of UTF-8
    "\xC3\x28",          // not continued
};

TEST(Text, ASCIIIsTakenAsItIs) {
    EXPECT_EQ(textFromASCII(bytes("Arial")), "Arial");
    EXPECT_EQ(textFromASCII(bytes("a\0\x7F"s)), "a\0\x7F"s);
    EXPECT_EQ(textFromASCII({}), "");
}

TEST(Text, AnyHighByteIsNoASCII) {
    EXPECT_FALSE(textFromASCII(bytes("caf\xC3\xA9")).has_value());
    EXPECT_FALSE(textFromASCII(bytes("\x80")).has_value());
    EXPECT_FALSE(textFromASCII(bytes(std::string(1000, 'a') + "\xFF")).has_value());
}

TEST(Text, UTF8IsTakenAsItIs) {
    const std::string texts[] = {"",           "plain", "caf\u00E9",  "\u20AC",
                                 "\U0001F600", "a\0b"s, "\uFEFFmark", "\U0010FFFF"};
    for (const std::string& text : texts) {
        SCOPED_TRACE(text);
        EXPECT_EQ(textFromUTF8(bytes(text)), text);
        EXPECT_EQ(utf8FromText(text), bytes(text));
    }
}

TEST(Text, BrokenUTF8IsAbsent) {
    for (const char* broken : kNotUTF8) {
        SCOPED_TRACE(testing::PrintToString(bytes(broken)));
        EXPECT_FALSE(textFromUTF8(bytes(broken)).has_value());
        EXPECT_FALSE(utf8FromText(broken).has_value());
        EXPECT_FALSE(utf16FromText(broken).has_value());
        EXPECT_FALSE(asciiFromText(broken).has_value());
    }
}

TEST(Text, UTF16Decodes) {
    const struct {
        const char* what;
        Bytes bytes;
        std::string text;
    } cases[] = {
        {"nothing", {}, ""},
        {"big-endian without a mark", {0x00, 0x41, 0x20, 0xAC}, "A\u20AC"},
        {"big-endian with a mark", {0xFE, 0xFF, 0x00, 0x41}, "A"},
        {"little-endian with a mark", {0xFF, 0xFE, 0x41, 0x00, 0xAC, 0x20}, "A\u20AC"},
        {"a mark alone", {0xFE, 0xFF}, ""},
        {"the other mark alone", {0xFF, 0xFE}, ""},
        {"only one mark is taken off", {0xFE, 0xFF, 0xFE, 0xFF}, "\uFEFF"},
        {"a surrogate pair", {0xD8, 0x3D, 0xDE, 0x00}, "\U0001F600"},
        {"a little-endian pair", {0xFF, 0xFE, 0x3D, 0xD8, 0x00, 0xDE}, "\U0001F600"},
        {"a zero character", {0x00, 0x41, 0x00, 0x00, 0x00, 0x42}, "A\0B"s},
    };
    for (const auto& [what, bytes, text] : cases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(textFromUTF16(bytes), text);
    }
}

TEST(Text, BrokenUTF16IsAbsent) {
    const struct {
        const char* what;
        Bytes bytes;
    } cases[] = {
        {"one byte", {0x41}},
        {"an odd number of bytes", {0x00, 0x41, 0x00}},
        {"a mark and a byte", {0xFE, 0xFF, 0x41}},
        {"a high surrogate at the end", {0x00, 0x41, 0xD8, 0x3D}},
        {"a high surrogate before a letter", {0xD8, 0x3D, 0x00, 0x41}},
        {"a low surrogate first", {0xDE, 0x00, 0xD8, 0x3D}},
        {"two high surrogates", {0xD8, 0x3D, 0xD8, 0x3D}},
        {"a high surrogate at the little end", {0xFF, 0xFE, 0x3D, 0xD8}},
    };
    for (const auto& [what, bytes] : cases) {
        SCOPED_TRACE(what);
        EXPECT_FALSE(textFromUTF16(bytes).has_value());
    }
}

TEST(Text, UTF16IsWrittenWithAMarkInTheMachinesOrder) {
    if constexpr (std::endian::native == std::endian::little) {
        EXPECT_EQ(utf16FromText("A\u20AC\U0001F600"),
                  (Bytes{0xFF, 0xFE, 0x41, 0x00, 0xAC, 0x20, 0x3D, 0xD8, 0x00, 0xDE}));
        EXPECT_EQ(utf16FromText(""), (Bytes{0xFF, 0xFE}));
    } else {
        EXPECT_EQ(utf16FromText("A\u20AC\U0001F600"),
                  (Bytes{0xFE, 0xFF, 0x00, 0x41, 0x20, 0xAC, 0xD8, 0x3D, 0xDE, 0x00}));
        EXPECT_EQ(utf16FromText(""), (Bytes{0xFE, 0xFF}));
    }
}

TEST(Text, OnlyASCIIIsWrittenAsASCII) {
    EXPECT_EQ(asciiFromText("Arial"), bytes("Arial"));
    EXPECT_EQ(asciiFromText(""), Bytes());
    EXPECT_FALSE(asciiFromText("caf\u00E9").has_value());
}

TEST(Text, UpToZeroCutsAtTheFirstZeroByte) {
    const auto cut = [](const Bytes& whole) {
        const ByteView view = upToZero(whole);
        return Bytes(view.begin(), view.end());
    };
    EXPECT_EQ(cut({}), Bytes());
    EXPECT_EQ(cut({0}), Bytes());
    EXPECT_EQ(cut({1, 2, 3}), (Bytes{1, 2, 3}));
    EXPECT_EQ(cut({1, 2, 0, 3, 0}), (Bytes{1, 2}));
}

TEST(Text, CountsCodePoints) {
    EXPECT_EQ(codePointCount(""), 0U);
    EXPECT_EQ(codePointCount("abc"), 3U);
    EXPECT_EQ(codePointCount("a\u00E9\u20AC\U0001F600"), 4U);
    EXPECT_EQ(codePointCount("e\u0301"), 2U);
}

TEST(NaturalOrder, GoesAsPeopleSortNames) {
    const struct {
        const char* what;
        std::string smaller, greater;
    } cases[] = {
        {"nothing comes first", "", "a"},
        {"letters", "a", "b"},
        {"letters before their case", "a", "B"},
        {"letters before their case, the other way", "A", "b"},
        {"numbers by value", "key9", "key10"},
        {"numbers by value within", "a2b", "a10a"},
        {"long numbers", "x99999999999999999999", "x100000000000000000000"},
        {"digits before letters", "1", "a"},
        {"punctuation before letters", "com.a", "coma"},
        {"accents matter", "resume", "r\u00E9sum\u00E9"},
        {"accents matter less than letters", "r\u00E9sum\u00E9", "resumes"},
        {"no language puts this letter at the end", "\u00E4", "z"},
    };
    for (const auto& [what, smaller, greater] : cases) {
        SCOPED_TRACE(what);
        EXPECT_LT(compareNaturally(smaller, greater), 0);
        EXPECT_GT(compareNaturally(greater, smaller), 0);
    }
}

TEST(NaturalOrder, CaseAndLeadingZeroesDoNotMatter) {
    EXPECT_EQ(compareNaturally("Title", "tITLE"), 0);
    EXPECT_EQ(compareNaturally("track 7", "track 007"), 0);
    EXPECT_EQ(compareNaturally("", ""), 0);
    EXPECT_EQ(compareNaturally({}, ""), 0);
}

TEST(NaturalOrder, BrokenTextHasAPlaceToo) {
    for (const char* broken : kNotUTF8) {
        SCOPED_TRACE(testing::PrintToString(bytes(broken)));
        EXPECT_EQ(compareNaturally(broken, broken), 0);
        EXPECT_NE(compareNaturally(broken, ""), 0);
    }
}

}  // namespace
}  // namespace vexqt
