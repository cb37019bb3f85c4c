#include "mc/McThreads.h"

#include <algorithm>
#include <thread>

namespace {

// A few microseconds of work for one thread, about what waking the others takes.
constexpr unsigned long kBytesWorthThreads = 1ul << 15;

int threads = std::clamp(int(std::thread::hardware_concurrency()), 1, 8);

} // namespace

int mcNumThreads()
{
    return threads;
}

int mcNumThreadsFor(unsigned long bytes)
{
    return bytes < kBytesWorthThreads ? 1 : threads;
}

void mcSetNumThreads(int n)
{
    threads = std::max(n, 1);
}
