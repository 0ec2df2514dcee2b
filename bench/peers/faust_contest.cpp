#include "bench/peers/faust_contest.h"

#include "bench/contest.h"
#include "bench/peers/faust_program.h"
#include "bench/player.h"
#include "desk/shared_library.h"

#include <filesystem>
#include <memory>
#include <span>
#include <stdexcept>

namespace bench {

namespace {

constexpr const char* kReadNames[] = {"cubic", "linear", "whole"};

std::span<const FaustProgram> programsOf(const std::string& module) {
    if (!std::filesystem::exists(module))
        throw std::runtime_error("there are no Faust programs to compare with: " + module);
    static const desk::SharedLibrary library(module);
    const auto programs = reinterpret_cast<FaustProgramsFunction>(library.symbol(kFaustProgramsName));
    if (!programs)
        throw std::runtime_error(module + " holds no Faust programs");
    std::size_t count = 0;
    const FaustProgram* const first = programs(&count);
    return {first, count};
}

/// The names of the sets are in the order of what they can do: "sse2", "avx2", "avx512".
bool allows(const std::string& instructionSet, const std::string& wanted) {
    const auto rank = [](const std::string& set) { return set == "avx512" ? 2 : set == "avx2" ? 1 : 0; };
    return rank(wanted) <= rank(instructionSet);
}

std::string describe(const FaustProgram& program) {
    const std::string options = program.faustOptions;
    return "faust" + (options.empty() ? "" : " " + options) + "; g++: " + program.compilerOptions;
}

} // namespace

SoundCase peerCase(Read read) {
    return {.taps = 128, .read = read};
}

std::vector<Result> contestWithFaust(const std::string& module, const std::string& library,
                                     const std::string& instructionSet, Read read) {
    const SoundCase situation = peerCase(read);
    std::vector<Result> results;
    Player built(builtEffect(library), situation);
    for (const FaustProgram& program : programsOf(module)) {
        if (program.read != std::string(kReadNames[static_cast<int>(read)]) ||
            !allows(instructionSet, program.instructionSet))
            continue;
        Player peer(std::unique_ptr<Subject>(program.make()), situation);
        const std::vector<double> medians = medianNanoseconds({built.contestant(), peer.contestant()});
        results.push_back({section::kFaust, situation.name(), describe(program), medians[0], medians[1]});
    }
    return results;
}

} // namespace bench
