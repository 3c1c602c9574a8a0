#pragma once
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/RenderDriver.h"

namespace KT_INTERFACE {
class FormatInterface;
}

using VariablePairs = std::vector<std::pair<std::string, std::string>>;

// Sets a prompted variable or counter by its reference; an unknown name is reported and is no error.
void assignVariable(bool quiet, KT_INTERFACE::FormatInterface& format, const std::string& key,
                    const std::string& value);
// The pairs of a variables file in file order, or nothing if it can't be opened.
std::optional<VariablePairs> loadVariablesFile(const std::string& path);
// Prints the prompted variables and counters with their values and writes the same lines to the path.
void listVariables(KT_INTERFACE::FormatInterface& format, const std::string& path);
// The driver's steps after the parse: the variables file, the assignments of the command line and the
// listing. False when the variables file can't be opened.
bool applyVariables(const ArgumentMap& arguments, KT_INTERFACE::FormatInterface& format, bool quiet);
