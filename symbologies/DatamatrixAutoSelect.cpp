#include "symbologies/DatamatrixAutoSelect.h"

#include <algorithm>
#include <cmath>

#include "errors/KT_Error.h"
#include "symbologies/DatamatrixC40Tables.h"
#include "symbologies/DatamatrixSizes.h"

namespace {

constexpr uint32_t longestB256Block = 1555;
constexpr uint32_t fnc1Token = static_cast<uint32_t>(-24);

bool isDigit(uint32_t c) { return c >= '0' && c <= '9'; }
bool isUpper(uint32_t c) { return c >= 'A' && c <= 'Z'; }
bool isLower(uint32_t c) { return c >= 'a' && c <= 'z'; }
bool isExtended(uint32_t c) { return c >= 128 && c <= 255; }
bool isX12Own(uint32_t c) { return c == '\r' || c == '*' || c == '>'; }
bool isC40Core(uint32_t c) { return c == ' ' || isDigit(c) || isUpper(c); }

// Grows a capacity to that of the first square size that holds it. A square's stays as it is, and so do
// the rectangles' 5 and 22; the other rectangles' grow, 10 to 12 for one.
uint32_t squareCapacity(uint32_t capacity)
{
    for (int32_t row = 0; row < datamatrixSquareRows; ++row)
        if (static_cast<uint32_t>(datamatrixSizes[static_cast<size_t>(row)].dataWords) >= capacity)
            return static_cast<uint32_t>(datamatrixSizes[static_cast<size_t>(row)].dataWords);
    return capacity;
}

}  // namespace

void DatamatrixAutoSelect::begin(const std::vector<int32_t>& tokens, std::vector<uint8_t>& codewords)
{
    this->tokens = &tokens;
    this->codewords = &codewords;
    codewords.clear();
    codewords.reserve(2 * tokens.size());
}

int32_t DatamatrixAutoSelect::encode(const std::vector<int32_t>& tokens, std::vector<uint8_t>& codewords,
                                     uint32_t capacity)
{
    begin(tokens, codewords);
    State state;
    state.capacity = capacity;
    while (state.pos < tokenCount()) {
        if (count() >= state.capacity)
            state.capacity = squareCapacity(state.capacity);
        switch (state.mode) {
        case ASCII:
            stepAscii(state);
            break;
        case EDIFACT:
            stepEdifact(state);
            break;
        case BASE256:
            if (!stepBase256(state))
                return -1;
            break;
        default:
            stepC40(state);
        }
    }
    if (state.mode == BASE256)
        return flushB256(state.b256Start, state.b256Length) ? 0 : -1;
    // Deliberately against the capacity given, 3 for a fresh symbol of automatic size: there a run is
    // left open before the padding.
    if (state.mode != ASCII && count() < state.capacity)
        emit(254);
    return 0;
}

int32_t DatamatrixAutoSelect::encodeAllB256(const std::vector<int32_t>& tokens, std::vector<uint8_t>& codewords,
                                            uint32_t)
{
    begin(tokens, codewords);
    for (uint32_t pos = 0; pos < tokenCount(); ++pos)
        if (!flushB256(pos, 1))
            return -1;
    return 0;
}

int32_t DatamatrixAutoSelect::lookAhead(uint32_t pos, int32_t mode) const
{
    Costs costs = mode == ASCII ? Costs{0, 1, 1, 1, 1, 1.25f} : Costs{1, 2, 2, 2, 2, 2.25f};
    if (mode != ASCII) {
        float* current[] = {&costs.ascii, &costs.c40, &costs.text, &costs.x12, &costs.edf, &costs.b256};
        *current[mode] = 0;
    }
    for (uint32_t p = pos; p < tokenCount(); ++p) {
        costs.add(static_cast<uint32_t>((*tokens)[p]));
        if (p - pos <= 3)
            continue;
        const auto [ascii, c40, text, x12, edf, b256] = costs;
        if (c40 >= ascii + 1 && text >= ascii + 1 && x12 >= ascii + 1 && edf >= ascii + 1 && b256 >= ascii + 1)
            return ASCII;
        if (ascii >= b256 + 1 || (c40 > b256 + 1 && text > b256 + 1 && x12 > b256 + 1 && edf > b256 + 1))
            return BASE256;
        // Deliberately Base 256 where EDIFACT wins: the selection never enters EDIFACT.
        if (ascii > edf + 1 && c40 > edf + 1 && text > edf + 1 && x12 > edf + 1 && b256 > edf + 1)
            return BASE256;
        if (ascii > text + 1 && c40 > text + 1 && x12 > text + 1 && edf > text + 1 && b256 > text + 1)
            return TEXT;
        if (ascii > x12 + 1 && c40 > x12 + 1 && text > x12 + 1 && edf > x12 + 1 && b256 > x12 + 1)
            return X12;
        if (ascii > c40 + 1 && b256 > c40 + 1 && edf > c40 + 1 && text > c40 + 1 && x12 >= c40)
            return x12 > c40 ? C40 : firstX12OrC40(p + 1);
    }
    return costs.closingMode();
}

