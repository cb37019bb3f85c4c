#include "BenchPython.h"

#include "BenchProgram.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

BenchPython::BenchPython(unsigned long size)
{
    std::signal(SIGPIPE, SIG_IGN); // an ended peer shows itself by the missing answer
    int toPeer[2], fromPeer[2];
    benchRequire(pipe(toPeer) == 0 && pipe(fromPeer) == 0, "no pipe could be had.");
    const std::string side = std::to_string(size);
    process = fork();
    benchRequire(process >= 0, "the process of the Python peers could not be started.");
    if (process == 0) {
        dup2(toPeer[0], STDIN_FILENO);
        dup2(fromPeer[1], STDOUT_FILENO);
        // A pipe end that stays open here would keep the peer from seeing the end of the commands.
        for (const int end : {toPeer[0], toPeer[1], fromPeer[0], fromPeer[1]}) close(end);
        execl(BENCH_PYTHON, BENCH_PYTHON, BENCH_PEERS, side.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    close(toPeer[0]);
    close(fromPeer[1]);
    commands = fdopen(toPeer[1], "w");
    answers = fdopen(fromPeer[0], "r");
}

BenchPython::~BenchPython()
{
    std::fclose(commands);
    std::fclose(answers);
    waitpid(process, nullptr, 0);
}

std::string BenchPython::ask(const std::string& line)
{
    std::fprintf(commands, "%s\n", line.c_str());
    std::fflush(commands);
    char text[1024];
    benchRequire(std::fgets(text, sizeof text, answers) != nullptr, "the Python peers have ended: " + line);
    std::string answer = text;
    if (!answer.empty() && answer.back() == '\n') answer.pop_back();
    benchRequire(answer.rfind("error", 0) != 0, "Python peer, " + line + ": " + answer);
    return answer;
}

double BenchPython::runMs(const std::string& name)
{
    return std::strtod(ask("run " + name).c_str(), nullptr);
}
