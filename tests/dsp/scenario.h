// What a host might do to the effect in one evening, drawn from a seed: parameters, programs, chunks, rates
// and blocks of audio in any order. The same seed gives the same scenario on every machine, and a scenario
// can tell what it does in words, so that a failure is repeated by its number and understood from its text.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace scenario {

/// Numbers from a seed, with nothing left to the standard library's taste.
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next();
    /// 0 to `end` - 1.
    std::int32_t below(std::int32_t end) {
        return static_cast<std::int32_t>(next() % static_cast<std::uint64_t>(end));
    }
    std::int32_t between(std::int32_t first, std::int32_t last) { return first + below(last - first + 1); }
    /// 0 to just under 1.
    float unit() { return static_cast<float>(next() >> 40) * 0x1p-24f; }
    /// -1 to just under 1.
    float bipolar() { return unit() * 2.0f - 1.0f; }
    bool oneIn(std::int32_t count) { return below(count) == 0; }
    template <typename T, std::size_t N>
    const T& oneOf(const T (&choices)[N]) {
        return choices[below(static_cast<std::int32_t>(N))];
    }

  private:
    std::uint64_t state_;
};

enum class Signal {
    kSilence,
    kNegativeZero,
    kNoise,
    kImpulse,
    kSparse,
    kTone,
    kSquare,
    kDenormal,
    kHuge,
    kHostile
};

/// Which buffers are one and the same. Channels in, then channels out.
enum class Layout {
    kSeparate,
    kInPlace,
    kCrossed,
    kLeftInPlace,
    kRightInPlace,
    kRightOverLeftInput,
    kOneInput,
    kOneInputInPlace
};

/// `times` blocks of `frames` frames in a row.
struct Blocks {
    std::int32_t frames = 0;
    std::int32_t times = 1;
    Layout layout = Layout::kSeparate;
    Signal signal = Signal::kSilence;
    float level = 1.0f;
    std::uint64_t seed = 0;        ///< of the signal
    std::int32_t misalignment = 0; ///< samples that the buffers are off a round address
};

struct SetParameter {
    std::int32_t id;
    float value;
};

struct SetProgram {
    std::int32_t program;
};

/// The second byte may be any; from 0x80 up no program has that number.
struct MidiProgramChange {
    std::uint8_t program;
};

/// A controller number of 0xFF reaches every parameter that no controller is bound to: here, all.
struct MidiControllerOfAll {
    std::uint8_t value;
};

struct Resume {
    bool suspendFirst;
};

struct SetSampleRate {
    float rate;
};

struct SetBlockSize {
    std::int32_t frames;
};

struct SetChunk {
    std::vector<std::uint8_t> bytes;
    bool isPreset;
};

using Action = std::variant<Blocks, SetParameter, SetProgram, MidiProgramChange, MidiControllerOfAll, Resume,
                            SetSampleRate, SetBlockSize, SetChunk>;

struct Scenario {
    std::uint64_t seed = 0;
    std::string title;
    std::vector<Action> actions;
    /// "Set" has left 0..1 somewhere: how taps are read then is open, as long as it is always the same way.
    bool hasForeignModes = false;
};

/// What a scenario is about. Each family has a million seeds.
enum class Family : std::uint64_t {
    kWholeSamples = 0,
    kLinear = 1,
    kCubic = 2,
    kModeChanges = 3,
    kFades = 4,
    kGates = 5,
    kPrograms = 6,
    kRates = 7,
    kHostileHost = 8,
    kForeignModes = 9,
    kShortTimes = 10,
    kWholeSamplesPastTheWrap = 11,
    kLinearPastTheWrap = 12,
    kCubicPastTheWrap = 13,
    kShortFeedback = 14,
    kCrossingGlides = 15,
    kInterruptions = 16,
    kFullMemory = 17,
    kNearSilence = 18,
    kExtremes = 19,
    kAfterASound = 20,
    kShortBlocks = 21,
};
constexpr std::uint64_t kFamilies = 22;
constexpr std::uint64_t kSeedsPerFamily = 1000000;

constexpr std::uint64_t seedOf(Family family, std::uint64_t index) {
    return static_cast<std::uint64_t>(family) * kSeedsPerFamily + index;
}

Scenario make(std::uint64_t seed);

std::string describe(const Action& action);

/// Fills both channels with the signal. `position` counts frames since the action began.
void fill(const Blocks& blocks, std::int64_t position, Random& random, std::span<float> left,
          std::span<float> right);

} // namespace scenario
