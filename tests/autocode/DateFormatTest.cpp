#include "autocode/DateFormat.h"

#include <gtest/gtest.h>

#include <string>

#include "autocode/DateClock.h"
#include "errors/KT_Error.h"
#include "tests/autocode/ClockState.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

const std::string etx(1, ETX);

std::string print(const std::string& dateFormat, std::tm fields) { return formatDate(dateFormat, fields); }

// Joins the pieces, each closed by ETX.
std::string texts(int count, const std::string& stem)
{
    std::string joined;
    for (int i = 0; i < count; ++i)
        joined += stem + std::to_string(i) + etx;
    return joined;
}

std::string characters(int count)
{
    std::string joined;
    for (int i = 0; i < count; ++i)
        joined.push_back(static_cast<char>('a' + i));
    return joined;
}

}  // namespace

TEST(DateFormat, CalendarCodesOnASundayMorning)
{
    const ClockState keep;
    firstWeekday = 1;
    selectedLanguage = 0;
    const std::tm sunday = fieldsAt(2021, 3, 7, 9, 5, 4);
    const struct {
        const char* code;
        const char* expected;
    } cases[] = {
        {"01", "07"},   {"02", "7"},   {"04", "7"},  {"05", "03"}, {"06", "3"},  {"07", "MAR"},
        {"08", "21"},   {"09", "21"},  {"10", "2021"}, {"11", "1"}, {"12", "066"}, {"13", "065"},
        {"14", "09"},   {"15", "05"},  {"16", "04"}, {"19", "1"},  {"22", "J"},  {"58", "09"},
        {"591", "AM"},  {"590", "am"}, {"59", "AM"}, {"03", "09"}, {"18", "9"},  {"20", "11"},
        {"21", "11"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(print(c.code, sunday), c.expected);
    }
}

TEST(DateFormat, LeadingZerosAreDroppedWhereTheCodeSaysSo)
{
    const struct {
        const char* code;
        std::tm fields;
        const char* expected;
    } cases[] = {
        {"02", fieldsAt(2021, 12, 25), "25"}, {"06", fieldsAt(2021, 12, 25), "12"},
        {"09", fieldsAt(2005, 1, 2), "5"},    {"09", fieldsAt(2000, 1, 2), "0"},
        {"11", fieldsAt(2005, 1, 2), "5"},    {"12", fieldsAt(2021, 1, 2), "002"},
        {"13", fieldsAt(2021, 1, 1), "000"},  {"08", fieldsAt(2005, 1, 2), "05"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(print(c.code, c.fields), c.expected);
    }
}

TEST(DateFormat, ItemsFollowEachOtherWithoutSeparator)
{
    EXPECT_EQ(print("0105", fieldsAt(2021, 3, 7)), "0703");
    EXPECT_EQ(print("0117." + etx + "0517." + etx + "10", fieldsAt(2021, 3, 7)), "07.03.2021");
}

TEST(DateFormat, LiteralTextRunsToEtxOrToTheEnd)
{
    EXPECT_EQ(print("17abc", fieldsAt(2021, 3, 7)), "abc");
    EXPECT_EQ(print("17", fieldsAt(2021, 3, 7)), "");
    EXPECT_EQ(print("17a-b" + etx + "01", fieldsAt(2021, 3, 7)), "a-b07");
}

TEST(DateFormat, AnOddFormatEndsInACodeReadWithTheTerminatingZero)
{
    EXPECT_EQ(print("011", fieldsAt(2021, 3, 7)), "0707");
    EXPECT_EQ(print("5", fieldsAt(2021, 3, 7)), "03");
}

TEST(DateFormat, CodesAreReadByAtoiRules)
{
    EXPECT_EQ(print("+5", fieldsAt(2021, 3, 7)), "03");
    EXPECT_EQ(print(" 5", fieldsAt(2021, 3, 7)), "03");
    EXPECT_EQ(print("1x", fieldsAt(2021, 3, 7)), "07");
}

TEST(DateFormat, UnknownCodesFail)
{
    for (const char* code : {"60", "00", "ab", "23", "49", "62", "99", "-1"}) {
        SCOPED_TRACE(code);
        expectFailure<KT_ERROR::bad_date_format>([&] { print(code, fieldsAt(2021, 3, 7)); },
                                                 std::string("unexpected date component ") + code);
    }
}

TEST(DateFormat, MonthAbbreviationsOfTheSevenLanguages)
{
    const ClockState keep;
    const char* rows[7] = {
        "JAN FEB MAR APR MAY JUN JUL AUG SEP OCT NOV DEC ", "JAN FEV MAR AVR MAI JUN JUL AOU SEP OCT NOV DEC ",
        "JAN FEB MAR APR MAJ JUN JUL AUG SEP OKT NOV DEC ", "JAN FEB MAR APR MAI JUN JUL AUG SEP OKT NOV DEZ ",
        "GEN FEB MAR APR MAG GIU LUG AGO SET OTT NOV DIC ", "ENE FEB MAR ABR MAY JUN JUL AGO SEP OCT NOV DIC ",
        "JAN FEB MAA APR MEI JUN JUL AUG SEP OKT NOV DEC ",
    };
    for (int32_t language = 0; language < 7; ++language) {
        SCOPED_TRACE(language);
        setLanguage(language);
        std::string names;
        for (int month = 1; month <= 12; ++month)
            names += print("0717 " + etx, fieldsAt(2021, month, 1));
        EXPECT_EQ(names, rows[language]);
    }
}

TEST(DateFormat, HourLettersRunFromAToX)
{
    std::string letters;
    for (int hour = 0; hour < 24; ++hour)
        letters += print("22", fieldsAt(2021, 3, 7, hour));
    EXPECT_EQ(letters, "ABCDEFGHIJKLMNOPQRSTUVWX");
}

TEST(DateFormat, TwelveHourClock)
{
    EXPECT_EQ(print("58590", fieldsAt(2021, 3, 7, 0)), "12am");
    EXPECT_EQ(print("58591", fieldsAt(2021, 3, 7, 13)), "01PM");
    EXPECT_EQ(print("5859x01", fieldsAt(2021, 3, 7, 12)), "12PM07");
}

TEST(DateFormat, WeekdayNumberFollowsTheFirstWeekday)
{
    const ClockState keep;
    const std::tm sunday = fieldsAt(2021, 3, 7), monday = fieldsAt(2021, 3, 8), saturday = fieldsAt(2021, 3, 13);
    firstWeekday = 1;
    EXPECT_EQ(print("04", sunday) + print("04", monday) + print("04", saturday), "716");
    EXPECT_EQ(print("19", sunday) + print("19", monday) + print("19", saturday), "127");
    firstWeekday = 0;
    EXPECT_EQ(print("04", sunday) + print("04", monday) + print("04", saturday), "127");
    EXPECT_EQ(print("19", sunday) + print("19", monday) + print("19", saturday), "127");
}

TEST(DateFormat, MondayWeeksAroundNewYear)
{
    const ClockState keep;
    firstWeekday = 1;
    const struct {
        int year, month, day;
        const char* expected;
    } cases[] = {
        {2021, 1, 1, "53"},  {2021, 1, 3, "53"},  {2021, 1, 4, "01"},  {2021, 1, 2, "53"},  {2022, 1, 1, "52"},
        {2017, 1, 1, "52"},  {2020, 12, 31, "53"}, {2019, 12, 30, "01"}, {2018, 12, 31, "01"}, {2016, 1, 1, "53"},
        {2015, 12, 31, "53"}, {2021, 3, 7, "09"},  {2000, 1, 1, "52"},  {2021, 12, 31, "52"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.year << "-" << c.month << "-" << c.day);
        EXPECT_EQ(print("03", fieldsAt(c.year, c.month, c.day)), c.expected);
    }
    EXPECT_EQ(print("18", fieldsAt(2021, 1, 4)), "1");
}

TEST(DateFormat, SundayWeeksCountAPartWeekAsOne)
{
    const ClockState keep;
    firstWeekday = 0;
    const struct {
        int year, month, day;
        const char* expected;
    } cases[] = {
        {2021, 1, 1, "1"}, {2021, 1, 2, "1"}, {2021, 1, 3, "2"}, {2021, 1, 9, "2"}, {2021, 1, 10, "3"},
        {2017, 1, 1, "1"}, {2017, 1, 7, "1"}, {2017, 1, 8, "2"}, {2021, 12, 31, "53"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.year << "-" << c.month << "-" << c.day);
        const std::tm fields = fieldsAt(c.year, c.month, c.day);
        EXPECT_EQ(print("18", fields), c.expected);
        EXPECT_EQ(print("20", fields), c.expected);
    }
    EXPECT_EQ(print("03", fieldsAt(2021, 1, 3)), "02");
    EXPECT_EQ(print("21", fieldsAt(2021, 1, 3)), "02");
}

TEST(DateFormat, AWeekCodeNormalisesTheFieldsForTheCodesBehindIt)
{
    std::tm fields = fieldsAt(2021, 1, 31);
    fields.tm_mday = 32;
    EXPECT_EQ(formatDate("0105", fields), "3201");
    EXPECT_EQ(formatDate("180105", fields), "50102");
    EXPECT_EQ(fields.tm_mon, 1);
    EXPECT_EQ(fields.tm_mday, 1);
}

TEST(DateFormat, CharacterCodesPickByWeekdayDayMonthAndYear)
{
    const std::tm sunday = fieldsAt(2021, 3, 7);
    EXPECT_EQ(print("50" + characters(7), sunday), "g");
    EXPECT_EQ(print("50" + characters(7) + "01", fieldsAt(2021, 3, 8)), "a08");
    EXPECT_EQ(print("51" + characters(31), sunday), "g");
    EXPECT_EQ(print("52" + characters(12), sunday), "c");
    EXPECT_EQ(print("53" + characters(10), sunday), "b");
    EXPECT_EQ(print("53" + characters(10), fieldsAt(1900, 3, 7)), "a");
}

TEST(DateFormat, ShortCharacterCodesFail)
{
    const struct {
        const char* code;
        int count;
        const char* text;
        const char* onNewYear2021;
    } cases[] = {{"50", 7, "incomplete day code", "e"},
                 {"51", 31, "incomplete day of month code", "a"},
                 {"52", 12, "incomplete month code", "a"},
                 {"53", 10, "incomplete year code", "b"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        expectFailure<KT_ERROR::bad_date_format>(
            [&] { print(c.code + characters(c.count - 1), fieldsAt(2021, 3, 7)); }, c.text);
        EXPECT_EQ(print(c.code + characters(c.count), fieldsAt(2021, 1, 1)), c.onNewYear2021);
    }
}

TEST(DateFormat, TextCodesPickByWeekdayDayMonthYearAndHour)
{
    const std::tm sunday = fieldsAt(2021, 3, 7, 15);
    EXPECT_EQ(print("54" + texts(7, "w"), sunday), "w6");
    EXPECT_EQ(print("55" + texts(31, "d"), sunday), "d6");
    EXPECT_EQ(print("56" + texts(12, "m") + "10", sunday), "m22021");
    EXPECT_EQ(print("57" + texts(20, "y"), sunday), "y1");
    EXPECT_EQ(print("61" + texts(24, "h"), sunday), "h15");
    EXPECT_EQ(print("57" + texts(20, "y"), fieldsAt(2040, 1, 1)), "y0");
}

TEST(DateFormat, ShortOrUnclosedTextCodesFail)
{
    const struct {
        const char* code;
        int count;
        const char* text;
    } cases[] = {{"54", 7, "Missing day of week identifiers"},
                 {"55", 31, "Missing day of month identifiers"},
                 {"56", 12, "Missing month identifiers"},
                 {"57", 20, "Missing year identifiers"},
                 {"61", 24, "Missing hour identifiers"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        const std::string all = texts(c.count, "t");
        expectFailure<KT_ERROR::bad_date_format>([&] { print(c.code + texts(c.count - 1, "t"), fieldsAt(2021, 1, 1)); },
                                                 c.text);
        expectFailure<KT_ERROR::bad_date_format>(
            [&] { print(c.code + all.substr(0, all.size() - 1), fieldsAt(2021, 1, 1)); }, c.text);
        EXPECT_EQ(print(c.code + all + "17+", fieldsAt(2021, 1, 1, 0)).back(), '+');
    }
}

TEST(DateFormat, AnEmptyLastTextClosedByEtxCounts)
{
    EXPECT_EQ(print("54" + texts(6, "w") + etx, fieldsAt(2021, 3, 7)), "");
}

TEST(DateFormat, HoursOutsideTheDayPickLikeMidnight)
{
    std::tm fields = fieldsAt(2021, 3, 7);
    for (const int hour : {24, -24}) {
        SCOPED_TRACE(hour);
        fields.tm_hour = hour;
        EXPECT_EQ(formatDate("22", fields), "A");
        EXPECT_EQ(formatDate("61" + texts(24, "h"), fields), "h0");
    }
    fields.tm_hour = 24;
    EXPECT_EQ(formatDate("14", fields), "24");
}

TEST(DateFormat, MondayWeeksAgreeWithIsoWeeksOverThirtyYears)
{
    const ClockState keep;
    firstWeekday = 1;
    for (std::tm day = fieldsAt(2000, 1, 1); day.tm_year < 2030 - 1900;
         day = fieldsAt(day.tm_year + 1900, day.tm_mon + 1, day.tm_mday + 1)) {
        char iso[8] = {};
        std::strftime(iso, sizeof iso, "%V", &day);
        ASSERT_EQ(print("03", day), iso) << day.tm_year + 1900 << "-" << day.tm_mon + 1 << "-" << day.tm_mday;
    }
}
