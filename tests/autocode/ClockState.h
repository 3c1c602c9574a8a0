#pragma once
#include <cstdint>
#include <ctime>

#include "autocode/DateClock.h"

// Keeps the process-wide clock, language and first weekday of a test to that test.
class ClockState {
public:
    ClockState() = default;
    ClockState(const ClockState&) = delete;
    ClockState& operator=(const ClockState&) = delete;
    ~ClockState()
    {
        KT_AC::now = now;
        KT_AC::selectedLanguage = language;
        KT_AC::firstWeekday = weekday;
    }

private:
    int64_t now = KT_AC::now;
    int32_t language = KT_AC::selectedLanguage;
    int32_t weekday = KT_AC::firstWeekday;
};

// Sets the clock to a moment of local time, month counted from 1.
inline void setClock(uint32_t year, uint32_t month, uint32_t day, uint32_t hour = 12, uint32_t minute = 0,
                     uint32_t second = 0)
{
    KT_AC::setDate(day, month, year);
    KT_AC::setTime(hour, minute, second);
}

// Local time fields of a moment, with weekday and day of year filled in.
inline std::tm fieldsAt(int year, int month, int day, int hour = 12, int minute = 0, int second = 0)
{
    std::tm fields{};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    fields.tm_hour = hour;
    fields.tm_min = minute;
    fields.tm_sec = second;
    fields.tm_isdst = -1;
    std::mktime(&fields);
    return fields;
}

inline std::tm brokenNow()
{
    std::tm fields{};
    KT_AC::breakTime(KT_AC::now, fields);
    return fields;
}
