// One line of the tables: the same work done by the effect and by what it is compared with.
#pragma once

#include <string>
#include <vector>

namespace bench {

/// What a line is about. As kept in the file of runs.
namespace section {
constexpr char kSound[] = "sound";       ///< processReplacing; nanoseconds a sample
constexpr char kCalls[] = "calls";       ///< making instances and the host's other calls; nanoseconds a call
constexpr char kFaust[] = "faust";       ///< a Faust program in this process; nanoseconds a sample
constexpr char kPrograms[] = "programs"; ///< other programs; nanoseconds a sample
constexpr char kCost[] = "cost";         ///< few taps and many, near and far; nanoseconds a sample
constexpr char kLimits[] = "limits";     ///< what cannot be avoided, done alone; nanoseconds a sample
constexpr char kWindow[] = "window";     ///< idle calls of the window; nanoseconds a frame of the host
} // namespace section

struct Result {
    std::string section;
    std::string situation;
    std::string against; ///< what it is compared with
    double built, other; ///< medians in nanoseconds

    /// How many times as long the other takes.
    double times() const { return other / built; }
};

} // namespace bench
