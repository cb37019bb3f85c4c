#include "io/HxQuietLibraries.h"

#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void flushAll()
{
    std::cout.flush();
    std::cerr.flush();
    std::fflush(stdout);
    std::fflush(stderr);
}

void restore(int saved, int descriptor)
{
    if (saved < 0) return;
    ::dup2(saved, descriptor);
    ::close(saved);
}

} // namespace

HxQuietLibraries::HxQuietLibraries()
{
    flushAll();
    collected = ::memfd_create("vorel-library-output", MFD_CLOEXEC);
    if (collected < 0) return; // then the libraries are heard, which is better than not reading
    savedOut = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    savedErr = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    if (savedOut >= 0) ::dup2(collected, STDOUT_FILENO);
    if (savedErr >= 0) ::dup2(collected, STDERR_FILENO);
}

HxQuietLibraries::~HxQuietLibraries()
{
    flushAll();
    restore(savedOut, STDOUT_FILENO);
    restore(savedErr, STDERR_FILENO);
    if (collected >= 0) ::close(collected);
}

bool HxQuietLibraries::heardAnything() const
{
    flushAll();
    struct stat info;
    return collected >= 0 && ::fstat(collected, &info) == 0 && info.st_size > 0;
}
