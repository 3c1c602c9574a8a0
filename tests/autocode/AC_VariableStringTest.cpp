#include "autocode/AC_VariableString.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <sstream>
#include <string>

#include "autocode/StorageMode.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "persistence/FileArray.h"
#include "persistence/SimpleFS.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

const std::string VT = "\v";

// The body of an ESC V I record behind its selector.
std::string promptedRecord(const std::string& name, const std::string& content, const std::string& prompt = "P",
                           const std::string& padding = "0 0000", const std::string& maxLength = "0000",
                           const std::string& prefix = "", const std::string& suffix = "")
{
    return name + VT + content + VT + prompt + VT + padding + maxLength + prefix + VT + suffix + VT;
}

class VariableStringTest : public testing::Test {
protected:
    AC_VariableString& read(const std::string& body, bool isExternal = false)
    {
        std::istringstream in(body + "\x1b");
        const std::string id = AC_VariableString::readVariableRecord(in, format, STORAGE_NONE, isExternal, nullptr);
        EXPECT_EQ(in.peek(), 0x1b) << "the record is read to its end and no further";
        return dynamic_cast<AC_VariableString&>(format.getElements().getElement(id));
    }
    AC_VariableString& variable(const std::string& padding, const std::string& maxLength,
                                const std::string& content = "")
    {
        return read(promptedRecord("v", content, "P", padding, maxLength));
    }

    Image image{32, 4};
    KT_FMT::KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(VariableStringTest, APromptedRecordGivesEveryField)
{
    AC_VariableString& v = read(promptedRecord("Ribbon:", "abc", "Folientyp ?", "L*0005", "0008", "<", ">"));
    EXPECT_EQ(&format.getElements().getElement("IRibbon:"), &v);
    EXPECT_EQ(v.getContent(), "abc");
    EXPECT_EQ(v.getPrompt(), "Folientyp ?");
    EXPECT_EQ(v.getMinimumLength(), 5u);
    EXPECT_EQ(v.getMaximumLength(), 8u);
    EXPECT_EQ(v.getPadding().alignment, Padding::ALIGN_LEFT);
    EXPECT_EQ(v.getPadding().padCharacter, '*');
    EXPECT_EQ(v.getResult(), "<**abc>");
    EXPECT_EQ(v.getSourceId(), "");
    EXPECT_EQ(v.getSerializationData(), "");
    EXPECT_TRUE(v.isVariable());
    EXPECT_FALSE(v.isUnchanged());
}

TEST_F(VariableStringTest, AnExternalRecordHasNameAndContentOnly)
{
    AC_VariableString& v = read("GTIN" + VT + "0123" + VT, true);
    EXPECT_EQ(&format.getElements().getElement("XGTIN"), &v);
    EXPECT_EQ(v.getContent(), "0123");
    EXPECT_EQ(v.getPrompt(), "");
    EXPECT_EQ(v.getMinimumLength(), 0u);
    EXPECT_EQ(v.getMaximumLength(), 0u);
    EXPECT_EQ(v.getPadding().alignment, Padding::ALIGN_NONE);
    EXPECT_EQ(v.getPadding().padCharacter, ' ');
    EXPECT_EQ(v.getResult(), "0123");
}

TEST_F(VariableStringTest, AnExternalVariableTakesInputOfAnyLength)
{
    AC_VariableString& v = read("GTIN" + VT + "0123" + VT, true);
    const std::string longInput(5000, 'x');
    v.setContent(longInput, "XGTIN");
    EXPECT_EQ(v.getContent(), longInput);
}

TEST_F(VariableStringTest, TheMaximumLengthFieldIsReadLikeAtoi)
{
    struct Case {
        std::string field;
        std::string content;
        uint16_t expected;
    };
    const Case cases[] = {
        {"0012", "", 12},
        {"12ab", "", 12},
        {"ab12", "xyz", 3},  // no number: the content's length
        {"0000", "abcd", 4},
        {"0000", "", 0},
        {" 7 9", "", 7},
        {"-001", "", 65535},  // -1 in 16 bits
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field);
        format.getElements().clear();
        EXPECT_EQ(variable("0 0000", c.field, c.content).getMaximumLength(), c.expected);
    }
}

