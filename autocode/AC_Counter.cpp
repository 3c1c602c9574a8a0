#include "autocode/AC_Counter.h"

#include <algorithm>
#include <istream>
#include <memory>
#include <utility>

#include "autocode/AddressStream.h"
#include "autocode/StorageMode.h"
#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "format/RecordDispatch.h"

namespace KT_AC {

namespace {

constexpr char decimalSymbols[] = "0123456789";

AC_Counter::Trigger readTrigger(std::istream& stream)
{
    const char c = KT_FMT::readByte(stream);
    switch (c) {
    case 'S':
        return AC_Counter::TRIGGER_PRINT;
    case 'R':
        return AC_Counter::TRIGGER_PRINT_RESET;
    case 'T':
        return AC_Counter::TRIGGER_TRIGGER;
    default:
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text(
            "malformed trigger type while parsing counter; expected 'S', 'T' or 'R' but got '", c, "'"));
    }
}

uint32_t readDuration(std::istream& stream)
{
    const int32_t duration = KT_FMT::readNumber(stream, 9, true);
    if (duration < 0)
        throw KT_ERROR::bad_escape_sequence(
            KT_ERROR::text("counter must not have negative duration, got: ", duration));
    return static_cast<uint32_t>(duration);
}

// The counter's padding has an alignment message of its own.
Padding readCounterPadding(std::istream& stream)
{
    Padding padding;
    const char c = KT_FMT::readByte(stream);
    switch (c) {
    case '0':
        padding.alignment = Padding::ALIGN_NONE;
        break;
    case 'L':
        padding.alignment = Padding::ALIGN_LEFT;
        break;
    case 'R':
        padding.alignment = Padding::ALIGN_RIGHT;
        break;
    default:
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text(
            "malformed alignment while parsing counter; expected '0', 'L' or 'R' but got '", c, "'"));
    }
    padding.padCharacter = KT_FMT::readByte(stream);
    // A negative width pads nothing, as in every other padding field.
    const int32_t width = KT_FMT::readNumber(stream, 4, true);
    padding.width = width < 0 ? 0 : static_cast<uint32_t>(width);
    return padding;
}

}  // namespace

AC_Counter::AC_Counter(const CounterAttributes& attributes, Trigger trigger, std::string baseSymbols,
                       std::string prefix, std::string suffix, Padding padding)
    : trigger(trigger),
      baseSymbols(std::move(baseSymbols)),
      prefix(std::move(prefix)),
      suffix(std::move(suffix)),
      padding(padding)
{
    assign(attributes);
}

std::string AC_Counter::readCounterRecord(std::istream& stream, KT_FMT::KT_Format& format, uint32_t storageMode,
                                          std::iostream* addressStream)
{
    using KT_FMT::readDelimited;
    using KT_FMT::readNumber;
    const std::string id = "C" + readDelimited(stream, KT_FMT::VT);
    const Trigger trigger = readTrigger(stream);
    CounterAttributes attributes;
    attributes.value = readNumber(stream, 9, true);
    attributes.stop = readNumber(stream, 9, true);
    attributes.step = readNumber(stream, 9, true);
    attributes.duration = readDuration(stream);
    attributes.reset = readNumber(stream, 9, true);
    std::string baseSymbols = readDelimited(stream, KT_FMT::VT);
    if (baseSymbols.empty())
        baseSymbols = decimalSymbols;
    const Padding padding = readCounterPadding(stream);
    std::string prefix = readDelimited(stream, KT_FMT::VT);
    std::string suffix = readDelimited(stream, KT_FMT::VT);
    if (storageMode == STORAGE_STORE && addressStream == nullptr)
        throw KT_ERROR::kt_exception("sram address stream is NULL when storing counter");
    if (storageMode == STORAGE_RESTORE && addressStream == nullptr)
        throw KT_ERROR::kt_exception("sram address stream is NULL when restoring counter");
    std::unique_ptr<AC_Counter> counter;
    if (storageMode == STORAGE_RESTORE) {
        // The numbers of the store stand for those of the record, and they are what is validated.
        counter = std::make_unique<AC_Counter>(CounterAttributes{0, 0, 1, 0, 0}, trigger, std::move(baseSymbols),
                                               std::move(prefix), std::move(suffix), padding);
        counter->forEachNumber(
            [&](auto& number) { number.restoreFrom(*format.getFileSystem(), readAddress(*addressStream)); });
        validate(counter->getAttributes());
    } else {
        counter = std::make_unique<AC_Counter>(attributes, trigger, std::move(baseSymbols), std::move(prefix),
                                               std::move(suffix), padding);
    }
    if (storageMode == STORAGE_STORE) {
        counter->forEachNumber([&](auto& number) { number.createIn(*format.getFileSystem()); });
        counter->forEachNumber([&](auto& number) { writeAddress(*addressStream, number.address); });
    }
    format.getElements().addElement(id, std::move(counter));
    return id;
}

