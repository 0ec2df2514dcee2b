#include "bench/page_parts.h"

#include "bench/page_table.h"
#include "bench/plot.h"
#include "bench/sound_case.h"
#include "bench/value_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace bench {

namespace {

constexpr Read kReads[] = {Read::whole, Read::linear, Read::cubic};
constexpr const char* kReadNames[] = {"cubic", "linear", "whole samples"};

const char* nameOf(Read read) {
    return kReadNames[static_cast<int>(read)];
}

SoundCase spreadCase(Read read) {
    return {.read = read};
}

/// Situations down, runs across, ratios in the fields.
std::string ratios(const SetRuns& set, const std::string& section,
                   const std::vector<std::string>& situations) {
    std::vector<std::string> columns = {set.name};
    for (const Run* run : set.runs)
        columns.push_back(run->when);
    Table table(columns);
    for (const std::string& situation : situations) {
        std::vector<std::string> fields = {situation};
        for (const Run* run : set.runs) {
            const Result* const result = run->find(section, situation);
            fields.push_back(result ? timesText(*result) : "");
        }
        table.add(fields);
    }
    return table.text();
}

std::vector<std::string> opponentFields(const Result& row, const std::string& name) {
    return {row.situation.substr(0, row.situation.find(", spread")) + "; " + name, timeText(row.built),
            row.isLostInNoise() ? "lost in noise" : timeText(row.other), timesText(row)};
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

/// They are measured beside each way of reading; the least disturbed measurement counts.
std::string leastText(const Run& run, const std::string& limit) {
    double least = std::numeric_limits<double>::infinity();
    for (const Result& row : run.results)
        if (row.section == section::kLimits && row.against == limit)
            least = std::min(least, row.other);
    return std::isfinite(least) ? fixed(least, 1) : "";
}

std::string breakdownTable(const SetRuns& set) {
    std::map<Read, Breakdown> parts;
    std::vector<std::string> columns = {set.name + ", nanoseconds a sample"};
    for (const Read read : kReads) {
        parts[read] = breakdownOf(set.newest(), read);
        columns.push_back(nameOf(read));
    }
    Table table(columns);
    const auto add = [&](const char* name, const std::function<double(const Breakdown&)>& part) {
        std::vector<std::string> fields = {name};
        for (const Read read : kReads)
            fields.push_back(fixed(part(parts[read]), 1));
        table.add(fields);
    };
    add("what does not depend on the taps", [](const Breakdown& b) { return b.withoutTaps; });
    add("128 taps near together: finding, reading, interpolating, adding",
        [](const Breakdown& b) { return b.taps; });
    add("having them all over the memory", [](const Breakdown& b) { return b.memory; });
    add("**together, as measured**", [](const Breakdown& b) { return b.whole(); });
    add("one tap, near", [](const Breakdown& b) { return b.taps / 128.0; });
    return table.text();
}

} // namespace

std::string shownPlot(const Page& page, const std::string& file, const Plot& plot) {
    if (plot.bars.empty())
        return "";
    writePlot(page.folder + "/images/" + file, plot);
    return "![" + plot.title + "](images/" + file + ")\n\n";
}

std::string timesOfSection(const Page& page, const std::string& section) {
    const std::vector<SetRuns> sets = setsWith(page.sets, section);
    std::vector<std::string> columns = {"Situation"};
    for (const SetRuns& set : sets)
        columns.insert(columns.end(), {set.name, "plain loop", "times"});
    Table table(columns);
    for (const std::string& situation : situationsOf(sets, section)) {
        std::vector<std::string> fields = {situation};
        for (const SetRuns& set : sets) {
            const Result* const row = set.find(section, situation, kReference);
            fields.push_back(row ? valueText(*row, row->built) : "");
            fields.push_back(row ? valueText(*row, row->other) : "");
            fields.push_back(row ? timesText(*row) : "");
        }
        table.add(fields);
    }
    return table.text();
}

std::string chosenPart(const Page& page) {
    Plot plot{"How many times as fast as the plain loop", {}, {}};
    std::vector<std::string> situations;
    for (const SetRuns& set : page.sets)
        plot.legend.push_back(set.name);
    for (const SoundCase& chosen : chosenCases()) {
        situations.push_back(chosen.name());
        bool isNamed = false;
        for (std::size_t i = 0; i < page.sets.size(); ++i)
            if (const Result* const row = page.sets[i].find(section::kSound, chosen.name(), kReference)) {
                plot.bars.push_back(
                    {isNamed ? "" : chosen.name(), {{row->times(), static_cast<int>(i)}}, timesText(*row)});
                isNamed = true;
            }
    }
    std::string text = shownPlot(page, "performance.svg", plot);
    for (const SetRuns& set : page.sets)
        text += ratios(set, section::kSound, situations);
    return text;
}

std::string callsPart(const Page& page) {
    return timesOfSection(page, section::kCalls);
}

std::string breakdownPart(const Page& page) {
    Plot plot{"Where the nanoseconds of a sample go, 128 taps all over the memory",
              {"what needs no tap", "the taps, near", "the memory"},
              {}};
    std::string tables;
    for (const SetRuns& set : page.sets) {
        for (const Read read : kReads) {
            const Breakdown parts = breakdownOf(set.newest(), read);
            plot.bars.push_back({std::string(nameOf(read)) + ", " + set.name,
                                 {{parts.withoutTaps, 0}, {parts.taps, 1}, {parts.memory, 2}},
                                 fixed(parts.whole(), 0) + " ns"});
        }
        tables += breakdownTable(set);
    }
    return shownPlot(page, "performance_cost.svg", plot) + tables;
}

std::string limitsPart(const Page& page) {
    std::vector<std::string> columns = {"Nanoseconds a sample, done alone"};
    std::set<std::string> limits;
    for (const SetRuns& set : page.sets) {
        columns.push_back("in the run with " + set.name);
        for (const Result& row : set.newest().results)
            if (row.section == section::kLimits)
                limits.insert(row.against);
    }
    Table table(columns);
    for (const std::string& limit : limits) {
        std::vector<std::string> fields = {limit};
        for (const SetRuns& set : page.sets)
            fields.push_back(leastText(set.newest(), limit));
        table.add(fields);
    }
    return table.text();
}

/// In ratios, since opponents met at different moments of a machine that is not always equally fast.
std::string peersPart(const Page& page) {
    const SetRuns& set = page.sets.front();
    Plot plot{"How many times as long as the effect, 128 taps all over the memory, " + set.name,
              {"Faust, at its best", "other programs", "the plain loop"},
              {}};
    bool hasPeers = false;
    for (const Read read : kReads) {
        const std::string situation = spreadCase(read).name();
        const auto add = [&](const std::string& name, const Result& row, int colour) {
            if (row.isLostInNoise())
                return;
            plot.bars.push_back({nameOf(read) + (": " + name), {{row.times(), colour}}, timesText(row)});
            hasPeers |= row.section != section::kSound;
        };
        if (const Result* const sound = set.find(section::kSound, situation, kReference))
            add("the plain loop", *sound, 2);
        if (const Run* const run = set.newestWith(section::kFaust))
            if (const Result* const faust = run->find(section::kFaust, situation))
                add("Faust", *faust, 0);
        if (const Run* const run = set.newestWith(section::kPrograms))
            for (const Result& row : run->results)
                if (row.section == section::kPrograms && row.situation == situation)
                    add(row.against, row, 1);
    }
    return hasPeers ? shownPlot(page, "performance_peers.svg", plot) : "";
}

std::string faustPart(const Page& page) {
    std::vector<std::string> situations;
    for (const Read read : kReads)
        situations.push_back(spreadCase(read).name());
    std::string text;
    for (const SetRuns& set : page.sets)
        text += ratios(set, section::kFaust, situations);
    return text;
}

/// Of the newest run that has them.
std::string programsPart(const Page& page) {
    for (const SetRuns& set : page.sets)
        if (const Run* const run = set.newestWith(section::kPrograms)) {
            Table table({set.name + ", " + run->when, "effect", "program", "times"});
            for (const Result& row : run->results)
                if (row.section == section::kPrograms)
                    table.add(opponentFields(row, row.against));
            return table.text();
        }
    return "";
}

std::string allSoundPart(const Page& page) {
    return timesOfSection(page, section::kSound);
}

std::string allFaustPart(const Page& page) {
    std::string text;
    for (const SetRuns& set : page.sets)
        if (const Run* const run = set.newestWith(section::kFaust)) {
            Table table({set.name + ", " + run->when, "effect", "Faust", "times"});
            for (const Result& row : run->results)
                if (row.section == section::kFaust)
                    table.add(opponentFields(row, "`" + row.against + "`"));
            text += table.text();
        }
    return text;
}

} // namespace bench
