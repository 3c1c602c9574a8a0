#pragma once
#include <exception>

// Failures of the transformed drawing views. They stand outside the format's exception family,
// so a handler of kt_exception does not see them.
class GFX_Exception : public std::exception {
public:
    explicit GFX_Exception(const char* message) : message(message) {}
    const char* what() const noexcept override { return message; }

private:
    const char* message;
};

class GFX_OutsideContextException : public GFX_Exception {
public:
    explicit GFX_OutsideContextException(const char* message) : GFX_Exception(message), message(message) {}
    const char* what() const noexcept override { return message; }

private:
    const char* message;
};