TEST_F(VariableStringTest, TheMaximumLengthFieldStopsAtALineFeed)
{
    AC_VariableString& v = read("v" + VT + VT + "P" + VT + "0 0000" + "7\nAB" + VT + "S" + VT);
    EXPECT_EQ(v.getMaximumLength(), 7u);
    EXPECT_EQ(v.getResult(), "\nABS");
}

TEST_F(VariableStringTest, AContentLongerThanTheMaximumFailsTheRecord)
{
    std::istringstream in(promptedRecord("name", "abcd", "P", "0 0000", "0003"));
    expectFailure<KT_ERROR::bad_escape_sequence>(
        [&] { AC_VariableString::readVariableRecord(in, format, STORAGE_NONE, false, nullptr); },
        "VIname content length is greater than max. length 3");
    EXPECT_EQ(format.getElements().size(), 0u);
}

TEST_F(VariableStringTest, AnExternalRecordIsNotMeasured)
{
    // The external record has no maximum field, so its content is never compared.
    EXPECT_EQ(read("x" + VT + std::string(300, 'x') + VT, true).getContent().size(), 300u);
}

TEST_F(VariableStringTest, EachUnicodeEscapeTakesFourteenOffTheLength)
{
    struct Case {
        std::string text;
        int64_t expected;
    };
    const Case cases[] = {
        {"", 0},
        {"abc", 3},
        {"\\<UNIC(0041)>", -1},
        {"\\<UNIC(0041)>\\<UNIC(0042)>xyz", 26 + 3 - 28},
        {"\\<UNIC(", -7},
        {"\\<UNIC(\\<UNIC(", -14},
        {"\\<UNIC)", 7},
        {"<UNIC(", 6},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(variableDisplayLength(c.text), c.expected);
    }
}

TEST_F(VariableStringTest, AnUnicodeEscapeLetsTheRecordContentFit)
{
    // 19 bytes, 5 to show.
    AC_VariableString& v = variable("0 0000", "0005", "\\<UNIC(00C4)>abcdef");
    EXPECT_EQ(v.getContent(), "\\<UNIC(00C4)>abcdef");
}

TEST_F(VariableStringTest, ATooLongInputIsRefusedWithItsLengthInBytes)
{
    AC_VariableString& v = variable("0 0000", "0004", "old");
    expectFailure<KT_ERROR::illegal_content>(
        [&] { v.setContent("\\<UNIC(00C4)>abcdef", "IRef"); },
        "new input '\\<UNIC(00C4)>abcdef' to variable 'IRef' exceeds max length of variable (19/4)");
    EXPECT_EQ(v.getContent(), "old");
    EXPECT_EQ(v.getSourceId(), "");
    v.setContent("\\<UNIC(00C4)>abc", "IRef");
    EXPECT_EQ(v.getContent(), "\\<UNIC(00C4)>abc");
}

TEST_F(VariableStringTest, ZeroMaximumFromAnEmptyRecordTakesAnyLength)
{
    AC_VariableString& v = variable("0 0000", "0000", "");
    EXPECT_EQ(v.getMaximumLength(), 0u);
    v.setContent(std::string(70000, 'y'), "Iv");
    EXPECT_EQ(v.getContent().size(), 70000u);
}

TEST_F(VariableStringTest, ZeroInTheFieldLimitsInputToTheRecordContent)
{
    AC_VariableString& v = variable("0 0000", "0000", "abc");
    v.setContent("xyz", "Iv");
    expectFailure<KT_ERROR::illegal_content>(
        [&] { v.setContent("wxyz", "Iv"); },
        "new input 'wxyz' to variable 'Iv' exceeds max length of variable (4/3)");
}

