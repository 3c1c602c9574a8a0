#pragma once
#include <zint.h>

// Marks a field of the set-up that the record gives.
inline constexpr int FROM_RECORD = -1000;

// The fields of the library symbol that an adapter fixes at construction. The other output and
// appearance fields stay as the library creates them: black on white, scale 1, no border, no file.
struct ZintSetup {
    int symbology;
    int whitespaceWidth;
    int option1;
    int option3;
    int showHrt;
    // The record's input mode, 0 taken as 1; otherwise 0.
    bool recordInputMode;
    // The record's height in dots; otherwise 0.
    bool recordHeight;
    // The library's width starts as the module; otherwise 0.
    bool widthIsModule;
};

// option_3 of the rectangular Data Matrix rises to DM_SQUARE for the sizes above 24.
inline constexpr ZintSetup dmRectSetup{BARCODE_DATAMATRIX, 0, 0, 1, -1, true, false, false};
inline constexpr ZintSetup qrCodeSetup{BARCODE_QRCODE, 0, FROM_RECORD, -1, -1, true, false, false};
inline constexpr ZintSetup microQrCodeSetup{BARCODE_MICROQR, 0, FROM_RECORD, -1, -1, true, false, false};
inline constexpr ZintSetup hanxinCodeSetup{BARCODE_HANXIN, 0, FROM_RECORD, -1, -1, true, false, false};
inline constexpr ZintSetup pdf417Setup{FROM_RECORD, 8, FROM_RECORD, 0, 0, false, true, false};
inline constexpr ZintSetup databarSetup{FROM_RECORD, 8, 1, 928, 0, false, true, true};
