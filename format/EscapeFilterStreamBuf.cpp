#include "format/EscapeFilterStreamBuf.h"

namespace KT_FMT {

EscapeFilterStreamBuf::int_type EscapeFilterStreamBuf::underflow()
{
    const int_type c = source->sbumpc();
    if (traits_type::eq_int_type(c, traits_type::eof()))
        return c;
    getBuffer = traits_type::to_char_type(c);
    setg(&getBuffer, &getBuffer, &getBuffer + 1);
    return c;
}

}  // namespace KT_FMT
