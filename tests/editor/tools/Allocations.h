#pragma once

#include <cstddef>

/// What this thread asks the heap for.
class Allocations
{
public:
    /// False where the program has another allocator, such as a checking one: then nothing is counted or
    /// refused.
    static bool areSeen();
    static int count();
};

/// While it lives, the first request of so many bytes or more is refused to this thread. What cleans up
/// behind that gets its memory.
class ShortOfMemory
{
public:
    explicit ShortOfMemory(std::size_t bytes);
    ~ShortOfMemory();
    ShortOfMemory(const ShortOfMemory&) = delete;
    ShortOfMemory& operator=(const ShortOfMemory&) = delete;
};
