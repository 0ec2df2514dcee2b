// Plays signals through the factory programs of the finished plug-in, as a host would, and measures what
// comes out. The bank's tests and its page of numbers both stand on this.
#pragma once

#include "dsp/tap_pattern.h"
#include "host/plugin.h"
#include "tools/bank/probe_signals.h"

#include "tools/bank/bank_program.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace bank {

/// A stereo signal at kAuditionRate; both channels have the same length.
struct StereoSignal {
    Signal left;
    Signal right;

    std::size_t frames() const { return left.size(); }
};

/// What to listen to.
enum class Listening {
    wetOnly,  ///< "Dry Wet" turned all the way up
    asStored, ///< the program's own mix
};

/// Plays through the programs of a plug-in library. Several threads may play at once.
class Audition {
  public:
    /// Plays the bank that lies beside the library, or the one in `chunk` if it is not empty. Throws
    /// host::HostError if the library cannot be loaded.
    explicit Audition(const std::string& libraryPath, std::vector<std::uint8_t> chunk = {})
        : library_(libraryPath), chunk_(std::move(chunk)) {}

    /// Plays `input` on both channels to a fresh instance, followed by silence up to `seconds` in all. The
    /// instance has had time to settle first, so that taps that glide have reached their places.
    StereoSignal play(std::size_t program, const Signal& input, double seconds, Listening listening) const;

    /// The programs as the plug-in has them, all bytes.
    std::vector<std::uint8_t> chunk() const;

  private:
    host::Library library_;
    std::vector<std::uint8_t> chunk_;
    /// Held while an instance is made or closed: hosts do both on one thread.
    mutable std::mutex making_;
};

/// Where the taps of a program lie at kAuditionRate, as the engine computes them.
dsp::TapPattern patternOf(const BankProgram& program);

/// By how much the sweep may delay the taps of a program, in samples.
double sweepSamples(const BankProgram& program);

/// How far the feedback of a program reaches, from its pattern and sweep alone.
struct FeedbackTail {
    double loopGain;      ///< share of the first and the last tap each that comes back, -0.45..0.45
    double secondsTo60dB; ///< the longest time in which what comes back falls by 60 dB; 0 if nothing does
};
FeedbackTail feedbackTail(const BankProgram& program);

/// When the last tap that sounds lies, in seconds.
double patternSeconds(const dsp::TapPattern& pattern);

double decibels(double amplitude);

/// Highest magnitude of both channels.
double peakOf(const StereoSignal& signal);
bool isFinite(const StereoSignal& signal);

/// Energy of both channels from frame `from` on, halved so that a mono signal counts as itself.
double energyOf(const StereoSignal& signal, std::size_t from = 0);
double energyOf(const Signal& signal);

/// The loudest 0.4 seconds, as RMS of both channels.
double loudestPassage(const StereoSignal& signal);
double loudestPassage(const Signal& signal);

/// How alike the channels are: 1 for mono, 0 for nothing in common, -1 for opposite.
double correlation(const StereoSignal& signal);

/// When what remains of the energy has fallen by `fall` dB, in seconds from the start; the signal's length if
/// it has not by then.
double secondsToFall(const StereoSignal& signal, double fall);

} // namespace bank
