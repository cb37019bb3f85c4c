#pragma once

#include <exception>
#include <string>

/// Base of the only exceptions that leave a function of the host.
class McException : public std::exception
{
public:
    /// text  a sentence for the user; copied
    explicit McException(const char* text) : message(text ? text : "") {}

    const char* what() const noexcept override { return message.c_str(); }

private:
    std::string message;
};
