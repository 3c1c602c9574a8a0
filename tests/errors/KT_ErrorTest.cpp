#include "errors/KT_Error.h"

#include <gtest/gtest.h>

#include <typeinfo>

using namespace KT_ERROR;

TEST(KT_Error, TextStreamsThePiecesInOrder)
{
    EXPECT_EQ(text("rectangle off image(x/y/w/h): (", 1, "/", -2, ")"), "rectangle off image(x/y/w/h): (1/-2)");
}

TEST(KT_Error, WhatReturnsTheTextAsGiven)
{
    const drawable_off_format error("trying to draw off format at (3/4)");
    EXPECT_STREQ(error.what(), "trying to draw off format at (3/4)");
}

template <class Child, class Parent>
bool derives()
{
    try {
        throw Child("x");
    } catch (const Parent&) {
        return true;
    } catch (...) {
        return false;
    }
}

TEST(KT_Error, TheTreeHangsTogetherAsDrawn)
{
    EXPECT_TRUE((derives<internal_error, kt_exception>()));
    EXPECT_TRUE((derives<internal_autocode_error, format_error>()));
    EXPECT_TRUE((derives<bad_escape_sequence, parse_time_error>()));
    EXPECT_TRUE((derives<drawable_illegal_parameter, parse_time_error>()));
    EXPECT_TRUE((derives<illegal_content, render_time_error>()));
    EXPECT_TRUE((derives<bad_date_format, render_time_error>()));
    EXPECT_TRUE((derives<bad_content_sequence, render_time_error>()));
    EXPECT_TRUE((derives<drawable_off_format, render_time_error>()));
    EXPECT_TRUE((derives<not_a_number, render_time_error>()));
    EXPECT_TRUE((derives<render_time_error, format_error>()));
    EXPECT_TRUE((derives<disk_is_full, resource_error>()));
    EXPECT_TRUE((derives<SFS_Exception, resource_error>()));
    EXPECT_TRUE((derives<SFS_FSCannotBeCreatedException, SFS_Exception>()));
    EXPECT_TRUE((derives<SFS_FSCannotBeRestoredException, SFS_Exception>()));
    EXPECT_TRUE((derives<SFS_FileNotFoundException, SFS_Exception>()));
    EXPECT_TRUE((derives<SFS_FileSystemFullException, SFS_Exception>()));
    EXPECT_TRUE((derives<resource_error, format_error>()));
    EXPECT_TRUE((derives<format_error, std::exception>()));
    EXPECT_FALSE((derives<internal_error, format_error>()));
    EXPECT_FALSE((derives<parse_time_error, render_time_error>()));
}
