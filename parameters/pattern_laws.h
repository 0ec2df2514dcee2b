// Laws of the echo pattern that the sound, its picture and the displays follow.
#pragma once

#include <cstdint>

namespace parameters {

/// The engine has room for this many taps.
constexpr std::int32_t kMaxTaps = 128;

/// Where the pattern bends, from "Stretch dly": 0.5 for even gaps, toward 1 for accelerating echoes, toward 0
/// for spreading ones. `stretch` normalised. Any thread.
float stretchBend(float stretch);

/// The length that the gaps of the pattern are shares of, from "Bs Lgh 1", normalised: in samples if
/// `perSecond` is the sample rate, in milliseconds if it is 1000. Not cut to a whole number. Any thread.
float baseLengthOf(float baseLength, float perSecond);

/// The share of the first and the last tap each that comes back, -0.45..0.45, from "Feedback", normalised.
/// The engine rounds it to single precision. Any thread.
double feedbackFactorOf(float feedback);

/// "Amp Decay" counts up to here.
constexpr float kMostAmpDecay = 0.99999f;

/// The number of taps, 1..128, from "Taps #", normalised. Any thread.
std::int32_t numTapsOf(float taps);

} // namespace parameters
