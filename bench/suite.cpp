#include "bench/suite.h"

#include "bench/calls.h"
#include "bench/contest.h"
#include "bench/corners.h"
#include "bench/limits.h"
#include "bench/peers/faust_contest.h"
#include "bench/peers/outside_programs.h"
#include "bench/player.h"
#include "bench/sound_case.h"
#include "bench/window.h"

#include <algorithm>
#include <memory>

namespace bench {

namespace {

bool wants(const SuiteOptions& options, const std::string& section, const std::string& situation) {
    if (options.only == kAllCorners)
        return std::ranges::count(kCorners, section) > 0;
    if (std::ranges::count(kSections, options.only) > 0)
        return options.only == section;
    return situation.find(options.only) != std::string::npos;
}

void timeSound(const SuiteOptions& options, const Take& take) {
    for (const SoundCase& situation : soundCases()) {
        if (!wants(options, section::kSound, situation.name()))
            continue;
        Player built(builtEffect(options.library), situation);
        Player reference(literalReference(), situation);
        const std::vector<double> medians = medianNanoseconds({built.contestant(), reference.contestant()});
        take({section::kSound, situation.name(), kReference, medians[0], medians[1]});
    }
}

void timeCalls(const SuiteOptions& options, const Take& take) {
    for (const CallCase& call : callCases())
        if (wants(options, section::kCalls, call.name))
            take(call.measure(call, options.library));
}

/// Together in the same rounds, since their differences are of interest.
void timeCost(const SuiteOptions& options, const Take& take, Read read) {
    const auto cases = costCases(read);
    std::vector<std::unique_ptr<Player>> players;
    std::vector<Contestant> contestants;
    for (const SoundCase& situation : cases) {
        players.push_back(std::make_unique<Player>(builtEffect(options.library), situation));
        contestants.push_back(players.back()->contestant());
    }
    SerialWork serialWork;
    LineFetching lineFetching;
    contestants.push_back(serialWork.contestant());
    contestants.push_back(lineFetching.contestant());
    const std::vector<double> medians = medianNanoseconds(contestants);
    for (std::size_t i = 0; i < cases.size(); ++i)
        take({section::kCost, cases[i].name(), "itself", medians[i], medians[i]});
    take({section::kLimits, cases[0].name(), "what waits for its own last result", medians[0], medians[3]});
    take({section::kLimits, cases[2].name(),
          "fetching each cache line that 128 taps all over the memory read", medians[2], medians[4]});
}

void timeFaust(const SuiteOptions& options, const Take& take) {
    for (const Read read : {Read::whole, Read::linear, Read::cubic})
        if (wants(options, section::kFaust, peerCase(read).name()))
            for (const Result& result :
                 contestWithFaust(options.faustPrograms, options.library, options.instructionSet, read))
                take(result);
}

void timeCorners(const SuiteOptions& options, const Take& take) {
    for (const std::vector<Corner>& corners : {shortBlockCorners(), afterSoundCorners(), clearingCorners(),
                                               pageFaultCorners(), instanceCorners(options.library)})
        for (const Corner& corner : corners)
            if (wants(options, corner.section, corner.name))
                corner.measure(corner, options.library, take);
}

void timePrograms(const SuiteOptions& options, const Take& take) {
    for (const OutsideProgram& program : outsidePrograms())
        if (wants(options, section::kPrograms, program.name))
            take(contestWithProgram(program, options.library));
}

} // namespace

void runSuite(const SuiteOptions& options, const Take& take) {
    timeSound(options, take);
    timeCalls(options, take);
    timeCorners(options, take);
    for (const Read read : {Read::whole, Read::linear, Read::cubic})
        if (wants(options, section::kCost, costCases(read).back().name()))
            timeCost(options, take, read);
    if (options.faust)
        timeFaust(options, take);
    if (options.programs)
        timePrograms(options, take);
    if (options.window && wants(options, section::kWindow, kWindowSituation))
        take(timeWindow(options.library));
}

} // namespace bench
