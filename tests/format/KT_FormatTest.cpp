#include "format/KT_Format.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "format/FieldReaders.h"
#include "graphics/Image.h"
#include "tests/autocode/ProbeElement.h"

using namespace KT_FMT;

namespace {

class KT_FormatElements : public testing::Test {
protected:
    void parseEmptyFormat()
    {
        std::istringstream in("EMPTY     \xff");
        format.parse(in, nullptr, 0);
    }

    std::string readFixedField(const std::string& text)
    {
        std::istringstream in("F" + text + "\v");
        return readContentField(in, format);
    }

    std::vector<std::string> journal;  // outlives the elements that write into it
    Image image{64, 8};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(KT_FormatElements, StartsWithAnEmptyCollection)
{
    EXPECT_EQ(format.getElements().size(), 0u);
}

TEST_F(KT_FormatElements, ParsingAgainRestartsGeneratedIds)
{
    parseEmptyFormat();
    EXPECT_EQ(readFixedField("a"), "&0");
    EXPECT_EQ(readFixedField("b"), "&1");
    parseEmptyFormat();
    EXPECT_EQ(format.getElements().size(), 0u);
    EXPECT_EQ(readFixedField("c"), "&0");
    EXPECT_EQ(format.getElements().getElement("&0").getResult(), "c");
}

TEST_F(KT_FormatElements, ClearEmptiesTheCollection)
{
    parseEmptyFormat();
    readFixedField("a");
    format.clear();
    EXPECT_TRUE(format.isEmpty());
    EXPECT_EQ(format.getElements().size(), 0u);
    EXPECT_EQ(format.getElements().generateId(), "&0");
}

TEST_F(KT_FormatElements, UpdateTellsEveryElementItWasPainted)
{
    format.getElements().addElement("Xa", std::make_unique<ProbeElement>("", &journal, "Xa"));
    format.getElements().addElement("Cb", std::make_unique<ProbeElement>("", &journal, "Cb"));
    format.update();
    EXPECT_EQ(journal, (std::vector<std::string>{"Xa update 0 0", "Cb update 0 0"}));
}
