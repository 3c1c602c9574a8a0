#pragma once
#include <array>
#include <cstdint>
#include <ctime>
#include <iosfwd>
#include <string>

#include "autocode/AC_Element.h"

namespace KT_FMT {
class KT_Format;
}

namespace KT_AC {

// The present moment, moved by an offset and printed by a date format. The offsets are fixed in
// the record or, for one field, taken from another element at each evaluation.
class AC_Date : public AC_Element {
public:
    enum OffsetField : uint32_t {
        OFFSET_SECONDS,
        OFFSET_MINUTES,
        OFFSET_HOURS,
        OFFSET_DAYS,
        OFFSET_MONTHS,
        OFFSET_YEARS
    };
    using Offsets = std::array<int16_t, 6>;

    // `offsetSource` is "F" or "O" for fixed offsets, or the id of the element that gives one.
    AC_Date(std::string dateFormat, std::string offsetSource, uint32_t variableOffsetIndex, const Offsets& offsets);

    std::string getResult() const override;
    void update(uint32_t event, uint32_t argument) override;
    uint32_t checkDepth(uint32_t level) const override;
    bool isUnchanged() const override;

    const std::string& getDateFormat() const { return date_format; }
    const std::string& getOffsetSource() const { return offsetSource; }
    uint32_t getVariableOffsetIndex() const { return variableOffsetIndex; }
    const Offsets& getOffsets() const { return date_field_offset; }

    // Moves broken-down time by the offsets in the order of the old devices, with their oddities.
    static void addOffsets(std::tm& fields, Offsets offsets);

private:
    bool hasFixedOffsets() const;
    Offsets currentOffsets() const;

    std::string date_format;
    std::string snapshot;
    std::string offsetSource;
    uint32_t variableOffsetIndex;
    Offsets date_field_offset;
    // Set while the offset element is asked, so that one leading back to this date is caught.
    mutable bool evaluating = false;
};

// Reads the body of an ESC V D record, adds the date to the format and returns its id.
std::string readDateRecord(std::istream& stream, KT_FMT::KT_Format& format);

}  // namespace KT_AC