// Each step adds a double constant and keeps a float, as the thresholds of the look-ahead expect.
void DatamatrixAutoSelect::Costs::add(uint32_t c)
{
    if (isDigit(c))
        ascii += 0.5;
    else
        ascii = std::ceil(ascii) + (isExtended(c) ? 2 : 1);
    c40 += isC40Core(c) ? 0.66 : isExtended(c) ? 2.66 : 1.33;
    text += (c == ' ' || isDigit(c) || isLower(c)) ? 0.66 : isExtended(c) ? 2.66 : 1.33;
    x12 += (isX12Own(c) || isC40Core(c)) ? 0.66 : isExtended(c) ? 4.33 : 3.33;
    edf += (c >= 32 && c <= 94) ? 0.75 : isExtended(c) ? 4.25 : 3.25;
    b256 += c < 256 ? 1 : 4;
}

int32_t DatamatrixAutoSelect::Costs::closingMode() const
{
    const float rounded[] = {std::ceil(ascii), std::ceil(c40), std::ceil(text),
                             std::ceil(x12),   std::ceil(edf), std::ceil(b256)};
    const float least = *std::min_element(std::begin(rounded), std::end(rounded));
    if (least == rounded[ASCII])
        return ASCII;
    if (least == rounded[BASE256] || least == rounded[EDIFACT])
        return BASE256;
    if (least == rounded[TEXT])
        return TEXT;
    if (least == rounded[X12])
        return X12;
    return C40;
}

// At equal C40 and X12 costs the first character that only one of them writes well decides.
int32_t DatamatrixAutoSelect::firstX12OrC40(uint32_t from) const
{
    for (uint32_t q = from; q < tokenCount(); ++q) {
        const auto c = static_cast<uint32_t>((*tokens)[q]);
        if (isX12Own(c))
            return X12;
        if (!isC40Core(c))
            return C40;
    }
    return C40;
}

void DatamatrixAutoSelect::stepAscii(State& state)
{
    const std::vector<int32_t>& all = *tokens;
    const int32_t token = all[state.pos];
    const auto c = static_cast<uint32_t>(token);
    if (state.pos + 1 < tokenCount() && isDigit(c) && isDigit(static_cast<uint32_t>(all[state.pos + 1]))) {
        emit((c - '0') * 10 + static_cast<uint32_t>(all[state.pos + 1] - '0') + 130);
        state.pos += 2;
        return;
    }
    if (c < 256) {
        const int32_t target = lookAhead(state.pos, ASCII);
        if (target != ASCII) {
            static constexpr uint32_t latches[] = {0, 230, 239, 238, 240};
            if (target == BASE256) {
                state.b256Start = state.pos;
                state.b256Length = 0;
            } else {
                emit(latches[target]);
                state.latchPos = state.pos;
            }
            state.mode = target;
            return;
        }
        if (isExtended(c)) {
            emit(235);
            emit(c - 127);
        } else {
            emit(c + 1);
        }
    } else if (token >= -256 && token <= -1) {
        emit(c & 0xFF);
    } else {
        emitPacked(c);
    }
    ++state.pos;
}

void DatamatrixAutoSelect::emitPacked(uint32_t token)
{
    uint32_t emitted = 0;
    do {
        emit(token & 0xFF);
        token >>= 8;
        ++emitted;
    } while (token != 0 || emitted < 2);
}

void DatamatrixAutoSelect::stepC40(State& state)
{
    if (lookAhead(state.pos, state.mode) != state.mode) {
        unlatchC40(state);
        return;
    }
    const uint32_t free = state.capacity - count();
    const uint32_t consumed = encodeC40(state.pos, free, state.mode);
    state.pos += consumed;
    if (consumed != 0)
        return;
    if (free == 1 && tokenCount() - state.pos == 1 && (*tokens)[state.pos] < 128)
        state.mode = ASCII;
    else
        unlatchC40(state);
}

// Back in ASCII where the run began, ASCII latches the same way again. Once the free count has wrapped
// round, no later pass can end differently, and the encoding would grow for ever.
void DatamatrixAutoSelect::unlatchC40(State& state)
{
    if (state.pos == state.latchPos && count() > squareCapacity(state.capacity))
        throw KT_ERROR::internal_autocode_error(
            KT_ERROR::text("datamatrix: auto-select makes no progress at position ", state.pos));
    emit(254);
    state.mode = ASCII;
}

