#pragma once
#include <cstdint>
#include <vector>

#include "symbologies/DatamatrixEncoder.h"

// Chooses the encodation mode at run time by a look-ahead over cost counters. EDIFACT is never
// chosen: its comparison answers Base 256.
class DatamatrixAutoSelect : public DatamatrixEncoder {
public:
    static constexpr int32_t ASCII = 0;
    static constexpr int32_t C40 = 1;
    static constexpr int32_t TEXT = 2;
    static constexpr int32_t X12 = 3;
    static constexpr int32_t EDIFACT = 4;
    static constexpr int32_t BASE256 = 5;

    // Returns 0, or -1 when a Base 256 block was refused; what was written up to then stands.
    int32_t encode(const std::vector<int32_t>& tokens, std::vector<uint8_t>& codewords, uint32_t capacity) override;
    // Each token in a Base 256 block of its own.
    virtual int32_t encodeAllB256(const std::vector<int32_t>& tokens, std::vector<uint8_t>& codewords,
                                  uint32_t capacity);

protected:
    // Where an encoding stands between two passes of its loop.
    struct State {
        uint32_t pos = 0;
        int32_t mode = ASCII;
        uint32_t capacity = 0;
        uint32_t b256Start = 0;
        uint32_t b256Length = 0;
        // Where ASCII last latched into C40, Text or X12.
        uint32_t latchPos = 0;
    };

    // The running costs of the look-ahead, one per mode.
    struct Costs {
        float ascii;
        float c40;
        float text;
        float x12;
        float edf;
        float b256;

        void add(uint32_t c);
        int32_t closingMode() const;
    };

    void begin(const std::vector<int32_t>& tokens, std::vector<uint8_t>& codewords);
    int32_t lookAhead(uint32_t pos, int32_t mode) const;
    int32_t firstX12OrC40(uint32_t from) const;
    void stepAscii(State& state);
    void stepC40(State& state);
    void stepEdifact(State& state);
    // False when a refused Base 256 block ends the encoding.
    bool stepBase256(State& state);
    uint32_t encodeC40(uint32_t pos, uint32_t free, int32_t mode);
    uint32_t encodeEDFTriple(uint32_t pos);
    bool flushB256(uint32_t start, uint32_t length);

private:
    uint32_t tokenCount() const { return static_cast<uint32_t>(tokens->size()); }
    uint32_t count() const { return static_cast<uint32_t>(codewords->size()); }
    void emit(uint32_t value) { codewords->push_back(static_cast<uint8_t>(value)); }
    void emitPacked(uint32_t token);
    void emit255State(uint32_t value);
    void unlatchC40(State& state);

    std::vector<uint8_t>* codewords = nullptr;
    const std::vector<int32_t>* tokens = nullptr;
    std::vector<uint8_t> stage;
};
