#include "format/gs1/AiNumberReplace.h"

#include <optional>

namespace KT_FMT {

std::array<GS1Identifier, GS1_TABLE_ROWS> gs1Table{};

void fillGS1Table()
{
    gs1Table = gs1Identifiers;
}

namespace {

// The byte before each separator is the backslash of its content escape; it goes with it.
void replaceSeparators(std::string& text, const std::string& separatorText, const std::string& openBracket)
{
    for (size_t p = text.find(separatorText); p != std::string::npos; p = text.find(separatorText))
        text.replace(p - 1, separatorText.size() + 1, openBracket);
}

// Walks a variable field from its "]" to the end of the text or the next "[". The "]" counts as one,
// so a field holds at most dataLength - 1 bytes: deliberate.
// Gives a result if the field ends the rewrite, none if it stops at a "[".
std::optional<int> skipVariableField(const std::string& text, const GS1Identifier& row, size_t& q)
{
    for (uint32_t k = 0;; ++q, ++k) {
        if (k > row.dataLength)
            return AI_VARIABLE_TOO_LONG;
        if (q == text.size())
            return AI_REPLACED;
        if (text[q] == '[')
            return std::nullopt;
    }
}

}  // namespace

int ai_number_replace(std::string& text, std::string separatorText, std::string openBracket)
{
    replaceSeparators(text, separatorText, openBracket);
    if (text.empty() || text[0] != '[')
        text.insert(0, "[");
    size_t p = 1;
    uint32_t i = 0;
    while (i < GS1_TABLE_ROWS) {
        const GS1Identifier& row = gs1Table[i];
        if (text.compare(p, row.ai.size(), row.ai) != 0) {
            ++i;
            continue;
        }
        const size_t e = p + (row.prefixOnly ? row.codeLength : row.ai.size());
        if (e > text.size())
            return AI_END_IN_IDENTIFIER;
        text.insert(e, "]");
        size_t q = e;
        if (row.HasVariableLength) {
            if (const std::optional<int> ended = skipVariableField(text, row, q))
                return *ended;
        } else {
            q = e + row.dataLength + 1;
            if (q == text.size())
                return AI_REPLACED;
            if (q > text.size())
                return AI_LENGTH_EXCEEDED;
            text.insert(q, "[");
        }
        p = q + 1;
        if (p >= text.size())
            return AI_LENGTH_EXCEEDED;
        // The search goes on from row 1, so identifier 00 is found only at the start: deliberate.
        i = 1;
    }
    return AI_NOT_FOUND;
}

}  // namespace KT_FMT
