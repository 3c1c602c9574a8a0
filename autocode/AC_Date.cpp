#include "autocode/AC_Date.h"

#include <cmath>
#include <istream>
#include <memory>
#include <utility>

#include "autocode/DateClock.h"
#include "autocode/DateFormat.h"
#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "format/RecordDispatch.h"

namespace KT_AC {

namespace {

constexpr int32_t secondsPerDay = 86400;

// An element's value truncated to an integer and kept in 16 bits, as the offset field holds it.
int16_t toOffset(double value)
{
    if (!std::isfinite(value))
        return 0;
    return static_cast<int16_t>(static_cast<int32_t>(std::fmod(std::trunc(value), 65536.0)));
}

int16_t readOffset(std::istream& stream) { return static_cast<int16_t>(KT_FMT::readNumber(stream, 3, true)); }

AC_Date::Offsets readFixedOffsets(std::istream& stream)
{
    AC_Date::Offsets offsets{};
    offsets[AC_Date::OFFSET_DAYS] = readOffset(stream);
    offsets[AC_Date::OFFSET_MONTHS] = readOffset(stream);
    offsets[AC_Date::OFFSET_YEARS] = readOffset(stream);
    return offsets;
}

AC_Date::Offsets readAllOffsets(std::istream& stream)
{
    AC_Date::Offsets offsets = readFixedOffsets(stream);
    offsets[AC_Date::OFFSET_SECONDS] = readOffset(stream);
    offsets[AC_Date::OFFSET_MINUTES] = readOffset(stream);
    offsets[AC_Date::OFFSET_HOURS] = readOffset(stream);
    return offsets;
}

// '-' to '2' name seconds to years. Nothing else is checked: a unit beyond them moves nothing.
uint32_t readOffsetUnit(std::istream& stream)
{
    return static_cast<uint32_t>(static_cast<unsigned char>(KT_FMT::readByte(stream)) - '-');
}

}  // namespace

AC_Date::AC_Date(std::string dateFormat, std::string offsetSource, uint32_t variableOffsetIndex,
                 const Offsets& offsets)
    : date_format(std::move(dateFormat)),
      offsetSource(std::move(offsetSource)),
      variableOffsetIndex(variableOffsetIndex),
      date_field_offset(offsets)
{
}

bool AC_Date::hasFixedOffsets() const { return offsetSource == "F" || offsetSource == "O"; }

AC_Date::Offsets AC_Date::currentOffsets() const
{
    if (hasFixedOffsets())
        return date_field_offset;
    Offsets offsets{};
    // An offset element that leads back to this date would recurse without end: a tree too deep.
    if (evaluating)
        failTooDeep();
    evaluating = true;
    const struct Done {
        bool& flag;
        ~Done() { flag = false; }
    } done{evaluating};
    const int16_t offset = toOffset(lookup(offsetSource).toNumber());
    if (variableOffsetIndex < offsets.size())
        offsets[variableOffsetIndex] = offset;
    return offsets;
}

std::string AC_Date::getResult() const
{
    const Offsets offsets = currentOffsets();
    std::tm fields{};
    if (!breakTime(now, fields))
        throw KT_ERROR::internal_autocode_error("retrieving local time data failed");
    addOffsets(fields, offsets);
    return formatDate(date_format, fields);
}

void AC_Date::addOffsets(std::tm& fields, Offsets offsets)
{
    fields.tm_hour += offsets[OFFSET_HOURS];
    fields.tm_hour += offsets[OFFSET_MINUTES] / 60;
    fields.tm_min += offsets[OFFSET_MINUTES] % 60;
    // Deliberate: the whole minutes of the seconds offset land in the seconds, not in the minutes.
    fields.tm_sec += offsets[OFFSET_SECONDS] / 60;
    fields.tm_sec += offsets[OFFSET_SECONDS] % 60;
    if (fields.tm_sec > 59) {
        fields.tm_sec -= 60;
        fields.tm_min += 1;
    }
    if (fields.tm_min > 59) {
        fields.tm_min -= 60;
        fields.tm_hour += 1;
    }
    // Deliberate: an overflowing hour becomes -24 and moves the date by a month; hour 24 itself stays.
    if (fields.tm_hour > 24) {
        fields.tm_hour = -24;
        offsets[OFFSET_MONTHS] = static_cast<int16_t>(offsets[OFFSET_MONTHS] + 1);
    }
    fields.tm_year += offsets[OFFSET_YEARS];
    fields.tm_year += offsets[OFFSET_MONTHS] / 12;
    fields.tm_mon += offsets[OFFSET_MONTHS] % 12;
    if (fields.tm_mon > 11) {
        fields.tm_mon -= 12;
        fields.tm_year += 1;
    }
    if (fields.tm_mon < 0) {
        fields.tm_mon += 12;
        fields.tm_year -= 1;
    }
    // Deliberate: the leap rule is put on the year since 1900.
    const int32_t lastDay = monthLength(fields.tm_year, fields.tm_mon);
    if (fields.tm_mday > lastDay)
        fields.tm_mday = lastDay;
    if (offsets[OFFSET_DAYS] == 0)
        return;
    // Deliberate: the product is unsigned, so a negative days offset moves the date far forward.
    const auto shift = static_cast<uint32_t>(static_cast<int64_t>(offsets[OFFSET_DAYS]) * secondsPerDay);
    if (!breakTime(joinTime(fields) + shift, fields))
        throw KT_ERROR::internal_autocode_error("retrieving local time data after offset addition failed");
}

void AC_Date::update(uint32_t event, uint32_t)
{
    if (event == EVENT_PAINTED)
        snapshot = getResult();
}

uint32_t AC_Date::checkDepth(uint32_t level) const
{
    checkDepthLimit(level);
    if (hasFixedOffsets())
        return level + 1;
    return lookup(offsetSource).checkDepth(level + 1);
}

bool AC_Date::isUnchanged() const { return getResult() == snapshot; }

std::string readDateRecord(std::istream& stream, KT_FMT::KT_Format& format)
{
    const std::string id = "D" + KT_FMT::readDelimited(stream, KT_FMT::VT);
    std::string dateFormat = KT_FMT::readDelimited(stream, KT_FMT::VT);
    std::unique_ptr<AC_Date> date;
    switch (const char kind = KT_FMT::readByte(stream)) {
    case 'F':
    case 'O': {
        const AC_Date::Offsets offsets = kind == 'F' ? readFixedOffsets(stream) : readAllOffsets(stream);
        date = std::make_unique<AC_Date>(std::move(dateFormat), std::string(1, kind), 0, offsets);
        break;
    }
    case 'V': {
        std::string source = KT_FMT::readDelimited(stream, KT_FMT::VT);
        const uint32_t index = readOffsetUnit(stream);
        date = std::make_unique<AC_Date>(std::move(dateFormat), std::move(source), index, AC_Date::Offsets{});
        break;
    }
    default:
        throw KT_ERROR::bad_escape_sequence("Missing F or V or O character");
    }
    format.getElements().addElement(id, std::move(date));
    return id;
}

}  // namespace KT_AC
