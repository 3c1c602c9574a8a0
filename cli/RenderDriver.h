#pragma once
#include <cstdint>
#include <map>
#include <string>

using ArgumentMap = std::map<std::string, std::string>;

// The whole run from the argument vector to the exit code.
int runRenderer(int argc, char** argv);

ArgumentMap parseArguments(int argc, char** argv);
void printUsage();
// Overwrites width and height when the name is a known printer model.
void printerDimensions(const std::string& name, int32_t& width, int32_t& height);
bool directoryExists(const std::string& path);
std::string executableDirectory();
