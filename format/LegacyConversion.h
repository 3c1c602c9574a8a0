#pragma once
#include <cstdint>
#include <map>
#include <streambuf>
#include <string>

namespace KT_FMT {

// Rewrites one legacy ESC B or ESC T record, read from the source, into present-day records written
// from the start of the buffer. The made-up ids and the variables by prompt belong to the filter and
// outlive the conversion.
class LegacyConversion {
public:
    LegacyConversion(std::streambuf& source, char* buffer, uint32_t capacity, uint32_t& replacementCounter,
                     std::map<std::string, std::string>& variableIds);

    // Each reads the record behind ESC and its letter and returns the number of bytes written.
    uint32_t convertBarcode();
    uint32_t convertText();

private:
    std::string newId();
    // Fixed fields come out short at the end of the source.
    std::string readFixed(uint32_t count);
    std::string readText(bool escaped);
    std::string readDateFormatText();

    void put(char c);
    void putLiteral(const char* literal);
    void putString(const std::string& text);

    std::string convertContent(char type, const std::string& id, int32_t barcodeType);
    std::string convertFixedText(const std::string& id);
    std::string convertCounter(char type, const std::string& id, bool insideText);
    std::string convertVariable(const std::string& id, int32_t barcodeType);
    std::string convertDate(std::string id);

    std::streambuf& source;
    char* buffer;
    uint32_t capacity;
    uint32_t position = 0;
    uint32_t& replacementCounter;
    std::map<std::string, std::string>& variableIds;
};

}  // namespace KT_FMT
