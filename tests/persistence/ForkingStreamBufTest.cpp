#include "persistence/ForkingStreamBuf.h"

#include "errors/KT_Error.h"

#include <gtest/gtest.h>

#include <istream>
#include <sstream>
#include <string>

namespace {

// A target that takes a few characters and then refuses, like a full disk.
class FullAfter : public std::streambuf {
public:
    explicit FullAfter(int room) : room(room) {}
    std::string taken;

protected:
    int_type overflow(int_type c) override
    {
        if (room == 0)
            return traits_type::eof();
        --room;
        taken += traits_type::to_char_type(c);
        return c;
    }

private:
    int room;
};

}  // namespace

TEST(ForkingStreamBuf, AnEmptySourceOffersEndOfFileAndWritesNothing)
{
    std::stringbuf source("");
    std::stringbuf target;
    ForkingStreamBuf fork;
    fork.setSource(&source);
    fork.setTarget(&target);
    EXPECT_EQ(fork.sgetc(), std::char_traits<char>::eof());
    EXPECT_EQ(fork.sbumpc(), std::char_traits<char>::eof());
    EXPECT_EQ(target.str(), "");
}

TEST(ForkingStreamBuf, TheReaderGetsTheSourceUnchanged)
{
    std::stringbuf source(std::string("ab\x1b\xff\0z", 6));
    std::stringbuf target;
    ForkingStreamBuf fork;
    fork.setSource(&source);
    fork.setTarget(&target);
    std::istream in(&fork);
    std::string all((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(all, std::string("ab\x1b\xff\0z", 6));
    EXPECT_EQ(target.str(), all);
}

TEST(ForkingStreamBuf, TheCopyHoldsWhatWasConsumedAndTheOneCharacterOfLookahead)
{
    std::stringbuf source("ESCAPE-FILE");
    std::stringbuf target;
    ForkingStreamBuf fork;
    fork.setSource(&source);
    fork.setTarget(&target);
    std::istream in(&fork);
    char head[3];
    in.read(head, 3);
    EXPECT_EQ(target.str(), "ESC");
    EXPECT_EQ(in.peek(), 'A');
    EXPECT_EQ(target.str(), "ESCA");
    EXPECT_EQ(in.peek(), 'A');
    EXPECT_EQ(in.get(), 'A');
    EXPECT_EQ(target.str(), "ESCA");
    EXPECT_EQ(in.get(), 'P');
    EXPECT_EQ(target.str(), "ESCAP");
}

TEST(ForkingStreamBuf, AFailedCopyRaisesDiskIsFullAndTheCharacterIsNotHandedOn)
{
    std::stringbuf source("xyz");
    FullAfter target(1);
    ForkingStreamBuf fork;
    fork.setSource(&source);
    fork.setTarget(&target);
    EXPECT_EQ(fork.sbumpc(), 'x');
    try {
        fork.sgetc();
        ADD_FAILURE() << "no exception";
    } catch (const KT_ERROR::disk_is_full& e) {
        EXPECT_STREQ(e.what(), "can't write to stream");
    }
    EXPECT_EQ(target.taken, "x");
    EXPECT_EQ(fork.in_avail(), 0);
}

TEST(ForkingStreamBuf, AFailedCopyReachesAReaderThatAsksForExceptions)
{
    std::stringbuf source("xyz");
    FullAfter target(0);
    ForkingStreamBuf fork;
    fork.setSource(&source);
    fork.setTarget(&target);
    std::istream in(&fork);
    in.exceptions(std::ios_base::badbit);
    EXPECT_THROW(in.get(), KT_ERROR::disk_is_full);
}

TEST(ForkingStreamBuf, WithoutASourceItOffersEndOfFile)
{
    std::stringbuf target;
    ForkingStreamBuf fork;
    fork.setTarget(&target);
    EXPECT_EQ(fork.sgetc(), std::char_traits<char>::eof());
    EXPECT_EQ(target.str(), "");
}

TEST(ForkingStreamBuf, WithoutATargetItPassesTheSourceThrough)
{
    std::stringbuf source("ab");
    ForkingStreamBuf fork;
    fork.setSource(&source);
    EXPECT_EQ(fork.sbumpc(), 'a');
    EXPECT_EQ(fork.sbumpc(), 'b');
    EXPECT_EQ(fork.sbumpc(), std::char_traits<char>::eof());
}

TEST(ForkingStreamBuf, TheTargetCanBeSwitchedBetweenReads)
{
    std::stringbuf source("abcd");
    std::stringbuf first;
    std::stringbuf second;
    ForkingStreamBuf fork;
    fork.setSource(&source);
    fork.setTarget(&first);
    fork.sbumpc();
    fork.sbumpc();
    fork.setTarget(&second);
    fork.sbumpc();
    EXPECT_EQ(first.str(), "ab");
    EXPECT_EQ(second.str(), "c");
}
