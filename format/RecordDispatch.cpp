#include "format/RecordDispatch.h"

#include <array>
#include <cstdlib>
#include <string>

#include "autocode/AC_Counter.h"
#include "autocode/AC_Date.h"
#include "autocode/AC_VariableString.h"
#include "autocode/FormulaReader.h"
#include "drawables/Drawable_Barcode_1D.h"
#include "drawables/Drawable_Box.h"
#include "drawables/Drawable_Databar.h"
#include "drawables/Drawable_Datamatrix.h"
#include "drawables/Drawable_Graphics.h"
#include "drawables/Drawable_Invert.h"
#include "drawables/Drawable_PDF417.h"
#include "drawables/Drawable_Text.h"
#include "drawables/Drawable_ZintMatrix.h"
#include "graphics/Image.h"

namespace KT_FMT {

namespace {

using RecordReader = void (*)(ParseContext&);

void dropBytes(std::istream& in, int count)
{
    for (int i = 0; i < count; ++i)
        readByte(in);
}

// An unknown selector loses everything up to the next ESC, without a word.
void skipToNextEscape(ParseContext& context)
{
    while (context.in.peek() != ESC)
        readByte(context.in);
}

using MatrixReader = void (*)(std::istream&, KT_Format&);

struct MatrixType {
    const char* type;
    MatrixReader reader;
};

constexpr MatrixType matrixTypes[] = {
    {"07", KT_AC::Drawable_Datamatrix::read}, {"09", KT_AC::Drawable_Databar::read},
    {"10", KT_AC::Drawable_QrCode::read},     {"11", KT_AC::Drawable_HanxinCode::read},
    {"12", KT_AC::Drawable_PDF417::read},     {"13", KT_AC::Drawable_DMRectCode::read},
    {"14", KT_AC::Drawable_MicroQrCode::read},
};

// The matrix types go by their two characters; any other pair is a linear type by its decimal value,
// so that letters read as type 0.
void readBarcodeRecord(ParseContext& context)
{
    std::string type(1, readByte(context.in));
    type += readByte(context.in);
    for (const MatrixType& matrix : matrixTypes)
        if (type == matrix.type) {
            matrix.reader(context.in, context.format);
            return;
        }
    KT_AC::Drawable_Barcode_1D::create(context.in, context.format, std::atoi(type.c_str()));
}

void readHashRecord(ParseContext& context)
{
    switch (readByte(context.in)) {
    case 'B':
        readBarcodeRecord(context);
        break;
    case 'I':
        KT_AC::Drawable_Invert::read(context.in, context.format);
        break;
    case 'T':
        KT_AC::Drawable_Text::read(context.in, context.format);
        break;
    default:
        skipToNextEscape(context);
    }
}

void readVariableRecord(ParseContext& context)
{
    switch (readByte(context.in)) {
    case 'C':
        KT_AC::AC_Counter::readCounterRecord(context.in, context.format, context.mode, context.addressStream);
        break;
    case 'I':
        KT_AC::AC_VariableString::readVariableRecord(context.in, context.format, context.mode, false,
                                                     context.addressStream);
        break;
    case 'X':
        KT_AC::AC_VariableString::readVariableRecord(context.in, context.format, context.mode, true,
                                                     context.addressStream);
        break;
    case 'D':
        KT_AC::readDateRecord(context.in, context.format);
        break;
    case 'F':
        KT_AC::readFormulaRecord(context.in, context.format);
        break;
    default:
        skipToNextEscape(context);
    }
}

void readBox(ParseContext& context)
{
    KT_AC::Drawable_Box::read(context.in, context.format);
}

// Graphics go beneath everything: into the background if there is one.
void readGraphics(ParseContext& context)
{
    Image* background = context.format.getBackground();
    KT_AC::Drawable_Graphics::read(context.in, context.format,
                                   background != nullptr ? *background : *context.format.getImage());
}

// ESC D, ESC S and ESC X carry nothing that a format keeps.
void readD(ParseContext& context) { dropBytes(context.in, 2); }
void readS(ParseContext& context) { dropBytes(context.in, 3); }
void readX(ParseContext& context) { dropBytes(context.in, 5); }

// An unknown byte behind ESC reads on until the end of input raises.
void readUnknown(ParseContext& context)
{
    for (;;)
        readByte(context.in);
}

constexpr int firstSelector = '#';

constexpr std::array<RecordReader, 54> records = [] {
    std::array<RecordReader, 54> table{};
    table['#' - firstSelector] = readHashRecord;
    table['D' - firstSelector] = readD;
    table['G' - firstSelector] = readGraphics;
    table['L' - firstSelector] = readBox;
    table['S' - firstSelector] = readS;
    table['V' - firstSelector] = readVariableRecord;
    table['X' - firstSelector] = readX;
    return table;
}();

}  // namespace

char readByte(std::istream& in)
{
    // A stream that does not raise leaves the byte alone at the end of input.
    char c = 0;
    in.get(c);
    return c;
}

void dispatchRecord(ParseContext& context, char selector)
{
    const int offset = static_cast<unsigned char>(selector) - firstSelector;
    const bool known = offset >= 0 && offset < static_cast<int>(records.size()) && records[offset] != nullptr;
    (known ? records[offset] : readUnknown)(context);
}

}  // namespace KT_FMT
