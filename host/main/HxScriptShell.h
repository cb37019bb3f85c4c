#pragma once

#include "main/HxTclEvents.h"

#include <QSocketNotifier>

#include <string>

/// Runs Tcl commands from standard input while the Qt event loop runs, and ends that loop at the end of the
/// input, at `quit`, and, unless a person types, at the first error.
///
/// Between commands it also runs what scripts have put off; see HxTclEvents.
///
/// A person at a terminal gets a prompt, results and messages; input from a file or a pipe gets no echo.
class HxScriptShell
{
public:
    HxScriptShell();

    /// Runs the event loop. Returns the exit code.
    int run();

private:
    void readMore();
    void takeLine(const std::string& line);
    void evaluate();
    void prompt() const;
    void endOfInput();
    void end(int code);

    QSocketNotifier notifier;
    HxTclEvents tclEvents;
    const bool interactive;
    bool ended = false;
    std::string input;   // read but not yet a whole line
    std::string command; // whole lines that are not yet a whole command
};
