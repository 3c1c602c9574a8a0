#include "symbologies/ZintRowSymbol.h"

#include <algorithm>

#include "errors/KT_Error.h"
#include "symbologies/ZintErrorTexts.h"

ZintRowSymbol::ZintRowSymbol(const ZintSetup& setup, const ZintRecordValues& record,
                             std::span<const int32_t> encodes, const char* errorHead)
    : symbology(record.symbology),
      height(record.height),
      module(record.module),
      symbol(makeZintSymbol(setup, record)),
      encodes(encodes),
      errorHead(errorHead)
{
}

// The library adds rows to whatever its symbol holds, so the old matrix goes first.
int ZintRowSymbol::encode(const std::string& data)
{
    zintLibrary().clear(symbol.get());
    if (std::find(encodes.begin(), encodes.end(), symbology) == encodes.end())
        return ZINT_ERROR_INVALID_OPTION;
    return zintLibrary().encode(symbol.get(), reinterpret_cast<const unsigned char*>(data.data()),
                                static_cast<int>(data.size()));
}

void ZintRowSymbol::fail(int32_t group, int32_t code) const
{
    const char* name = zintUnknownSymbologyName;
    for (const ZintSymbologyName& row : zintSymbologyNames)
        if (row.symbology == symbology)
            name = row.name;
    for (const ZintErrorDetail& row : zintErrorDetails)
        if (row.group == group && row.code == code)
            throw KT_ERROR::format_error(KT_ERROR::text(errorHead, name, row.detail));
    throw KT_ERROR::format_error(KT_ERROR::text(errorHead, name, zintUnknownErrorDetail, code));
}
