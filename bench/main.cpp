// What the effect costs, against the literal reference loop in the same rounds: nanoseconds a sample of the
// whole processReplacing, on the terminal, as JSON, or as the page docs/performance.md.
#include "bench/performance_page.h"
#include "bench/player.h"
#include "dsp/instruction_set.h"
#include "platform/private_folder.h"

#include <CLI/CLI.hpp>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace bench;

/// Takes the medians of a pair of benchmarks and says nothing.
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

void registerPlayer(const char* name, Player& player, double minimumSeconds) {
    benchmark::RegisterBenchmark(name,
                                 [&player](benchmark::State& state) {
                                     for (auto round : state) {
                                         static_cast<void>(round);
                                         state.SetIterationTime(player.playBatch());
                                     }
                                 })
        ->UseManualTime()
        ->MinTime(minimumSeconds)
        ->Repetitions(9)
        ->ReportAggregatesOnly();
}

Measurement measure(const SoundCase& situation) {
    Player built(builtEffect(), situation);
    Player reference(literalReference(), situation);
    const double minimum = situation.caches == Caches::cold ? 0.0005 : 0.02;
    registerPlayer("built", built, minimum);
    registerPlayer("reference", reference, minimum);
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians, "all");
    benchmark::ClearRegisteredBenchmarks();
    const double nanoseconds = 1e9 / static_cast<double>(built.frames());
    return {situation, medians.seconds["built"] * nanoseconds, medians.seconds["reference"] * nanoseconds};
}

std::vector<SoundCase> allCases() {
    constexpr Read reads[] = {Read::whole, Read::linear, Read::cubic};
    std::vector<SoundCase> cases;
    for (const std::int32_t taps : {1, 8, 32, 101, 102, 128})
        for (const Read read : reads)
            cases.push_back({taps, read});
    for (const Place place : {Place::close, Place::minimum})
        for (const Read read : reads)
            cases.push_back({128, read, place});
    for (const Read read : {Read::linear, Read::cubic})
        cases.push_back({101, read, Place::spread, Motion::gliding});
    for (const std::int32_t frames : {16, 64})
        for (const Read read : reads)
            cases.push_back({128, read, Place::spread, Motion::rest, frames});
    cases.push_back({128, Read::cubic, Place::spread, Motion::rest, 64, Caches::cold});
    return cases;
}

void printRow(const Measurement& row) {
    std::printf("%-52s %9.1f %11.1f %8.1f\n", row.situation.name().c_str(), row.built, row.reference,
                row.reference / row.built);
    std::fflush(stdout);
}

void printJson(const std::vector<Measurement>& rows) {
    std::printf("{\"instructionSet\": \"%s\", \"unit\": \"ns per sample\", \"rows\": [",
                dsp::chosenKernels().instructionSet);
    const char* separator = "\n";
    for (const Measurement& row : rows) {
        std::printf("%s  {\"case\": \"%s\", \"built\": %.2f, \"reference\": %.2f}", separator,
                    row.situation.name().c_str(), row.built, row.reference);
        separator = ",\n";
    }
    std::printf("\n]}\n");
}

} // namespace

int main(int argc, char** argv) {
    bool json = false;
    std::string only, page;
    CLI::App app("Times the effect against the literal reference loop.", "quillon-bench");
    app.add_flag("--json", json, "Print the figures as JSON");
    app.add_option("--only", only, "Only the cases whose name contains this text");
    app.add_option("--page", page, "Write the page with the plots to this folder");
    CLI11_PARSE(app, argc, argv);

    // Rounds of the two come in a random order, so that a busy moment of the machine hits both.
    std::string name = "quillon-bench", interleave = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {name.data(), interleave.data()};
    int count = 2;
    benchmark::Initialize(&count, arguments);

    const std::string folder = page.empty() ? "" : std::filesystem::absolute(page).string();
    const platform::PrivateFolder privateFolder;
    if (!json)
        std::printf("%-52s %9s %11s %8s\n", "ns per sample", "built", "reference", "times");
    std::vector<Measurement> rows;
    for (const SoundCase& situation : allCases()) {
        if (situation.name().find(only) == std::string::npos)
            continue;
        rows.push_back(measure(situation));
        if (!json)
            printRow(rows.back());
    }
    if (json)
        printJson(rows);
    if (!folder.empty())
        writePerformancePage(folder, dsp::chosenKernels().instructionSet, rows);
}
