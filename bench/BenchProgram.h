#pragma once

#include <functional>
#include <string>

/// What the command line asks for: `bench_NAME [--size N] [--work DIR]`.
struct BenchOptions
{
    unsigned long size = 512;  // side of the cube; a multiple of 4, so that bits fill whole words
    std::string work = "/tmp"; // folder for the data that other processes share

    unsigned long voxels() const { return size * size * size; }
};

/// One line of the table; times in ms, 0 where there is nothing to tell.
struct BenchRow
{
    std::string operation;
    int threads = 1;
    double oursMs = 0;
    std::string peer;
    double peerMs = 0;
    double floorMs = 0;
    std::string note;
};

/// Prints one line with tabs between the columns; scripts/bench makes the table of it.
void benchPrint(const BenchRow& row);

/// Ends the program with a message if `holds` is false: a time counts only for a right result.
void benchRequire(bool holds, const std::string& what);

/// Sets the threads of all our loops.
void benchSetThreads(int n);

/// The main function of a benchmark: reads the options, keeps the preferences in memory, and turns an
/// exception into exit code 1. Makes an application object without windows unless there is one.
int benchMain(int argc, char** argv, const std::function<void(const BenchOptions&)>& body);
