#include "bench/suite.h"

#include "bench/calls.h"
#include "bench/contest.h"
#include "bench/limits.h"
#include "bench/peers/faust_contest.h"
#include "bench/peers/outside_programs.h"
#include "bench/player.h"
#include "bench/sound_case.h"

namespace bench {

namespace {

using Take = std::function<void(const Result&)>;

bool wants(const SuiteOptions& options, const std::string& situation) {
    return situation.find(options.only) != std::string::npos;
}

void timeSound(const SuiteOptions& options, const Take& take) {
    for (const SoundCase& situation : soundCases()) {
        if (!wants(options, situation.name()))
            continue;
        Player built(builtEffect(options.library), situation);
        Player reference(literalReference(), situation);
        const std::vector<double> medians = medianNanoseconds({built.contestant(), reference.contestant()});
        take({section::kSound, situation.name(), "reference", medians[0], medians[1]});
    }
}

void timeCalls(const SuiteOptions& options, const Take& take) {
    for (const CallCase& call : callCases())
        if (wants(options, call.name))
            take(call.measure(call, options.library));
}

template <class Limit>
void timeLimit(const SuiteOptions& options, const Take& take, const SoundCase& situation, const char* name) {
    if (!wants(options, name))
        return;
    Player built(builtEffect(options.library), situation);
    Limit limit;
    const std::vector<double> medians = medianNanoseconds({built.contestant(), limit.contestant()});
    take({section::kLimits, situation.name(), name, medians[0], medians[1]});
}

void timeFaust(const SuiteOptions& options, const Take& take) {
    for (const Read read : {Read::whole, Read::linear, Read::cubic})
        if (wants(options, peerCase(read).name()))
            for (const Result& result :
                 contestWithFaust(options.faustPrograms, options.library, options.instructionSet, read))
                take(result);
}

void timePrograms(const SuiteOptions& options, const Take& take) {
    for (const OutsideProgram& program : outsidePrograms())
        if (wants(options, program.name))
            take(contestWithProgram(program, options.library));
}

} // namespace

void runSuite(const SuiteOptions& options, const Take& take) {
    timeSound(options, take);
    timeCalls(options, take);
    timeLimit<SerialWork>(options, take, {.taps = 1, .read = Read::whole, .place = Place::close},
                          "what waits for its own last result");
    timeLimit<LineFetching>(options, take, {.read = Read::whole},
                            "fetching each cache line that 128 taps all over the memory read");
    if (options.faust)
        timeFaust(options, take);
    if (options.programs)
        timePrograms(options, take);
}

} // namespace bench