void DatamatrixAutoSelect::stepEdifact(State& state)
{
    const bool roomForTriple = state.capacity - count() >= 3;
    if (lookAhead(state.pos, EDIFACT) != EDIFACT) {
        emit(124);
    } else if (roomForTriple && tokenCount() - state.pos >= 4) {
        if (encodeEDFTriple(state.pos) != 4)
            throw KT_ERROR::internal_autocode_error("datamatrix: encodeEDFTriple returned unexpected result");
        state.pos += 4;
        return;
    } else if (roomForTriple) {
        emit(124);
    }
    state.mode = ASCII;
}

bool DatamatrixAutoSelect::stepBase256(State& state)
{
    if (lookAhead(state.pos, BASE256) == BASE256 && state.b256Length < longestB256Block) {
        ++state.b256Length;
        ++state.pos;
        return true;
    }
    if (!flushB256(state.b256Start, state.b256Length))
        return false;
    state.mode = ASCII;
    return true;
}

uint32_t DatamatrixAutoSelect::encodeC40(uint32_t pos, uint32_t free, int32_t mode)
{
    const C40Table* table = mode == C40 ? &c40Values : mode == TEXT ? &textValues : mode == X12 ? &x12Values : nullptr;
    if (table == nullptr)
        throw KT_ERROR::internal_autocode_error(
            KT_ERROR::text("datamatrix: encodeC40 was called with illegal encoding target:", mode));
    stage.clear();
    const std::vector<int32_t>& all = *tokens;
    uint32_t consumed = 0;
    bool hasPending = false;
    uint32_t pending = 0;
    for (;;) {
        if (!hasPending && !stage.empty() && stage.size() % 3 == 0)
            break;
        if (pos + consumed == tokenCount()) {
            if (mode == X12)
                return 0;
            if ((stage.size() / 3) * 2 != free - 2 || stage.size() % 3 < 2)
                return 0;
            stage.push_back(0);
            break;
        }
        uint32_t c = pending;
        if (!hasPending)
            c = static_cast<uint32_t>(all[pos + consumed++]);
        hasPending = false;
        if (c < 128) {
            const C40Values values = (*table)[c];
            if (values.count == 0)
                return 0;
            stage.push_back(values.first);
            if (values.count == 2)
                stage.push_back(values.second);
        } else if (mode != X12 && c == fnc1Token) {
            stage.push_back(1);
            stage.push_back(27);
        } else if (mode != X12 && isExtended(c)) {
            // Upper shift; the low half follows as a character of its own.
            stage.push_back(1);
            stage.push_back(30);
            hasPending = true;
            pending = c - 128;
        } else {
            return 0;
        }
    }
    if ((stage.size() / 3) * 2 > free)
        return 0;
    for (size_t i = 0; i < stage.size(); i += 3) {
        const uint32_t value = 1 + 1600u * stage[i] + 40u * stage[i + 1] + stage[i + 2];
        emit(value >> 8);
        emit(value & 0xFF);
    }
    return consumed;
}

uint32_t DatamatrixAutoSelect::encodeEDFTriple(uint32_t pos)
{
    if (tokenCount() - pos < 4)
        return 0;
    uint32_t packed = 0;
    for (uint32_t i = 0; i < 4; ++i)
        packed = (packed << 6) | (static_cast<uint32_t>((*tokens)[pos + i]) & 63);
    emit(packed >> 16);
    emit((packed >> 8) & 0xFF);
    emit(packed & 0xFF);
    return 4;
}

bool DatamatrixAutoSelect::flushB256(uint32_t start, uint32_t length)
{
    if (length == 0)
        throw KT_ERROR::internal_autocode_error("datamatrix: empty B256 block found");
    if (length > longestB256Block)
        throw KT_ERROR::internal_autocode_error("datamatrix: B256 block too large");
    emit(231);
    if (length < 250) {
        emit255State(length);
    } else {
        emit255State(length / 250 + 249);
        emit255State(length % 250);
    }
    for (uint32_t i = start; i < start + length; ++i) {
        const auto c = static_cast<uint32_t>((*tokens)[i]);
        if (c >= 255)
            return false;
        emit255State(c);
    }
    return true;
}

void DatamatrixAutoSelect::emit255State(uint32_t value)
{
    const uint32_t position = count() + 1;
    uint32_t randomised = value + (149 * position) % 255 + 1;
    if (randomised >= 256)
        randomised -= 256;
    emit(randomised);
}
