#include "io/HxLibraryProbe.h"

#include "io/HxQuietLibraries.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// What the child tells: kStarted before each call, and after the last of them the text of a failure.
constexpr char kStarted = 1;

void limitMemory(std::size_t extraBytes)
{
    unsigned long pages = 0;
    if (FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%lu", &pages) != 1) pages = 0;
        std::fclose(file);
    }
    if (pages == 0) return;
    const rlim_t limit = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + extraBytes;
    const rlimit now{limit, limit};
    ::setrlimit(RLIMIT_AS, &now);
}

bool tell(int pipe, const std::string& text)
{
    return ::write(pipe, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

[[noreturn]] void runChild(int pipe, int count, std::size_t extraBytes, const std::function<void(int)>& call)
{
    const rlimit noDump{0, 0};
    ::setrlimit(RLIMIT_CORE, &noDump);
    for (int signal : {SIGABRT, SIGSEGV, SIGFPE, SIGBUS}) std::signal(signal, SIG_DFL);
    const HxQuietLibraries quiet;
    limitMemory(extraBytes);
    bool goesOn = true;
    for (int i = 0; i < count && goesOn; ++i) {
        goesOn = tell(pipe, std::string(1, kStarted));
        try {
            if (goesOn) call(i);
        } catch (const std::exception& failure) {
            tell(pipe, failure.what());
            goesOn = false;
        }
    }
    ::_exit(0); // the parent's clean-up is not the child's
}

std::string readAll(int descriptor)
{
    std::string text;
    char buffer[512];
    for (;;) {
        const ssize_t n = ::read(descriptor, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return text;
        text.append(buffer, static_cast<std::size_t>(n));
    }
}

} // namespace

std::optional<HxLibraryProbe::Failure> HxLibraryProbe::firstFailure(int count, std::size_t extraBytes,
                                                                    const std::function<void(int)>& call)
{
    int ends[2];
    if (::pipe(ends) != 0) return std::nullopt; // without a child the calls are made as they are
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        runChild(ends[1], count, extraBytes, call);
    }
    ::close(ends[1]);
    const std::string told = child < 0 ? "" : readAll(ends[0]);
    ::close(ends[0]);
    if (child < 0) return std::nullopt;
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }

    const std::size_t started = std::min(told.find_first_not_of(kStarted), told.size());
    const std::string text = told.substr(started);
    const bool died = !WIFEXITED(status) || WEXITSTATUS(status) != 0;
    if (started == 0 || (text.empty() && !died)) return std::nullopt;
    return Failure{static_cast<int>(started) - 1, text};
}
