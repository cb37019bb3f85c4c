#include "mc/McMemoryException.h"

#include <cstdio>

McMemoryException::McMemoryException(unsigned long size) : McException(""), bytes(size)
{
    std::snprintf(text, sizeof text, "Not enough memory (%lu bytes).", size);
}
