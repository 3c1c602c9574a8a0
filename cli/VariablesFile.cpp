#include "cli/VariablesFile.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>

#include "cli/ReservedKeys.h"
#include "format/FormatInterface.h"

namespace {

bool isReserved(const std::string& key)
{
    return std::find(reservedKeys.begin(), reservedKeys.end(), key) != reservedKeys.end();
}

bool contains(const std::vector<std::string>& ids, const std::string& key)
{
    return std::find(ids.begin(), ids.end(), key) != ids.end();
}

// A line without "=" or with nothing behind it keeps no pair: its value can't be read.
void addPair(const std::string& line, VariablePairs& pairs)
{
    std::istringstream fields(line);
    std::string key, value;
    if (std::getline(fields, key, '=') && std::getline(fields, value))
        pairs.emplace_back(key, value);
}

}  // namespace

void assignVariable(bool quiet, KT_INTERFACE::FormatInterface& format, const std::string& key,
                    const std::string& value)
{
    using namespace KT_INTERFACE;
    const bool isPrompted = contains(format.getElementIds(ELEMENT_PROMPTED), key);
    const bool isCounter = contains(format.getElementIds(ELEMENT_COUNTER), key);
    if (!isPrompted && !isCounter) {
        std::cout << "\nVariable not found: " << key;
        return;
    }
    format.setContentOfElement(key, value);
    if (!quiet)
        std::cout << "\nVariable: " << key << "=" << value;
}

std::optional<VariablePairs> loadVariablesFile(const std::string& path)
{
    std::ifstream file(path);
    // A directory opens here but holds no line; it is no variables file.
    if (!file.is_open() || directoryExists(path))
        return std::nullopt;
    VariablePairs pairs;
    std::string line;
    while (std::getline(file, line)) {
        // The program writes LF alone; a CR before it comes from another system's editor.
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        addPair(line, pairs);
    }
    return pairs;
}

void listVariables(KT_INTERFACE::FormatInterface& format, const std::string& path)
{
    using namespace KT_INTERFACE;
    std::string listing;
    for (const uint32_t kind : {ELEMENT_PROMPTED, ELEMENT_COUNTER}) {
        for (const std::string& id : format.getElementIds(kind)) {
            const std::string line = id + "=" + format.getContentOfElement(id) + "\n";
            std::cout << line;
            listing += line;
        }
    }
    // Nothing to list leaves an older file as it is.
    if (listing.empty())
        return;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file.is_open()) {
        std::cout << "Can't open file for writing: " << path << "\n";
        return;
    }
    file << listing;
}

bool applyVariables(const ArgumentMap& arguments, KT_INTERFACE::FormatInterface& format, bool quiet)
{
    const auto load = arguments.find("loadvariables");
    if (load != arguments.end()) {
        const std::optional<VariablePairs> pairs = loadVariablesFile(load->second);
        if (!pairs) {
            std::cout << "Datei konnte nicht geöffnet werden.\n";
            return false;
        }
        for (const auto& [key, value] : *pairs)
            assignVariable(quiet, format, key, value);
    }
    // The map's key order is the order of the assignments, and they come after the file's.
    for (const auto& [key, value] : arguments)
        if (!isReserved(key))
            assignVariable(quiet, format, key, value);
    const auto show = arguments.find("showvariables");
    if (show != arguments.end())
        listVariables(format, show->second == "y" ? arguments.at("in") + ".variables" : show->second);
    return true;
}
