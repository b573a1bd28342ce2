#include "apps/vexqt/printable.h"

#include <gtest/gtest.h>

namespace vexqt::cli {
namespace {

using namespace std::string_view_literals;

TEST(Printable, PlainTextStaysAsItIs) {
    EXPECT_EQ(printable("moov \u00A9 \u20AC \U0001F600"), "moov \u00A9 \u20AC \U0001F600");
}

TEST(Printable, ControlCharactersAreSpelledOut) {
    EXPECT_EQ(printable("a\0\n\x1B[2J\x7F"sv), R"(a\x00\x0A\x1B[2J\x7F)");
    // A terminal takes U+009B for the two characters that begin its commands.
    EXPECT_EQ(printable("\u0080\u009B2J\u00A0"), "\\x80\\x9B2J\u00A0");
}

TEST(Printable, BytesThatAreNoUtf8AreSpelledOut) {
    EXPECT_EQ(printable("\xA9nam\xE2\x82"), R"(\xA9nam\xE2\x82)");
}

TEST(Printable, ColumnsAreCharacters) {
    EXPECT_EQ(columnsOf(""), 0U);
    EXPECT_EQ(columnsOf("a\u00A9\u20AC"), 3U);
}

}  // namespace
}  // namespace vexqt::cli
