#include "hx/HxClassRegistry.h"
#include "hx/HxInterpreter.h"
#include "hx/HxObjectPool.h"
#include "hx/HxPackage.h"
#include "hx/HxResource.h"
#include "hx/HxSettingsMgr.h"
#include "hx/HxSubApplication.h"
#include "hx/HxTerminalProgress.h"
#include "io/HxFileFormats.h"
#include "main/HxApplicationCommands.h"
#include "main/HxCommandLine.h"
#include "main/HxDataCommands.h"
#include "main/HxScriptShell.h"

#include <QCoreApplication>

#include <cstdio>
#include <tcl.h>
#include <unistd.h>

namespace {

constexpr int kWrongOption = 2;

void chooseSettings(const HxCommandLine& commandLine)
{
    if (!commandLine.preferencesFile.empty())
        HxSettingsMgr::useFile(commandLine.preferencesFile.c_str());
    else if (commandLine.headless)
        HxSettingsMgr::useMemoryStore();
    else
        HxSettingsMgr::useUserStore();
}

void registerEverything()
{
    hxRegisterHostClasses();
    hxRegisterFileFormats();
    hxRegisterDataCommands();
    hxRegisterApplicationCommands();
    HxPackage::start();
}

bool isScript(const std::string& file)
{
    return file.ends_with(".hx") || file.ends_with(".tcl");
}

/// Reads a data file through the command that scripts use, so that both end in the same state.
int loadData(const std::string& file, McString& result)
{
    Tcl_Obj* words[] = {Tcl_NewStringObj("load", -1), Tcl_NewStringObj(file.c_str(), -1)};
    Tcl_Obj* command = Tcl_NewListObj(2, words);
    Tcl_IncrRefCount(command);
    const int code = HxInterpreter::getTheInterpreter()->eval(Tcl_GetString(command), result);
    Tcl_DecrRefCount(command);
    return code;
}

/// Runs what the command line names. Returns the exit code; 0 unless something failed or asked to quit.
int runArguments(const HxCommandLine& commandLine)
{
    HxInterpreter* interpreter = HxInterpreter::getTheInterpreter();
    McString result;
    const auto failed = [&](int code, const McString& message) {
        if (code != TCL_ERROR || interpreter->quitCode()) return false;
        std::fprintf(stderr, "%s\n", message.c_str());
        return true;
    };
    for (const std::string& file : commandLine.files) {
        const bool script = isScript(file);
        const int code = script ? interpreter->evalFile(file.c_str(), result) : loadData(file, result);
        // A data file fails for a reason of its own, a script somewhere in its lines.
        if (failed(code, script ? interpreter->errorText() : result)) return 1;
        if (interpreter->quitCode()) return *interpreter->quitCode();
    }
    for (const std::string& script : commandLine.scripts) {
        const int code = interpreter->eval(script.c_str(), result);
        if (failed(code, interpreter->errorText())) return 1;
        if (interpreter->quitCode()) return *interpreter->quitCode();
    }
    return 0;
}

/// Takes everything down while the libraries and the application object still stand.
void shutDown()
{
    HxSubApplication::leaveRunning();
    HxObjectPool::getThePool()->clear();
    HxResource::mSubApplications.clear();
    HxPackage::finishAll();
    HxSettingsMgr::getInstance()->write();
}

} // namespace

int main(int argc, char** argv)
{
    HxCommandLine commandLine;
    std::string error;
    if (!commandLine.parse(argc, argv, error)) {
        std::fprintf(stderr, "vorel: %s\n%s", error.c_str(), HxCommandLine::usage());
        return kWrongOption;
    }
    if (commandLine.showHelp || commandLine.showVersion) {
        std::fputs(commandLine.showHelp ? HxCommandLine::usage() : "vorel " VOREL_VERSION "\n", stdout);
        return 0;
    }

    QCoreApplication application(argc, argv);
    HxTerminalProgress progress;
    if (isatty(STDERR_FILENO)) HxWorkArea::getTheWorkArea()->setView(&progress);
    HxWorkArea::catchSignals();
    HxInterpreter::getTheInterpreter();
    chooseSettings(commandLine);
    registerEverything();

    const bool nothingToRun = commandLine.files.empty() && commandLine.scripts.empty();
    const int code = nothingToRun ? HxScriptShell().run() : runArguments(commandLine);
    shutDown();
    HxWorkArea::getTheWorkArea()->setView(nullptr);
    return code;
}
