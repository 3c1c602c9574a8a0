#pragma once
#include <string>

// The text of a property file: each property is <key>value<\key>.
namespace KT_FMT {

// What stands between the first opening tag and the closing tag behind it; empty if either is missing.
std::string getPropertyValue(const std::string& text, const std::string& key);
// Replaces the value where it stands, or appends the property on a new line (CR LF) if it is missing.
void setPropertyValue(std::string& text, const std::string& key, const std::string& value);

}  // namespace KT_FMT
