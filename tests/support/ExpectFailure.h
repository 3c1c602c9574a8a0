#pragma once
#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <string>
#include <typeinfo>

// Runs the action and demands an exception of exactly this class, not a subclass, with exactly this text.
template <class Expected, class Action>
void expectFailure(Action&& action, const std::string& text)
{
    try {
        action();
        ADD_FAILURE() << "no exception, expected: " << text;
    } catch (const std::exception& error) {
        EXPECT_TRUE(typeid(error) == typeid(Expected)) << "got " << typeid(error).name();
        EXPECT_EQ(std::string(error.what()), text);
    }
}

// The text of whatever the action throws, or "nothing thrown".
inline std::string throwsText(const std::function<void()>& action)
{
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "nothing thrown";
}
