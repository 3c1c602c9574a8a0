#pragma once
#include <array>
#include <string_view>

// The keys of the command line that are options; every other key assigns a variable.
inline constexpr std::array<std::string_view, 9> reservedKeys{"in",       "out",   "trim",   "showvariables", "printer",
                                                              "fontpath", "width", "height", "loadvariables"};
