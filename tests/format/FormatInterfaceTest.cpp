#include "format/FormatInterface.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>

#include "errors/KT_Error.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/VirtualSlots.h"

using namespace KT_INTERFACE;

TEST(FormatInterface, EachSingleMaskHasItsPrefix)
{
    const std::pair<uint32_t, char> cases[] = {
        {ELEMENT_PROMPTED, 'I'}, {ELEMENT_EXTERNAL, 'X'}, {ELEMENT_COUNTER, 'C'},
        {ELEMENT_DATE, 'D'},     {ELEMENT_FORMULA, 'F'},
    };
    for (const auto& [mask, prefix] : cases) {
        SCOPED_TRACE(mask);
        EXPECT_EQ(elementTypeToPrefix(mask), prefix);
    }
}

TEST(FormatInterface, MasksDoNotCombine)
{
    for (const uint32_t mask : {0u, 3u, 5u, 31u, 32u, 4294967295u}) {
        SCOPED_TRACE(mask);
        expectFailure<KT_ERROR::internal_autocode_error>(
            [&] { elementTypeToPrefix(mask); },
            "elementTypeToPrefix() called with illegal parameter " + std::to_string(mask));
    }
}

TEST(FormatInterface, OperationsTakeTheirSlotsInOrderBehindTheDestructor)
{
    // The destructor takes the first two slots of the ABI, the complete and the deleting one.
    const std::ptrdiff_t slots[] = {
        slotOf(&FormatInterface::raisePrinted),
        slotOf(&FormatInterface::raiseTrigger),
        slotOf(&FormatInterface::clockTick),
        slotOf(&FormatInterface::holdUpdates),
        slotOf(&FormatInterface::releaseUpdates),
        slotOf(&FormatInterface::countElements),
        slotOf(&FormatInterface::getElementIds),
        slotOf(&FormatInterface::getPromptOfElement),
        slotOf(&FormatInterface::getResultOfElement),
        slotOf(&FormatInterface::getContentOfElement),
        slotOf(&FormatInterface::getCounterAttributes),
        slotOf(&FormatInterface::setCounterAttributes),
        slotOf(&FormatInterface::getVariableMinimumLength),
        slotOf(&FormatInterface::getVariableMaximumLength),
        slotOf(&FormatInterface::setContentOfElement),
        slotOf(&FormatInterface::addSerializationData),
        slotOf(&FormatInterface::deleteSerializationData),
        slotOf(&FormatInterface::getPrintLength),
    };
    for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(std::size(slots)); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(slots[i], i + 2);
    }
}