TEST_F(VariableStringTest, AShortInputFailsOnlyWithoutAlignment)
{
    AC_VariableString& plain = variable("0 0005", "0009", "");
    expectFailure<KT_ERROR::illegal_content>([&] { plain.setContent("ab", "Iv"); },
                                             "new input to variable 'Iv' is too short, must be at least 5");
    plain.setContent("abcde", "Iv");
    EXPECT_EQ(plain.getResult(), "abcde");

    format.getElements().clear();
    AC_VariableString& aligned = variable("L.0005", "0009", "");
    aligned.setContent("ab", "Iv");
    EXPECT_EQ(aligned.getResult(), "...ab");
}

TEST_F(VariableStringTest, TheRecordItselfHasNoMinimum)
{
    EXPECT_EQ(variable("0 0005", "0009", "ab").getContent(), "ab");
}

TEST_F(VariableStringTest, ANegativeLookingContentIsPlainText)
{
    AC_VariableString& v = read(promptedRecord("v", "-12", "P", "L00005", "0009", "[", "]"));
    EXPECT_EQ(v.getResult(), "[00-12]");
}

TEST_F(VariableStringTest, SetContentKeepsTheSourceAndCountsAsAChange)
{
    AC_VariableString& v = variable("0 0000", "0009", "a");
    v.update(EVENT_PAINTED, 0);
    EXPECT_TRUE(v.isUnchanged());
    v.setContent("b", "somebody");
    EXPECT_EQ(v.getContent(), "b");
    EXPECT_EQ(v.getSourceId(), "somebody");
    EXPECT_FALSE(v.isUnchanged());
}

TEST_F(VariableStringTest, OnlyThePaintedEventSetsTheUnchangedFlag)
{
    AC_VariableString& v = variable("0 0000", "0009", "a");
    for (const uint32_t event : {EVENT_PRINTED, EVENT_TRIGGER, EVENT_DELETE, EVENT_TICK, 99u}) {
        SCOPED_TRACE(event);
        v.update(event, 0);
        EXPECT_FALSE(v.isUnchanged());
        EXPECT_EQ(v.getContent(), "a");
    }
    v.update(EVENT_PAINTED, 0);
    EXPECT_TRUE(v.isUnchanged());
}

TEST_F(VariableStringTest, SerializationDataIsReplacedWhenNotAdded)
{
    AC_VariableString& v = variable("0 0000", "0009", "a");
    v.update(EVENT_PAINTED, 0);
    v.setSerializationData("x\vy", false);
    EXPECT_EQ(v.getSerializationData(), "x\vy");
    EXPECT_FALSE(v.isUnchanged());
}

TEST_F(VariableStringTest, SerializationDataHasItsOwnLengthMessages)
{
    AC_VariableString& v = variable("0 0003", "0005", "abc");
    expectFailure<KT_ERROR::illegal_content>(
        [&] { v.setSerializationData("abcdef", false); },
        "setSerializationData: new input to variable exceeds max length of variable (6/5)");
    expectFailure<KT_ERROR::illegal_content>(
        [&] { v.setSerializationData("ab", true); },
        "setSerializationData: new input to variable is too short, must be at least 3");
    EXPECT_EQ(v.getSerializationData(), "");
}

TEST_F(VariableStringTest, AddingOnlySeparatorsToNothingSucceeds)
{
    AC_VariableString& v = variable("0 0000", "0009", "a");
    v.update(EVENT_PAINTED, 0);
    v.setSerializationData("\v\v", true);
    EXPECT_EQ(v.getSerializationData(), "\v\v\v");
    EXPECT_FALSE(v.isUnchanged());
}

