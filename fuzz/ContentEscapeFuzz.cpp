// Content escapes as every consumer reads them: once with the hook of Code 128 and once with a hook that
// takes every name.
#include <cstddef>
#include <cstdint>
#include <string>

#include "format/ContentEscapeReader.h"
#include "symbologies/Code128.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const KT_FMT::ContentEscapeReader::SequenceHook everyName = [](std::string id, std::string parm,
                                                                   KT_FMT::ContentItem& item) {
        item.type = 3;
        item.value = static_cast<uint32_t>(id.size() * 31 + parm.size());
    };
    for (const KT_FMT::ContentEscapeReader::SequenceHook& hook :
         {KT_FMT::ContentEscapeReader::SequenceHook(&Code128::controlSequence), everyName}) {
        KT_FMT::ContentEscapeReader reader(hook);
        try {
            reader.setContent(text);
            while (reader.hasNext())
                reader.next();
        } catch (...) {
        }
    }
    return 0;
}
