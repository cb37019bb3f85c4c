#pragma once

#include <functional>
#include <vector>

/// Wall-clock time of one call.
double benchClockMs(const std::function<void()>& work);

/// Times several contestants in turn, round by round, so that whatever else the machine does hits all
/// of them alike. The median of a contestant's rounds counts.
class BenchRace
{
public:
    /// Does one round and returns its time in ms; preparing it is not part of that time.
    using Round = std::function<double()>;

    /// Returns the number of the contestant, from 0.
    int add(Round round);

    /// A contestant that has taken longer than `patienceMs` in all sits out further rounds, so that a
    /// slow peer is measured once or twice and the others go on.
    void run(int rounds, double patienceMs = 8000);

    double medianMs(int contestant) const;

private:
    struct Contestant
    {
        Round round;
        std::vector<double> times;
        double total = 0;
    };
    std::vector<Contestant> contestants;
};
