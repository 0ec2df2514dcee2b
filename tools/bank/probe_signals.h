// What the factory programs are listened to with: a drum hit, a plucked string, speech, each of them as a
// passage of eight seconds, and two signals for the measuring instruments. All are mono, peak at full scale
// and are the same on every run.
#pragma once

#include <string>
#include <vector>

namespace bank {

/// The rate that programs are auditioned at, in Hz; the speech recording's own.
constexpr int kAuditionRate = 48000;

/// Mono samples at kAuditionRate.
using Signal = std::vector<float>;

/// A snare-like hit: a falling tone of 190 Hz and a burst of noise. 0.5 s.
Signal drumHit();

/// A string of 147 Hz, plucked near its end. 3 s.
Signal pluckedString();

/// Four bars of four beats at 120 beats per minute: the bass drum on one and three, the drum hit on two and
/// four, a hi-hat on each eighth. 8 s.
Signal drumBars();

/// Sixteen notes from 110 to 294 Hz, two a second, each ringing into the next two. 8 s.
Signal pluckedPhrase();

/// `speech` four times, from its beginning every two seconds; what is longer is cut off. 8 s.
Signal repeatedSpeech(const Signal& speech);

/// A recording, brought to full scale. Throws BankError if it is not mono at kAuditionRate.
Signal recording(const std::string& path);

/// A single full-scale sample.
Signal click();

/// A buzz on 110 Hz with a bed of noise, `seconds` long: it lights up every band for as long as a sweep needs
/// to come round.
Signal sustained(double seconds);

} // namespace bank
