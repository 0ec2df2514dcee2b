// Where the taps are and how loud. The interface does not say, so an instance is asked the way one asks a
// room: by an impulse. With the sweep off, no feedback, nothing dry and the filters open, every tap answers
// with the same short sound, that of the filters; one tap alone shows what that sound is, and is then
// recognised wherever it comes.
#pragma once

#include "host/plugin.h"

#include <vector>

namespace tools::render {

struct Tap {
    double seconds = 0.0; ///< behind the impulse
    float level = 0.0f;   ///< 1.0 is as loud as the impulse; may be negative
    bool isRight = false; ///< else left, by the plain alternation of the taps
};

/// Whether the effect has the controls that the measurement turns.
bool hasTapPattern(host::Plugin& plugin);

/// Measures the pattern that a running instance's settings come to. The instance is of no other use
/// afterwards. Taps below -80 dB are not found. In order of time. Throws Interrupted.
std::vector<Tap> measureTapPattern(host::Plugin& plugin, double sampleRate);

} // namespace tools::render
