#include "autocode/DateClock.h"

#include <gtest/gtest.h>

#include <limits>

#include "errors/KT_Error.h"
#include "tests/autocode/ClockState.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

void expectNow(int year, int month, int day, int hour, int minute, int second)
{
    const std::tm fields = brokenNow();
    EXPECT_EQ(fields.tm_year + 1900, year);
    EXPECT_EQ(fields.tm_mon + 1, month);
    EXPECT_EQ(fields.tm_mday, day);
    EXPECT_EQ(fields.tm_hour, hour);
    EXPECT_EQ(fields.tm_min, minute);
    EXPECT_EQ(fields.tm_sec, second);
}

}  // namespace

TEST(DateClock, LanguageStartsAtZeroAndWeeksOnMonday)
{
    EXPECT_EQ(selectedLanguage, 0);
    EXPECT_EQ(firstWeekday, 1);
    EXPECT_EQ(getFirstWeekday(), 1);
}

TEST(DateClock, SetDateAndSetTimeReplaceOnlyTheirOwnFields)
{
    const ClockState keep;
    setDate(31, 1, 2021);
    setTime(23, 59, 58);
    expectNow(2021, 1, 31, 23, 59, 58);
    setDate(29, 2, 2024);
    expectNow(2024, 2, 29, 23, 59, 58);
    setTime(0, 0, 0);
    expectNow(2024, 2, 29, 0, 0, 0);
}

TEST(DateClock, YearsUpTo1900BecomeTheYear1900)
{
    const ClockState keep;
    setClock(1850, 6, 15);
    expectNow(1900, 6, 15, 12, 0, 0);
    setClock(1900, 6, 15);
    expectNow(1900, 6, 15, 12, 0, 0);
    setClock(1901, 6, 15);
    expectNow(1901, 6, 15, 12, 0, 0);
}

TEST(DateClock, SetDateChecksTheDayAgainstTheMonthOfTheFullYear)
{
    const ClockState keep;
    setClock(2021, 6, 15);
    const struct {
        uint32_t day, month, year;
    } refused[] = {{0, 1, 2021}, {32, 1, 2021}, {29, 2, 2021}, {29, 2, 1900}, {31, 4, 2021}, {5, 0, 2021}};
    for (const auto& date : refused) {
        SCOPED_TRACE(testing::Message() << date.day << "/" << date.month << "/" << date.year);
        expectFailure<KT_ERROR::bad_date_format>(
            [&] { setDate(date.day, date.month, date.year); },
            KT_ERROR::text("transmitted illegal value for setting date: ", date.day, "/", date.month, "/", date.year));
        expectNow(2021, 6, 15, 12, 0, 0);
    }
    setDate(29, 2, 2000);
    expectNow(2000, 2, 29, 12, 0, 0);
}

TEST(DateClock, AMonthAbove12FailsInTheMonthLength)
{
    const ClockState keep;
    expectFailure<KT_ERROR::bad_date_format>([] { setDate(1, 13, 2021); },
                                             "transmitted illegal value for setting date's month: 12");
}

TEST(DateClock, SetTimeRefusesHour24AndMinuteOrSecond60)
{
    const ClockState keep;
    const struct {
        uint32_t hour, minute, second;
        const char* text;
    } refused[] = {{24, 0, 0, "transmitted illegal value for setting time: 24:0:0"},
                   {0, 60, 0, "transmitted illegal value for setting time: 0:60:0"},
                   {0, 0, 60, "transmitted illegal value for setting time: 0:0:60"}};
    for (const auto& time : refused) {
        SCOPED_TRACE(time.text);
        expectFailure<KT_ERROR::bad_date_format>([&] { setTime(time.hour, time.minute, time.second); }, time.text);
    }
}

TEST(DateClock, FirstWeekdayTakesZeroOrOne)
{
    const ClockState keep;
    setFirstWeekday(0);
    EXPECT_EQ(getFirstWeekday(), 0);
    setFirstWeekday(1);
    EXPECT_EQ(getFirstWeekday(), 1);
    expectFailure<KT_ERROR::internal_autocode_error>([] { setFirstWeekday(2); }, "wrong first weekday: 2");
    expectFailure<KT_ERROR::internal_autocode_error>([] { setFirstWeekday(-1); }, "wrong first weekday: -1");
    EXPECT_EQ(getFirstWeekday(), 1);
}

TEST(DateClock, LanguageTakesZeroToSix)
{
    const ClockState keep;
    for (int32_t language = 0; language <= 6; ++language) {
        setLanguage(language);
        EXPECT_EQ(selectedLanguage, language);
    }
    for (const int32_t language : {7, -1}) {
        SCOPED_TRACE(language);
        expectFailure<KT_ERROR::parse_time_error>([&] { setLanguage(language); }, "Unknown selected language");
        EXPECT_EQ(selectedLanguage, 6);
    }
}

TEST(DateClock, RefreshNowReadsTheSystemClock)
{
    const ClockState keep;
    now = 0;
    const auto before = static_cast<int64_t>(std::time(nullptr));
    refreshNow();
    const auto after = static_cast<int64_t>(std::time(nullptr));
    EXPECT_GE(now, before);
    EXPECT_LE(now, after);
}

TEST(DateClock, ANowBeyondLocalTimeFailsToBeSet)
{
    const ClockState keep;
    now = std::numeric_limits<int64_t>::max();
    expectFailure<KT_ERROR::internal_autocode_error>([] { setDate(1, 1, 2021); },
                                                     "retrieving local time data failed");
    expectFailure<KT_ERROR::internal_autocode_error>([] { setTime(1, 1, 1); }, "retrieving local time data failed");
}

TEST(DateClock, LeapYearsDivideBy400OrBy4AndNot100)
{
    const struct {
        int32_t year;
        bool leap;
    } cases[] = {{2000, true}, {1900, false}, {2024, true}, {2021, false}, {0, true}, {100, false}, {124, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.year);
        EXPECT_EQ(isLeapYear(c.year), c.leap);
    }
}

TEST(DateClock, MonthLengthsFromJanuary)
{
    const int32_t lengths[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int32_t month = 0; month < 12; ++month) {
        SCOPED_TRACE(month);
        EXPECT_EQ(monthLength(2021, month), lengths[month]);
    }
    EXPECT_EQ(monthLength(2024, 1), 29);
    EXPECT_EQ(monthLength(100, 1), 28);
    expectFailure<KT_ERROR::bad_date_format>([] { monthLength(2021, 12); },
                                             "transmitted illegal value for setting date's month: 12");
    expectFailure<KT_ERROR::bad_date_format>([] { monthLength(2021, -1); },
                                             "transmitted illegal value for setting date's month: -1");
}

TEST(DateClock, JoinTimeNormalisesTheFields)
{
    std::tm fields = fieldsAt(2021, 1, 31);
    fields.tm_mday += 1;
    const int64_t joined = joinTime(fields);
    EXPECT_EQ(fields.tm_mon, 1);
    EXPECT_EQ(fields.tm_mday, 1);
    std::tm back{};
    ASSERT_TRUE(breakTime(joined, back));
    EXPECT_EQ(back.tm_mday, 1);
    EXPECT_FALSE(breakTime(std::numeric_limits<int64_t>::max(), back));
}
