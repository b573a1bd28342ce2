#include "vexqt/platform/dates.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>

namespace vexqt {

namespace {

constexpr std::int64_t kSecondsInDay = 86'400;
// The calendar repeats after 400 years.
constexpr std::int64_t kDaysInEra = 146'097;
constexpr int kYearsInEra = 400;

constexpr std::int64_t floorDivide(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

std::optional<int> number(std::string_view digits) {
    unsigned value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || stopped != end) return std::nullopt;
    return static_cast<int>(value);
}

std::optional<std::chrono::sys_days> dayFromText(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
    const auto year = number(text.substr(0, 4));
    const auto month = number(text.substr(5, 2));
    const auto day = number(text.substr(8, 2));
    if (!year || !month || !day) return std::nullopt;
    const auto date = std::chrono::year(*year) / *month / *day;
    if (!date.ok()) return std::nullopt;
    return date;
}

std::optional<std::chrono::seconds> timeFromText(std::string_view text) {
    if (text.size() != 8 || text[2] != ':' || text[5] != ':') return std::nullopt;
    const auto hour = number(text.substr(0, 2));
    const auto minute = number(text.substr(3, 2));
    const auto second = number(text.substr(6, 2));
    if (!hour || !minute || !second) return std::nullopt;
    if (*hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
    return std::chrono::seconds((*hour * 60 + *minute) * 60 + *second);
}

}  // namespace

std::string textFromDate(Date date) {
    // The library's calendar ends at the year 32767 and dates do not, so the whole eras are set
    // aside before it is asked.
    const std::int64_t seconds = date.time_since_epoch().count();
    const std::int64_t days = floorDivide(seconds, kSecondsInDay);
    const std::int64_t eras = floorDivide(days, kDaysInEra);
    const std::chrono::year_month_day day(
        std::chrono::sys_days(std::chrono::days(days - eras * kDaysInEra)));
    const std::int64_t year = int{day.year()} + eras * kYearsInEra;
    const auto time = static_cast<int>((seconds % kSecondsInDay + kSecondsInDay) % kSecondsInDay);

    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s%04lld-%02u-%02uT%02d:%02d:%02dZ",
                  year < 0 ? "-" : "", static_cast<long long>(year < 0 ? -year : year),
                  unsigned{day.month()}, unsigned{day.day()}, time / 3600, time / 60 % 60,
                  time % 60);
    return text.data();
}

std::optional<Date> dateFromText(std::string_view text) {
    const auto day = dayFromText(text.substr(0, 10));
    if (!day) return std::nullopt;
    text.remove_prefix(10);
    if (text.empty()) return *day;
    if (text.front() != 'T' && text.front() != ' ') return std::nullopt;
    text.remove_prefix(1);
    if (text.ends_with('Z')) text.remove_suffix(1);
    const auto time = timeFromText(text);
    if (!time) return std::nullopt;
    return *day + *time;
}

}  // namespace vexqt
