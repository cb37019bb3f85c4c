#pragma once

#include <string>
#include <vector>

/// What was asked for on the command line.
struct HxCommandLine
{
    bool headless = false;
    bool inWindow = false; ///< no modes: editors take the normal window
    bool showVersion = false;
    bool showHelp = false;
    std::string preferencesFile;      ///< empty: none given
    std::vector<std::string> files;   ///< data and scripts, in order
    std::vector<std::string> scripts; ///< texts of --eval, in order

    /// Returns false, with a sentence in `error`, for an unknown option or a missing value.
    bool parse(int argc, char** argv, std::string& error);

    static const char* usage();
};
