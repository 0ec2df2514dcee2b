// The corners of the timing: what a host may do to the effect besides playing on in long blocks. Each kind
// has a file of its own.
#pragma once

#include "bench/result.h"

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Corner {
    std::string section, name;
    /// Measures with the library of this path and hands over one result or more.
    std::function<void(const Corner& corner, const std::string& library, const Take& take)> measure;
};

/// Blocks of a few frames.
std::vector<Corner> shortBlockCorners();
/// Programs that follow a sound, and silence that does, beside the same on an instance that heard nothing.
std::vector<Corner> afterSoundCorners();
/// The time between a clearing of the memory and the first echo, beside the same pattern going on.
std::vector<Corner> clearingCorners();
/// Many instances in turn, with programs of the factory bank. Throws std::runtime_error if the library of
/// this path has not all of them.
std::vector<Corner> instanceCorners(const std::string& library);
/// Page faults of the audio thread.
std::vector<Corner> pageFaultCorners();

} // namespace bench
