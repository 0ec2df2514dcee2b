#include "bench/page_parts.h"
#include "bench/page_table.h"
#include "bench/plot.h"
#include "bench/sound_case.h"
#include "bench/value_text.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

namespace {

constexpr double kSampleRate = 48000.0;

/// So many of them take all the time of a core.
double instancesOfCore(double nanosecondsOfSample) {
    return std::floor(1e9 / (kSampleRate * nanosecondsOfSample));
}

/// The effect's time for each situation of a section, how many times as fast as the plain loop that is, and
/// how many times as long as `self` takes.
std::string besideItself(const Page& page, const std::string& section, const std::string& self,
                         const std::string& selfName) {
    const std::vector<SetRuns> sets = setsWith(page.sets, section);
    std::vector<std::string> columns = {"Situation"};
    for (const SetRuns& set : sets)
        columns.insert(columns.end(),
                       {set.name, "times as fast as the plain loop", "times as long as " + selfName});
    Table table(columns);
    for (const std::string& situation : situationsOf(sets, section)) {
        std::vector<std::string> fields = {situation};
        for (const SetRuns& set : sets) {
            const Result* const reference = set.find(section, situation, kReference);
            const Result* const itself = set.find(section, situation, self);
            fields.push_back(reference ? timeText(reference->built) : "");
            fields.push_back(reference ? timesText(*reference) : "");
            fields.push_back(itself ? fixed(1.0 / itself->times(), 2) : "");
        }
        table.add(fields);
    }
    return table.text();
}

/// Of the newest run, against the reference; null if there is none.
const Result* leastGain(const SetRuns& set, const std::string& section) {
    const Result* least = nullptr;
    if (const Run* const run = set.newestWith(section))
        for (const Result& row : run->results)
            if (row.section == section && row.against == kReference)
                if (!least || row.times() < least->times())
                    least = &row;
    return least;
}

} // namespace

std::string instancesPart(const Page& page) {
    for (const SetRuns& set : page.sets) {
        const Run* const run = set.newestWith(section::kInstances);
        if (!run)
            continue;
        Plot plot{"Instances that one processor core carries, 48 kHz, blocks of 64",
                  {"this effect", "a plain loop"},
                  {}};
        Table table({"Program", "this effect", "a plain loop", "times as many"});
        for (const Result& row : run->results) {
            if (row.section != section::kInstances)
                continue;
            const double built = instancesOfCore(row.built), other = instancesOfCore(row.other);
            plot.bars.push_back({row.situation, {{built, 0}}, fixed(built, 0)});
            plot.bars.push_back({"", {{other, 1}}, fixed(other, 0)});
            table.add({row.situation, fixed(built, 0), fixed(other, 0), timesText(row)});
        }
        return shownPlot(page, "performance_instances.svg", plot) + table.text() + "Measured on " +
               run->when + " UTC with " + set.name + " on one core of: " + run->processor + ".\n";
    }
    return "";
}

std::string leastGainsPart(const Page& page) {
    constexpr const char* kinds[][2] = {{section::kBlocks, "short blocks"},
                                        {section::kAfter, "after a sound"},
                                        {section::kClearing, "after a clearing"},
                                        {section::kInstances, "16 instances in turn"}};
    std::string text;
    for (const SetRuns& set : page.sets) {
        Table table({set.name + ", least gain", "times as fast as the plain loop"});
        for (const auto& [section, name] : kinds)
            if (const Result* const least = leastGain(set, section))
                table.add({std::string(name) + ": " + least->situation, timesText(*least)});
        text += table.text();
    }
    return text;
}

std::string shortBlocksPart(const Page& page) {
    std::string text;
    for (const SetRuns& set : page.sets) {
        std::vector<std::string> columns = {set.name + ", frames in a block"};
        for (const std::int32_t frames : kShortBlocks)
            columns.push_back(std::to_string(frames));
        Table table(columns);
        for (SoundCase situation : shortBlockRows()) {
            std::vector<std::string> fields = {situation.nameWithoutBlocks()};
            for (const std::int32_t frames : kShortBlocks) {
                situation.blockFrames = frames;
                const Result* const row = set.find(section::kBlocks, situation.name(), kReference);
                fields.push_back(row ? timesText(*row) : "");
            }
            table.add(fields);
        }
        text += table.text();
    }
    return text;
}

std::string afterSoundPart(const Page& page) {
    return besideItself(page, section::kAfter, kFresh, "on a fresh instance");
}

std::string clearingPart(const Page& page) {
    return besideItself(page, section::kClearing, kSteady, "in the steady state");
}

std::string pageFaultsPart(const Page& page) {
    const std::vector<SetRuns> sets = setsWith(page.sets, section::kFaults);
    std::vector<std::string> columns = {"Page faults"};
    for (const SetRuns& set : sets)
        columns.insert(columns.end(), {set.name, "plain loop"});
    Table table(columns);
    for (const std::string& situation : situationsOf(sets, section::kFaults)) {
        std::vector<std::string> fields = {situation};
        for (const SetRuns& set : sets) {
            const Result* const row = set.find(section::kFaults, situation, kReference);
            fields.push_back(row ? valueText(*row, row->built) : "");
            fields.push_back(row ? valueText(*row, row->other) : "");
        }
        table.add(fields);
    }
    return table.text();
}

std::string allShortBlocksPart(const Page& page) {
    return timesOfSection(page, section::kBlocks);
}

} // namespace bench
