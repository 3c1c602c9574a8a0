#pragma once
#include <array>
#include <string_view>

// Five element widths per digit 0 to 9; 1 narrow, 2 wide.
inline constexpr std::array<std::string_view, 10> code25Patterns = {
    "11221", "21112", "12112", "22111", "11212", "21211", "12211", "11122", "21121", "12121",
};
inline constexpr std::string_view code25Start = "1111";
inline constexpr std::string_view code25Stop = "211";
