// The page docs/performance.md: its table and its plot come from measurements, its words stand in
// bench/performance_words.md.
#pragma once

#include "bench/sound_case.h"

#include <string>
#include <vector>

namespace bench {

/// Medians in nanoseconds a sample.
struct Measurement {
    SoundCase situation;
    double built, reference;
};

/// Writes performance.md and images/performance.svg into the folder. Throws std::runtime_error if it cannot.
void writePerformancePage(const std::string& folder, const std::string& instructionSet,
                          const std::vector<Measurement>& rows);

} // namespace bench
