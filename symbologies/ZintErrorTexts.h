#pragma once
#include <array>
#include <cstdint>

// Where a failure of a row symbol comes from: the GS1 rewrite or the library's encoder.
inline constexpr int32_t ZINT_GROUP_REWRITE = 1;
inline constexpr int32_t ZINT_GROUP_LIBRARY = 2;

struct ZintSymbologyName {
    int32_t symbology;
    const char* name;
};

inline constexpr std::array<ZintSymbologyName, 10> zintSymbologyNames = {{
    {29, "OMNIDIRECTIONAL_TRUNCATED "},
    {30, "LIMITED "},
    {31, "EXPANDED "},
    {79, "STACKED "},
    {80, "STACKED_OMNIDIRECTIONAL "},
    {81, "EXPANDED_STACKED "},
    {55, " "},
    {56, "PDF417TRUNC "},
    {84, "MICROPDF417 "},
    {106, "HIBC_PDF "},
}};
inline constexpr const char* zintUnknownSymbologyName = "Barcode is not defined. (Strange) ";

struct ZintErrorDetail {
    int32_t group;
    int32_t code;
    const char* detail;
};

inline constexpr std::array<ZintErrorDetail, 6> zintErrorDetails = {{
    {ZINT_GROUP_LIBRARY, 5, "- ERROR_TOO_LONG "},
    {ZINT_GROUP_LIBRARY, 6, "- ERROR_INVALID_DATA "},
    {ZINT_GROUP_REWRITE, 1, "ai_number_replace: no more AI-Found"},
    {ZINT_GROUP_REWRITE, 2,
     "ai_number_replace: Reached end of GS1-String can not insert']'. Check your input-message!"},
    {ZINT_GROUP_REWRITE, 3, "ai_number_replace: Variable_Length exceeded the HasVariableLength"},
    {ZINT_GROUP_REWRITE, 5, "ai_number_replace: length exeeded"},
}};
// Followed by the code.
inline constexpr const char* zintUnknownErrorDetail = "ERROR: Not defined. ERROR Nr.";
