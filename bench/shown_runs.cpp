#include "bench/shown_runs.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

namespace bench {

namespace {

constexpr std::ptrdiff_t kShownRuns = 3;
constexpr const char* kSets[] = {"avx512", "avx2", "sse2"};
constexpr const char* kSetNames[] = {"AVX-512", "AVX2", "SSE2"};

} // namespace

const Run* SetRuns::newestWith(const std::string& section) const {
    const auto found = std::find_if(runs.rbegin(), runs.rend(), [&](const Run* run) {
        return std::ranges::any_of(run->results, [&](const Result& row) { return row.section == section; });
    });
    return found == runs.rend() ? nullptr : *found;
}

const Result* SetRuns::find(const std::string& section, const std::string& situation,
                            const std::string& against) const {
    const Run* const run = newestWith(section);
    if (!run)
        return nullptr;
    const auto found = std::ranges::find_if(run->results, [&](const Result& row) {
        return row.section == section && row.situation == situation && row.against == against;
    });
    return found == run->results.end() ? nullptr : &*found;
}

std::vector<SetRuns> runsBySet(const std::vector<Run>& all) {
    std::vector<SetRuns> sets;
    for (std::size_t i = 0; i < std::size(kSets); ++i) {
        SetRuns set{kSetNames[i], {}};
        for (const Run& run : all)
            if (run.instructionSet == kSets[i])
                set.runs.push_back(&run);
        if (std::ssize(set.runs) > kShownRuns)
            set.runs.erase(set.runs.begin(), set.runs.end() - kShownRuns);
        if (!set.runs.empty())
            sets.push_back(set);
    }
    return sets;
}

std::vector<SetRuns> setsWith(const std::vector<SetRuns>& sets, const std::string& section) {
    std::vector<SetRuns> with = sets;
    std::erase_if(with, [&](const SetRuns& set) { return !set.newestWith(section); });
    return with;
}

std::vector<std::string> situationsOf(const std::vector<SetRuns>& sets, const std::string& section) {
    std::vector<std::string> situations;
    for (const SetRuns& set : sets) {
        const Run* const run = set.newestWith(section);
        if (!run)
            continue;
        for (const Result& row : run->results)
            if (row.section == section && std::ranges::count(situations, row.situation) == 0)
                situations.push_back(row.situation);
    }
    return situations;
}

} // namespace bench
