#include "autocode/AC_Counter.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "autocode/AddressStream.h"
#include "autocode/StorageMode.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "persistence/FileArray.h"
#include "persistence/SimpleFS.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

const std::string VT = "\v";

std::string nine(int32_t number)
{
    std::ostringstream out;
    if (number < 0)
        out << '-' << std::string(8 - std::to_string(-static_cast<int64_t>(number)).size(), '0')
            << -static_cast<int64_t>(number);
    else
        out << std::string(9 - std::to_string(number).size(), '0') << number;
    return out.str();
}

struct Record {
    std::string name = "Lot";
    char trigger = 'S';
    int32_t value = 1, stop = 9, step = 1, duration = 1, reset = 1;
    std::string base;
    std::string padding = "0 0000";
    std::string prefix, suffix;

    std::string body() const
    {
        return name + VT + trigger + nine(value) + nine(stop) + nine(step) + nine(duration) + nine(reset) + base +
               VT + padding + prefix + VT + suffix + VT;
    }
};

Padding padding(Padding::Alignment alignment, char fill, uint32_t width)
{
    Padding result;
    result.alignment = alignment;
    result.padCharacter = fill;
    result.width = width;
    return result;
}

AC_Counter makeCounter(int32_t value, const std::string& base, const Padding& pad = Padding())
{
    return AC_Counter({value, INT_MAX, 1, 0, 1}, AC_Counter::TRIGGER_PRINT, base, "", "", pad);
}

class CounterTest : public testing::Test {
protected:
    AC_Counter& read(const Record& record)
    {
        std::istringstream in(record.body() + "\x1b");
        const std::string id = AC_Counter::readCounterRecord(in, format, STORAGE_NONE, nullptr);
        EXPECT_EQ(in.peek(), 0x1b) << "the record is read to its end and no further";
        return dynamic_cast<AC_Counter&>(format.getElements().getElement(id));
    }
    template <class Expected>
    void expectRecordFailure(const std::string& body, const std::string& text)
    {
        std::istringstream in(body);
        expectFailure<Expected>([&] { AC_Counter::readCounterRecord(in, format, STORAGE_NONE, nullptr); }, text);
        EXPECT_EQ(format.getElements().size(), 0u);
    }
    // The results after each of `events` printed events.
    static std::vector<std::string> run(AC_Counter& counter, int events, uint32_t event = EVENT_PRINTED)
    {
        std::vector<std::string> results{counter.getResult()};
        for (int i = 0; i < events; ++i) {
            counter.update(event, 0);
            results.push_back(counter.getResult());
        }
        return results;
    }

