#include "persistence/ForkingStreamBuf.h"

#include "errors/KT_Error.h"

ForkingStreamBuf::int_type ForkingStreamBuf::underflow()
{
    if (gptr() < egptr())
        return traits_type::to_int_type(*gptr());
    const int_type c = source != nullptr ? source->sbumpc() : traits_type::eof();
    if (traits_type::eq_int_type(c, traits_type::eof())) {
        setg(&getBuffer, &getBuffer, &getBuffer);
        return traits_type::eof();
    }
    getBuffer = traits_type::to_char_type(c);
    // Without a target the fork is a plain pass-through.
    if (target != nullptr && traits_type::eq_int_type(target->sputc(getBuffer), traits_type::eof()))
        throw KT_ERROR::disk_is_full("can't write to stream");
    setg(&getBuffer, &getBuffer, &getBuffer + 1);
    return c;
}
