#include "io/HxLibraryProbe.h"

#include "io/HxQuietLibraries.h"

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

[[noreturn]] void runChild(int progress, int count, const std::function<void(int)>& call)
{
    const rlimit noDump{0, 0};
    ::setrlimit(RLIMIT_CORE, &noDump);
    for (int signal : {SIGABRT, SIGSEGV, SIGFPE, SIGBUS}) std::signal(signal, SIG_DFL);
    const HxQuietLibraries quiet;
    for (int i = 0; i < count; ++i) {
        const char started = 1;
        if (::write(progress, &started, 1) != 1) break;
        try {
            call(i);
        } catch (...) {
            // The caller makes the same call in its own process and learns the reason there.
        }
    }
    ::_exit(0); // the parent's clean-up is not the child's
}

int countBytes(int descriptor)
{
    char buffer[256];
    int total = 0;
    for (;;) {
        const ssize_t n = ::read(descriptor, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return total;
        total += static_cast<int>(n);
    }
}

} // namespace

int HxLibraryProbe::firstDeadlyCall(int count, const std::function<void(int)>& call)
{
    int ends[2];
    if (::pipe(ends) != 0) return -1; // without a child the calls are made as they are
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        runChild(ends[1], count, call);
    }
    ::close(ends[1]);
    const int started = child < 0 ? 0 : countBytes(ends[0]);
    ::close(ends[0]);
    if (child < 0) return -1;
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) && started > 0 ? started - 1 : -1;
}
