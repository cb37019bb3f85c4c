#include "BenchRace.h"

#include <algorithm>
#include <chrono>
#include <utility>

double benchClockMs(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

int BenchRace::add(Round round)
{
    contestants.push_back({std::move(round), {}, 0});
    return static_cast<int>(contestants.size()) - 1;
}

void BenchRace::run(int rounds, double patienceMs)
{
    for (int i = 0; i < rounds; ++i) {
        for (Contestant& c : contestants) {
            if (c.total > patienceMs) continue;
            c.times.push_back(c.round());
            c.total += c.times.back();
        }
    }
}

double BenchRace::medianMs(int contestant) const
{
    std::vector<double> times = contestants[static_cast<std::size_t>(contestant)].times;
    std::sort(times.begin(), times.end());
    const std::size_t half = times.size() / 2;
    return times.size() % 2 ? times[half] : (times[half - 1] + times[half]) / 2;
}