TEST_F(VariableStringTest, AnyRealPieceOverflowsTheSerializationBuffer)
{
    struct Case {
        std::string present;
        std::string added;
        int requested;
    };
    const Case cases[] = {
        {"", "a", 1},
        {"", "\va\v", 1},
        {"", "a\v\vb", 2},
        {"x\vy", "\v", 2},
        {"x", "y\vz", 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.present + "|" + c.added);
        format.getElements().clear();
        AC_VariableString& v = variable("0 0000", "0009", "a");
        v.setSerializationData(c.present, false);
        v.update(EVENT_PAINTED, 0);
        expectFailure<KT_ERROR::illegal_content>(
            [&] { v.setSerializationData(c.added, true); },
            "setSerializationData: Serialization elements overflow. Increase buffer with X67. Requested: " +
                std::to_string(c.requested));
        EXPECT_EQ(v.getSerializationData(), c.present);
        EXPECT_TRUE(v.isUnchanged());
    }
}

// A store of its own in a region of 512 bytes, and the address stream of a persistent format.
class PersistentVariableTest : public testing::Test {
protected:
    AC_VariableString& read(uint32_t mode, const std::string& body, std::iostream* stream)
    {
        std::istringstream in(body);
        const std::string id = AC_VariableString::readVariableRecord(in, format, mode, false, stream);
        return dynamic_cast<AC_VariableString&>(format.getElements().getElement(id));
    }
    std::string fileText(uint32_t address)
    {
        std::string text(fs.fileSize(address), '\0');
        fs.read(reinterpret_cast<uint8_t*>(text.data()), static_cast<uint32_t>(text.size()), address, nullptr, false);
        return text;
    }
    static uint32_t addressAt(const std::string& stream, size_t index)
    {
        uint32_t address = 0;
        std::memcpy(&address, stream.data() + 4 * index, 4);
        return address;
    }

    SRAM::FileArray array{512};
    SimpleFS fs{array, 0, 512, true};
    Image image{32, 4};
    KT_FMT::KT_Format format{&fs, &image, nullptr};
    std::stringstream addresses;
};

TEST_F(PersistentVariableTest, StoringWritesTheContentToANewFileAndItsAddressToTheStream)
{
    AC_VariableString& v = read(STORAGE_STORE, promptedRecord("v", "abc", "P", "0 0000", "0020"), &addresses);
    EXPECT_TRUE(v.isPersistent());
    ASSERT_EQ(addresses.str().size(), 4u);
    EXPECT_EQ(addressAt(addresses.str(), 0), v.getAddress());
    EXPECT_EQ(fileText(v.getAddress()), "abc");
    v.setContent("longer than four", "VIv");
    EXPECT_EQ(fileText(v.getAddress()), "longer than four");
    EXPECT_EQ(v.getResult(), "longer than four");
}

TEST_F(PersistentVariableTest, AnExternalVariableIsStoredAsWell)
{
    std::istringstream in("x" + VT + "ext" + VT);
    AC_VariableString::readVariableRecord(in, format, STORAGE_STORE, true, &addresses);
    EXPECT_EQ(fileText(addressAt(addresses.str(), 0)), "ext");
}

TEST_F(PersistentVariableTest, ARestoredVariableKeepsTheContentOfTheStoreWhateverItsRecordSays)
{
    // Longer than one piece of 50 bytes, so that the read goes on where it stopped.
    const std::string stored(123, 'q');
    const uint32_t address = fs.create(reinterpret_cast<const uint8_t*>(stored.data()), 123);
    std::stringstream stream;
    stream.write(reinterpret_cast<const char*>(&address), 4);
    AC_VariableString& v = read(STORAGE_RESTORE, promptedRecord("v", "record"), &stream);
    EXPECT_TRUE(v.isPersistent());
    EXPECT_EQ(v.getAddress(), address);
    EXPECT_EQ(v.getContent(), stored);
}

TEST_F(PersistentVariableTest, AStoredFileWhoseChainRunsInACircleFailsInsteadOfGrowingForEver)
{
    const uint32_t address = fs.create(reinterpret_cast<const uint8_t*>("abcdefghijkl"), 12);
    ASSERT_EQ(address, 0u) << "the file takes blocks 0, 1 and 2";
    // Block 2 of the table at 64 goes on to block 1 instead of ending the file.
    const uint8_t circle[8] = {0x01, 1, 0, 0, 'i', 'j', 'k', 'l'};
    array.writeBlock(circle, 8, 64 + 8 * 2);
    std::stringstream stream;
    stream.write(reinterpret_cast<const char*>(&address), 4);
    expectFailure<KT_ERROR::SFS_Exception>([&] { read(STORAGE_RESTORE, promptedRecord("v", "record"), &stream); },
                                 "SimpleFS: chain of file 0 runs in a circle");
}

