#include "symbologies/EanUpc.h"

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "symbologies/EanUpcTables.h"

namespace {

constexpr int32_t labelFont = 0;

}  // namespace

EanUpc::EanUpc(const std::string& data, int32_t x, int32_t y, int32_t module, int32_t height,
               int32_t quarterTurns, bool addCheckDigit, bool showText, int32_t reversed)
{
    setParameters(data, x, y, height, quarterTurns, addCheckDigit, showText, reversed);
    setModuleWidths(module);
}

void EanUpc::build(int32_t typeNumber)
{
    validate();
    encode();
    buildBitString(typeNumber);
}

void EanUpc::validateDigits(size_t count, const Messages& messages) const
{
    if (data.empty())
        throw KT_ERROR::bad_escape_sequence(messages.noData);
    for (const char c : data)
        if (c < '0' || c > '9')
            throw KT_ERROR::bad_escape_sequence(KT_ERROR::text(messages.wrongData, c));
    if (data.size() != count)
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text(messages.wrongLength, data.size()));
}

void EanUpc::appendDigits(const std::string& digits, const char* parity)
{
    for (size_t i = 0; i < digits.size(); ++i) {
        const bool setB = parity != nullptr && parity[i] == 'b';
        bars += (setB ? eanSetB : eanSetA)[static_cast<size_t>(digits[i] - '0')];
    }
}

void EanUpc::drawWithDigits(Image& context, Area& rectangle, const DigitLayout& layout, const char* heightMessage)
{
    const auto bigSize = static_cast<int32_t>(layout.fontScale + 0.5);
    const auto smallSize = static_cast<int32_t>(0.75 * layout.fontScale + 0.5);
    const DigitGroup& block = layout.block;
    const Area measured =
        measureLabel(block.anchor, height, bigSize, text.substr(block.start, block.length), context);
    const int32_t baseline = baselineFor(measured);
    const auto half = static_cast<int32_t>(0.5 * (measured.bottom - measured.top) + 0.5);
    const int32_t barHeight = height - half;
    const int32_t boxTop = barHeight - (half + widths[0]);
    requireBarHeight(boxTop, heightMessage);
    drawBars(context, barHeight, rectangle, reversed != 0);
    for (const WhiteBox& box : layout.boxes)
        fillInSymbol(box.x, boxTop, box.width, half + widths[0], 0, context);
    for (const DigitGroup& group : layout.groups)
        paintGroup(group, baseline, group.small ? smallSize : bigSize, context);
}

void EanUpc::paintGroup(const DigitGroup& group, int32_t baseline, int32_t fontSize, Image& context)
{
    const std::string digits = text.substr(group.start, group.length);
    int32_t spacing = 0;
    if (group.fill != 0) {
        const Area measured = measureLabel(group.anchor, baseline, fontSize, digits, context);
        spacing = ((group.fill - (measured.right - measured.left)) << 16) / group.gaps;
    }
    drawLabel(group.anchor, baseline, fontSize, labelFont, digits, spacing, context);
}
