#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "autocode/CounterAttributes.h"

namespace KT_INTERFACE {

// Kinds of element, one bit each; only ELEMENT_ALL combines them.
inline constexpr uint32_t ELEMENT_PROMPTED = 1;
inline constexpr uint32_t ELEMENT_EXTERNAL = 2;
inline constexpr uint32_t ELEMENT_COUNTER = 4;
inline constexpr uint32_t ELEMENT_DATE = 8;
inline constexpr uint32_t ELEMENT_FORMULA = 16;
inline constexpr uint32_t ELEMENT_ALL = 31;

// The id letter of a single kind; any other mask fails.
char elementTypeToPrefix(uint32_t mask);

// What a format shows to whoever drives it. Elements are named by their reference, "V" + id.
class FormatInterface {
public:
    virtual ~FormatInterface() = default;

    virtual void raisePrinted() = 0;
    virtual void raiseTrigger() = 0;
    virtual void clockTick() = 0;
    virtual void holdUpdates() = 0;
    virtual void releaseUpdates() = 0;
    virtual uint32_t countElements(uint32_t mask) = 0;
    virtual std::vector<std::string> getElementIds(uint32_t mask) = 0;
    virtual std::string getPromptOfElement(std::string reference) = 0;
    virtual std::string getResultOfElement(std::string reference) = 0;
    virtual std::string getContentOfElement(std::string reference) = 0;
    virtual KT_AC::CounterAttributes getCounterAttributes(std::string reference) = 0;
    virtual void setCounterAttributes(std::string reference, KT_AC::CounterAttributes attributes) = 0;
    virtual uint32_t getVariableMinimumLength(std::string reference) = 0;
    virtual uint16_t getVariableMaximumLength(std::string reference) = 0;
    virtual void setContentOfElement(std::string reference, std::string text) = 0;
    virtual void addSerializationData(std::string reference, std::string text) = 0;
    virtual void deleteSerializationData(std::string reference) = 0;
    virtual uint32_t getPrintLength() = 0;
};

}  // namespace KT_INTERFACE
