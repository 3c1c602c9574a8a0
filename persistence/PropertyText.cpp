#include "persistence/PropertyText.h"

namespace KT_FMT {

namespace {

std::string openingTag(const std::string& key) { return "<" + key + ">"; }
std::string closingTag(const std::string& key) { return "<\\" + key + ">"; }

// The place and length of the value, or npos if the property is missing.
std::pair<size_t, size_t> findValue(const std::string& text, const std::string& key)
{
    const size_t opening = text.find(openingTag(key));
    if (opening == std::string::npos)
        return {std::string::npos, 0};
    const size_t start = opening + openingTag(key).size();
    const size_t closing = text.find(closingTag(key), start);
    if (closing == std::string::npos)
        return {std::string::npos, 0};
    return {start, closing - start};
}

}  // namespace

std::string getPropertyValue(const std::string& text, const std::string& key)
{
    const auto [start, length] = findValue(text, key);
    return start == std::string::npos ? std::string() : text.substr(start, length);
}

void setPropertyValue(std::string& text, const std::string& key, const std::string& value)
{
    const auto [start, length] = findValue(text, key);
    if (start == std::string::npos)
        text += "\r\n" + openingTag(key) + value + closingTag(key);
    else
        text.replace(start, length, value);
}

}  // namespace KT_FMT
