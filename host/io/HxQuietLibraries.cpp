#include "io/HxQuietLibraries.h"

#include <cstdio>
#include <fcntl.h>
#include <iostream>
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
    nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) return; // then the libraries are heard, which is better than not reading
    savedOut = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    savedErr = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    if (savedOut >= 0) ::dup2(nowhere, STDOUT_FILENO);
    if (savedErr >= 0) ::dup2(nowhere, STDERR_FILENO);
}

HxQuietLibraries::~HxQuietLibraries()
{
    flushAll();
    restore(savedOut, STDOUT_FILENO);
    restore(savedErr, STDERR_FILENO);
    if (nowhere >= 0) ::close(nowhere);
}
