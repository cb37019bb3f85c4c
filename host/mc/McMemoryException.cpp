#include "mc/McMemoryException.h"

McMemoryException::McMemoryException(unsigned long size)
    : McException(("Not enough memory (" + std::to_string(size) + " bytes).").c_str()), bytes(size)
{
}
