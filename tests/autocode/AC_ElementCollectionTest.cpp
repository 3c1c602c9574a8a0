#include "autocode/AC_ElementCollection.h"

#include <gtest/gtest.h>

#include <memory>

#include "errors/KT_Error.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

std::unique_ptr<ProbeElement> probe(const std::string& text) { return std::make_unique<ProbeElement>(text); }

}  // namespace

TEST(AC_ElementCollection, StartsEmpty)
{
    const AC_ElementCollection collection;
    EXPECT_EQ(collection.size(), 0u);
    EXPECT_TRUE(collection.getIdsOfType('C').empty());
}

TEST(AC_ElementCollection, FindsAnElementByItsId)
{
    AC_ElementCollection collection;
    collection.addElement("Cfoo", probe("foo"));
    collection.addElement("Ibar", probe("bar"));
    EXPECT_EQ(collection.size(), 2u);
    EXPECT_EQ(collection.getElement("Cfoo").getResult(), "foo");
    EXPECT_EQ(collection.getElement("Ibar").getResult(), "bar");
}

TEST(AC_ElementCollection, SecondAddUnderOneIdFailsAndDestroysTheNewcomer)
{
    std::vector<std::string> journal;  // outlives the elements that write into it
    AC_ElementCollection collection;
    collection.addElement("Cfoo", std::make_unique<ProbeElement>("first", &journal, "first"));
    expectFailure<KT_ERROR::bad_escape_sequence>(
        [&] { collection.addElement("Cfoo", std::make_unique<ProbeElement>("second", &journal, "second")); },
        "Element id already exists in collection: Cfoo");
    EXPECT_EQ(collection.size(), 1u);
    EXPECT_EQ(collection.getElement("Cfoo").getResult(), "first");
    EXPECT_EQ(collection.getElementByIndex(0).getResult(), "first");
    EXPECT_EQ(journal, std::vector<std::string>{"second destroyed"});
}

TEST(AC_ElementCollection, UnknownIdFailsAndInsertsNothing)
{
    AC_ElementCollection collection;
    collection.addElement("Cfoo", probe("foo"));
    for (const char* id : {"Cbar", "", "VCfoo", "cfoo"}) {
        SCOPED_TRACE(id);
        expectFailure<KT_ERROR::bad_escape_sequence>([&] { collection.getElement(id); },
                                                     std::string("Element id not found: ") + id);
    }
    EXPECT_EQ(collection.size(), 1u);
}

TEST(AC_ElementCollection, IndexFollowsTheOrderOfInsertion)
{
    AC_ElementCollection collection;
    collection.addElement("Xzeta", probe("zeta"));
    collection.addElement("Calpha", probe("alpha"));
    collection.addElement("&0", probe("anonymous"));
    EXPECT_EQ(collection.getElementByIndex(0).getResult(), "zeta");
    EXPECT_EQ(collection.getElementByIndex(1).getResult(), "alpha");
    EXPECT_EQ(collection.getElementByIndex(2).getResult(), "anonymous");
}

TEST(AC_ElementCollection, IndexAtOrBeyondTheSizeFails)
{
    AC_ElementCollection collection;
    collection.addElement("Cfoo", probe("foo"));
    for (const uint32_t index : {1u, 2u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(index);
        expectFailure<KT_ERROR::internal_autocode_error>([&] { collection.getElementByIndex(index); },
                                                          "Element index out of range");
    }
    const AC_ElementCollection empty;
    expectFailure<KT_ERROR::internal_autocode_error>([&] { empty.getElementByIndex(0); },
                                                      "Element index out of range");
}

TEST(AC_ElementCollection, IdsOfTypeAreSortedByIdWithALeadingV)
{
    AC_ElementCollection collection;
    for (const char* id : {"Czulu", "Ialpha", "Cbeta", "&0", "CAlpha", "Xcount", "C", "Dcdate"})
        collection.addElement(id, probe(id));
    EXPECT_EQ(collection.getIdsOfType('C'), (std::vector<std::string>{"VC", "VCAlpha", "VCbeta", "VCzulu"}));
    EXPECT_EQ(collection.getIdsOfType('I'), std::vector<std::string>{"VIalpha"});
    EXPECT_TRUE(collection.getIdsOfType('F').empty());
}

TEST(AC_ElementCollection, GeneratedIdsCountUpFromZero)
{
    AC_ElementCollection collection;
    EXPECT_EQ(collection.generateId(), "&0");
    EXPECT_EQ(collection.generateId(), "&1");
    EXPECT_EQ(collection.generateId(), "&2");
    for (int i = 3; i < 10; ++i)
        collection.generateId();
    EXPECT_EQ(collection.generateId(), "&10");
    EXPECT_EQ(collection.size(), 0u);
}

TEST(AC_ElementCollection, GeneratedIdsStartAgainAfterClear)
{
    AC_ElementCollection collection;
    collection.addElement(collection.generateId(), probe("a"));
    collection.addElement(collection.generateId(), probe("b"));
    collection.clear();
    EXPECT_EQ(collection.generateId(), "&0");
    collection.addElement("&0", probe("c"));
    EXPECT_EQ(collection.getElement("&0").getResult(), "c");
}

TEST(AC_ElementCollection, BroadcastReachesEveryElementInOrderOfInsertion)
{
    std::vector<std::string> journal;  // outlives the elements that write into it
    AC_ElementCollection collection;
    for (const char* id : {"Xb", "Ca", "&0"})
        collection.addElement(id, std::make_unique<ProbeElement>("", &journal, id));
    collection.broadcast(EVENT_TRIGGER, 9);
    EXPECT_EQ(journal, (std::vector<std::string>{"Xb update 2 9", "Ca update 2 9", "&0 update 2 9"}));
}

TEST(AC_ElementCollection, ClearDestroysInOrderOfInsertionAndEmpties)
{
    std::vector<std::string> journal;  // outlives the elements that write into it
    AC_ElementCollection collection;
    for (const char* id : {"Xb", "Ca", "&0"})
        collection.addElement(id, std::make_unique<ProbeElement>("", &journal, id));
    collection.clear();
    EXPECT_EQ(journal, (std::vector<std::string>{"Xb destroyed", "Ca destroyed", "&0 destroyed"}));
    EXPECT_EQ(collection.size(), 0u);
    EXPECT_TRUE(collection.getIdsOfType('C').empty());
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { collection.getElement("Ca"); }, "Element id not found: Ca");
    collection.addElement("Ca", probe("again"));
    EXPECT_EQ(collection.size(), 1u);
}

TEST(AC_ElementCollection, DestructorDestroysInOrderOfInsertion)
{
    std::vector<std::string> journal;
    {
        AC_ElementCollection collection;
        for (const char* id : {"Xb", "Ca", "&0"})
            collection.addElement(id, std::make_unique<ProbeElement>("", &journal, id));
    }
    EXPECT_EQ(journal, (std::vector<std::string>{"Xb destroyed", "Ca destroyed", "&0 destroyed"}));
}

TEST(AC_ElementCollection, AddingGivesTheElementItsCollection)
{
    AC_ElementCollection collection;
    auto owned = probe("a");
    ProbeElement& element = *owned;
    collection.addElement("Ia", std::move(owned));
    collection.addElement("Ib", probe("b"));
    EXPECT_EQ(element.lookup("Ib").getResult(), "b");
}
