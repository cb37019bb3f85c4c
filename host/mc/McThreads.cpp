#include "mc/McThreads.h"

#include <algorithm>
#include <thread>

namespace {

int threads = std::clamp(int(std::thread::hardware_concurrency()), 1, 8);

} // namespace

int mcNumThreads()
{
    return threads;
}

void mcSetNumThreads(int n)
{
    threads = std::max(n, 1);
}
