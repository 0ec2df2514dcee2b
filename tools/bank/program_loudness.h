// How loud the factory programs are, each at its own mix, against the dry sound.
#pragma once

#include "tools/bank/audition.h"

#include <array>
#include <string>

namespace bank {

/// The sounds that loudness is measured with: drumBars(), pluckedPhrase() and repeatedSpeech().
constexpr std::array<const char*, 3> kLoudnessSounds = {"drums", "plucks", "speech"};

/// Their peak, in dBFS.
constexpr double kLoudnessSoundPeak = -6.0;

/// A sound as it comes out of a program.
struct PlayedLoudness {
    double change = 0.0;   ///< integrated loudness against the dry sound on both channels, in LU
    double peak = 0.0;     ///< highest sample, in dBFS
    double truePeak = 0.0; ///< in dBTP
};

/// For each of kLoudnessSounds.
using ProgramLoudness = std::array<PlayedLoudness, kLoudnessSounds.size()>;
using BankLoudness = std::array<ProgramLoudness, kNumPrograms>;

/// Plays the sounds through programs; several threads may measure at once.
class LoudnessProbe {
  public:
    /// `speech` is a mono recording at kAuditionRate, at full scale.
    explicit LoudnessProbe(const Signal& speech);

    /// `description` is that of `program`. A sound is followed for the length of the pattern and the
    /// feedback's tail, 20 s at the most.
    ProgramLoudness measure(const Audition& audition, std::size_t program,
                            const BankProgram& description) const;

  private:
    std::array<Signal, kLoudnessSounds.size()> sounds_;
    std::array<double, kLoudnessSounds.size()> dry_; ///< integrated loudness, in LUFS
};

/// All programs, on every core.
BankLoudness measureLoudness(const Audition& audition, const Bank& bank, const Signal& speech);

/// How far the programs lie apart with one of the sounds.
struct LoudnessSpread {
    std::size_t quietest = 0; ///< program
    std::size_t loudest = 0;
    double decibels = 0.0; ///< between the two, in LU
};
LoudnessSpread spreadOf(const BankLoudness& loudness, std::size_t sound);

/// Highest sample and highest true peak of all programs and sounds.
struct HighestPeak {
    std::size_t program = 0; ///< of the highest true peak
    double peak = 0.0;
    double truePeak = 0.0;
};
HighestPeak highestPeakOf(const BankLoudness& loudness);

/// One row for each program, cells parted by tabs, with a row of headings; ahead of them the spreads and the
/// highest peak, in lines that start with '#'.
std::string loudnessTable(const Bank& bank, const BankLoudness& loudness);

} // namespace bank
