// Times several things against each other: their rounds come in a random order, so that a busy moment of the
// machine hits them all, and medians are taken.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace bench {

struct Contestant {
    /// Does the work once and gives the seconds that it took, without what had to be prepared.
    std::function<double()> run;
    /// How much is done in one run: samples, calls. A time is given for one of them.
    double unitsOfOneRun = 1.0;
    /// Each round repeats the run until so many seconds are together ...
    double secondsOfOneRound = 0.02;
    /// ... or, where this is not 0, so many times.
    std::int64_t runsOfOneRound = 0;
};

constexpr int kRounds = 9;

/// Medians in nanoseconds, one for each contestant.
std::vector<double> medianNanoseconds(const std::vector<Contestant>& contestants, int rounds = kRounds);

/// The processor's time since the program began, in seconds: what else runs on the machine does not count.
double processorSeconds();

} // namespace bench