    Image image{32, 4};
    KT_FMT::KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(CounterTest, ARecordGivesEveryField)
{
    Record record;
    record.value = 7;
    record.stop = 99;
    record.step = 2;
    record.duration = 3;
    record.reset = 5;
    record.padding = "L#0004";
    record.prefix = "No.";
    record.suffix = "!";
    AC_Counter& counter = read(record);
    EXPECT_EQ(&format.getElements().getElement("CLot"), &counter);
    EXPECT_EQ(counter.getAttributes(), (CounterAttributes{7, 99, 2, 5, 3}));
    EXPECT_EQ(counter.getResult(), "No.###7!");
    EXPECT_FALSE(counter.isUnchanged());
    EXPECT_TRUE(counter.isVariable());
}

TEST_F(CounterTest, AnEmptyBaseInTheRecordIsDecimal)
{
    Record record;
    record.value = 42;
    EXPECT_EQ(read(record).getResult(), "42");
}

TEST_F(CounterTest, AnEmptyBaseGivenDirectlyFailsOnTheResult)
{
    const AC_Counter counter = makeCounter(1, "");
    expectFailure<KT_ERROR::internal_autocode_error>([&] { counter.getResult(); },
                                                     "counter has empty number base string");
}

TEST_F(CounterTest, AZeroDurationIsKeptAndCountsEveryEvent)
{
    Record record;
    record.duration = 0;
    AC_Counter& counter = read(record);
    EXPECT_EQ(counter.getAttributes().duration, 0u);
    EXPECT_EQ(run(counter, 3), (std::vector<std::string>{"1", "2", "3", "4"}));
}

TEST_F(CounterTest, RecordFieldsFailWithTheirMessages)
{
    Record trigger;
    trigger.trigger = 'X';
    expectRecordFailure<KT_ERROR::bad_escape_sequence>(
        trigger.body(), "malformed trigger type while parsing counter; expected 'S', 'T' or 'R' but got 'X'");
    Record duration;
    duration.duration = -3;
    expectRecordFailure<KT_ERROR::bad_escape_sequence>(duration.body(),
                                                       "counter must not have negative duration, got: -3");
    Record alignment;
    alignment.padding = "C 0000";
    expectRecordFailure<KT_ERROR::bad_escape_sequence>(
        alignment.body(), "malformed alignment while parsing counter; expected '0', 'L' or 'R' but got 'C'");
}

TEST_F(CounterTest, ValidationRunsInItsOrder)
{
    struct Case {
        int32_t stop, step, reset;
        std::string text;
    };
    const Case cases[] = {
        {1, 0, 5, "counter: step value must not be zero"},
        {1, 1, 5, "counter: stop value(1) less than reset value(5) with positive counting"},
        {5, -1, 1, "counter: stop value(5) greater than reset value(1) with negative counting"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        Record record;
        record.stop = c.stop;
        record.step = c.step;
        record.reset = c.reset;
        expectRecordFailure<KT_ERROR::illegal_content>(record.body(), c.text);
        expectFailure<KT_ERROR::illegal_content>([&] { AC_Counter::validate({0, c.stop, c.step, c.reset, 1}); },
                                                 c.text);
    }
}

TEST_F(CounterTest, TheValueItselfIsNotValidated)
{
    AC_Counter::validate({-1000, 5, 1, 1, 1});
    AC_Counter::validate({1000, 5, 1, 5, 1});
    AC_Counter::validate({0, 3, -1, 3, 1});
}

TEST_F(CounterTest, CountingReachesTheStopAndWrapsOnlyWhenPassingIt)
{
    Record up;
    up.value = 1, up.stop = 3, up.step = 1, up.reset = 1;
    EXPECT_EQ(run(read(up), 5), (std::vector<std::string>{"1", "2", "3", "1", "2", "3"}));
    format.getElements().clear();
    Record down;
    down.value = 3, down.stop = 1, down.step = -1, down.reset = 3;
    EXPECT_EQ(run(read(down), 4), (std::vector<std::string>{"3", "2", "1", "3", "2"}));
}

TEST_F(CounterTest, ADurationOfThreeStepsOnEveryThirdPrint)
{
    Record record;
    record.duration = 3;
    EXPECT_EQ(run(read(record), 7), (std::vector<std::string>{"1", "1", "1", "2", "2", "2", "3", "3"}));
}

TEST_F(CounterTest, AStepPastTheIntegerRangeCountsAsPassingTheStop)
{
    AC_Counter counter({INT_MAX - 1, INT_MAX, 5, -7, 1}, AC_Counter::TRIGGER_PRINT, "0123456789", "", "", {});
    counter.update(EVENT_PRINTED, 0);
    EXPECT_EQ(counter.getAttributes().value, -7);
}

TEST_F(CounterTest, TriggerKindsDecideWhichEventsCount)
{
    struct Case {
        char trigger;
        std::vector<std::string> afterPrint;    // value after print, print
        std::vector<std::string> afterTrigger;  // then after trigger, trigger
    };
    const Case cases[] = {
        {'S', {"6", "7"}, {"7", "7"}},
        {'R', {"6", "7"}, {"2", "2"}},
        {'T', {"5", "5"}, {"6", "7"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.trigger);
        format.getElements().clear();
        Record record;
        record.trigger = c.trigger;
        record.value = 5;
        record.reset = 2;
        AC_Counter& counter = read(record);
        std::vector<std::string> printed, triggered;
        for (int i = 0; i < 2; ++i) {
            counter.update(EVENT_PRINTED, 0);
            printed.push_back(counter.getResult());
        }
        for (int i = 0; i < 2; ++i) {
            counter.update(EVENT_TRIGGER, 0);
            triggered.push_back(counter.getResult());
        }
        EXPECT_EQ(printed, c.afterPrint);
        EXPECT_EQ(triggered, c.afterTrigger);
    }
}

TEST_F(CounterTest, TheResetOnTriggerLeavesTheRepeatCountAlone)
{
    Record record;
    record.trigger = 'R';
    record.value = 5;
    record.reset = 2;
    record.duration = 2;
    AC_Counter& counter = read(record);
    counter.update(EVENT_PRINTED, 0);  // one of two
    counter.update(EVENT_TRIGGER, 0);
    EXPECT_EQ(counter.getResult(), "2");
    counter.update(EVENT_PRINTED, 0);  // two of two
    EXPECT_EQ(counter.getResult(), "3");
}

TEST_F(CounterTest, ChangesClearTheUnchangedFlagAndPaintingSetsIt)
{
    Record record;
    record.trigger = 'R';
    record.duration = 2;
    AC_Counter& counter = read(record);
    EXPECT_FALSE(counter.isUnchanged());
    counter.update(EVENT_PAINTED, 0);
    EXPECT_TRUE(counter.isUnchanged());
    counter.update(EVENT_PRINTED, 0);
    EXPECT_TRUE(counter.isUnchanged()) << "no step yet";
    counter.update(EVENT_PRINTED, 0);
    EXPECT_FALSE(counter.isUnchanged()) << "a step";
    counter.update(EVENT_PAINTED, 0);
    counter.update(EVENT_TRIGGER, 0);
    EXPECT_FALSE(counter.isUnchanged()) << "a reset";
    counter.update(EVENT_PAINTED, 0);
    counter.update(EVENT_TICK, 0);
    counter.update(EVENT_DELETE, 0);
    EXPECT_TRUE(counter.isUnchanged());
    EXPECT_EQ(counter.getResult(), "1");
}

TEST_F(CounterTest, DigitsComeFromAnyBaseWithSignAndPadding)
{
    struct Case {
        int32_t value;
        std::string base;
        Padding pad;
        std::string expected;
    };
    const Case cases[] = {
        {-5, "0123456789", padding(Padding::ALIGN_LEFT, '0', 4), "-005"},
        {-5, "0123456789", padding(Padding::ALIGN_RIGHT, '*', 4), "-5**"},
        {-5, "0123456789", {}, "-5"},
        {0, "AB", {}, "A"},
        {1, "AB", {}, "B"},
        {2, "AB", {}, "BA"},
        {5, "AB", {}, "BAB"},
        {-5, "AB", {}, "-BAB"},
        {3, "|", {}, "|||"},
        {0, "|", {}, ""},
        {-2, "|", {}, "-||"},
        {0, "|", padding(Padding::ALIGN_LEFT, '.', 3), "..."},
        {255, "0123456789ABCDEF", {}, "FF"},
        {256, "0123456789ABCDEF", {}, "100"},
        {0, "0123456789ABCDEF", {}, "0"},
        {INT_MAX, "0123456789ABCDEF", {}, "7FFFFFFF"},
        {INT_MAX, "0123456789", {}, "2147483647"},
        {INT_MAX, "AB", {}, "B" + std::string(30, 'B')},
        {1000, "012345678", {}, "1331"},
        {1000, "9876543210", {}, "8999"},  // not the decimal string: a base of its own
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.value) + " in " + c.base);
        EXPECT_EQ(makeCounter(c.value, c.base, c.pad).getResult(), c.expected);
    }
}

TEST_F(CounterTest, TheMostNegativeValueStaysNegativeWhenNegated)
{
    // Its decimal form brings its own minus, behind the sign of the padding.
    EXPECT_EQ(makeCounter(INT_MIN, "0123456789").getResult(), "--2147483648");
    EXPECT_EQ(makeCounter(INT_MIN, "0123456789", padding(Padding::ALIGN_LEFT, '0', 13)).getResult(),
              "-0-2147483648");
    EXPECT_EQ(makeCounter(INT_MIN, "|").getResult(), "-");
    EXPECT_EQ(makeCounter(INT_MIN, "0123456789ABCDEF").getResult(), "-80000000");
}

TEST_F(CounterTest, PrefixAndSuffixStandOutsideTheSign)
{
    AC_Counter counter({-5, 0, -1, 0, 1}, AC_Counter::TRIGGER_PRINT, "0123456789", "<", ">",
                       padding(Padding::ALIGN_LEFT, '0', 4));
    EXPECT_EQ(counter.getResult(), "<-005>");
}

TEST_F(CounterTest, SetAttributesValidatesBeforeChangingAnything)
{
    Record record;
    AC_Counter& counter = read(record);
    counter.update(EVENT_PAINTED, 0);
    expectFailure<KT_ERROR::illegal_content>([&] { counter.setAttributes({4, 9, 0, 1, 2}, "CLot"); },
                                             "counter: step value must not be zero");
    EXPECT_EQ(counter.getAttributes(), (CounterAttributes{1, 9, 1, 1, 1}));
    EXPECT_FALSE(counter.isUnchanged()) << "the flag is cleared before the numbers are looked at";
    counter.update(EVENT_PAINTED, 0);
    counter.setAttributes({4, 20, 3, 2, 2}, "CLot");
    EXPECT_EQ(counter.getAttributes(), (CounterAttributes{4, 20, 3, 2, 2}));
    EXPECT_FALSE(counter.isUnchanged());
}

// A store of its own in a region of 512 bytes, and the address stream of a persistent format.
class PersistentCounterTest : public testing::Test {
protected:
    AC_Counter& read(uint32_t mode, const Record& record, std::iostream* stream)
    {
        std::istringstream in(record.body());
        const std::string id = AC_Counter::readCounterRecord(in, format, mode, stream);
        return dynamic_cast<AC_Counter&>(format.getElements().getElement(id));
    }
    uint32_t fileNumber(uint32_t address)
    {
        EXPECT_EQ(fs.fileSize(address), 4u);
        uint32_t number = 0;
        fs.read(reinterpret_cast<uint8_t*>(&number), 4, address, nullptr, false);
        return number;
    }
    uint32_t newFile(uint32_t number) { return fs.create(reinterpret_cast<const uint8_t*>(&number), 4); }
    std::vector<uint32_t> streamAddresses() const
    {
        const std::string bytes = addresses.str();
        std::vector<uint32_t> result(bytes.size() / 4);
        std::memcpy(result.data(), bytes.data(), result.size() * 4);
        return result;
    }
    uint32_t usedBlocks()
    {
        std::array<uint32_t, 6> info{};
        fs.getInfo(info);
        return info[3];
    }

