#pragma once
#include <array>

// Fonts 0 to 6 as a fresh font directory maps them. The older names come from installations that
// predate the current set; font 6 has no older file.
struct DefaultFont {
    const char* newFile;
    const char* oldFile;
};

inline constexpr std::array<DefaultFont, 7> defaultFontTable{{
    {"ocr-b_2.ttf", "ocr-b.ttf"},
    {"gill.ttf", "gill.ttf"},
    {"helvet_2.ttf", "helvetic.ttf"},
    {"gothic_2.ttf", "gothic.ttf"},
    {"aribd_2.ttf", "arialbd.ttf"},
    {"arial_2.ttf", "arial.ttf"},
    {"ocr-a_2.ttf", nullptr},
}};
