#include "app/HxMain.h"
#include "app/HxMainWorkArea.h"
#include "app/HxWindowCommands.h"
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
#include "main/HxTclEvents.h"

#include <QApplication>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tcl.h>
#include <unistd.h>

namespace {

constexpr int kFailed = 1;
constexpr int kWrongOption = 2;
constexpr const char* kMaterialsFile = "materials.txt";
constexpr const char* kNoDisplay = "there is no display for a window; --headless runs scripts without one";

/// Progress as a line of the terminal. The buttons are those of the window that nobody sees: scripts press
/// them.
class TerminalWorkArea : public HxTerminalProgress
{
public:
    explicit TerminalWorkArea(HxWorkAreaView* hiddenView) : hidden(hiddenView) {}
    QAbstractButton* mainButton() override { return hidden->mainButton(); }
    QAbstractButton* neighbourButton() override { return hidden->neighbourButton(); }

private:
    HxWorkAreaView* hidden;
};

/// Whether a window can be expected to open: a display, or a platform that was asked for by name.
bool hasDisplay()
{
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(name)) return true;
    return false;
}

/// Qt ends the process when the display does not answer; it is to say so like other errors.
void reportStart(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    std::fprintf(stderr, "vorel: %s\n", qPrintable(text));
    if (type != QtFatalMsg) return;
    std::fprintf(stderr, "vorel: %s.\n", kNoDisplay);
    std::fflush(stderr);
    _exit(kFailed);
}

/// Without a display Qt remarks on what a display would have: a folder of the session, a window manager. In
/// a script's output they are noise; all else goes where it would go.
void dropDisplayRemarks(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (text.contains("XDG_RUNTIME_DIR") || text.startsWith("This plugin does not support")) return;
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
}

std::unique_ptr<QApplication> makeApplication(int& argc, char** argv, bool headless)
{
    if (headless) qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool hasScreen = qgetenv("QT_QPA_PLATFORM") != "offscreen";
    qInstallMessageHandler(hasScreen ? reportStart : dropDisplayRemarks);
    auto application = std::make_unique<QApplication>(argc, argv);
    if (hasScreen) qInstallMessageHandler(nullptr);
    QApplication::setApplicationDisplayName("Vorel");
    QApplication::setApplicationVersion(VOREL_VERSION);
    return application;
}

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

/// Where the preferences of this user are.
std::string userFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation).toStdString() + "/vorel";
}

/// Takes in the names and colours of a folder, if it has any; says what is wrong with them.
bool loadMaterialsOf(const std::string& folder)
{
    const std::string path = folder + "/" + kMaterialsFile;
    if (!std::filesystem::exists(path)) return false;
    McString error;
    if (!HxMatDatabase::getTheDatabase()->load(path.c_str(), error))
        HxMessage::getTheMsg()->printf("%s", error.c_str());
    return true;
}

/// The names and colours of the resource folders, on top of the few that are built in.
void loadMaterials()
{
    bool found = false;
    for (const std::string& folder : HxPackage::resourceFolders()) found = loadMaterialsOf(folder) || found;
    if (!found)
        HxMessage::getTheMsg()->printf(
            "The resource folder has no %s; only a few materials have colors of their "
            "own.",
            kMaterialsFile);
}

void registerEverything(const HxCommandLine& commandLine)
{
    hxRegisterHostClasses();
    hxRegisterFileFormats();
    hxRegisterDataCommands();
    hxRegisterApplicationCommands();
    hxRegisterWindowCommands();
    loadMaterials();
    HxPackage::start();
    // Editors look whether there are modes; without one they take the normal window.
    if (commandLine.inWindow) HxSubApplication::switchOff();
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

/// Who hears of what fails on the command line.
struct FailureReports
{
    std::function<void(const char* message)> script;
    std::function<bool(const char* message)> data; // true: the rest is to run
};

/// Runs what the command line names, up to the first script that fails or quits. Returns the exit code, none
/// if all has run.
std::optional<int> runArguments(const HxCommandLine& commandLine, const FailureReports& reports)
{
    HxInterpreter* interpreter = HxInterpreter::getTheInterpreter();
    McString result;
    const auto endOfScript = [&](int code) -> std::optional<int> {
        if (interpreter->quitCode() || code != TCL_ERROR) return interpreter->quitCode();
        reports.script(interpreter->errorText());
        return kFailed;
    };
    for (const std::string& file : commandLine.files) {
        if (isScript(file)) {
            if (const auto end = endOfScript(interpreter->evalFile(file.c_str(), result))) return end;
        } else if (loadData(file, result) == TCL_ERROR && !reports.data(result)) {
            return kFailed;
        }
    }
    for (const std::string& script : commandLine.scripts)
        if (const auto end = endOfScript(interpreter->eval(script.c_str(), result))) return end;
    return std::nullopt;
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

int runWithoutWindow(const HxCommandLine& commandLine)
{
    TerminalWorkArea progress(HxMain::getTheMain()->workArea());
    if (isatty(STDERR_FILENO)) HxWorkArea::getTheWorkArea()->setView(&progress);
    const bool nothingToRun = commandLine.files.empty() && commandLine.scripts.empty();
    const auto print = [](const char* message) {
        std::fprintf(stderr, "%s\n", message);
        return false;
    };
    const int code =
        nothingToRun ? HxScriptShell().run() : runArguments(commandLine, {print, print}).value_or(0);
    shutDown();
    HxWorkArea::getTheWorkArea()->setView(nullptr);
    return code;
}

/// A failing script ends the program; files that cannot be read are told together, when all else is done.
void runArgumentsInWindow(const HxCommandLine& commandLine)
{
    const auto print = [](const char* message) { HxMessage::getTheMsg()->printf("%s", message); };
    std::string unreadable;
    const auto collect = [&](const char* message) {
        print(message);
        unreadable += (unreadable.empty() ? "" : "\n") + std::string(message);
        return true;
    };
    if (const auto code = runArguments(commandLine, {print, collect}))
        QCoreApplication::exit(*code);
    else if (!unreadable.empty())
        HxMessage::getTheMsg()->error("%s", unreadable.c_str());
}

/// Opens the window, runs what the command line names, and leaves the rest to the person.
int runWindow(const HxCommandLine& commandLine)
{
    HxMain* window = HxMain::getTheMain();
    window->takeMessages();
    // A person's own. Like the preferences, they stay out of runs without a window, which are the same for
    // all.
    loadMaterialsOf(userFolder());
    window->show();
    const HxTclEvents tclEvents([](int code) { QCoreApplication::exit(code); });
    QTimer::singleShot(0, window, [&commandLine] { runArgumentsInWindow(commandLine); });
    const int code = QApplication::exec();
    shutDown();
    return code;
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

    if (!commandLine.headless && !hasDisplay()) {
        std::fprintf(stderr, "vorel: %s.\n", kNoDisplay);
        return kFailed;
    }

    const auto application = makeApplication(argc, argv, commandLine.headless);
    HxWorkArea::catchSignals();
    HxInterpreter::getTheInterpreter();
    if (!chooseSettings(commandLine)) return kFailed;
    registerEverything(commandLine);
    // Ends before the application object.
    const auto window = std::make_unique<HxMain>();
    return commandLine.headless ? runWithoutWindow(commandLine) : runWindow(commandLine);
}
