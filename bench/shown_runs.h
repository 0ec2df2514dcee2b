// The runs that the page shows.
#pragma once

#include "bench/runs_file.h"

#include <string>
#include <vector>

namespace bench {

/// The last runs with one instruction set, the newest last.
struct SetRuns {
    std::string name; ///< "AVX-512"
    std::vector<const Run*> runs;

    const Run& newest() const { return *runs.back(); }
    /// The newest run with results of a section; null if there is none.
    const Run* newestWith(const std::string& section) const;
    /// A result of that run; null if there is none.
    const Result* find(const std::string& section, const std::string& situation,
                       const std::string& against) const;
};

/// The instruction sets that were measured, the widest first.
std::vector<SetRuns> runsBySet(const std::vector<Run>& all);

/// Those of the sets that have results of a section.
std::vector<SetRuns> setsWith(const std::vector<SetRuns>& sets, const std::string& section);

/// The situations of a section in the newest runs of all sets, each once, in their order.
std::vector<std::string> situationsOf(const std::vector<SetRuns>& sets, const std::string& section);

} // namespace bench
