// Which MIDI controller drives which parameter. One map for the whole process: every instance reads it for
// each controller message, so a change made through one instance applies to all at once.
#pragma once

#include "base/shared.h"
#include "parameters/parameter_table.h"

#include <array>
#include <cstdint>
#include <string>

namespace midi {

/// The entry of a parameter that no controller drives.
constexpr std::int32_t kNoController = -1;

/// The controller of one parameter; none at first.
struct SharedController : base::Shared<std::int32_t> {
    constexpr SharedController() : Shared(kNoController) {}
};

/// The controller number of each parameter id, for all instances.
extern std::array<SharedController, parameters::kNumParameters> ccMap;

/// The controller of a parameter id in 0..20, or kNoController. Any thread.
std::int32_t controllerOf(std::int32_t id);
/// Any thread.
void bindController(std::int32_t id, std::int32_t controller);

/// Fills the map from "Pluginccmap.bin" in the current directory or, if there is none, in `moduleFolder`
/// (which ends in a separator). Without a file that opens, no parameter has a controller. A short file leaves
/// the rest bound to controller 0.
void readCcMap(const std::string& moduleFolder);

/// Writes the map to "Pluginccmap.bin" in the current directory. Nothing is reported.
void writeCcMap();

} // namespace midi
