#include "mc/McMemory.h"

#include "mc/McMemoryException.h"

#include <cstdlib>
#include <limits>

namespace {

void* checked(void* memory, unsigned long bytes)
{
    if (!memory) throw McMemoryException(bytes);
    return memory;
}

} // namespace

unsigned long mcByteCount(unsigned long count, unsigned long elementSize)
{
    unsigned long bytes = 0;
    return __builtin_mul_overflow(count, elementSize, &bytes) ? std::numeric_limits<unsigned long>::max()
                                                              : bytes;
}

unsigned long mcVolumeBytes(const unsigned long* dims, unsigned long elementSize)
{
    if (dims[0] == 0 || dims[1] == 0 || dims[2] == 0) return 0;
    return mcByteCount(mcByteCount(mcByteCount(dims[0], dims[1]), dims[2]), elementSize);
}

void* mcAllocate(unsigned long bytes)
{
    return checked(bytes < kMcAddressSpace ? std::malloc(bytes ? bytes : 1) : nullptr, bytes);
}

void* mcAllocateZeroed(unsigned long bytes)
{
    return checked(bytes < kMcAddressSpace ? std::calloc(bytes ? bytes : 1, 1) : nullptr, bytes);
}
