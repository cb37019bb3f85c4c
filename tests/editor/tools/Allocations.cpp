#include "editor/tools/Allocations.h"

#include <cerrno>
#include <cstdlib>
#include <limits>

namespace {

constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();
thread_local int allocations = 0;
thread_local std::size_t refusedFrom = kUnlimited;

} // namespace

// A checking allocator has the same functions for itself.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)

extern "C" void* __libc_malloc(std::size_t bytes);
extern "C" void* __libc_calloc(std::size_t count, std::size_t bytes);
extern "C" void* __libc_realloc(void* memory, std::size_t bytes);

namespace {

bool isGranted(std::size_t bytes)
{
    ++allocations;
    if (bytes < refusedFrom) return true;
    refusedFrom = kUnlimited;
    errno = ENOMEM;
    return false;
}

} // namespace

extern "C" void* malloc(std::size_t bytes)
{
    return isGranted(bytes) ? __libc_malloc(bytes) : nullptr;
}

extern "C" void* calloc(std::size_t count, std::size_t bytes)
{
    std::size_t all = 0;
    if (__builtin_mul_overflow(count, bytes, &all)) all = kUnlimited - 1;
    return isGranted(all) ? __libc_calloc(count, bytes) : nullptr;
}

extern "C" void* realloc(void* memory, std::size_t bytes)
{
    return isGranted(bytes) ? __libc_realloc(memory, bytes) : nullptr;
}

bool Allocations::areSeen()
{
    return true;
}

#else

bool Allocations::areSeen()
{
    return false;
}

#endif

int Allocations::count()
{
    return allocations;
}

ShortOfMemory::ShortOfMemory(std::size_t bytes)
{
    refusedFrom = bytes;
}

ShortOfMemory::~ShortOfMemory()
{
    refusedFrom = kUnlimited;
}
