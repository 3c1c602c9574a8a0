#pragma once
#include <cstdint>
#include <iosfwd>
#include <string>

#include "autocode/AC_Element.h"
#include "autocode/CounterAttributes.h"
#include "autocode/Padding.h"
#include "autocode/PersistentNumber.h"

namespace KT_FMT {
class KT_Format;
}

namespace KT_AC {

// A number that advances with prints or triggers, written in digits of any base string.
class AC_Counter : public AC_Element {
public:
    enum Trigger : uint8_t { TRIGGER_PRINT = 0, TRIGGER_PRINT_RESET = 1, TRIGGER_TRIGGER = 2 };

    AC_Counter(const CounterAttributes& attributes, Trigger trigger, std::string baseSymbols, std::string prefix,
               std::string suffix, Padding padding);

    // Reads the body of an ESC V C record, adds the counter to the format and returns its id.
    static std::string readCounterRecord(std::istream& stream, KT_FMT::KT_Format& format, uint32_t storageMode,
                                         std::iostream* addressStream);

    std::string getResult() const override;
    void update(uint32_t event, uint32_t argument) override;
    bool isUnchanged() const override;

    CounterAttributes getAttributes() const;
    // Validates before it changes anything, but counts as a change even when the numbers are refused.
    void setAttributes(const CounterAttributes& attributes, const std::string& id);

    // Fails unless step, stop and reset let the counter run.
    static void validate(const CounterAttributes& attributes);

private:
    // Applies `action` to the five numbers in the order of the store's files and of the address stream.
    template <class Action>
    void forEachNumber(Action action)
    {
        action(value);
        action(stop);
        action(step);
        action(reset);
        action(duration);
    }
    // Validates, then takes the five numbers.
    void assign(const CounterAttributes& attributes);
    void count();
    std::string digits(int32_t v) const;

    PersistentNumber<int32_t> value;
    PersistentNumber<int32_t> stop;
    PersistentNumber<int32_t> step;
    PersistentNumber<int32_t> reset;
    PersistentNumber<uint32_t> duration;
    Trigger trigger;
    std::string baseSymbols;
    std::string prefix;
    std::string suffix;
    Padding padding;
    bool unchanged = false;
    uint32_t repeat = 0;
};

}  // namespace KT_AC
