// The page docs/performance.md with its plots. Its words stand in bench/performance_words.md; the tables come
// from the runs that have been kept.
#pragma once

#include "bench/runs_file.h"

#include <string>
#include <vector>

namespace bench {

/// Writes performance.md and images/performance*.svg into the folder. Of each instruction set the last three
/// runs are shown, and the last one in full; a section of the page for which none of them has figures is left
/// out. Throws std::runtime_error if it cannot.
void writePerformancePage(const std::string& folder, const std::vector<Run>& runs);

} // namespace bench
