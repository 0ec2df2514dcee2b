// Laws of the echo pattern that both the sound and its picture follow.
#pragma once

#include <cstdint>

namespace parameters {

/// The engine has room for this many taps.
constexpr std::int32_t kMaxTaps = 128;

/// Where the pattern bends, from "Stretch dly": 0.5 for even gaps, toward 1 for accelerating echoes, toward 0
/// for spreading ones. `stretch` normalised. Any thread.
float stretchBend(float stretch);

/// The number of taps, 1..128, from "Taps #", normalised. Any thread.
std::int32_t numTapsOf(float taps);

} // namespace parameters
