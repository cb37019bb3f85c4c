#include "hx/HxClassRegistry.h"
#include "hx/HxInterpreter.h"
#include "hx/HxMatDatabase.h"
#include "hx/HxMessage.h"
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
#include <filesystem>
#include <tcl.h>
#include <unistd.h>

namespace {

constexpr int kFailed = 1;
constexpr int kWrongOption = 2;
constexpr const char* kMaterialsFile = "materials.txt";

/// False if the file that was asked for holds no preferences.
bool chooseSettings(const HxCommandLine& commandLine)
{
    if (!commandLine.preferencesFile.empty())
        return HxSettingsMgr::useFile(commandLine.preferencesFile.c_str());
    if (commandLine.headless)
        HxSettingsMgr::useMemoryStore();
    else
        HxSettingsMgr::useUserStore();
    return true;
}

/// The names and colours of the resource folders, on top of the few that are built in.
void loadMaterials()
{
    bool found = false;
    for (const std::string& folder : HxPackage::resourceFolders()) {
        const std::string path = folder + "/" + kMaterialsFile;
        if (!std::filesystem::exists(path)) continue;
        found = true;
        McString error;
        if (!HxMatDatabase::getTheDatabase()->load(path.c_str(), error))
            HxMessage::getTheMsg()->printf("%s", error.c_str());
    }
    if (!found)
        HxMessage::getTheMsg()->printf(
            "The resource folder has no %s; only a few materials have colors of their "
            "own.",
            kMaterialsFile);
}

void registerEverything()
{
    hxRegisterHostClasses();
    hxRegisterFileFormats();
    hxRegisterDataCommands();
    hxRegisterApplicationCommands();
    loadMaterials();
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
        if (failed(code, script ? interpreter->errorText() : result)) return kFailed;
        if (interpreter->quitCode()) return *interpreter->quitCode();
    }
    for (const std::string& script : commandLine.scripts) {
        const int code = interpreter->eval(script.c_str(), result);
        if (failed(code, interpreter->errorText())) return kFailed;
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
    if (!chooseSettings(commandLine)) return kFailed;
    registerEverything();

    const bool nothingToRun = commandLine.files.empty() && commandLine.scripts.empty();
    const int code = nothingToRun ? HxScriptShell().run() : runArguments(commandLine);
    shutDown();
    HxWorkArea::getTheWorkArea()->setView(nullptr);
    return code;
}
