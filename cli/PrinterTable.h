#pragma once
#include <array>
#include <cstdint>
#include <string_view>

struct PrinterModel {
    std::string_view name;
    int32_t width;
    int32_t height;
};

inline constexpr std::array<PrinterModel, 8> printerTable{{
    {"KTA1", 640, 608},
    {"KTA2", 640, 6400},
    {"KTB1", 1280, 608},
    {"KTB2", 1280, 6400},
    {"KTC1", 1920, 608},
    {"KTC2", 1920, 6400},
    {"KTD1", 2560, 608},
    {"KTD2", 2560, 6400},
}};
