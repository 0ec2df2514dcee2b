// The effect against the same taps as a Faust program, in one process and in the same rounds.
#pragma once

#include "bench/result.h"
#include "bench/sound_case.h"

#include <string>
#include <vector>

namespace bench {

/// The situation in which the peers are met: 128 taps all over the memory, at rest, in long blocks.
SoundCase peerCase(Read read);

/// One line for each of Faust's settings that `instructionSet` allows. `module` is the path of the programs.
/// Throws std::runtime_error if they are not there.
std::vector<Result> contestWithFaust(const std::string& module, const std::string& library,
                                     const std::string& instructionSet, Read read);

} // namespace bench
