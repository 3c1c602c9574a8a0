#pragma once
#include <cstdint>
#include <ctime>

namespace KT_AC {

// The C library counts years from this one.
inline constexpr int32_t yearBase = 1900;

// The moment every date prints. It moves only when told to, so that all dates of one paint agree.
extern int64_t now;
// Month names, 0 to 6.
extern int32_t selectedLanguage;
// 0: weeks start on Sunday; 1: on Monday.
extern int32_t firstWeekday;

// Reads the system clock into `now`.
void refreshNow();
// Month counts from 1.
void setDate(uint32_t day, uint32_t month, uint32_t year);
void setTime(uint32_t hour, uint32_t minute, uint32_t second);
void setFirstWeekday(int32_t value);
void setLanguage(int32_t value);
int32_t getFirstWeekday();

bool isLeapYear(int32_t year);
// Days of a month counted from 0, in the year as given: callers that pass the year since 1900 get its leap rule.
int32_t monthLength(int32_t year, int32_t month);

// A time value in local time fields; false when the C library can't break it up.
bool breakTime(int64_t time, std::tm& fields);
// The fields back into a time value; the fields come out normalised.
int64_t joinTime(std::tm& fields);

}  // namespace KT_AC
