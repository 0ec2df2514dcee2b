// The file that keeps the figures of all runs, so that the page can show several occasions side by side: a
// line for each result, its fields between tabs, under a line that names them.
#pragma once

#include "bench/result.h"

#include <string>
#include <vector>

namespace bench {

/// What was measured on one occasion with one instruction set.
struct Run {
    std::string when; ///< UTC, "2026-11-21 10:20"
    std::string processor;
    std::string instructionSet; ///< "sse2", "avx2", "avx512"
    std::vector<Result> results;

    /// The result of a section for a situation, or null; of several the one with the smallest ratio, which is
    /// that of the strongest opponent.
    const Result* find(const std::string& section, const std::string& situation) const;
};

/// All runs of a file, in its order; none if there is no such file. Throws std::runtime_error for a file that
/// is not one of runs.
std::vector<Run> readRuns(const std::string& path);

/// Puts a run behind those of the file. Throws std::runtime_error if it cannot be written.
void appendRun(const std::string& path, const Run& run);

} // namespace bench
