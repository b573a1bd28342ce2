#include "apps/vexqt/JsonWriter.h"

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

namespace vexqt::cli {
namespace {

using Layout = JsonWriter::Layout;
using Form = JsonWriter::Form;

template <class Work>
std::string written(Layout layout, Work&& work) {
    TextOutput out;
    JsonWriter json(out, layout);
    work(json);
    return out.text();
}

std::string number(auto value) {
    return written(Layout::OneLine, [&](JsonWriter& json) { json.number(value); });
}

TEST(JsonWriter, IndentedMembersHaveALineEach) {
    const std::string text = written(Layout::Indented, [](JsonWriter& json) {
        json.beginObject();
        json.key("a");
        json.number(std::uint64_t{1});
        json.key("b");
        json.beginArray();
        json.boolean(true);
        json.null();
        json.endArray();
        json.key("empty");
        json.beginObject();
        json.endObject();
        json.endObject();
    });
    EXPECT_EQ(text,
              "{\n"
              "  \"a\": 1,\n"
              "  \"b\": [\n"
              "    true,\n"
              "    null\n"
              "  ],\n"
              "  \"empty\": {}\n"
              "}");
}

TEST(JsonWriter, InlineMembersShareALine) {
    const std::string text = written(Layout::Indented, [](JsonWriter& json) {
        json.beginArray();
        json.beginObject(Form::Inline);
        json.key("a");
        json.beginArray();  // Spread, but inside of what is inline.
        json.number(std::int64_t{-1});
        json.number(2.5);
        json.endArray();
        json.key("b");
        json.null();
        json.endObject();
        json.endArray();
    });
    EXPECT_EQ(text, "[\n  {\"a\": [-1, 2.5], \"b\": null}\n]");
}

TEST(JsonWriter, OneLineHasNoBlanks) {
    const std::string text = written(Layout::OneLine, [](JsonWriter& json) {
        json.beginObject();
        json.key("a");
        json.beginArray();
        json.number(std::uint64_t{1});
        json.number(std::uint64_t{2});
        json.endArray();
        json.key("b");
        json.beginObject(Form::Inline);
        json.endObject();
        json.endObject();
    });
    EXPECT_EQ(text, R"({"a":[1,2],"b":{}})");
}

TEST(JsonWriter, IntegersOf64BitsKeepEveryDigit) {
    EXPECT_EQ(number(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(number(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(JsonWriter, FloatingNumbersReadBackToTheSameDouble) {
    for (const double value :
         {0.1, -1.5, 1.0 / 3, 1e300, 5e-324, -0.0, 65535.99998474121, static_cast<double>(0.1F)}) {
        SCOPED_TRACE(value);
        const auto read = nlohmann::json::parse(number(value)).get<double>();
        EXPECT_EQ(std::signbit(read), std::signbit(value));
        EXPECT_EQ(read, value);
    }
    EXPECT_EQ(number(0.1), "0.1");
    EXPECT_EQ(number(static_cast<double>(0.1F)), "0.10000000149011612");
    EXPECT_EQ(number(1.0), "1");
}

TEST(JsonWriter, WhatIsNotFiniteIsNull) {
    EXPECT_EQ(number(std::numeric_limits<double>::infinity()), "null");
    EXPECT_EQ(number(-std::numeric_limits<double>::infinity()), "null");
    EXPECT_EQ(number(std::numeric_limits<double>::quiet_NaN()), "null");
}

TEST(JsonWriter, TextIsEscaped) {
    using namespace std::string_view_literals;
    const struct {
        std::string_view text, json;
    } cases[] = {
        {"plain", R"("plain")"},
        {"", R"("")"},
        {"\"\\/", R"("\"\\/")"},
        {"\b\f\n\r\t", R"("\b\f\n\r\t")"},
        {"\0\x01\x1F\x7F"sv, R"("\u0000\u0001\u001f\u007f")"},
        {"\u0080\u009F\u00A0", "\"\\u0080\\u009f\u00A0\""},
        {"\u00E9\u20AC\U0001F600", "\"\u00E9\u20AC\U0001F600\""},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.json);
        EXPECT_EQ(jsonText(each.text), each.json);
        EXPECT_EQ(nlohmann::json::parse(jsonText(each.text)).get<std::string>(), each.text);
    }
}

TEST(JsonWriter, BytesThatAreNoUtf8BecomeReplacementCharacters) {
    const std::string_view cases[] = {
        "\x80",              // a continuation alone
        "\xC0\xAF",          // written longer than needed
        "\xE0\x80\xAF",      //
        "\xED\xA0\x80",      // half of a surrogate pair
        "\xF4\x90\x80\x80",  // behind the last character
        "\xF8\x88\x80\x80",  //
        "\xE2\x82",          // cut short
        "\xF0\x9F\x98",      //
        "\xFF",
    };
    for (const std::string_view text : cases) {
        const std::string json = jsonText("a" + std::string(text) + "b");
        SCOPED_TRACE(json);
        const auto read = nlohmann::json::parse(json).get<std::string>();  // throws for no UTF-8
        std::string expected = "a";
        for (std::size_t i = 0; i < text.size(); ++i) expected += "\uFFFD";
        EXPECT_EQ(read, expected + "b");
    }
}

TEST(JsonWriter, BytesAreLowerCaseHexadecimal) {
    const auto hex = [](const Bytes& bytes) {
        return written(Layout::OneLine, [&](JsonWriter& json) { json.hex(bytes); });
    };
    EXPECT_EQ(hex({0x00, 0x9A, 0xFF}), R"("009aff")");
    EXPECT_EQ(hex({}), R"("")");
}

TEST(JsonWriter, ALongTextAndManyBytesPassThroughTheBufferWhole) {
    const std::string text(3 * Output::kCapacity + 7, 'x');
    EXPECT_EQ(jsonText(text), '"' + text + '"');
    const Bytes bytes(2 * Output::kCapacity + 3, 0xAB);
    const std::string json =
        written(Layout::OneLine, [&](JsonWriter& writer) { writer.hex(bytes); });
    ASSERT_EQ(json.size(), 2 * bytes.size() + 2);
    EXPECT_EQ(json.find_first_not_of("ab", 1), json.size() - 1);
}

}  // namespace
}  // namespace vexqt::cli
