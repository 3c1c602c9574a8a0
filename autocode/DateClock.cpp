#include "autocode/DateClock.h"

#include "autocode/CalendarTables.h"
#include "errors/KT_Error.h"

namespace KT_AC {

int64_t now = 0;
int32_t selectedLanguage = 0;
int32_t firstWeekday = 1;

namespace {

std::tm brokenNow()
{
    std::tm fields{};
    if (!breakTime(now, fields))
        throw KT_ERROR::internal_autocode_error("retrieving local time data failed");
    return fields;
}

// A change of date or time keeps the wall-clock fields; the C library decides on daylight saving anew.
void joinIntoNow(std::tm& fields)
{
    fields.tm_isdst = -1;
    now = joinTime(fields);
}

}  // namespace

bool breakTime(int64_t time, std::tm& fields)
{
    const auto value = static_cast<std::time_t>(time);
    return localtime_r(&value, &fields) != nullptr;
}

int64_t joinTime(std::tm& fields) { return static_cast<int64_t>(std::mktime(&fields)); }

void refreshNow()
{
    std::tm clock{};
    if (!breakTime(static_cast<int64_t>(std::time(nullptr)), clock))
        throw KT_ERROR::internal_autocode_error("retrieving local time data failed");
    std::tm fields{};
    fields.tm_sec = clock.tm_sec;
    fields.tm_min = clock.tm_min;
    fields.tm_hour = clock.tm_hour;
    fields.tm_mday = clock.tm_mday;
    fields.tm_mon = clock.tm_mon;
    fields.tm_year = clock.tm_year;
    joinIntoNow(fields);
}

bool isLeapYear(int32_t year) { return year % 400 == 0 || (year % 4 == 0 && year % 100 != 0); }

int32_t monthLength(int32_t year, int32_t month)
{
    if (month < 0 || month > 11)
        throw KT_ERROR::bad_date_format(
            KT_ERROR::text("transmitted illegal value for setting date's month: ", month));
    return month == 1 && isLeapYear(year) ? 29 : monthLengths[static_cast<size_t>(month)];
}

void setDate(uint32_t day, uint32_t month, uint32_t year)
{
    // Month 0 is refused here, before the month length is asked for.
    if (month == 0 || day == 0 ||
        day > static_cast<uint32_t>(monthLength(static_cast<int32_t>(year), static_cast<int32_t>(month) - 1)))
        throw KT_ERROR::bad_date_format(
            KT_ERROR::text("transmitted illegal value for setting date: ", day, "/", month, "/", year));
    std::tm fields = brokenNow();
    fields.tm_mday = static_cast<int>(day);
    fields.tm_mon = static_cast<int>(month) - 1;
    fields.tm_year = year > static_cast<uint32_t>(yearBase) ? static_cast<int>(year) - yearBase : 0;
    joinIntoNow(fields);
}

void setTime(uint32_t hour, uint32_t minute, uint32_t second)
{
    if (hour >= 24 || minute >= 60 || second >= 60)
        throw KT_ERROR::bad_date_format(
            KT_ERROR::text("transmitted illegal value for setting time: ", hour, ":", minute, ":", second));
    std::tm fields = brokenNow();
    fields.tm_hour = static_cast<int>(hour);
    fields.tm_min = static_cast<int>(minute);
    fields.tm_sec = static_cast<int>(second);
    joinIntoNow(fields);
}

void setFirstWeekday(int32_t value)
{
    if (value != 0 && value != 1)
        throw KT_ERROR::internal_autocode_error(KT_ERROR::text("wrong first weekday: ", value));
    firstWeekday = value;
}

void setLanguage(int32_t value)
{
    if (value < 0 || value > 6)
        throw KT_ERROR::parse_time_error("Unknown selected language");
    selectedLanguage = value;
}

int32_t getFirstWeekday() { return firstWeekday; }

}  // namespace KT_AC