void AC_Counter::validate(const CounterAttributes& attributes)
{
    if (attributes.step == 0)
        throw KT_ERROR::illegal_content("counter: step value must not be zero");
    if (attributes.step > 0 && attributes.stop < attributes.reset)
        throw KT_ERROR::illegal_content(KT_ERROR::text("counter: stop value(", attributes.stop,
                                                       ") less than reset value(", attributes.reset,
                                                       ") with positive counting"));
    if (attributes.step < 0 && attributes.stop > attributes.reset)
        throw KT_ERROR::illegal_content(KT_ERROR::text("counter: stop value(", attributes.stop,
                                                       ") greater than reset value(", attributes.reset,
                                                       ") with negative counting"));
}

std::string AC_Counter::getResult() const
{
    if (baseSymbols.empty())
        throw KT_ERROR::internal_autocode_error("counter has empty number base string");
    const bool negative = value.value < 0;
    // Negation in 32 bits: the most negative value has no positive form and stays negative.
    const auto v = static_cast<int32_t>(negative ? 0u - static_cast<uint32_t>(value.value)
                                                 : static_cast<uint32_t>(value.value));
    // One text of the final length: a tally can be a gigabyte, and growing one in place doubles it.
    std::string shown = padding.apply(digits(v), negative);
    if (prefix.empty() && suffix.empty())
        return shown;
    std::string result;
    result.reserve(prefix.size() + shown.size() + suffix.size());
    result.append(prefix).append(shown).append(suffix);
    return result;
}

std::string AC_Counter::digits(int32_t v) const
{
    // Deliberate: the most negative value prints its own minus behind the sign, "--2147483648".
    if (baseSymbols == decimalSymbols)
        return std::to_string(v);
    // A tally; the most negative value makes no marks.
    if (baseSymbols.size() == 1) {
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
        // A tally has no limit and costs a byte a mark; a fuzz run stops at 100000 so that it keeps moving.
        v = std::min(v, 100000);
#endif
        return std::string(v > 0 ? static_cast<size_t>(v) : 0, baseSymbols[0]);
    }
    // Read unsigned, the most negative value gets the digits of 2147483648 instead of a symbol out of range.
    const uint64_t magnitude = static_cast<uint32_t>(v);
    const uint64_t base = baseSymbols.size();
    // Wider than the value, so that the search for the highest power can't overflow.
    uint64_t power = 1;
    while (power * base <= magnitude)
        power *= base;
    std::string result;
    uint64_t rest = magnitude;
    for (; power >= 2; power /= base) {
        result.push_back(baseSymbols[rest / power]);
        rest %= power;
    }
    result.push_back(baseSymbols[rest]);
    return result;
}

void AC_Counter::update(uint32_t event, uint32_t)
{
    switch (event) {
    case EVENT_PAINTED:
        unchanged = true;
        break;
    case EVENT_PRINTED:
        if (trigger != TRIGGER_TRIGGER)
            count();
        break;
    case EVENT_TRIGGER:
        if (trigger == TRIGGER_TRIGGER) {
            count();
        } else if (trigger == TRIGGER_PRINT_RESET) {
            value.set(reset.value);
            unchanged = false;
        }
        break;
    case EVENT_DELETE:
        forEachNumber([](auto& number) { number.forget(); });
        break;
    default:
        break;
    }
}

void AC_Counter::count()
{
    if (++repeat < duration.value)
        return;
    repeat = 0;
    // In 64 bits, so that a step past the end of the 32-bit range counts as passing the stop.
    int64_t next = static_cast<int64_t>(value.value) + step.value;
    if ((step.value > 0 && next > stop.value) || (step.value < 0 && next < stop.value))
        next = reset.value;
    value.set(static_cast<int32_t>(next));
    unchanged = false;
}

bool AC_Counter::isUnchanged() const { return unchanged; }

void AC_Counter::assign(const CounterAttributes& attributes)
{
    validate(attributes);
    value.set(attributes.value);
    stop.set(attributes.stop);
    step.set(attributes.step);
    reset.set(attributes.reset);
    duration.set(attributes.duration);
}

CounterAttributes AC_Counter::getAttributes() const
{
    return {value.value, stop.value, step.value, reset.value, duration.value};
}

void AC_Counter::setAttributes(const CounterAttributes& attributes, const std::string&)
{
    unchanged = false;
    assign(attributes);
}

}  // namespace KT_AC
