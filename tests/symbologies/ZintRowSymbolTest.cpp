#include "symbologies/ZintRowSymbol.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "errors/KT_Error.h"
#include "symbologies/ZintErrorTexts.h"
#include "tests/support/ExpectFailure.h"

namespace {

constexpr std::array<int32_t, 1> probeFamily = {BARCODE_PDF417};

// A row symbol whose failure and encoding a test calls directly.
class ProbeRowSymbol : public ZintRowSymbol {
public:
    explicit ProbeRowSymbol(int32_t symbology)
        : ZintRowSymbol(pdf417Setup, ZintRecordValues{.symbology = symbology, .module = 1}, probeFamily, "HEAD ")
    {
    }
    using ZintRowSymbol::encode;
    using ZintRowSymbol::fail;
};

}  // namespace

TEST(ZintRowSymbol, TheErrorTextIsHeadNameAndDetail)
{
    struct Row {
        int32_t symbology;
        int32_t group;
        int32_t code;
        const char* text;
    };
    const Row rows[] = {
        {29, ZINT_GROUP_LIBRARY, 5, "HEAD OMNIDIRECTIONAL_TRUNCATED - ERROR_TOO_LONG "},
        {30, ZINT_GROUP_LIBRARY, 6, "HEAD LIMITED - ERROR_INVALID_DATA "},
        {31, ZINT_GROUP_REWRITE, 1, "HEAD EXPANDED ai_number_replace: no more AI-Found"},
        {79, ZINT_GROUP_REWRITE, 2,
         "HEAD STACKED ai_number_replace: Reached end of GS1-String can not insert']'. Check your input-message!"},
        {80, ZINT_GROUP_REWRITE, 3,
         "HEAD STACKED_OMNIDIRECTIONAL ai_number_replace: Variable_Length exceeded the HasVariableLength"},
        {81, ZINT_GROUP_REWRITE, 5, "HEAD EXPANDED_STACKED ai_number_replace: length exeeded"},
        {55, ZINT_GROUP_LIBRARY, 5, "HEAD  - ERROR_TOO_LONG "},
        {56, ZINT_GROUP_LIBRARY, 6, "HEAD PDF417TRUNC - ERROR_INVALID_DATA "},
        {84, ZINT_GROUP_LIBRARY, 9, "HEAD MICROPDF417 ERROR: Not defined. ERROR Nr.9"},
        {106, ZINT_GROUP_REWRITE, 4, "HEAD HIBC_PDF ERROR: Not defined. ERROR Nr.4"},
        {58, ZINT_GROUP_LIBRARY, 5, "HEAD Barcode is not defined. (Strange) - ERROR_TOO_LONG "},
        // A code means what its group says.
        {55, ZINT_GROUP_LIBRARY, 1, "HEAD  ERROR: Not defined. ERROR Nr.1"},
        {55, ZINT_GROUP_REWRITE, 6, "HEAD  ERROR: Not defined. ERROR Nr.6"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.text);
        const ProbeRowSymbol symbol(r.symbology);
        expectFailure<KT_ERROR::format_error>([&] { symbol.fail(r.group, r.code); }, r.text);
    }
}

TEST(ZintRowSymbol, OnlyTheSymbologiesOfTheFamilyAreEncoded)
{
    ProbeRowSymbol inFamily(BARCODE_PDF417), outside(BARCODE_CODE128);
    EXPECT_EQ(inFamily.encode("FAMILY"), 0);
    EXPECT_GT(inFamily.getSymbol().rows, 0);
    EXPECT_EQ(outside.encode("FAMILY"), ZINT_ERROR_INVALID_OPTION);
    EXPECT_EQ(outside.getSymbol().rows, 0);
}

TEST(ZintRowSymbol, EachEncodingStartsFromAnEmptySymbol)
{
    ProbeRowSymbol symbol(BARCODE_PDF417);
    ASSERT_EQ(symbol.encode("A FIRST CONTENT OF SOME LENGTH"), 0);
    ASSERT_EQ(symbol.encode(""), ZINT_ERROR_INVALID_DATA);
    EXPECT_EQ(symbol.getSymbol().rows, 0);
    EXPECT_EQ(symbol.getSymbol().encoded_data[0][0], 0);
}
