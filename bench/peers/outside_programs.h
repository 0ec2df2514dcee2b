// The effect against programs that are run as they are: ffmpeg and Csound, with 128 taps over the same time.
#pragma once

#include "bench/result.h"
#include "bench/sound_case.h"

#include <string>
#include <vector>

namespace bench {

/// One way of having 128 taps from another program.
struct OutsideProgram {
    std::string name; ///< of the program and its operation
    Read read;
    /// What to run for so many seconds of sound, with the taps or with all but the taps. May write into the
    /// current directory.
    std::vector<std::string> (*command)(const OutsideProgram& program, int seconds, bool withTaps);
    std::string tapOpcode; ///< of Csound
};

std::vector<OutsideProgram> outsidePrograms();

/// What a sample costs there, without start-up and without what is not the taps. Throws std::runtime_error if
/// the program cannot be run.
Result contestWithProgram(const OutsideProgram& program, const std::string& library);

} // namespace bench
