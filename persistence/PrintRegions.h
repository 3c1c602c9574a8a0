#pragma once
#include <cstdint>
#include <vector>

// The bands of rows that a format prints, one list for the process.
class PrintRegions {
public:
    // Made on first use and never freed.
    static PrintRegions& instance();

    void clear();
    // Appends the band from low to high and returns its length; a band with low not below high empties the
    // list and fails.
    uint32_t add(uint32_t low, uint32_t high);
    // The limits stand flat, low and high of each region in turn.
    uint32_t getLimit(uint32_t index) const;
    uint32_t count() const { return static_cast<uint32_t>(limits.size()); }
    uint32_t getLength(uint32_t region) const;
    bool isEmpty() const { return limits.empty(); }
    // Moves on to the next region; true when a pass through all of them is complete, and always without any.
    bool next();
    uint32_t getMaxLength() const { return maxLength; }

private:
    PrintRegions() = default;

    std::vector<uint32_t> limits;
    uint32_t current = 0;
    uint32_t maxLength = 0;
};

// Where each region's values begin in the output of the last hysteresis.
extern std::vector<uint32_t> hysteresisData;
