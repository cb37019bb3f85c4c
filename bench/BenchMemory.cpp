#include "BenchMemory.h"

#include "BenchProgram.h"

#include <malloc.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace {

double statusMiB(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(key + ":", 0) == 0) return std::strtod(line.c_str() + key.size() + 1, nullptr) / 1024;
    benchRequire(false, "/proc/self/status: no " + key + ".");
    return 0;
}

} // namespace

double benchResidentMiB()
{
    return statusMiB("VmRSS");
}

double benchPeakMiB()
{
    return statusMiB("VmHWM");
}

void benchForgetPeak()
{
    malloc_trim(0);
    std::ofstream file("/proc/self/clear_refs");
    file << "5" << std::flush;
    benchRequire(file.good(), "/proc/self/clear_refs: cannot be written.");
}
