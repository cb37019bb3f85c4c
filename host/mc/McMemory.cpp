#include "mc/McMemory.h"

#include "mc/McMemoryException.h"

#include <cstdint>
#include <cstdlib>
#include <limits>

#include <sys/mman.h>

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

void* mcAllocateVolume(unsigned long bytes)
{
    void* memory = mcAllocateZeroed(bytes);
    mcPreferLargePages(memory, bytes);
    return memory;
}

void mcPreferLargePages(void* memory, unsigned long bytes)
{
    // Smaller blocks lie among others in the heap, and a few pages of them are looked up fast anyway.
    constexpr std::uintptr_t kLargePage = 2ul << 20, kWorthwhile = 4 * kLargePage;
    if (!memory || bytes < kWorthwhile) return;
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (address + kLargePage - 1) / kLargePage * kLargePage;
    const std::uintptr_t end = (address + bytes) / kLargePage * kLargePage;
    // A wish that a system may be unable to fulfil; the memory serves as well without.
    static_cast<void>(madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE));
}
