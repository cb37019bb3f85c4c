#include "main/HxScriptShell.h"

#include "hx/HxInterpreter.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstdio>
#include <tcl.h>
#include <unistd.h>
#include <utility>

HxScriptShell::HxScriptShell()
    : notifier(STDIN_FILENO, QSocketNotifier::Read),
      tclEvents([this](int code) { end(code); }),
      interactive(isatty(STDIN_FILENO) && isatty(STDOUT_FILENO))
{
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [this] { readMore(); });
}

int HxScriptShell::run()
{
    prompt();
    return QCoreApplication::exec();
}

void HxScriptShell::readMore()
{
    char block[4096];
    const ssize_t count = read(STDIN_FILENO, block, sizeof block);
    if (count < 0 && errno == EINTR) return;
    if (count <= 0) {
        endOfInput();
        return;
    }
    // A command may run an event loop of its own, in which no further command is to begin.
    notifier.setEnabled(false);
    input.append(block, static_cast<std::size_t>(count));
    for (std::size_t end = input.find('\n'); end != std::string::npos && !ended; end = input.find('\n')) {
        const std::string line = input.substr(0, end + 1);
        input.erase(0, end + 1);
        takeLine(line);
    }
    if (!ended) notifier.setEnabled(true);
}

void HxScriptShell::takeLine(const std::string& line)
{
    command += line;
    if (Tcl_CommandComplete(command.c_str())) evaluate();
    if (!ended) prompt();
}

void HxScriptShell::evaluate()
{
    const std::string script = std::exchange(command, {});
    HxInterpreter* interpreter = HxInterpreter::getTheInterpreter();
    McString result;
    const int code = interpreter->eval(script.c_str(), result);

    if (interpreter->quitCode()) {
        end(*interpreter->quitCode());
    } else if (code == TCL_ERROR) {
        const McString report = interactive ? result : interpreter->errorText();
        std::fprintf(stderr, "%s\n", report.c_str());
        if (!interactive) end(1);
    } else if (interactive && !result.isEmpty()) {
        std::printf("%s\n", result.c_str());
    }
}

void HxScriptShell::prompt() const
{
    if (!interactive) return;
    std::fputs(command.empty() ? "vorel> " : "> ", stdout);
    std::fflush(stdout);
}

void HxScriptShell::endOfInput()
{
    command += input;
    input.clear();
    // A last line without its end is a command as any other; half a command is an error that Tcl explains.
    if (!command.empty() && !interactive) evaluate();
    if (interactive) std::printf("\n");
    if (!ended) end(0);
}

void HxScriptShell::end(int code)
{
    ended = true;
    tclEvents.stop();
    notifier.setEnabled(false);
    QCoreApplication::exit(code);
}
