#include "autocode/AC_Date.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <sstream>

#include "autocode/AC_ElementCollection.h"
#include "autocode/DateClock.h"
#include "autocode/DateFormat.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/autocode/ClockState.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

const std::string etx(1, ETX);

AC_Date::Offsets offsets(int16_t seconds, int16_t minutes, int16_t hours, int16_t days, int16_t months,
                         int16_t years)
{
    return {seconds, minutes, hours, days, months, years};
}

class DateTest : public testing::Test {
protected:
    void SetUp() override
    {
        selectedLanguage = 0;
        firstWeekday = 1;
    }

    // A date with fixed offsets, in the collection.
    AC_Date& addDate(const std::string& dateFormat, const AC_Date::Offsets& moves, const std::string& id = "Dd")
    {
        auto date = std::make_unique<AC_Date>(dateFormat, "O", 0, moves);
        AC_Date& result = *date;
        collection.addElement(id, std::move(date));
        return result;
    }

    AC_Date& addVariableDate(const std::string& dateFormat, const std::string& source, uint32_t index)
    {
        auto date = std::make_unique<AC_Date>(dateFormat, source, index, AC_Date::Offsets{});
        AC_Date& result = *date;
        collection.addElement("Dv", std::move(date));
        return result;
    }

    ProbeElement& addProbe(const std::string& id, const std::string& text)
    {
        auto probe = std::make_unique<ProbeElement>(text);
        ProbeElement& result = *probe;
        collection.addElement(id, std::move(probe));
        return result;
    }

    std::string printed(const std::string& dateFormat, const AC_Date::Offsets& moves)
    {
        return AC_Date(dateFormat, "O", 0, moves).getResult();
    }

    ClockState keep;
    AC_ElementCollection collection;
};

// A record body through the parser's kind of stream; the date comes back from the format.
class DateRecordTest : public DateTest {
protected:
    std::string read(const std::string& body)
    {
        std::istringstream in(body);
        in.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
        const std::string id = readDateRecord(in, format);
        in.exceptions(std::ios::goodbit);
        EXPECT_EQ(in.peek(), std::char_traits<char>::eof()) << "the record is read to its end";
        return id;
    }

    const AC_Date& date(const std::string& id)
    {
        return dynamic_cast<const AC_Date&>(format.getElements().getElement(id));
    }

    Image image{32, 1};
    KT_FMT::KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(DateRecordTest, KindFReadsDaysMonthsAndYears)
{
    EXPECT_EQ(read("best\x0b" "0105\x0b" "F001-02+03"), "Dbest");
    const AC_Date& best = date("Dbest");
    EXPECT_EQ(best.getDateFormat(), "0105");
    EXPECT_EQ(best.getOffsetSource(), "F");
    EXPECT_EQ(best.getOffsets(), offsets(0, 0, 0, 1, -2, 3));
}

TEST_F(DateRecordTest, KindOReadsDaysMonthsYearsSecondsMinutesAndHours)
{
    EXPECT_EQ(read("o\x0b" "10\x0b" "O001002003004005006"), "Do");
    EXPECT_EQ(date("Do").getOffsetSource(), "O");
    EXPECT_EQ(date("Do").getOffsets(), offsets(4, 5, 6, 1, 2, 3));
}

TEST_F(DateRecordTest, KindVNamesAnElementAndAUnit)
{
    const char units[] = {'-', '.', '/', '0', '1', '2'};
    for (uint32_t index = 0; index < 6; ++index) {
        SCOPED_TRACE(units[index]);
        const std::string name = "v" + std::to_string(index);
        EXPECT_EQ(read(name + "\x0b" "01\x0b" "VCcount\x0b" + units[index]), "D" + name);
        EXPECT_EQ(date("D" + name).getOffsetSource(), "Ccount");
        EXPECT_EQ(date("D" + name).getVariableOffsetIndex(), index);
        EXPECT_EQ(date("D" + name).getOffsets(), AC_Date::Offsets{});
    }
}

TEST_F(DateRecordTest, AnyOtherKindFails)
{
    std::istringstream in("x\x0b" "01\x0b" "X001002003");
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { readDateRecord(in, format); },
                                                 "Missing F or V or O character");
    EXPECT_EQ(format.getElements().size(), 0u);
}

TEST_F(DateRecordTest, AUnitBeyondTheSixFieldsMovesNothing)
{
    ProbeElement* source = nullptr;
    {
        auto probe = std::make_unique<ProbeElement>("10");
        source = probe.get();
        format.getElements().addElement("Cc", std::move(probe));
    }
    read("v\x0b" "010510\x0b" "VCc\x0b" "3");
    setClock(2021, 3, 7);
    EXPECT_EQ(date("Dv").getVariableOffsetIndex(), 6u);
    EXPECT_EQ(date("Dv").getResult(), "07032021");
    source->text = "abc";
    expectFailure<KT_ERROR::not_a_number>([&] { date("Dv").getResult(); }, "could not convert to number: abc");
}

