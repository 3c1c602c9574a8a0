#include "autocode/DateFormat.h"

#include <algorithm>
#include <cctype>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "autocode/CalendarTables.h"
#include "autocode/DateClock.h"
#include "errors/KT_Error.h"

namespace KT_AC {

namespace {

std::string printTime(const char* pattern, const std::tm& fields)
{
    std::array<char, 10> buffer{};
    if (std::strftime(buffer.data(), buffer.size(), pattern, &fields) == 0)
        return {};
    return buffer.data();
}

std::string withoutLeadingZero(std::string text)
{
    if (!text.empty() && text.front() == '0')
        text.erase(0, 1);
    return text;
}

std::string lastDigit(const std::string& twoDigits) { return twoDigits.substr(std::min<size_t>(1, twoDigits.size())); }

std::string printNumber(const char* pattern, int32_t value)
{
    std::array<char, 16> buffer{};
    std::snprintf(buffer.data(), buffer.size(), pattern, value);
    return buffer.data();
}

// A remainder that stays an index also for fields that offsets have pushed below zero.
size_t wrapIndex(int32_t value, int32_t count) { return static_cast<size_t>((value % count + count) % count); }

size_t weekdayFromMonday(const std::tm& fields) { return wrapIndex(fields.tm_wday + 6, 7); }

// The week by the Monday rule, with the week of January 1 counted in the old year when it has less than four days.
int32_t mondayWeek(std::tm& fields)
{
    joinTime(fields);
    const int32_t year = fields.tm_year + yearBase;
    const int32_t dayOfYear = fields.tm_yday + 1;
    const int32_t weekday = fields.tm_wday == 0 ? 7 : fields.tm_wday;
    int32_t a = dayOfYear - weekday;
    int32_t week = a < 0 ? 0 : a / 7 + 1;
    if (a % 7 < 0)
        a += 7;
    const int32_t r = a % 7;
    if (r > 3)
        ++week;
    if (week == 53 && !(isLeapYear(year) && r == 5) && r != 4)
        week = 1;
    if (week >= 1)
        return week;
    if (r == 1)
        return 52;
    if (r == 2)
        return !isLeapYear(year) && isLeapYear(year - 1) ? 53 : 52;
    // With a below zero, r can only be 1, 2 or 3 here.
    return 53;
}

int32_t sundayWeek(std::tm& fields)
{
    joinTime(fields);
    const int32_t a = (fields.tm_yday + 1) - (fields.tm_wday + 1);
    const int32_t q = a / 7;
    return a < 2 || a % 7 == 0 ? q + 1 : q + 2;
}

int32_t week(std::tm& fields) { return firstWeekday == 1 ? mondayWeek(fields) : sundayWeek(fields); }

class DateFormatWalker {
public:
    DateFormatWalker(const std::string& dateFormat, std::tm& fields) : dateFormat(dateFormat), fields(fields) {}

    std::string walk()
    {
        std::string result;
        while (position < dateFormat.size())
            result += item();
        return result;
    }

private:
    std::string item()
    {
        const size_t start = position;
        // An odd format ends in a code whose second character is the terminating zero.
        const char second = start + 1 < dateFormat.size() ? dateFormat[start + 1] : '\0';
        const std::array<char, 3> code = {dateFormat[start], second, '\0'};
        position = std::min(start + 2, dateFormat.size());
        switch (std::atoi(code.data())) {
        case 1: return printTime("%d", fields);
        case 2: return withoutLeadingZero(printTime("%d", fields));
        case 3: return printNumber("%02d", week(fields));
        case 4: return printNumber("%d", firstWeekday == 1 ? static_cast<int32_t>(weekdayFromMonday(fields)) + 1
                                                           : fields.tm_wday + 1);
        case 5: return printTime("%m", fields);
        case 6: return withoutLeadingZero(printTime("%m", fields));
        case 7: return monthAbbreviations[static_cast<size_t>(selectedLanguage)][wrapIndex(fields.tm_mon, 12)];
        case 8: return printTime("%y", fields);
        case 9: return withoutLeadingZero(printTime("%y", fields));
        case 10: return printTime("%Y", fields);
        case 11: return lastDigit(printTime("%y", fields));
        case 12: return printNumber("%03d", fields.tm_yday + 1);
        case 13: return printNumber("%03d", fields.tm_yday);
        case 14: return printTime("%H", fields);
        case 15: return printTime("%M", fields);
        case 16: return printTime("%S", fields);
        case 17: return text();
        case 18: return printNumber("%d", week(fields));
        case 19: return printNumber("%d", fields.tm_wday + 1);
        case 20: return printNumber("%d", sundayWeek(fields));
        case 21: return printNumber("%02d", sundayWeek(fields));
        case 22: return std::string(1, static_cast<char>('A' + hourIndex()));
        case 50: return character(7, weekdayFromMonday(fields), "incomplete day code");
        case 51: return character(31, wrapIndex(fields.tm_mday - 1, 31), "incomplete day of month code");
        case 52: return character(12, wrapIndex(fields.tm_mon, 12), "incomplete month code");
        case 53: return character(10, wrapIndex(fields.tm_year, 10), "incomplete year code");
        case 54: return pickText(7, weekdayFromMonday(fields), "Missing day of week identifiers");
        case 55: return pickText(31, wrapIndex(fields.tm_mday - 1, 31), "Missing day of month identifiers");
        case 56: return pickText(12, wrapIndex(fields.tm_mon, 12), "Missing month identifiers");
        case 57: return pickText(20, wrapIndex(fields.tm_year, 20), "Missing year identifiers");
        case 58: return printTime("%I", fields);
        case 59: return amPm();
        case 61: return pickText(24, hourIndex(), "Missing hour identifiers");
        default:
            throw KT_ERROR::bad_date_format(
                KT_ERROR::text("unexpected date component ", dateFormat.substr(start, 2)));
        }
    }

    // Hour 24 and the -24 of a day overflow count as midnight.
    size_t hourIndex() const { return wrapIndex(fields.tm_hour, 24); }

    // A text up to ETX or the end of the format; the ETX is stepped over.
    std::string text()
    {
        const size_t end = std::min(dateFormat.find(ETX, position), dateFormat.size());
        std::string result = dateFormat.substr(position, end - position);
        position = std::min(end + 1, dateFormat.size());
        return result;
    }

    std::string character(size_t count, size_t index, const char* error)
    {
        if (dateFormat.size() - position < count)
            throw KT_ERROR::bad_date_format(error);
        const char chosen = dateFormat[position + index];
        position += count;
        return std::string(1, chosen);
    }

    std::string pickText(size_t count, size_t index, const char* error)
    {
        std::string chosen;
        for (size_t i = 0; i < count; ++i) {
            if (position >= dateFormat.size())
                throw KT_ERROR::bad_date_format(error);
            std::string piece = text();
            if (i == index)
                chosen = std::move(piece);
        }
        if (dateFormat[position - 1] != ETX)
            throw KT_ERROR::bad_date_format(error);
        return chosen;
    }

    std::string amPm()
    {
        const char lowerCase = position < dateFormat.size() ? dateFormat[position] : '\0';
        position = std::min(position + 1, dateFormat.size());
        std::string result = printTime("%p", fields);
        if (lowerCase == '0')
            for (size_t i = 0; i < result.size() && i < 2; ++i)
                result[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(result[i])));
        return result;
    }

    const std::string& dateFormat;
    std::tm& fields;
    size_t position = 0;
};

}  // namespace

std::string formatDate(const std::string& dateFormat, std::tm& fields)
{
    return DateFormatWalker(dateFormat, fields).walk();
}

}  // namespace KT_AC
