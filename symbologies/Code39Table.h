#pragma once
#include <array>
#include <string_view>

// The Code 39 character set in pattern order, the asterisk being start and stop.
inline constexpr std::string_view code39Characters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. *$/+%";
// The set that data and check characters come from: the same without the asterisk.
inline constexpr std::string_view code39Reference = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%";

// Nine element widths per character, bar first; 1 narrow, 2 wide.
inline constexpr std::array<std::string_view, 44> code39Patterns = {
    "111221211", "211211112", "112211112", "212211111", "111221112", "211221111", "112221111", "111211212",
    "211211211", "112211211", "211112112", "112112112", "212112111", "111122112", "211122111", "112122111",
    "111112212", "211112211", "112112211", "111122211", "211111122", "112111122", "212111121", "111121122",
    "211121121", "112121121", "111111222", "211111221", "112111221", "111121221", "221111112", "122111112",
    "222111111", "121121112", "221121111", "122121111", "121111212", "221111211", "122111211", "121121211",
    "121212111", "121211121", "121112121", "111212121",
};
