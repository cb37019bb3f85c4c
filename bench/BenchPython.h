#pragma once

#include <cstdio>
#include <string>

/// The peers that live in Python: a process of bench/peers.py that answers line by line and clocks its
/// own work, so that neither starting it nor handing data over counts.
///
/// Data travel in files of plain bytes. Volumes are cubes.
class BenchPython
{
public:
    explicit BenchPython(unsigned long size);
    ~BenchPython();
    BenchPython(const BenchPython&) = delete;
    BenchPython& operator=(const BenchPython&) = delete;

    /// Sends a line and returns the answer; a peer that fails ends the program with its message.
    std::string ask(const std::string& line);

    /// One clocked run of an operation that was opened by "open NAME KIND ...".
    double runMs(const std::string& name);

private:
    std::FILE* commands = nullptr;
    std::FILE* answers = nullptr;
    int process = -1;
};
