// How a program sounds, as a list of levels, so that two programs can be held against each other.
//
// Half of the list is the answer to a click: where in time echoes lie, in which colour and on which side. The
// other half is the answer to a sound held for four seconds: how it is coloured and how that moves.
#pragma once

#include "tools/bank/audition.h"

#include <vector>

namespace bank {

struct Fingerprint {
    /// dB over the floor, by channel, octave band (125 Hz to 8 kHz) and time span; spans are an eighth of an
    /// octave wide, since the ear takes 300 against 320 ms as it takes 30 against 32.
    std::vector<float> click;
    /// dB over the floor, by channel, third-octave band (80 Hz to 10 kHz) and twentieth of a second.
    std::vector<float> held;
};

/// Of the wet signal alone.
Fingerprint fingerprintOf(const Audition& audition, std::size_t program);

/// In dB: the root mean square over both halves.
double distance(const Fingerprint& a, const Fingerprint& b);

} // namespace bank
