#include "frame/Formatting.h"

#include <charconv>
#include <chrono>
#include <cmath>

namespace pw {

namespace {

constexpr const char* kWeekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                     "Thursday", "Friday", "Saturday"};
constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};
constexpr int kUnixEpoch = 25569;  // 1970-01-01 counted from 1899-12-30

std::string Digits(int value, int width) {
    std::string text = std::to_string(value);
    if (int(text.size()) < width) text.insert(0, std::size_t(width) - text.size(), '0');
    return text.size() > std::size_t(width) ? text.substr(text.size() - std::size_t(width)) : text;
}

std::string LongDate(const DateParts& d) {
    return std::string(kWeekdays[d.weekday]) + ", " + kMonths[d.month - 1] + " " +
           std::to_string(d.day) + ", " + std::to_string(d.year);
}
std::string MediumDate(const DateParts& d) {
    return Digits(d.day, 2) + "-" + std::string(kMonths[d.month - 1]).substr(0, 3) + "-" +
           Digits(d.year, 2);
}
std::string ShortDate(const DateParts& d) {
    return std::to_string(d.month) + "/" + std::to_string(d.day) + "/" + std::to_string(d.year);
}
std::string HalfDay(const DateParts& d) {
    return d.hour < 12 ? " AM" : " PM";
}
int HourOfHalfDay(const DateParts& d) {
    return d.hour % 12 == 0 ? 12 : d.hour % 12;
}
std::string LongTime(const DateParts& d) {
    return std::to_string(HourOfHalfDay(d)) + ":" + Digits(d.minute, 2) + ":" +
           Digits(d.second, 2) + HalfDay(d);
}
std::string MediumTime(const DateParts& d) {
    return Digits(HourOfHalfDay(d), 2) + ":" + Digits(d.minute, 2) + HalfDay(d);
}
std::string ShortTime(const DateParts& d) {
    return Digits(d.hour, 2) + ":" + Digits(d.minute, 2);
}

std::string GeneralDate(DateTime date, const DateParts& d) {
    const bool noTime = d.hour == 0 && d.minute == 0 && d.second == 0;
    if (noTime) return ShortDate(d);
    if (std::trunc(date) == 0) return LongTime(d);
    return ShortDate(d) + " " + LongTime(d);
}

}  // namespace

DateParts SplitDate(DateTime date) {
    DateParts parts;
    // No calendar goes beyond these years, and a number from a damaged file may be anything.
    if (!(date > -657435 && date < 2958466)) date = 0;
    // Before the first day the fraction still counts forward from midnight.
    double day = std::trunc(date);
    auto seconds = std::int64_t(std::llround(std::fabs(date - day) * 86400));
    if (seconds == 86400) {
        seconds = 0;
        day += 1;
    }
    const std::chrono::sys_days civil{std::chrono::days(int(day) - kUnixEpoch)};
    const std::chrono::year_month_day calendar(civil);
    parts.year = int(calendar.year());
    parts.month = int(unsigned(calendar.month()));
    parts.day = int(unsigned(calendar.day()));
    parts.weekday = int(std::chrono::weekday(civil).c_encoding());
    parts.hour = int(seconds / 3600);
    parts.minute = int(seconds / 60 % 60);
    parts.second = int(seconds % 60);
    return parts;
}

DateTime MakeDate(int year, int month, int day, int hour, int minute, int second) {
    const std::chrono::sys_days civil = std::chrono::year(year) / month / day;
    const double days = civil.time_since_epoch().count() + kUnixEpoch;
    const double time = (hour * 3600 + minute * 60 + second) / 86400.0;
    return days < 0 ? days - time : days + time;
}

