#pragma once
#include <array>
#include <string>

#include "format/gs1/GS1Identifiers.h"

namespace KT_FMT {

// Results of `ai_number_replace`.
inline constexpr int AI_REPLACED = 0;
inline constexpr int AI_NOT_FOUND = 1;
inline constexpr int AI_END_IN_IDENTIFIER = 2;
inline constexpr int AI_VARIABLE_TOO_LONG = 3;
inline constexpr int AI_LENGTH_EXCEEDED = 5;

// The process-wide identifier table, which every format construction fills.
extern std::array<GS1Identifier, GS1_TABLE_ROWS> gs1Table;
void fillGS1Table();

// Rewrites a GS1 element string as a scanner reads it ("01...10...\<FNC1>21...") into the bracket
// notation of the symbol library ("[01]...[10]...[21]..."). On a result other than 0 the text stands as far
// as it got.
int ai_number_replace(std::string& text, std::string separatorText, std::string openBracket);

}  // namespace KT_FMT
