// The operations through which a host reads and changes a format's elements.
#include <algorithm>
#include <cstdlib>

#include "autocode/AC_Counter.h"
#include "autocode/AC_VariableString.h"
#include "autocode/DateClock.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"

namespace KT_FMT {

namespace {

constexpr uint32_t hysteresisWindow = 150;
constexpr int32_t paperLevel = 255;

// The test of the operations that take any kind: a V, which is cut off.
std::string cutV(const std::string& reference, const char* operation)
{
    if (reference.empty() || reference[0] != 'V')
        throw KT_ERROR::kt_exception(KT_ERROR::text("KT_Format::", operation, "(): id must start with 'V'"));
    return reference.substr(1);
}

// The test of the counter operations: "VC", of which only the V is cut off.
std::string cutVC(const std::string& reference, const char* operation)
{
    if (reference.compare(0, 2, "VC") != 0)
        throw KT_ERROR::kt_exception(KT_ERROR::text("KT_Format::", operation, "(): id must start with VC"));
    return reference.substr(1);
}

char kindOf(const std::string& id) { return id.empty() ? '\0' : id[0]; }

bool isVariableKind(char kind) { return kind == 'I' || kind == 'X'; }

// The old content may itself be below the minimum of an unaligned variable; then the first failure
// is the one that goes on, and the element keeps what it holds.
void restoreContent(KT_AC::AC_VariableString& variable, const std::string& content, const std::string& id)
{
    try {
        variable.setContent(content, id);
    } catch (const KT_ERROR::illegal_content&) {
    }
}

}  // namespace

// The two spellings of the message differ in a bracket; both are kept as operators know them.
KT_AC::AC_VariableString& KT_Format::variableOf(const std::string& id, const char* closing)
{
    auto* variable = dynamic_cast<KT_AC::AC_VariableString*>(&elements.getElement(id));
    if (variable == nullptr)
        throw KT_ERROR::internal_autocode_error(
            KT_ERROR::text("tried to retrieve a variable (V", id, closing, ", but found something else"));
    return *variable;
}

KT_AC::AC_Counter& KT_Format::counterOf(const std::string& id, const char* closing)
{
    auto* counter = dynamic_cast<KT_AC::AC_Counter*>(&elements.getElement(id));
    if (counter == nullptr)
        throw KT_ERROR::internal_autocode_error(
            KT_ERROR::text("tried to retrieve a counter (V", id, closing, ", but found something else"));
    return *counter;
}

// The first byte of the reference is not looked at, only the kind letter behind it.
KT_AC::AC_VariableString& KT_Format::promptedVariable(const std::string& reference, const char* operation)
{
    if (reference.size() < 2 || reference[1] != 'I')
        throw KT_ERROR::kt_exception(KT_ERROR::text("KT_Format::", operation, "(): id must start with VI: "));
    return variableOf(reference.substr(1), "");
}

void KT_Format::raisePrinted()
{
    elements.broadcast(KT_AC::EVENT_PRINTED, 0);
    update();
}

void KT_Format::raiseTrigger()
{
    elements.broadcast(KT_AC::EVENT_TRIGGER, 0);
    update();
}

// A tick repaints even while updates are held, and leaves the hold as it found it.
void KT_Format::clockTick()
{
    KT_AC::refreshNow();
    const bool held = updatesHeld;
    updatesHeld = false;
    elements.broadcast(KT_AC::EVENT_TICK, 0);
    update();
    updatesHeld = held;
}

void KT_Format::holdUpdates() { updatesHeld = true; }

void KT_Format::releaseUpdates()
{
    updatesHeld = false;
    update();
}

uint32_t KT_Format::countElements(uint32_t mask) { return static_cast<uint32_t>(getElementIds(mask).size()); }

std::vector<std::string> KT_Format::getElementIds(uint32_t mask)
{
    using namespace KT_INTERFACE;
    if (mask != ELEMENT_ALL)
        return elements.getIdsOfType(elementTypeToPrefix(mask));
    // Formulas before dates.
    std::vector<std::string> all;
    for (const uint32_t kind : {ELEMENT_PROMPTED, ELEMENT_EXTERNAL, ELEMENT_COUNTER, ELEMENT_FORMULA, ELEMENT_DATE}) {
        const std::vector<std::string> ids = elements.getIdsOfType(elementTypeToPrefix(kind));
        all.insert(all.end(), ids.begin(), ids.end());
    }
    return all;
}

std::string KT_Format::getPromptOfElement(std::string reference)
{
    return promptedVariable(reference, "getPromptOfElement").getPrompt();
}

std::string KT_Format::getResultOfElement(std::string reference)
{
    return elements.getElement(cutV(reference, "getResultOfElement")).getResult();
}

std::string KT_Format::getContentOfElement(std::string reference)
{
    const std::string id = cutV(reference, "getContentOfElement");
    const char kind = kindOf(id);
    if (isVariableKind(kind))
        return variableOf(id, ")").getContent();
    if (kind == 'C')
        return std::to_string(counterOf(id, ")").getAttributes().value);
    throw KT_ERROR::kt_exception(
        KT_ERROR::text("element content not available for this type or unknown element type: V", id));
}

KT_AC::CounterAttributes KT_Format::getCounterAttributes(std::string reference)
{
    return counterOf(cutVC(reference, "getCounterAttributes"), "").getAttributes();
}

void KT_Format::setCounterAttributes(std::string reference, KT_AC::CounterAttributes attributes)
{
    const std::string id = cutVC(reference, "setCounterAttributes");
    counterOf(id, "").setAttributes(attributes, id);
    update();
}

uint32_t KT_Format::getVariableMinimumLength(std::string reference)
{
    return promptedVariable(reference, "getVariableMinimumLength").getMinimumLength();
}

// Deliberately reports itself as getPromptOfElement, as it always has.
uint16_t KT_Format::getVariableMaximumLength(std::string reference)
{
    return promptedVariable(reference, "getPromptOfElement").getMaximumLength();
}

// A change that fails, in the element or in the repaint, puts the old value back without a further update.
void KT_Format::setContentOfElement(std::string reference, std::string text)
{
    const std::string id = cutV(reference, "setContentOfElement");
    const char kind = kindOf(id);
    if (kind == 'C') {
        KT_AC::AC_Counter& counter = counterOf(id, "");
        KT_AC::CounterAttributes attributes = counter.getAttributes();
        const int32_t oldValue = attributes.value;
        try {
            // Truncated to 32 bits as the C library's integer conversion does; no number at all is 0.
            attributes.value = static_cast<int32_t>(std::strtol(text.c_str(), nullptr, 10));
            counter.setAttributes(attributes, id);
            update();
        } catch (...) {
            attributes.value = oldValue;
            counter.setAttributes(attributes, id);
            throw;
        }
    } else if (isVariableKind(kind)) {
        KT_AC::AC_VariableString& variable = variableOf(id, "");
        const std::string oldContent = variable.getContent();
        try {
            variable.setContent(text, id);
            update();
        } catch (...) {
            restoreContent(variable, oldContent, id);
            throw;
        }
    } else {
        throw KT_ERROR::kt_exception(KT_ERROR::text("KT_Format::setContentOfElement() unknown element type: ", id));
    }
}

void KT_Format::addSerializationData(std::string reference, std::string text)
{
    const std::string id = cutV(reference, "addSerializationData");
    if (!isVariableKind(kindOf(id)))
        throw KT_ERROR::kt_exception(KT_ERROR::text("KT_Format::addSerializationData() unknown element type: ", id));
    variableOf(id, "").setSerializationData(text, true);
}

void KT_Format::deleteSerializationData(std::string reference)
{
    const std::string id = cutV(reference, "deleteSerializationData");
    if (!isVariableKind(kindOf(id)))
        throw KT_ERROR::kt_exception(
            KT_ERROR::text("KT_Format::deleteSerializationData() unknown element type: ", id));
    variableOf(id, "").setSerializationData(std::string(1, VT), false);
}

// The used rows count as 0 on a blank image, so that it has a length of 1.
uint32_t KT_Format::getPrintLength()
{
    return static_cast<uint32_t>(image->getLastUsedRow() - image->getFirstUsedRow() + 1);
}

void KT_Format::hysteresisProfile(std::vector<int32_t>& out, int32_t startRow, int32_t endRow)
{
    std::vector<uint16_t> counts;
    const uint32_t peak = histogram(counts, startRow, endRow);
    if (peak == 0) {
        out.insert(out.end(), counts.size(), paperLevel);
        return;
    }
    // The window's full area divides from the first row on, so the level sinks as ink comes into the window.
    const uint64_t area = std::min<uint64_t>(counts.size(), hysteresisWindow) * peak;
    uint64_t sum = 0;
    for (size_t row = 0; row < counts.size(); ++row) {
        sum += counts[row];
        if (row >= hysteresisWindow)
            sum -= counts[row - hysteresisWindow];
        out.push_back(static_cast<int32_t>(paperLevel - static_cast<int64_t>(sum * hysteresisScale / area)));
    }
}

}  // namespace KT_FMT
