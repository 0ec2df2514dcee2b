#include "bench/performance_page.h"

#include "bench/plot.h"
#include "bench/sound_case.h"
#include "bench/value_text.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>

namespace bench {

namespace {

constexpr std::size_t kShownRuns = 3;
constexpr Read kReads[] = {Read::whole, Read::linear, Read::cubic};
constexpr const char* kReadNames[] = {"cubic", "linear", "whole samples"};
constexpr const char* kSets[] = {"avx512", "avx2", "sse2"};
constexpr const char* kSetNames[] = {"AVX-512", "AVX2", "SSE2"};

const char* nameOf(Read read) {
    return kReadNames[static_cast<int>(read)];
}

/// The last runs with one instruction set, the newest last.
struct SetRuns {
    std::string name;
    std::vector<const Run*> runs;
    const Run& newest() const { return *runs.back(); }
};

std::vector<SetRuns> runsBySet(const std::vector<Run>& all) {
    std::vector<SetRuns> sets;
    for (std::size_t i = 0; i < std::size(kSets); ++i) {
        SetRuns set{kSetNames[i], {}};
        for (const Run& run : all)
            if (run.instructionSet == kSets[i])
                set.runs.push_back(&run);
        if (set.runs.size() > kShownRuns)
            set.runs.erase(set.runs.begin(), set.runs.end() - kShownRuns);
        if (!set.runs.empty())
            sets.push_back(set);
    }
    return sets;
}

std::string timesText(const Result* result) {
    return result ? fixed(result->times(), 1) : "";
}

void writeTableHead(std::ostream& page, const std::vector<std::string>& columns) {
    for (const std::string& column : columns)
        page << "| " << column << " ";
    page << "|\n| --- ";
    for (std::size_t i = 1; i < columns.size(); ++i)
        page << "| --: ";
    page << "|\n";
}

/// Situations down, runs across, ratios in the fields.
void writeRatios(std::ostream& page, const SetRuns& set, const std::string& section,
                 const std::vector<std::string>& situations) {
    std::vector<std::string> columns = {set.name};
    for (const Run* run : set.runs)
        columns.push_back(run->when);
    writeTableHead(page, columns);
    for (const std::string& situation : situations) {
        page << "| " << situation << " ";
        for (const Run* run : set.runs)
            page << "| " << timesText(run->find(section, situation)) << " ";
        page << "|\n";
    }
    page << "\n";
}

std::vector<std::string> namesOf(const std::vector<SoundCase>& cases) {
    std::vector<std::string> names;
    names.reserve(cases.size());
    for (const SoundCase& situation : cases)
        names.push_back(situation.name());
    return names;
}

void writeChosen(std::ostream& page, const std::vector<SetRuns>& sets) {
    for (const SetRuns& set : sets)
        writeRatios(page, set, section::kSound, namesOf(chosenCases()));
}

/// Every result of a section of the newest runs, all sets side by side.
void writeSection(std::ostream& page, const std::vector<SetRuns>& sets, const std::string& section) {
    std::vector<std::string> columns = {"Situation"};
    for (const SetRuns& set : sets)
        columns.insert(columns.end(), {set.name, "reference", "times"});
    writeTableHead(page, columns);
    for (const Result& row : sets.front().newest().results) {
        if (row.section != section)
            continue;
        page << "| " << row.situation << " ";
        for (const SetRuns& set : sets) {
            const Result* const result = set.newest().find(section, row.situation);
            page << "| " << (result ? timeText(result->built) : "") << " | "
                 << (result ? timeText(result->other) : "") << " | " << timesText(result) << " ";
        }
        page << "|\n";
    }
}

void writeSound(std::ostream& page, const std::vector<SetRuns>& sets) {
    writeSection(page, sets, section::kSound);
}

void writeCalls(std::ostream& page, const std::vector<SetRuns>& sets) {
    writeSection(page, sets, section::kCalls);
}

SoundCase spreadCase(Read read) {
    return {.read = read};
}

void writeOpponent(std::ostream& page, const Result& row, const std::string& name) {
    page << "| " << row.situation.substr(0, row.situation.find(", spread")) << "; " << name << " | "
         << timeText(row.built) << " | " << timeText(row.other) << " | " << fixed(row.times(), 1) << " |\n";
}

void writeFaust(std::ostream& page, const std::vector<SetRuns>& sets) {
    for (const SetRuns& set : sets) {
        std::vector<std::string> situations;
        for (const Read read : kReads)
            situations.push_back(spreadCase(read).name());
        writeRatios(page, set, section::kFaust, situations);
    }
    for (const SetRuns& set : sets) {
        writeTableHead(page, {set.name + ", newest run", "effect", "Faust", "times"});
        for (const Result& row : set.newest().results)
            if (row.section == section::kFaust)
                writeOpponent(page, row, "`" + row.against + "`");
        page << "\n";
    }
}

/// Of the newest run that has them.
void writePrograms(std::ostream& page, const std::vector<SetRuns>& sets) {
    for (const SetRuns& set : sets)
        for (auto run = set.runs.rbegin(); run != set.runs.rend(); ++run) {
            const auto isProgram = [](const Result& row) { return row.section == section::kPrograms; };
            if (std::none_of((*run)->results.begin(), (*run)->results.end(), isProgram))
                continue;
            writeTableHead(page, {set.name + ", " + (*run)->when, "effect", "program", "times"});
            for (const Result& row : (*run)->results)
                if (isProgram(row))
                    writeOpponent(page, row, row.against);
            page << "\n";
            return;
        }
}

/// Where the time of 128 taps all over the memory goes. The parts add up to what was measured.
struct Breakdown {
    double withoutTaps, taps, memory;
    double whole() const { return withoutTaps + taps + memory; }
};

/// Throws std::runtime_error for a run that lacks a measurement.
Breakdown breakdownOf(const Run& run, Read read) {
    std::array<double, 3> built{};
    const auto cases = costCases(read);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const Result* const result = run.find(section::kCost, cases[i].name());
        if (!result)
            throw std::runtime_error("the run of " + run.when + " has no cost of " + cases[i].name());
        built[i] = result->built;
    }
    const auto [one, near, far] = built;
    const double tap = (near - one) / 127.0;
    return {one - tap, 128.0 * tap, far - near};
}

void writeBreakdown(std::ostream& page, const std::vector<SetRuns>& sets) {
    for (const SetRuns& set : sets) {
        std::map<Read, Breakdown> parts;
        std::vector<std::string> columns = {set.name + ", nanoseconds a sample"};
        for (const Read read : kReads) {
            parts[read] = breakdownOf(set.newest(), read);
            columns.push_back(nameOf(read));
        }
        writeTableHead(page, columns);
        const auto row = [&](const char* name, const std::function<double(const Breakdown&)>& part) {
            page << "| " << name << " ";
            for (const Read read : kReads)
                page << "| " << fixed(part(parts[read]), 1) << " ";
            page << "|\n";
        };
        row("what does not depend on the taps", [](const Breakdown& b) { return b.withoutTaps; });
        row("128 taps near together: finding, reading, interpolating, adding",
            [](const Breakdown& b) { return b.taps; });
        row("having them all over the memory", [](const Breakdown& b) { return b.memory; });
        row("**together, as measured**", [](const Breakdown& b) { return b.whole(); });
        row("one tap, near", [](const Breakdown& b) { return b.taps / 128.0; });
        page << "\n";
    }
}

/// They are measured beside each way of reading; the least disturbed measurement counts.
double leastOf(const Run& run, const std::string& limit) {
    double least = std::numeric_limits<double>::infinity();
    for (const Result& row : run.results)
        if (row.section == section::kLimits && row.against == limit)
            least = std::min(least, row.other);
    return least;
}

void writeLimits(std::ostream& page, const std::vector<SetRuns>& sets) {
    std::vector<std::string> columns = {"Nanoseconds a sample, done alone"};
    for (const SetRuns& set : sets)
        columns.push_back("in the run with " + set.name);
    writeTableHead(page, columns);
    std::set<std::string> limits;
    for (const Result& row : sets.front().newest().results)
        if (row.section == section::kLimits)
            limits.insert(row.against);
    for (const std::string& limit : limits) {
        page << "| " << limit << " ";
        for (const SetRuns& set : sets)
            page << "| " << fixed(leastOf(set.newest(), limit), 1) << " ";
        page << "|\n";
    }
}

void plotTimes(const std::string& path, const std::vector<SetRuns>& sets) {
    Plot plot{"How many times as fast as the reference", {}, {}};
    for (const SetRuns& set : sets)
        plot.legend.push_back(set.name);
    for (const Result& row : sets.front().newest().results) {
        if (row.section != section::kSound)
            continue;
        for (std::size_t i = 0; i < sets.size(); ++i)
            if (const Result* const result = sets[i].newest().find(row.section, row.situation))
                plot.bars.push_back({i == 0 ? row.situation : "",
                                     {{result->times(), static_cast<int>(i)}},
                                     fixed(result->times(), 1)});
    }
    writePlot(path, plot);
}

void plotBreakdown(const std::string& path, const std::vector<SetRuns>& sets) {
    Plot plot{"Where the nanoseconds of a sample go, 128 taps all over the memory",
              {"what needs no tap", "the taps, near", "the memory"},
              {}};
    for (const SetRuns& set : sets)
        for (const Read read : kReads) {
            const Breakdown parts = breakdownOf(set.newest(), read);
            plot.bars.push_back({std::string(nameOf(read)) + ", " + set.name,
                                 {{parts.withoutTaps, 0}, {parts.taps, 1}, {parts.memory, 2}},
                                 fixed(parts.whole(), 0) + " ns"});
        }
    writePlot(path, plot);
}

/// In ratios, since opponents met at different moments of a machine that is not always equally fast.
void plotPeers(const std::string& path, const std::vector<SetRuns>& sets) {
    const Run& run = sets.front().newest();
    Plot plot{"How many times as long as the effect, 128 taps all over the memory, " + sets.front().name,
              {"Faust, at its best", "other programs", "the reference"},
              {}};
    const auto add = [&](const std::string& name, const Result& row, int colour) {
        plot.bars.push_back({name, {{row.times(), colour}}, fixed(row.times(), 1)});
    };
    for (const Read read : kReads) {
        const std::string situation = spreadCase(read).name();
        const std::string name = std::string(nameOf(read)) + ": ";
        if (const Result* const sound = run.find(section::kSound, situation))
            add(name + sound->against, *sound, 2);
        if (const Result* const faust = run.find(section::kFaust, situation))
            add(name + "Faust", *faust, 0);
        for (const Result& row : run.results)
            if (row.section == section::kPrograms && row.situation == situation)
                add(name + row.against, row, 1);
    }
    writePlot(path, plot);
}

using Writer = void (*)(std::ostream&, const std::vector<SetRuns>&);

/// By the line of the words that each takes the place of.
const std::map<std::string, Writer> kWriters = {
    {"<!-- chosen -->", writeChosen},     {"<!-- sound -->", writeSound},
    {"<!-- calls -->", writeCalls},       {"<!-- faust -->", writeFaust},
    {"<!-- programs -->", writePrograms}, {"<!-- breakdown -->", writeBreakdown},
    {"<!-- limits -->", writeLimits}};

} // namespace

void writePerformancePage(const std::string& folder, const std::vector<Run>& runs) {
    const std::vector<SetRuns> sets = runsBySet(runs);
    if (sets.empty())
        throw std::runtime_error("there are no runs to show");
    plotTimes(folder + "/images/performance.svg", sets);
    plotBreakdown(folder + "/images/performance_cost.svg", sets);
    plotPeers(folder + "/images/performance_peers.svg", sets);
    std::ifstream words(QUILLON_PERFORMANCE_WORDS);
    std::ofstream page(folder + "/performance.md");
    for (std::string line; std::getline(words, line);)
        if (const auto writer = kWriters.find(line); writer != kWriters.end())
            writer->second(page, sets);
        else
            page << line << "\n";
    if (!page.flush())
        throw std::runtime_error(folder + "/performance.md cannot be written");
}

} // namespace bench
