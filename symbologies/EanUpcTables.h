#pragma once
#include <array>

// The EAN/UPC digit patterns as element widths in modules, bar and space alternating. Set A serves the
// odd-parity digits and, starting on a bar behind the centre guard, the right half too; set B the even ones.
inline constexpr std::array<const char*, 10> eanSetA{
    "3211", "2221", "2122", "1411", "1132", "1231", "1114", "1312", "1213", "3112"};
inline constexpr std::array<const char*, 10> eanSetB{
    "1123", "1222", "2212", "1141", "2311", "1321", "4111", "2131", "3121", "2113"};

// The pattern set of each data digit: EAN-13 by its first digit, UPC-E by its check digit.
inline constexpr std::array<const char*, 10> ean13Parity{
    "aaaaaa", "aababb", "aabbab", "aabbba", "abaabb", "abbaab", "abbbaa", "ababab", "ababba", "abbaba"};
inline constexpr std::array<const char*, 10> upcEParity{
    "bbbaaa", "bbabaa", "bbaaba", "bbaaab", "babbaa", "baabba", "baaabb", "bababa", "babaab", "baabab"};

inline constexpr const char* eanEdgeGuard = "111";
inline constexpr const char* eanCentreGuard = "11111";
inline constexpr const char* upcEEndGuard = "111111";
