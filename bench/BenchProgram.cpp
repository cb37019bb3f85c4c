#include "BenchProgram.h"

#include "hx/HxSettingsMgr.h"
#include "mc/McThreads.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <stdexcept>

namespace {

std::string number(double value)
{
    if (value <= 0) return "-";
    char text[32];
    std::snprintf(text, sizeof text, value < 100 ? "%.2f" : "%.0f", value);
    return text;
}

std::string ratio(double a, double b)
{
    return a > 0 && b > 0 ? number(a / b) : "-";
}

BenchOptions optionsOf(int argc, char** argv)
{
    BenchOptions options;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (i + 1 == argc) throw std::runtime_error(word + ": a value is missing.");
        if (word == "--size")
            options.size = std::strtoul(argv[++i], nullptr, 10);
        else if (word == "--work")
            options.work = argv[++i];
        else
            throw std::runtime_error(word + ": no such option; --size N and --work DIR are there.");
    }
    if (options.size < 64 || options.size > 1024 || options.size % 4 != 0)
        throw std::runtime_error("--size: a multiple of 4 from 64 to 1024, please.");
    return options;
}

} // namespace

void benchPrint(const BenchRow& row)
{
    std::printf("%s\t%d\t%s\t%s\t%s\t%s\t%s\t%s\t%s\n", row.operation.c_str(), row.threads,
                number(row.oursMs).c_str(), row.peer.empty() ? "-" : row.peer.c_str(),
                number(row.peerMs).c_str(), ratio(row.peerMs, row.oursMs).c_str(),
                number(row.floorMs).c_str(), ratio(row.oursMs, row.floorMs).c_str(), row.note.c_str());
    std::fflush(stdout);
}

void benchRequire(bool holds, const std::string& what)
{
    if (!holds) throw std::runtime_error(what);
}

void benchSetThreads(int n)
{
    HxPreferences preferences = HxSettingsMgr::getInstance()->getPreferences();
    preferences.numThreads = n;
    HxSettingsMgr::getInstance()->setPreferences(preferences, false);
    mcSetNumThreads(n);
}

int benchMain(int argc, char** argv, const std::function<void(const BenchOptions&)>& body)
{
    std::optional<QCoreApplication> application;
    if (!QCoreApplication::instance()) application.emplace(argc, argv);
    HxSettingsMgr::useMemoryStore();
    try {
        body(optionsOf(argc, argv));
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s: %s\n", argv[0], e.what());
        return 1;
    }
}
