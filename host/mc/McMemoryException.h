#pragma once

#include "mc/McException.h"

/// Memory that could not be had. Carries the number of bytes, for the message to the user. Takes no
/// memory itself.
class McMemoryException : public McException
{
public:
    explicit McMemoryException(unsigned long bytes);

    /// Bytes that were asked for; the largest number if the count itself did not fit.
    unsigned long size() const { return bytes; }
    const char* what() const noexcept override { return text; }

private:
    unsigned long bytes;
    char text[64];
};
