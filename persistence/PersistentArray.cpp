#include "persistence/PersistentArray.h"

#include <cstdlib>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string>

namespace SRAM {

void PersistentArray::clear()
{
    const uint32_t length = size();
    for (uint32_t i = 0; i < length; ++i)
        writeByte(i, 0);
}

uint32_t PersistentArray::writeBlock(const uint8_t* source, uint32_t length, uint32_t address)
{
    for (uint32_t i = 0; i < length; ++i)
        writeByte(address + i, source[i]);
    return length;
}

uint32_t PersistentArray::readBlock(uint8_t* target, uint32_t length, uint32_t address)
{
    for (uint32_t i = 0; i < length; ++i)
        target[i] = readByte(address + i);
    return length;
}

namespace {

constexpr unsigned randomSeed = 43785623;

uint8_t nextRandomByte()
{
    return static_cast<uint8_t>(std::rand());
}

// Built apart so that the caller's stream keeps its own number format.
std::string hexField(uint32_t value, int width)
{
    std::ostringstream out;
    out << std::hex << std::setw(width) << std::setfill('0') << value;
    return out.str();
}

// Bits of the failure word, one hexadecimal digit per pattern.
constexpr uint32_t failedZero = 0x0001;
constexpr uint32_t failedOnes = 0x0010;
constexpr uint32_t failedAlternateHigh = 0x0100;
constexpr uint32_t failedAlternateLow = 0x1000;

uint32_t probeCell(PersistentArray& array, uint32_t address)
{
    uint32_t failures = 0;
    array.writeByte(address, 0x00);
    if (array.readByte(address) != 0x00)
        failures |= failedZero;
    array.writeByte(address, 0xFF);
    if (array.readByte(address) < 0xFF)
        failures |= failedOnes;
    array.writeByte(address, 0xAA);
    if (array.readByte(address) != 0xAA)
        failures |= failedAlternateHigh;
    array.writeByte(address, 0x55);
    if (array.readByte(address) != 0x55)
        failures |= failedAlternateLow;
    return failures;
}

// The legend says "0b" although the word is printed in hexadecimal; kept as operators know it.
void writeLegend(std::ostream& out)
{
    out << "0b0001: failed r/w 0x00\r\n"
        << "0b0010: failed r/w 0xFF\r\n"
        << "0b0100: failed r/w 0xAA\r\n"
        << "0b1000: failed r/w 0x55\r\n";
}

}  // namespace

uint32_t randomTest(PersistentArray& array, uint32_t start, uint32_t length, std::ostream* report,
                    uint32_t maximumLines)
{
    std::srand(randomSeed);
    for (uint32_t i = 0; i < length; ++i)
        array.writeByte(start + i, nextRandomByte());

    std::srand(randomSeed);
    uint32_t errors = 0;
    for (uint32_t i = 0; i < length; ++i) {
        const uint32_t address = start + i;
        if (array.readByte(address) == nextRandomByte())
            continue;
        ++errors;
        if (errors <= maximumLines && report != nullptr) {
            *report << "failed test on cell 0x" << hexField(address, 8) << "\r\n";
        }
    }
    return errors;
}

uint32_t patternTest(PersistentArray& array, uint32_t start, uint32_t length, std::ostream& report,
                     uint32_t maximumLines)
{
    uint32_t badCells = 0;
    for (uint32_t i = 0; i < length; ++i) {
        const uint32_t address = start + i;
        const uint8_t kept = array.readByte(address);
        const uint32_t failures = probeCell(array, address);
        array.writeByte(address, kept);
        if (failures == 0)
            continue;
        if (badCells == 0)
            writeLegend(report);
        ++badCells;
        if (badCells <= maximumLines) {
            report << "0x" << hexField(address, 8) << " fail: 0x" << hexField(failures, 4) << "\r\n";
        }
    }
    report.flush();
    return badCells;
}

}  // namespace SRAM
