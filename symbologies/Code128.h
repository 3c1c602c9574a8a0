#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "symbologies/Barcode.h"

namespace KT_FMT {
struct ContentItem;
}

// A character of the data (kind 0, its byte as value) or a control symbol from a content escape
// (kind 3, the symbol value plus 200).
struct Code128Token {
    uint32_t kind = 0;
    uint32_t value = 0;
};

// A run of tokens of one class: where it begins and how many of the class follow from there.
struct SetIndex {
    uint16_t start = 0;
    uint16_t length = 0;
};

// Code 128 with a fixed coding set or an automatic choice that switches sets at the runs that
// need set A, set B or set C. A leading FNC1 marks the data as GS1-128.
class Code128 : public Barcode {
public:
    static constexpr int32_t AUTO_SELECT = 0;

    Code128(const std::string& content, int32_t x, int32_t y, int32_t module, int32_t height, int32_t quarterTurns,
            bool addCheckDigit, bool showText, int32_t reversed, int32_t encoding);

    int validate() override;
    void encode() override;
    void draw(Image& context, Area& rectangle) override;
    virtual int32_t reduceChecksum(int32_t sum);
    virtual int32_t quietZone(int32_t side);

    // The hook that gives the content escapes of the control symbols their tokens.
    static void controlSequence(std::string id, std::string parm, KT_FMT::ContentItem& item);

    const std::vector<Code128Token>& getTokens() const { return tokens; }
    int32_t getChecksum() const { return checksum; }
    int32_t getPosition() const { return position; }

private:
    // Where an encoding stands: the next token, the current set (0 for none yet), and for the
    // automatic choice the next run of each class and the position of the next decision.
    struct EncoderState {
        uint32_t index = 0;
        int32_t code_set = 0;
        SetIndex set_A_idx;
        SetIndex set_B_idx;
        SetIndex set_C_idx;
        int32_t set_swap_idx = 0;
    };

    SetIndex runOf(uint32_t from, bool (*inClass)(uint32_t value)) const;
    SetIndex findControlRun(uint32_t from) const;
    SetIndex findLowerCaseRun(uint32_t from) const;
    SetIndex findDigitRun(uint32_t from) const;
    bool isDigitAt(uint32_t at) const;
    uint32_t valueAt(uint32_t at) const { return tokens[at].value; }
    uint32_t count() const { return static_cast<uint32_t>(tokens.size()); }

    void encodeAutomatic(EncoderState& state);
    void encodeDirect(EncoderState& state);
    void selectSet(EncoderState& state);
    void selectControlSet(EncoderState& state);
    void selectDigitSet(EncoderState& state);
    void selectLowerCaseSet(EncoderState& state);
    void encodeData(EncoderState& state);
    void encodeDigitPair(EncoderState& state);
    void encodeControl(uint32_t value, EncoderState& state);
    void emitStart(int32_t code_set, EncoderState& state);
    void emit(int32_t value);
    void appendRow(int32_t value);

    int32_t encoding = AUTO_SELECT;
    int32_t shifted = 0;
    int32_t position = 0;
    int32_t checksum = 0;
    std::vector<Code128Token> tokens;
};
