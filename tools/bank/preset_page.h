// The page of factory programs for musicians: each program with a picture of its echoes and the numbers that
// were measured on it.
#pragma once

#include "tools/bank/audition.h"
#include "tools/bank/program_loudness.h"

#include <array>
#include <string>

namespace bank {

/// What was measured on one program. Levels are those of the wet signal alone, except for `loudness`.
struct ProgramNumbers {
    int taps = 0;                ///< that the pattern has
    double firstSeconds = 0.0;   ///< when the first tap sounds
    double patternSeconds = 0.0; ///< when the last tap sounds
    double tailSeconds = 0.0;    ///< when the answer to a click has lost 60 dB
    bool tailGoesOn = false;     ///< it was still above that where the measurement ended
    double peakDecibels = 0.0;   ///< highest of drum, string and speech, each at full scale
    double levelDecibels = 0.0;  ///< loudest passage against that of the input, mean of the three
    double correlation = 0.0;    ///< how alike left and right are
    ProgramLoudness loudness;    ///< at the program's own mix
    std::string picture;         ///< SVG
};

using BankNumbers = std::array<ProgramNumbers, kNumPrograms>;

/// Listens to all programs, on every core; takes minutes. `speech` is a mono recording at kAuditionRate.
BankNumbers measure(const Audition& audition, const Bank& bank, const Signal& speech);

/// At which tempo an echo comes with every note of the program's rhythm: "1/8 at 120 bpm". Empty without a
/// rhythm.
std::string tempoText(const BankProgram& program);

/// The page in Markdown. Pictures are looked for in `pictureFolder`, relative to the page.
std::string pageText(const Bank& bank, const BankNumbers& numbers, const std::string& pictureFolder);

/// The file name of a program's picture.
std::string pictureName(std::size_t program);

/// The answer to a click as an SVG: left upward, right downward, 60 dB high, light enough for any background.
std::string pictureOf(const StereoSignal& answer, double seconds);

} // namespace bank
