// What an instance is brought to before it hears any sound: a bank, a program, a preset, single values. It is
// worked out once, by asking an instance that nobody listens to, and can then be given to as many instances
// as are needed.
#pragma once

#include "host/plugin.h"
#include "tools/common/effect_settings.h"
#include "tools/render/automation.h"
#include "tools/render/options.h"
#include "tools/render/state_files.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tools::render {

struct StartingPoint {
    Bytes bank;                          ///< empty: the effect's own
    std::optional<std::int32_t> program; ///< none: as the effect comes up
    Bytes preset;                        ///< goes into the program; empty for none
    std::vector<ParameterValue> values;
};

/// A change of one parameter, `frame` samples into the file.
struct ParameterEvent {
    std::int64_t frame = 0;
    std::int32_t id = 0;
    float value = 0.0f; ///< normalised
    /// One of a ramp's values that is not its last.
    bool isOnTheWay = false;
};

/// Frames from one value of a ramp to the next.
constexpr std::int64_t kRampStep = 64;
/// The longest ramp, in seconds.
constexpr double kLongestRamp = 3600.0;

/// Works out what the options ask for and brings `asked`, a running instance, there. Reads the bank and the
/// chunk. Throws ToolError.
StartingPoint findStartingPoint(host::Plugin& asked, const Options& options);

/// Brings a running instance there, in the order bank, program, preset, values.
void bringTo(host::Plugin& plugin, const StartingPoint& start);

/// The automation's changes as values, in order of time. A ramp is linear in the normalised value and exact
/// at each kRampStep frames and at its end. `file` is named in errors. Throws ToolError, also for a change
/// of a parameter that a ramp is moving.
std::vector<ParameterEvent> findEvents(host::Plugin& asked, const std::vector<AutomationLine>& lines,
                                       const std::filesystem::path& file, double sampleRate);

} // namespace tools::render