TEST_F(DateTest, JanuaryThirtyFirstPlusAMonthIsTheLastOfFebruary)
{
    setClock(2021, 1, 31);
    EXPECT_EQ(printed("010510", offsets(0, 0, 0, 0, 1, 0)), "28022021");
    setClock(2024, 1, 31);
    EXPECT_EQ(printed("010510", offsets(0, 0, 0, 0, 1, 0)), "29022024");
}

TEST_F(DateTest, TheMonthLengthPutsTheLeapRuleOnTheYearSince1900)
{
    // 2000 counts as 100, which is no leap year.
    setClock(2000, 1, 31);
    EXPECT_EQ(printed("010510", offsets(0, 0, 0, 0, 1, 0)), "28022000");
}

TEST_F(DateTest, ASecondsOffsetOf120AddsTwoSecondsAndNoMinutes)
{
    setClock(2021, 3, 7, 12, 0, 10);
    EXPECT_EQ(printed("141516", offsets(120, 0, 0, 0, 0, 0)), "120012");
}

TEST_F(DateTest, OverflowingSecondsAndMinutesCarryOnce)
{
    const struct {
        uint32_t minute, second;
        AC_Date::Offsets moves;
        const char* expected;
    } cases[] = {
        {0, 59, offsets(1, 0, 0, 0, 0, 0), "120100"},
        {0, 30, offsets(45, 0, 0, 0, 0, 0), "120115"},
        {0, 30, offsets(-45, 0, 0, 0, 0, 0), "1200-15"},
        {40, 0, offsets(0, 90, 0, 0, 0, 0), "141000"},
        {59, 59, offsets(1, 0, 0, 0, 0, 0), "130000"},
        {0, 0, offsets(0, 0, 3, 0, 0, 0), "150000"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        setClock(2021, 3, 7, 12, c.minute, c.second);
        EXPECT_EQ(printed("141516", c.moves), c.expected);
    }
}

TEST_F(DateTest, HourTwentyFourStays)
{
    setClock(2021, 1, 15, 23);
    EXPECT_EQ(printed("14010510", offsets(0, 0, 1, 0, 0, 0)), "2415012021");
}

TEST_F(DateTest, AnHourBeyondTwentyFourBecomesMinusTwentyFourAndAddsAMonth)
{
    setClock(2021, 1, 15, 23);
    std::tm fields = brokenNow();
    AC_Date::addOffsets(fields, offsets(0, 0, 2, 0, 0, 0));
    EXPECT_EQ(fields.tm_hour, -24);
    EXPECT_EQ(fields.tm_mon, 1);
    EXPECT_EQ(fields.tm_mday, 15);
    EXPECT_EQ(printed("010510", offsets(0, 0, 2, 0, 0, 0)), "15022021");
    // The days offset normalises the fields: -24 hours are the day before.
    EXPECT_EQ(printed("0105101415", offsets(0, 0, 2, 1, 0, 0)), "1502202100" "00");
}

TEST_F(DateTest, MonthsAndYearsCarryIntoTheYear)
{
    const struct {
        int month;
        AC_Date::Offsets moves;
        const char* expected;
    } cases[] = {
        {12, offsets(0, 0, 0, 0, 1, 0), "15012022"},  {3, offsets(0, 0, 0, 0, 13, 0), "15042022"},
        {3, offsets(0, 0, 0, 0, 0, 2), "15032023"},   {3, offsets(0, 0, 0, 0, 0, -1), "15032020"},
        {1, offsets(0, 0, 0, 0, -1, 0), "15122020"},  {3, offsets(0, 0, 0, 0, -14, 0), "15012020"},
        {3, offsets(0, 0, 0, 0, 24, 0), "15032023"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        setClock(2021, static_cast<uint32_t>(c.month), 15);
        EXPECT_EQ(printed("010510", c.moves), c.expected);
    }
}

TEST_F(DateTest, ADaysOffsetNormalisesTheDate)
{
    setClock(2021, 12, 31);
    EXPECT_EQ(printed("01051012", offsets(0, 0, 0, 1, 0, 0)), "01012022001");
    setClock(2021, 3, 7);
    EXPECT_EQ(printed("01051019", offsets(0, 0, 0, 10, 0, 0)), "170320214");
}

TEST_F(DateTest, ANegativeDaysOffsetMovesFarForward)
{
    // The product of days and seconds is unsigned.
    setClock(2021, 6, 15);
    EXPECT_EQ(printed("010510", offsets(0, 0, 0, -1, 0, 0)), "21072157");
    EXPECT_EQ(printed("010510", offsets(0, 0, 0, -10, 0, 0)), "12072157");
}

TEST_F(DateTest, MonthsAloneKeepTheWeekdayUnlessAWeekCodeComesFirst)
{
    setClock(2021, 3, 7);  // a Sunday; April 7 is a Wednesday
    EXPECT_EQ(printed("0119", offsets(0, 0, 0, 0, 1, 0)), "071");
    EXPECT_EQ(printed("0112", offsets(0, 0, 0, 0, 1, 0)), "07066");
    EXPECT_EQ(printed("181912", offsets(0, 0, 0, 0, 1, 0)), "144097");
}

TEST_F(DateTest, AVariableOffsetTakesTheElementsNumberIntoOneField)
{
    setClock(2021, 3, 7);
    ProbeElement& source = addProbe("Cdays", "10");
    AC_Date& date = addVariableDate("010510", "Cdays", AC_Date::OFFSET_DAYS);
    EXPECT_EQ(date.getResult(), "17032021");
    source.text = "2,9";
    EXPECT_EQ(date.getResult(), "09032021");
    source.text = "-2.9";
    EXPECT_EQ(date.getResult(), "11042157");
}

TEST_F(DateTest, AOneCharacterOffsetTextIsWorthNothing)
{
    setClock(2021, 3, 7);
    addProbe("Xo", "5");
    EXPECT_EQ(addVariableDate("010510", "Xo", AC_Date::OFFSET_MONTHS).getResult(), "07032021");
}

TEST_F(DateTest, AVariableOffsetIsKeptInSixteenBits)
{
    setClock(2021, 3, 7);
    addProbe("Xo", "65537");
    EXPECT_EQ(addVariableDate("010510", "Xo", AC_Date::OFFSET_YEARS).getResult(), "07032022");
}

TEST_F(DateTest, AMissingOffsetElementFailsWhenTheDateIsPrinted)
{
    AC_Date& date = addVariableDate("01", "Cnone", AC_Date::OFFSET_DAYS);
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { date.getResult(); }, "Element id not found: Cnone");
}

TEST_F(DateTest, ADateWhoseOffsetLeadsBackToItselfFailsAsATreeTooDeep)
{
    setClock(2021, 3, 7);
    AC_Date& date = addVariableDate("010510", "Dv", AC_Date::OFFSET_DAYS);
    for (int ask = 0; ask < 2; ++ask)
        expectFailure<KT_ERROR::internal_autocode_error>([&] { date.getResult(); },
                                                         "exceeded maximum depth of autocode tree");
}

TEST_F(DateTest, ANowBeyondLocalTimeFails)
{
    now = std::numeric_limits<int64_t>::max();
    expectFailure<KT_ERROR::internal_autocode_error>([&] { printed("01", AC_Date::Offsets{}); },
                                                     "retrieving local time data failed");
}

TEST_F(DateTest, ADaysOffsetBeyondLocalTimeFails)
{
    // The last whole day that local time can hold.
    int64_t last = 67768036191676799 + 2 * 86400;
    std::tm fields{};
    while (!breakTime(last, fields))
        last -= 86400;
    now = last;
    EXPECT_NO_THROW(printed("01", AC_Date::Offsets{}));
    expectFailure<KT_ERROR::internal_autocode_error>([&] { printed("01", offsets(0, 0, 0, 1, 0, 0)); },
                                                     "retrieving local time data after offset addition failed");
}

TEST_F(DateTest, TheSnapshotIsTakenWhenPaintedAndComparedAfterwards)
{
    setClock(2021, 3, 7, 12, 0, 0);
    AC_Date& date = addDate("1516", AC_Date::Offsets{});
    EXPECT_FALSE(date.isUnchanged()) << "the snapshot is empty before the first paint";
    date.update(EVENT_PAINTED, 0);
    EXPECT_TRUE(date.isUnchanged());
    setTime(12, 0, 1);
    EXPECT_FALSE(date.isUnchanged());
    for (const uint32_t event : {EVENT_PRINTED, EVENT_TRIGGER, EVENT_DELETE, EVENT_TICK}) {
        date.update(event, 0);
        EXPECT_FALSE(date.isUnchanged());
    }
    date.update(EVENT_PAINTED, 0);
    EXPECT_TRUE(date.isUnchanged());
}

TEST_F(DateTest, ADateIsVariable) { EXPECT_TRUE(addDate("01", AC_Date::Offsets{}).isVariable()); }

TEST_F(DateTest, FixedOffsetsAreOneLevelDeep)
{
    const AC_Date& date = addDate("01", AC_Date::Offsets{});
    EXPECT_EQ(date.checkDepth(0), 1u);
    EXPECT_EQ(date.checkDepth(50), 51u);
    expectFailure<KT_ERROR::internal_autocode_error>([&] { date.checkDepth(51); },
                                                     "exceeded maximum depth of autocode tree");
}

TEST_F(DateTest, AVariableOffsetFollowsItsElementOneLevelDown)
{
    addProbe("Xo", "10");
    const AC_Date& date = addVariableDate("01", "Xo", AC_Date::OFFSET_DAYS);
    EXPECT_EQ(date.checkDepth(3), 5u);
    expectFailure<KT_ERROR::internal_autocode_error>([&] { date.checkDepth(50); },
                                                     "exceeded maximum depth of autocode tree");
}
