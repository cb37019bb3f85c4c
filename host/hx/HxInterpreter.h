#pragma once

#include "mc/McString.h"

#include <memory>
#include <optional>

class HxScriptSocket;
struct Tcl_Interp;

/// The one Tcl interpreter of the process: commands of objects, of the host and of packages live in it.
///
/// Made on first use, never deleted before the process ends, used on the main thread only. Everything is
/// evaluated at global level, so variables are global or namespaced ones.
class HxInterpreter
{
public:
    static HxInterpreter* getTheInterpreter();

    Tcl_Interp* tcl() { return interp; }

    /// The text of a global or namespaced variable, null when it does not exist (also for a whole array).
    /// Valid until the variable changes.
    const char* getVar(const char* name);

    /// Evaluates the formatted script. Returns the result text, valid until the next call of evalf, or null
    /// on a Tcl error; the error text is then in errorText().
    const char* evalf(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Evaluates a script. Returns TCL_OK or TCL_ERROR; `result` takes the result or the error text.
    int eval(const char* script, McString& result);

    /// Evaluates a file, read as UTF-8, as the Tcl command `source` does, so that `info script` tells its
    /// path.
    int evalFile(const char* path, McString& result);

    /// Message and call stack of the last script that failed, several lines.
    const McString& errorText() const { return lastError; }

    /// Starts to listen for script lines of other processes on the loopback address, at `port` or at the next
    /// free one up to 20 above. A second call does nothing. Needs a running Qt event loop to be of use.
    /// Returns 0, or -1 with a console message when no port was free.
    int openVorelSocket(int port);

    /// The port in use, 0 while the socket is closed.
    int port() const;

    /// Ends the script that is running, through all levels and past any `catch`, and asks the program to end
    /// with this code.
    void requestQuit(int code);

    /// Ends the running script at its next step, through all levels and past any `catch`, with the error
    /// "interrupted."; after an interrupted file the interpreter runs nothing more. Returns false if none
    /// runs or the running one was asked already. May be called from a signal handler.
    static bool interruptScript();

    /// Whether a script runs that a question to the person would hold up.
    static bool isScriptRunning();

    /// The code of the first requestQuit, empty while nobody asked.
    std::optional<int> quitCode() const { return requestedCode; }

private:
    HxInterpreter();
    ~HxInterpreter() = delete;

    int finish(int code, McString& result);

    Tcl_Interp* interp;
    McString lastResult;
    McString lastError;
    HxScriptSocket* socket = nullptr;
    std::optional<int> requestedCode;
};
