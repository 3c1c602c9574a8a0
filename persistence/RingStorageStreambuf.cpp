#include "persistence/RingStorageStreambuf.h"

#include <cstring>

#include "errors/KT_Error.h"
#include "persistence/PersistentArray.h"

namespace {
constexpr uint32_t headerLength = 4;
}

RingStorageStreambuf::RingStorageStreambuf(SRAM::PersistentArray& array, uint32_t start, uint32_t length)
    : array(&array), base(start + headerLength), size(length - headerLength), put(0), get(0)
{
    if (length <= headerLength)
        throw KT_ERROR::kt_exception(
            KT_ERROR::text("RingStorageStreambuf: region of ", length, " bytes leaves no room for a ring"));
    // Taking the stored value modulo the size repairs what an earlier, larger region left behind.
    put = readPut() % size;
    writePut();
    get = (put + 1) % size;
    setg(nullptr, nullptr, nullptr);
}

uint32_t RingStorageStreambuf::readPut()
{
    uint8_t bytes[headerLength];
    array->readBlock(bytes, headerLength, base - headerLength);
    uint32_t value;
    std::memcpy(&value, bytes, headerLength);
    return value;
}

void RingStorageStreambuf::writePut()
{
    uint8_t bytes[headerLength];
    std::memcpy(bytes, &put, headerLength);
    array->writeBlock(bytes, headerLength, base - headerLength);
}

// Brings an index into 0 up to size - 1, as adding size while it is negative would.
uint32_t RingStorageStreambuf::wrap(int64_t index) const
{
    int64_t rest = index % size;
    if (rest < 0)
        rest += size;
    return static_cast<uint32_t>(rest);
}

// Gives back a character that underflow fetched but nobody consumed.
void RingStorageStreambuf::dropFetchedCharacter()
{
    if (gptr() != nullptr && gptr() < egptr())
        get = wrap(int64_t{get} - 1);
    setg(nullptr, nullptr, nullptr);
}

RingStorageStreambuf::int_type RingStorageStreambuf::overflow(int_type c)
{
    if (traits_type::eq_int_type(c, traits_type::eof()))
        return traits_type::not_eof(c);
    if (put > size - 1)
        throw KT_ERROR::kt_exception(
            KT_ERROR::text("RingStorageStreambuf: put pointer points beyond buffer end: ", put));
    array->writeByte(base + put, static_cast<uint8_t>(traits_type::to_char_type(c)));
    // The position is stored with each byte, so that it survives a restart at any moment.
    put = (put + 1) % size;
    writePut();
    // A writer moves the reader to the new oldest byte, on purpose.
    get = (put + 1) % size;
    dropFetchedCharacter();
    return 0;
}

RingStorageStreambuf::int_type RingStorageStreambuf::underflow()
{
    if (get == put)
        return traits_type::eof();
    getBuffer = static_cast<char>(array->readByte(base + get));
    get = (get + 1) % size;
    setg(&getBuffer, &getBuffer, &getBuffer + 1);
    return traits_type::to_int_type(getBuffer);
}

RingStorageStreambuf::pos_type RingStorageStreambuf::seekoff(off_type offset, std::ios_base::seekdir way,
                                                             std::ios_base::openmode mode)
{
    dropFetchedCharacter();
    if ((mode & std::ios_base::in) == 0)
        return pos_type(off_type(-1));
    int64_t reference = put;
    if (way == std::ios_base::beg)
        reference = int64_t{put} + 1;
    else if (way == std::ios_base::cur)
        reference = get;
    get = wrap(reference + offset % size);
    return pos_type(off_type(wrap(int64_t{get} - (int64_t{put} + 1))));
}

RingStorageStreambuf::pos_type RingStorageStreambuf::seekpos(pos_type position, std::ios_base::openmode mode)
{
    return seekoff(off_type(position), std::ios_base::beg, mode);
}
