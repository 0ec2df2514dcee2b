#include "bench/contest.h"

#include <benchmark/benchmark.h>

#include <ctime>
#include <map>
#include <string>

namespace bench {

namespace {

/// Keeps the medians and says nothing.
class Medians final : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.aggregate_name == "median")
                seconds[run.run_name.function_name] =
                    run.real_accumulated_time / static_cast<double>(run.iterations);
    }
    std::map<std::string, double> seconds;
};

void enter(const std::string& name, const Contestant& contestant, int rounds) {
    auto* const entry = benchmark::RegisterBenchmark(name.c_str(), [&contestant](benchmark::State& state) {
        for (auto round : state) {
            static_cast<void>(round);
            state.SetIterationTime(contestant.run());
        }
    });
    entry->UseManualTime()->Repetitions(rounds)->ReportAggregatesOnly();
    if (contestant.runsOfOneRound > 0)
        entry->Iterations(contestant.runsOfOneRound);
    else
        entry->MinTime(contestant.secondsOfOneRound);
}

void initialiseOnce() {
    static const bool done = [] {
        std::string name = "quillon-bench", interleave = "--benchmark_enable_random_interleaving=true";
        char* arguments[] = {name.data(), interleave.data(), nullptr};
        int count = 2;
        benchmark::Initialize(&count, arguments);
        return true;
    }();
    static_cast<void>(done);
}

} // namespace

std::vector<double> medianNanoseconds(const std::vector<Contestant>& contestants, int rounds) {
    initialiseOnce();
    for (std::size_t i = 0; i < contestants.size(); ++i)
        enter(std::to_string(i), contestants[i], rounds);
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians, "all");
    benchmark::ClearRegisteredBenchmarks();
    std::vector<double> nanoseconds;
    nanoseconds.reserve(contestants.size());
    for (std::size_t i = 0; i < contestants.size(); ++i)
        nanoseconds.push_back(medians.seconds[std::to_string(i)] * 1e9 / contestants[i].unitsOfOneRun);
    return nanoseconds;
}

double processorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

} // namespace bench
