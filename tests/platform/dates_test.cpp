#include "vexqt/platform/dates.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace vexqt {
namespace {

Date at(std::int64_t seconds) { return Date(std::chrono::seconds(seconds)); }

TEST(Dates, TextIsUTCToTheSecond) {
    const struct {
        std::int64_t seconds;
        const char* text;
    } cases[] = {
        {978307200, "2001-01-01T00:00:00Z"},  {978307199, "2000-12-31T23:59:59Z"},
        {951827696, "2000-02-29T12:34:56Z"},  {0, "1970-01-01T00:00:00Z"},
        {-1, "1969-12-31T23:59:59Z"},         {-2082844800, "1904-01-01T00:00:00Z"},
        {2212122495, "2040-02-06T06:28:15Z"},
    };
    for (const auto& [seconds, text] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(textFromDate(at(seconds)), text);
        EXPECT_EQ(dateFromText(text), at(seconds));
    }
}

TEST(Dates, EveryDateHasAText) {
    const struct {
        std::int64_t seconds;
        const char* text;
    } cases[] = {
        {-62167219200, "0000-01-01T00:00:00Z"},
        {-62167219201, "-0001-12-31T23:59:59Z"},
        {253402300800, "10000-01-01T00:00:00Z"},
        {971890963200, "32768-01-01T00:00:00Z"},
        {std::numeric_limits<std::int64_t>::max(), "292277026596-12-04T15:30:07Z"},
        {std::numeric_limits<std::int64_t>::min(), "-292277022657-01-27T08:29:52Z"},
    };
    for (const auto& [seconds, text] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(textFromDate(at(seconds)), text);
    }
}

TEST(Dates, ReadsTheShorterForms) {
    const struct {
        const char* text;
        std::int64_t seconds;
    } cases[] = {
        {"2001-01-01", 978307200},
        {"2001-01-01T00:00:01", 978307201},
        {"2001-01-01 00:01:00", 978307260},
        {"2001-01-01 01:00:00Z", 978310800},
    };
    for (const auto& [text, seconds] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(dateFromText(text), at(seconds));
    }
}

TEST(Dates, WhatIsNoDateIsAbsent) {
    const char* const texts[] = {
        "",
        "2001",
        "2001-01",
        "2001-1-1",
        "2001-13-01",
        "2001-00-01",
        "2001-01-00",
        "2001-01-32",
        "2001-02-29",
        "2001/01/01",
        "2001-01-01Z",
        "2001-01-01T",
        "2001-01-01T00:00",
        "2001-01-01T24:00:00Z",
        "2001-01-01T00:60:00Z",
        "2001-01-01T00:00:60Z",
        "2001-01-01T00:00:00ZZ",
        "2001-01-01T00:00:00 ",
        "2001-01-01T00:00:00.5Z",
        "2001-01-01t00:00:00Z",
        "2001-01-01T00-00-00Z",
        "2001-01-01T-1:00:00Z",
        " 2001-01-01",
        "+001-01-01",
        "-001-01-01",
        "12001-01-01",
        "20x1-01-01",
        "today",
    };
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(dateFromText(text).has_value());
    }
}

}  // namespace
}  // namespace vexqt