TEST_F(PersistentVariableTest, AnEmptyFileRestoresAnEmptyContent)
{
    const uint32_t address = fs.create(nullptr, 0);
    std::stringstream stream;
    stream.write(reinterpret_cast<const char*>(&address), 4);
    EXPECT_EQ(read(STORAGE_RESTORE, promptedRecord("v", "record"), &stream).getContent(), "");
}

TEST_F(PersistentVariableTest, DeletingFreesTheFileAndLaterContentStaysInMemory)
{
    AC_VariableString& v = read(STORAGE_STORE, promptedRecord("v", "abc"), &addresses);
    const uint32_t usedBefore = [&] {
        std::array<uint32_t, 6> info{};
        fs.getInfo(info);
        return info[3];
    }();
    v.update(EVENT_DELETE, 0);
    EXPECT_FALSE(v.isPersistent());
    std::array<uint32_t, 6> info{};
    fs.getInfo(info);
    EXPECT_EQ(info[3], usedBefore - 1);
    EXPECT_FALSE(fs.isRoot(v.getAddress()));
    v.setContent("new", "VIv");
    EXPECT_EQ(v.getContent(), "new");
    EXPECT_EQ(info[3], usedBefore - 1);
    EXPECT_FALSE(fs.isRoot(v.getAddress())) << "nothing was written to the store";
}

TEST_F(PersistentVariableTest, WithoutAnAddressStreamBothModesFail)
{
    std::istringstream store(promptedRecord("v", "a"));
    expectFailure<KT_ERROR::kt_exception>(
        [&] { AC_VariableString::readVariableRecord(store, format, STORAGE_STORE, false, nullptr); },
        "sram address stream is NULL when storing a variable input");
    std::istringstream restore(promptedRecord("v", "a"));
    expectFailure<KT_ERROR::kt_exception>(
        [&] { AC_VariableString::readVariableRecord(restore, format, STORAGE_RESTORE, false, nullptr); },
        "sram address stream is NULL when restoring a variable input");
    EXPECT_EQ(format.getElements().size(), 0u);
    std::array<uint32_t, 6> info{};
    fs.getInfo(info);
    EXPECT_EQ(info[3], 0u) << "no file was made";
}

TEST_F(VariableStringTest, ASecondVariableOfTheSameNameIsRefused)
{
    variable("0 0000", "0009", "a");
    std::istringstream in(promptedRecord("v", "b"));
    expectFailure<KT_ERROR::bad_escape_sequence>(
        [&] { AC_VariableString::readVariableRecord(in, format, STORAGE_NONE, false, nullptr); },
        "Element id already exists in collection: Iv");
}

TEST_F(VariableStringTest, APromptedAndAnExternalVariableMayShareAName)
{
    read(promptedRecord("GTIN", "a"));
    read("GTIN" + VT + "b" + VT, true);
    EXPECT_EQ(format.getElements().size(), 2u);
}

TEST_F(VariableStringTest, TheParserReadsBothRecordKinds)
{
    std::istringstream in("NAME      \x1bVIa" + VT + "1" + VT + "P" + VT + "0 0000" + "0000" + VT + VT +
                          "\x1bVXb" + VT + "2" + VT + "\xff");
    format.parse(in, nullptr, 0);
    EXPECT_EQ(format.getElements().size(), 2u);
    EXPECT_EQ(format.getElements().getElement("Ia").getResult(), "1");
    EXPECT_EQ(format.getElements().getElement("Xb").getResult(), "2");
    EXPECT_TRUE(format.getElements().getElement("Ia").isUnchanged()) << "the parse ends in EVENT_PAINTED";
}