    SRAM::FileArray array{512};
    SimpleFS fs{array, 0, 512, true};
    Image image{32, 4};
    KT_FMT::KT_Format format{&fs, &image, nullptr};
    std::stringstream addresses;
};

TEST_F(PersistentCounterTest, StoringPutsTheFiveNumbersInFilesOfFourBytesAndTheirAddressesInOrder)
{
    Record record;
    record.value = 3;
    record.stop = 50;
    record.step = 2;
    record.duration = 1;
    record.reset = 7;
    read(STORAGE_STORE, record, &addresses);
    const std::vector<uint32_t> files = streamAddresses();
    ASSERT_EQ(files.size(), 5u);
    const std::vector<uint32_t> numbers = {3, 50, 2, 7, 1};  // value, stop, step, reset, duration
    for (size_t i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(fileNumber(files[i]), numbers[i]);
    }
}

TEST_F(PersistentCounterTest, EveryChangeOfANumberWritesThrough)
{
    Record record;
    record.trigger = 'R';
    AC_Counter& counter = read(STORAGE_STORE, record, &addresses);
    const std::vector<uint32_t> files = streamAddresses();
    counter.update(EVENT_PRINTED, 0);
    EXPECT_EQ(fileNumber(files[0]), 2u);
    counter.update(EVENT_TRIGGER, 0);
    EXPECT_EQ(fileNumber(files[0]), 1u) << "the reset";
    counter.setAttributes({4, 20, 3, 2, 6}, "CLot");
    EXPECT_EQ(fileNumber(files[0]), 4u);
    EXPECT_EQ(fileNumber(files[1]), 20u);
    EXPECT_EQ(fileNumber(files[2]), 3u);
    EXPECT_EQ(fileNumber(files[3]), 2u);
    EXPECT_EQ(fileNumber(files[4]), 6u);
}

TEST_F(PersistentCounterTest, ARestoredCounterTakesItsNumbersFromTheStoreAndTheRestFromItsRecord)
{
    for (uint32_t number : {12u, 90u, 3u, 5u, 2u})
        KT_AC::writeAddress(addresses, newFile(number));
    Record record;
    record.prefix = "L";
    AC_Counter& counter = read(STORAGE_RESTORE, record, &addresses);
    EXPECT_EQ(counter.getAttributes(), (CounterAttributes{12, 90, 3, 5, 2}));
    EXPECT_EQ(counter.getResult(), "L12");
    counter.update(EVENT_PRINTED, 0);
    counter.update(EVENT_PRINTED, 0);
    EXPECT_EQ(fileNumber(streamAddresses()[0]), 15u) << "two prints of duration 2 make one step of 3";
}

TEST_F(PersistentCounterTest, ARestoredCounterIsValidatedOnTheNumbersOfTheStore)
{
    // The record's numbers would run, those of the store have a step of 0.
    for (uint32_t number : {1u, 9u, 0u, 1u, 1u})
        KT_AC::writeAddress(addresses, newFile(number));
    std::istringstream in(Record().body());
    expectFailure<KT_ERROR::illegal_content>(
        [&] { AC_Counter::readCounterRecord(in, format, STORAGE_RESTORE, &addresses); },
        "counter: step value must not be zero");
    EXPECT_EQ(format.getElements().size(), 0u);
    // And a record whose numbers wouldn't run restores numbers that do.
    std::stringstream good;
    for (uint32_t number : {1u, 9u, 1u, 1u, 1u})
        KT_AC::writeAddress(good, newFile(number));
    Record refused;
    refused.step = 0;
    EXPECT_EQ(read(STORAGE_RESTORE, refused, &good).getAttributes(), (CounterAttributes{1, 9, 1, 1, 1}));
}

TEST_F(PersistentCounterTest, DeletingRemovesTheFiveFilesAndLaterCountsStayInMemory)
{
    AC_Counter& counter = read(STORAGE_STORE, Record(), &addresses);
    const std::vector<uint32_t> files = streamAddresses();
    EXPECT_EQ(usedBlocks(), 5u);
    counter.update(EVENT_DELETE, 0);
    EXPECT_EQ(usedBlocks(), 0u);
    counter.update(EVENT_PRINTED, 0);
    EXPECT_EQ(counter.getResult(), "2");
    EXPECT_EQ(usedBlocks(), 0u);
    counter.update(EVENT_DELETE, 0);
    EXPECT_EQ(usedBlocks(), 0u) << "a second delete finds nothing to remove";
}

TEST_F(PersistentCounterTest, AFileOfAnotherSizeFailsOutsideTheFormatFamily)
{
    KT_AC::writeAddress(addresses, newFile(1));
    const uint8_t five[5] = {1, 0, 0, 0, 0};
    KT_AC::writeAddress(addresses, fs.create(five, 5));
    std::istringstream in(Record().body());
    try {
        AC_Counter::readCounterRecord(in, format, STORAGE_RESTORE, &addresses);
        ADD_FAILURE() << "no exception";
    } catch (const KT_ERROR::kt_exception&) {
        ADD_FAILURE() << "an exception of the format family";
    } catch (const std::exception& error) {
        EXPECT_EQ(std::string(error.what()), "Size in SRAM doesn't match");
    }
}

TEST_F(PersistentCounterTest, WithoutAnAddressStreamBothModesFail)
{
    std::istringstream store(Record().body());
    expectFailure<KT_ERROR::kt_exception>(
        [&] { AC_Counter::readCounterRecord(store, format, STORAGE_STORE, nullptr); },
        "sram address stream is NULL when storing counter");
    std::istringstream restore(Record().body());
    expectFailure<KT_ERROR::kt_exception>(
        [&] { AC_Counter::readCounterRecord(restore, format, STORAGE_RESTORE, nullptr); },
        "sram address stream is NULL when restoring counter");
    EXPECT_EQ(usedBlocks(), 0u);
}

TEST_F(PersistentCounterTest, AFormatStoredAndParsedAgainFromItsAddressesContinuesItsCounter)
{
    const std::string text = "NAME      \x1bVI" "Batch\x0b" "B1\x0b" "P\x0b" "0 00000010\x0b\x0b\x1bVC" + Record().body() + "\xff";
    std::istringstream first(text);
    format.parse(first, &addresses, STORAGE_STORE);
    format.getElements().getElement("CLot").update(EVENT_PRINTED, 0);
    format.setContentOfElement("VIBatch", "B7");
    ASSERT_EQ(addresses.str().size(), 24u) << "one address for the variable and five for the counter";

    KT_FMT::KT_Format again(&fs, &image, nullptr);
    std::istringstream second(text);
    std::stringstream stream(addresses.str());
    again.parse(second, &stream, STORAGE_RESTORE);
    EXPECT_EQ(again.getElements().getElement("CLot").getResult(), "2");
    EXPECT_EQ(again.getElements().getElement("IBatch").getResult(), "B7");
}

TEST_F(CounterTest, TheParserReadsACounterRecord)
{
    std::istringstream in("NAME      \x1bVC" + Record().body() + "\xff");
    format.parse(in, nullptr, 0);
    EXPECT_EQ(format.getElements().getElement("CLot").getResult(), "1");
    EXPECT_TRUE(format.getElements().getElement("CLot").isUnchanged());
}
