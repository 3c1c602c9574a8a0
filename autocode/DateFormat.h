#pragma once
#include <ctime>
#include <string>

namespace KT_AC {

// Closes a text inside a date format.
inline constexpr char ETX = 0x03;

// Prints the fields by a format of two-digit codes. The week codes normalise the fields in place,
// so that the codes behind them see the normalised date.
std::string formatDate(const std::string& dateFormat, std::tm& fields);

}  // namespace KT_AC
