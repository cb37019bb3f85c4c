#include "hx/HxInterpreter.h"

#include "hx/HxFormat.h"
#include "hx/HxMessage.h"
#include "hx/HxScriptSocket.h"

#include <QCoreApplication>

#include <atomic>

#include <tcl.h>

namespace {

/// Message and call stack of the error that the interpreter has just reported. The variable errorInfo will
/// not do: a file that cannot be read leaves an older text in it.
McString stackOf(Tcl_Interp* interp)
{
    Tcl_Obj* options = Tcl_GetReturnOptions(interp, TCL_ERROR);
    Tcl_IncrRefCount(options);
    Tcl_Obj* key = Tcl_NewStringObj("-errorinfo", -1);
    Tcl_IncrRefCount(key);
    Tcl_Obj* stack = nullptr;
    Tcl_DictObjGet(nullptr, options, key, &stack);
    const McString text = stack ? Tcl_GetString(stack) : Tcl_GetStringResult(interp);
    Tcl_DecrRefCount(key);
    Tcl_DecrRefCount(options);
    return text;
}

// Touched by a signal handler, so lock-free atomics outside the class; the handler is made once.
std::atomic<int> runningScripts{0};
std::atomic<bool> interruptAsked{false};
Tcl_AsyncHandler interruptHandler = nullptr;

/// Marks the time in which a script runs, nested scripts included.
class RunningScript
{
public:
    RunningScript()
    {
        if (runningScripts++ == 0) interruptAsked = false;
    }
    ~RunningScript() { --runningScripts; }
    RunningScript(const RunningScript&) = delete;
    RunningScript& operator=(const RunningScript&) = delete;
};

int unwindScript(ClientData interp, Tcl_Interp*, int code)
{
    Tcl_CancelEval(static_cast<Tcl_Interp*>(interp), Tcl_NewStringObj("interrupted.", -1), nullptr,
                   TCL_CANCEL_UNWIND);
    return code;
}

} // namespace

HxInterpreter* HxInterpreter::getTheInterpreter()
{
    // Leaked on purpose: objects that outlive main still take their commands out of it.
    static HxInterpreter* theInterpreter = new HxInterpreter;
    return theInterpreter;
}

HxInterpreter::HxInterpreter()
{
    const QByteArray program =
        QCoreApplication::instance() ? QCoreApplication::applicationFilePath().toLocal8Bit() : QByteArray();
    Tcl_FindExecutable(program.isEmpty() ? nullptr : program.constData());
    // File names are UTF-8 in the host and in Qt under every locale; without this Tcl would take them for
    // Latin-1 where the locale is plain C.
    Tcl_SetSystemEncoding(nullptr, "utf-8");
    interp = Tcl_CreateInterp();
    interruptHandler = Tcl_AsyncCreate(unwindScript, interp);
    if (Tcl_Init(interp) != TCL_OK)
        HxMessage::getTheMsg()->printf("Tcl's script library is missing, some commands will not work: %s",
                                       Tcl_GetStringResult(interp));
}

const char* HxInterpreter::getVar(const char* name)
{
    return Tcl_GetVar2(interp, name, nullptr, TCL_GLOBAL_ONLY);
}

const char* HxInterpreter::evalf(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string script = hxFormat(format, arguments);
    va_end(arguments);

    McString result;
    if (eval(script.c_str(), result) != TCL_OK) return nullptr;
    lastResult = result;
    return lastResult;
}

int HxInterpreter::eval(const char* script, McString& result)
{
    const RunningScript running;
    // As an object: Tcl forgets an interruption when a compiled script ends at the outermost level.
    Tcl_Obj* compiled = Tcl_NewStringObj(script, -1);
    Tcl_IncrRefCount(compiled);
    const int code = finish(Tcl_EvalObjEx(interp, compiled, TCL_EVAL_GLOBAL), result);
    Tcl_DecrRefCount(compiled);
    return code;
}

int HxInterpreter::evalFile(const char* path, McString& result)
{
    // Read as UTF-8 wherever the program runs, so that a script means the same under every locale.
    Tcl_Obj* pathObject = Tcl_NewStringObj(path, -1);
    Tcl_IncrRefCount(pathObject);
    const RunningScript running;
    Tcl_ResetResult(interp); // a file that cannot be opened would add its error to the stack of an older one
    const int code = finish(Tcl_FSEvalFileEx(interp, pathObject, "utf-8"), result);
    Tcl_DecrRefCount(pathObject);
    return code;
}

int HxInterpreter::finish(int code, McString& result)
{
    if (code == TCL_ERROR) lastError = stackOf(interp);
    // `return` and `break` outside a procedure end the script without being errors of it.
    if (code != TCL_ERROR) code = TCL_OK;
    result = Tcl_GetStringResult(interp);
    return code;
}

bool HxInterpreter::interruptScript()
{
    if (runningScripts.load() == 0 || interruptAsked.exchange(true)) return false;
    Tcl_AsyncMark(interruptHandler);
    return true;
}

bool HxInterpreter::isScriptRunning()
{
    return runningScripts.load() > 0;
}

int HxInterpreter::openVorelSocket(int port)
{
    if (socket) return 0;
    auto opened = std::make_unique<HxScriptSocket>();
    if (!opened->listen(port)) {
        HxMessage::getTheMsg()->printf("No free port for scripts between %d and %d.", port, port + 20);
        return -1;
    }
    socket = opened.release();
    return 0;
}

int HxInterpreter::port() const
{
    return socket ? socket->port() : 0;
}

void HxInterpreter::requestQuit(int code)
{
    if (!requestedCode) requestedCode = code;
    if (!Tcl_InterpActive(interp)) return;
    Tcl_CancelEval(interp, Tcl_NewStringObj("The program ends.", -1), nullptr, TCL_CANCEL_UNWIND);
}
