// One line of the tables: the same work done by the effect and by what it is compared with.
#pragma once

#include <functional>
#include <string>
#include <string_view>

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

// The corners: what a host may do to the effect besides playing on in long blocks.
constexpr char kBlocks[] = "blocks";       ///< blocks of a few frames; nanoseconds a sample
constexpr char kAfter[] = "after";         ///< after a sound; nanoseconds a sample
constexpr char kClearing[] = "clearing";   ///< after a clearing of the memory; nanoseconds a sample
constexpr char kInstances[] = "instances"; ///< many played in turn; nanoseconds a sample of one of them
constexpr char kFaults[] = "faults";       ///< page faults of the audio thread; their number
} // namespace section

constexpr std::string_view kSections[] = {section::kSound,    section::kCalls,     section::kFaust,
                                          section::kPrograms, section::kCost,      section::kLimits,
                                          section::kWindow,   section::kBlocks,    section::kAfter,
                                          section::kClearing, section::kInstances, section::kFaults};
constexpr std::string_view kCorners[] = {section::kBlocks, section::kAfter, section::kClearing,
                                         section::kInstances, section::kFaults};

/// What most lines compare with: the literal loop.
constexpr char kReference[] = "reference";
/// What lines of kAfter and kClearing compare with besides.
constexpr char kFresh[] = "itself, fresh";
constexpr char kSteady[] = "itself, going on";

struct Result {
    std::string section;
    std::string situation;
    std::string against; ///< what it is compared with
    double built, other; ///< medians, in the section's unit

    /// How many times as long the other takes.
    double times() const { return other / built; }
    /// Whether it is a number of something, and no time.
    bool isCount() const { return section == section::kFaults; }
    /// Whether the other's time, a difference of medians, is smaller than their noise.
    bool isLostInNoise() const { return !isCount() && other <= 0.0; }
};

using Take = std::function<void(const Result&)>;

} // namespace bench
