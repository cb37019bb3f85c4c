#include "hx/HxWorkArea.h"

#include "hx/HxInterpreter.h"

#include <algorithm>
#include <atomic>

#include <csignal>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds kPollInterval(50);
constexpr int kInterruptedByPerson = 130; // what shells report for a program that Ctrl+C ended

// Outside the class because the signal handler may touch nothing but lock-free atomics.
std::atomic<int> depth{0};
std::atomic<bool> stopRequested{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

extern "C" void interruptFromTerminal(int)
{
    // A script whose long operation was interrupted must not go on as if that had been finished.
    const bool isFirstOfPhase = depth.load() > 0 && !stopRequested.exchange(true);
    if (HxInterpreter::interruptScript() || isFirstOfPhase) return;
    _exit(kInterruptedByPerson);
}

} // namespace

HxWorkArea* HxWorkArea::getTheWorkArea()
{
    static HxWorkArea* theWorkArea = new HxWorkArea;
    return theWorkArea;
}

void HxWorkArea::busyOn(const char* text)
{
    if (depth.load() == 0) {
        stopRequested = false;
        nextPoll = std::chrono::steady_clock::now() + kPollInterval;
        if (view) view->showBusy(text);
    } else if (view && text) {
        view->showText(text);
    }
    ++depth;
}

void HxWorkArea::busyOff()
{
    if (depth.load() == 0) return;
    if (--depth > 0) return;
    stopRequested = false;
    if (view) view->showIdle();
}

int HxWorkArea::busyDepth() const
{
    return depth.load();
}

void HxWorkArea::restoreBusyDepth(int target)
{
    while (busyDepth() > std::max(target, 0)) busyOff();
}

void HxWorkArea::setText(const char* text)
{
    if (view && busyDepth() > 0) view->showText(text ? text : "");
}

void HxWorkArea::setProgress(double fraction)
{
    if (view && busyDepth() > 0) view->showProgress(std::clamp(fraction, 0.0, 1.0));
}

bool HxWorkArea::interrupted()
{
    if (pollsUntilInterrupt > 0 && --pollsUntilInterrupt == 0) {
        stopRequested = true;
        return true;
    }
    if (stopRequested) return true;

    const auto now = std::chrono::steady_clock::now();
    if (!view || busyDepth() == 0 || now < nextPoll) return false;
    if (view->poll()) stopRequested = true;
    // Counted from the end of the poll: a slow repaint must not eat up the whole time of the operation.
    nextPoll = std::chrono::steady_clock::now() + kPollInterval;
    return stopRequested;
}

void HxWorkArea::interrupt()
{
    if (busyDepth() > 0) stopRequested = true;
}

void HxWorkArea::interruptAfter(int polls)
{
    pollsUntilInterrupt = std::max(polls, 0);
}

QAbstractButton* HxWorkArea::mainButton() const
{
    return view ? view->mainButton() : nullptr;
}

QAbstractButton* HxWorkArea::neighbourButton() const
{
    return view ? view->neighbourButton() : nullptr;
}

void HxWorkArea::catchSignals()
{
    struct sigaction action = {};
    action.sa_handler = interruptFromTerminal;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
}
