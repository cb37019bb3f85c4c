#include "main/HxTclEvents.h"

#include "hx/HxInterpreter.h"

#include <tcl.h>

namespace {

constexpr int kIntervalMs = 20; // well below what a person notices, and next to no work

} // namespace

HxTclEvents::HxTclEvents(std::function<void(int code)> end) : onEnd(std::move(end))
{
    // Tcl waits for events in a loop of its own, which never runs beside that of Qt; it is asked now and
    // then.
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { run(); });
    timer.start(kIntervalMs);
}

void HxTclEvents::run()
{
    HxInterpreter* interpreter = HxInterpreter::getTheInterpreter();
    // A command that waits in a Qt loop is still running; another script must not begin inside it.
    if (Tcl_InterpActive(interpreter->tcl())) return;
    while (!interpreter->quitCode() && Tcl_DoOneEvent(TCL_ALL_EVENTS | TCL_DONT_WAIT)) {
    }
    if (!interpreter->quitCode()) return;
    timer.stop();
    onEnd(*interpreter->quitCode());
}
