#include "main/HxCommandLine.h"

bool HxCommandLine::parse(int argc, char** argv, std::string& error)
{
    bool optionsEnded = false;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const bool isOption = !optionsEnded && word.size() > 1 && word[0] == '-';
        if (!isOption) {
            files.push_back(word);
        } else if (word == "--") {
            optionsEnded = true;
        } else if (word == "--headless") {
            headless = true;
        } else if (word == "--in-window") {
            inWindow = true;
        } else if (word == "--version") {
            showVersion = true;
        } else if (word == "--help") {
            showHelp = true;
        } else if (word == "--eval" || word == "--preferences") {
            if (++i == argc) {
                error = "Option " + word + " needs a value.";
                return false;
            }
            if (word == "--eval")
                scripts.emplace_back(argv[i]);
            else
                preferencesFile = argv[i];
        } else {
            error = "Unknown option " + word + ".";
            return false;
        }
    }
    return true;
}

const char* HxCommandLine::usage()
{
    return "usage: vorel [--headless] [--in-window] [--eval TCL] [--preferences FILE] [--version] [--help] "
           "[FILE...]\n"
           "\n"
           "Loads data files and runs files that end in .hx or .tcl, in the given order.\n"
           "\n"
           "  --headless          without a window or a display\n"
           "  --in-window         editors open in the normal window, not in modes of their own\n"
           "  --eval TCL          runs a script after the files; may be repeated\n"
           "  --preferences FILE  reads and writes the preferences here\n"
           "  --version           prints the version\n"
           "  --help              prints this text\n"
           "\n"
           "Opens a window; with --headless it runs to the end of the files and scripts instead, and "
           "without\n"
           "any it reads commands from standard input. A script that fails ends the program; so does a "
           "data\n"
           "file that cannot be read, but with a window the rest goes on.\n"
           "The exit code is 0, 1 after such an end, 2 after a wrong option, or that of "
           "`quit`.\n";
}
