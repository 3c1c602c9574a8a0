#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "symbologies/Barcode.h"

// What EAN-13, EAN-8, UPC-A and UPC-E share: digit-only data of a fixed length, the published digit
// patterns, an always calculated check digit, and a digit line set into the gaps of taller guard bars.
class EanUpc : public Barcode {
public:
    // Quiet zone in dots: side 0 left, 1 right, any other side 0.
    virtual int32_t quietZone(int32_t side) = 0;

protected:
    // Validation texts: none, a character that is not a digit, a wrong count.
    struct Messages {
        const char* noData;
        const char* wrongData;
        const char* wrongLength;
    };

    // A slice of `text` centred at `anchor` (dots). With `fill` not 0 the slice is stretched to `fill`
    // dots by extra spacing in its `gaps`.
    struct DigitGroup {
        size_t start;
        size_t length;
        int32_t anchor;
        bool small;
        int32_t fill;
        int32_t gaps;
    };

    // A column range blanked below the data bars, so that the guards beside it stand taller.
    struct WhiteBox {
        int32_t x;
        int32_t width;
    };

    struct DigitLayout {
        // The font size before rounding, for both sizes.
        double fontScale;
        // The digits whose measured height sets the bar height.
        DigitGroup block;
        std::vector<WhiteBox> boxes;
        std::vector<DigitGroup> groups;
    };

    EanUpc(const std::string& data, int32_t x, int32_t y, int32_t module, int32_t height, int32_t quarterTurns,
           bool addCheckDigit, bool showText, int32_t reversed);

    // The steps every constructor of the family ends with.
    void build(int32_t typeNumber);
    void validateDigits(size_t count, const Messages& messages) const;
    // Appends the patterns of `digits`, each from the set its letter in `parity` names (`a` or `b`);
    // a null `parity` takes set A throughout.
    void appendDigits(const std::string& digits, const char* parity);
    char checkCharacter() { return static_cast<char>('0' + checkDigit()); }
    // The draw with text: measured digits, shortened bars, white boxes under the data, stretched digit groups.
    void drawWithDigits(Image& context, Area& rectangle, const DigitLayout& layout, const char* heightMessage);

private:
    void paintGroup(const DigitGroup& group, int32_t baseline, int32_t fontSize, Image& context);
};