std::string FormatDate(DateTime date, DateStyle style) {
    const DateParts d = SplitDate(date);
    switch (style) {
        case DateStyle::GeneralDate:
            return GeneralDate(date, d);
        case DateStyle::LongDate:
            return LongDate(d);
        case DateStyle::MediumDate:
            return MediumDate(d);
        case DateStyle::ShortDate:
            return ShortDate(d);
        case DateStyle::YYMMDD:
            return Digits(d.year, 2) + Digits(d.month, 2) + Digits(d.day, 2);
        case DateStyle::YYYYMMDD:
            return Digits(d.year, 4) + Digits(d.month, 2) + Digits(d.day, 2);
        case DateStyle::YYMM:
            return Digits(d.year, 2) + Digits(d.month, 2);
        case DateStyle::YYYYMM:
            return Digits(d.year, 4) + Digits(d.month, 2);
        case DateStyle::LongTime:
            return LongTime(d);
        case DateStyle::MediumTime:
            return MediumTime(d);
        case DateStyle::ShortTime:
            return ShortTime(d);
        case DateStyle::HHNNSS:
            return ShortTime(d) + ":" + Digits(d.second, 2);
        case DateStyle::LongDateLongTime:
            return LongDate(d) + " " + LongTime(d);
        case DateStyle::MediumDateMediumTime:
            return MediumDate(d) + " " + MediumTime(d);
        case DateStyle::ShortDateShortTime:
            return ShortDate(d) + " " + ShortTime(d);
    }
    return "";
}

std::string FormatDecimals(double value, int decimals, Grouping grouping) {
    if (!std::isfinite(value)) return "0";
    char buffer[400];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                                   std::chars_format::fixed, decimals)
                         .ptr;
    std::string text(buffer, end);
    const bool negative = value < 0 && text.find_first_not_of("0.") != text.npos;
    if (grouping == Grouping::Thousands) {
        const auto point = std::min(text.find('.'), text.size());
        for (auto at = point; at > 3;)
            text.insert(at -= 3, ",");
    }
    return negative ? "-" + text : text;
}

std::string FormatNumber(double value, NumberStyle style) {
    const auto general = [value] {
        char buffer[64];
        return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value,
                                                 std::chars_format::general, 15)
                                       .ptr);
    };
    const auto scientific = [value] {
        char buffer[64];
        std::string text(buffer, std::to_chars(buffer, buffer + sizeof buffer, value,
                                               std::chars_format::scientific, 2)
                                     .ptr);
        return text.replace(text.find('e'), 1, "E");
    };
    if (!std::isfinite(value)) value = 0;
    switch (style) {
        case NumberStyle::GeneralNumber:
            return general();
        case NumberStyle::Currency: {
            const std::string amount =
                "$" + FormatDecimals(std::fabs(value), 2, Grouping::Thousands);
            return value < 0 ? "(" + amount + ")" : amount;
        }
        case NumberStyle::Fixed:
            return FormatDecimals(value, 2, Grouping::None);
        case NumberStyle::Standard:
            return FormatDecimals(value, 2, Grouping::Thousands);
        case NumberStyle::Percent:
            return FormatDecimals(value * 100, 2, Grouping::None) + "%";
        case NumberStyle::Scientific:
            return scientific();
        case NumberStyle::YesNo:
            return value != 0 ? "Yes" : "No";
        case NumberStyle::TrueFalse:
            return value != 0 ? "True" : "False";
        case NumberStyle::OnOff:
            return value != 0 ? "On" : "Off";
    }
    return "";
}

std::string FormatSize(std::int64_t bytes) {
    if (bytes < 1024) return std::to_string(bytes) + " byte(s)";
    const double size = double(bytes) / 1024;
    if (bytes < 1024 * 1024) return FormatDecimals(size, 0, Grouping::Thousands) + "KB";
    return FormatNumber(size / 1024, NumberStyle::Standard) + "MB";
}

std::string ToHex(std::uint64_t value, int width) {
    std::string text;
    for (int i = 0; i < width; ++i, value >>= 4)
        text += "0123456789ABCDEF"[value & 15];
    return {text.rbegin(), text.rend()};
}

std::string QuoteSingle(std::string_view text) {
    return "'" + std::string(text) + "'";
}
std::string QuoteDouble(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

}  // namespace pw
