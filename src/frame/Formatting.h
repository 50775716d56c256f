#pragma once
// Dates, numbers and sizes in fixed English forms, whatever the desktop's language is.
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/SystemInfo.h"

namespace pw {

struct DateParts {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int weekday = 0;  ///< 0 is Sunday
};
DateParts SplitDate(DateTime date);  ///< to the nearest second
DateTime MakeDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

enum class DateStyle {
    GeneralDate,  ///< "11/22/2026 9:46:00 PM"; without a time or a day where there is none
    LongDate,     ///< "Sunday, November 22, 2026"
    MediumDate,   ///< "22-Nov-26"
    ShortDate,    ///< "11/22/2026"
    YYMMDD,
    YYYYMMDD,
    YYMM,
    YYYYMM,
    LongTime,    ///< "9:46:00 PM"
    MediumTime,  ///< "09:46 PM"
    ShortTime,   ///< "21:46"
    HHNNSS,      ///< "21:46:00"
    LongDateLongTime,
    MediumDateMediumTime,
    ShortDateShortTime
};
std::string FormatDate(DateTime date, DateStyle style);

enum class NumberStyle {
    GeneralNumber,
    Currency,
    Fixed,       ///< "1234.50"
    Standard,    ///< "1,234.50"
    Percent,     ///< "12.50%"
    Scientific,  ///< "1.23E+03"
    YesNo,
    TrueFalse,
    OnOff
};
std::string FormatNumber(double value, NumberStyle style);
/** A number with a fixed count of decimals, a point, and commas between thousands if asked. */
enum class Grouping { None, Thousands };
std::string FormatDecimals(double value, int decimals, Grouping grouping);

/** "512 byte(s)", "12KB", "1.50MB". */
std::string FormatSize(std::int64_t bytes);
/** Capitals, padded with zeros on the left; only the last `width` digits of a longer one. */
std::string ToHex(std::uint64_t value, int width);
std::string QuoteSingle(std::string_view text);
std::string QuoteDouble(std::string_view text);

}  // namespace pw
