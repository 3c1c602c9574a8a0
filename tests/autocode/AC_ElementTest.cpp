#include "autocode/AC_Element.h"

#include <gtest/gtest.h>

#include <locale>
#include <memory>
#include <type_traits>

#include "autocode/AC_ElementCollection.h"
#include "errors/KT_Error.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

// Keeps every operation of the base but the result.
class PlainElement : public AC_Element {
public:
    explicit PlainElement(std::string text) : text(std::move(text)) {}
    std::string getResult() const override { return text; }

private:
    std::string text;
};

// A locale whose decimal point is a comma, to show that the conversion does not follow the global one.
class CommaPoint : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
};

}  // namespace

TEST(AC_Element, EventsHaveTheirNumbers)
{
    EXPECT_EQ(EVENT_PAINTED, 0u);
    EXPECT_EQ(EVENT_PRINTED, 1u);
    EXPECT_EQ(EVENT_TRIGGER, 2u);
    EXPECT_EQ(EVENT_DELETE, 3u);
    EXPECT_EQ(EVENT_TICK, 4u);
}

TEST(AC_Element, CanBeDeletedThroughTheBase)
{
    static_assert(std::has_virtual_destructor_v<AC_Element>);
    std::vector<std::string> journal;
    std::unique_ptr<AC_Element> element = std::make_unique<ProbeElement>("", &journal, "probe");
    element.reset();
    EXPECT_EQ(journal, std::vector<std::string>{"probe destroyed"});
}

TEST(AC_Element, BaseAnswersUnchangedAndVariableAndIgnoresEvents)
{
    PlainElement element("12");
    for (uint32_t event = EVENT_PAINTED; event <= EVENT_TICK; ++event)
        element.update(event, 7);
    EXPECT_TRUE(element.isUnchanged());
    EXPECT_TRUE(element.isVariable());
    EXPECT_EQ(element.getResult(), "12");
}

TEST(AC_Element, ToNumberReadsTheResult)
{
    const struct {
        const char* text;
        double expected;
    } cases[] = {
        {"7", 0},         // deliberately: one character is worth nothing
        {"", 0},          {"-", 0},       {"7.5", 7.5},    {"7,5", 7.5},  {"12", 12},
        {"-7", -7},       {"+7", 7},      {" 12", 12},     {"\t\n12", 12}, {"1e3", 1000},
        {"1,5e2", 150},   {"0,25", 0.25}, {",5", 0.5},     {"00042", 42},  {"-1,5", -1.5},
        {"12,", 12},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_DOUBLE_EQ(PlainElement(c.text).toNumber(), c.expected);
    }
}

TEST(AC_Element, ToNumberFailsOnAnythingLeftOver)
{
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"1,2,3", "could not convert to number: 1.2,3"},  // only the first comma is a point
        {"12a", "could not convert to number: 12a"},
        {"7.5 ", "could not convert to number: 7.5 "},
        {"ab", "could not convert to number: ab"},
        {"1.2.3", "could not convert to number: 1.2.3"},
        {"0x10", "could not convert to number: 0x10"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        expectFailure<KT_ERROR::not_a_number>([&] { PlainElement(c.text).toNumber(); }, c.message);
    }
}

TEST(AC_Element, ToNumberIgnoresTheGlobalLocale)
{
    const std::locale previous = std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
    const double value = PlainElement("7.5").toNumber();
    std::locale::global(previous);
    EXPECT_DOUBLE_EQ(value, 7.5);
}

TEST(AC_Element, CheckDepthCountsUpToFiftyOne)
{
    const PlainElement leaf("x");
    EXPECT_EQ(leaf.checkDepth(0), 1u);
    EXPECT_EQ(leaf.checkDepth(50), 51u);
}

TEST(AC_Element, CheckDepthFailsFromFiftyOne)
{
    const PlainElement leaf("x");
    for (const uint32_t level : {51u, 52u, 4000000000u}) {
        SCOPED_TRACE(level);
        expectFailure<KT_ERROR::internal_autocode_error>([&] { leaf.checkDepth(level); },
                                                          "exceeded maximum depth of autocode tree");
    }
}

TEST(AC_Element, LookupWithoutCollectionFails)
{
    const ProbeElement element;
    expectFailure<KT_ERROR::internal_autocode_error>(
        [&] { element.lookup("Cfoo"); }, "tried to access uninitialised AC_Element::ac_environment variable");
}

TEST(AC_Element, LookupFindsElementsOfItsCollection)
{
    AC_ElementCollection collection;
    auto owner = std::make_unique<ProbeElement>("owner");
    const ProbeElement& element = *owner;
    collection.addElement("Xowner", std::move(owner));
    collection.addElement("Xother", std::make_unique<ProbeElement>("other"));
    EXPECT_EQ(element.lookup("Xother").getResult(), "other");
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { element.lookup("Xnone"); }, "Element id not found: Xnone");
}
