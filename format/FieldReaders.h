#pragma once
#include <cstdint>
#include <istream>
#include <string>

#include "autocode/Padding.h"

namespace KT_FMT {

class KT_Format;

// A decimal field of exactly `width` bytes. The sign test is loose on purpose: one sign may
// stand anywhere, and once it has been seen any other byte passes as well.
int32_t readNumber(std::istream& stream, uint32_t width, bool signAllowed);
bool readFlag(std::istream& stream);
int32_t readOrientation(std::istream& stream);
// The bytes up to the delimiter, which is consumed and not returned.
std::string readDelimited(std::istream& stream, char delimiter);
// 'V' names an element; 'F' brings literal text, which becomes a fixed string under a generated id.
std::string readContentField(std::istream& stream, KT_Format& format);
KT_AC::Padding readPadding(std::istream& stream);

float textToFloat(const std::string& text);
std::string floatToText(float value);

}  // namespace KT_FMT
