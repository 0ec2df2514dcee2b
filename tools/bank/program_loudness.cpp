#include "tools/bank/program_loudness.h"

#include "base/number_text.h"
#include "tools/bank/parallel.h"
#include "tools/common/loudness_meter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace bank {

namespace {

constexpr double kLongestTail = 20.0;

tools::LoudnessMeter metered(const StereoSignal& signal) {
    tools::LoudnessMeter meter(2, kAuditionRate);
    std::vector<float> frames(2 * signal.frames());
    for (std::size_t i = 0; i < signal.frames(); ++i) {
        frames[2 * i] = signal.left[i];
        frames[2 * i + 1] = signal.right[i];
    }
    meter.add(frames);
    return meter;
}

double loudnessIn(const tools::LoudnessMeter& meter) {
    return meter.integrated().value_or(-std::numeric_limits<double>::infinity());
}

std::string named(const Bank& bank, std::size_t program) {
    return std::to_string(program) + " " + bank[program].name;
}

} // namespace

LoudnessProbe::LoudnessProbe(const Signal& speech)
    : sounds_{drumBars(), pluckedPhrase(), repeatedSpeech(speech)}, dry_{} {
    const auto gain = static_cast<float>(std::pow(10.0, kLoudnessSoundPeak / 20.0));
    for (std::size_t i = 0; i < sounds_.size(); ++i) {
        std::transform(sounds_[i].begin(), sounds_[i].end(), sounds_[i].begin(),
                       [gain](float sample) { return gain * sample; });
        dry_[i] = loudnessIn(metered({sounds_[i], sounds_[i]}));
    }
}

ProgramLoudness LoudnessProbe::measure(const Audition& audition, std::size_t program,
                                       const BankProgram& description) const {
    const double tail =
        patternSeconds(patternOf(description)) + feedbackTail(description).secondsTo60dB + 0.5;
    ProgramLoudness loudness;
    for (std::size_t i = 0; i < sounds_.size(); ++i) {
        const double seconds =
            static_cast<double>(sounds_[i].size()) / kAuditionRate + std::min(tail, kLongestTail);
        const tools::LoudnessMeter meter =
            metered(audition.play(program, sounds_[i], seconds, Listening::asStored));
        loudness[i].change = loudnessIn(meter) - dry_[i];
        loudness[i].peak = meter.samplePeak();
        loudness[i].truePeak = meter.truePeak().value();
    }
    return loudness;
}

BankLoudness measureLoudness(const Audition& audition, const Bank& bank, const Signal& speech) {
    const LoudnessProbe probe(speech);
    BankLoudness loudness;
    forEachInParallel(bank.size(), [&](std::size_t program) {
        loudness[program] = probe.measure(audition, program, bank[program]);
    });
    return loudness;
}

LoudnessSpread spreadOf(const BankLoudness& loudness, std::size_t sound) {
    const auto [quietest, loudest] = std::minmax_element(
        loudness.begin(), loudness.end(), [sound](const ProgramLoudness& a, const ProgramLoudness& b) {
            return a[sound].change < b[sound].change;
        });
    return {static_cast<std::size_t>(quietest - loudness.begin()),
            static_cast<std::size_t>(loudest - loudness.begin()),
            (*loudest)[sound].change - (*quietest)[sound].change};
}

HighestPeak highestPeakOf(const BankLoudness& loudness) {
    HighestPeak highest{0, -std::numeric_limits<double>::infinity(),
                        -std::numeric_limits<double>::infinity()};
    for (std::size_t program = 0; program < loudness.size(); ++program)
        for (const PlayedLoudness& played : loudness[program]) {
            highest.peak = std::max(highest.peak, played.peak);
            if (played.truePeak <= highest.truePeak)
                continue;
            highest.program = program;
            highest.truePeak = played.truePeak;
        }
    return highest;
}

std::string loudnessTable(const Bank& bank, const BankLoudness& loudness) {
    std::string text;
    for (std::size_t sound = 0; sound < kLoudnessSounds.size(); ++sound) {
        const LoudnessSpread spread = spreadOf(loudness, sound);
        text += std::string("# ") + kLoudnessSounds[sound] + ": spread " +
                base::fixedText(spread.decibels, 1) + " LU, from " +
                base::fixedText(loudness[spread.quietest][sound].change, 1) + " LU (" +
                named(bank, spread.quietest) + ") to " +
                base::fixedText(loudness[spread.loudest][sound].change, 1) + " LU (" +
                named(bank, spread.loudest) + ")\n";
    }
    const HighestPeak highest = highestPeakOf(loudness);
    text += "# highest peak: " + base::fixedText(highest.peak, 1) + " dBFS, " +
            base::fixedText(highest.truePeak, 1) + " dBTP (" + named(bank, highest.program) + ")\n";
    text += "number\tfamily\tname";
    for (const char* unit : {" [LU]", " peak [dBFS]", " true peak [dBTP]"})
        for (const char* sound : kLoudnessSounds)
            text += std::string("\t") + sound + unit;
    text += '\n';
    constexpr double PlayedLoudness::* columns[] = {&PlayedLoudness::change, &PlayedLoudness::peak,
                                                    &PlayedLoudness::truePeak};
    for (std::size_t program = 0; program < bank.size(); ++program) {
        text += std::to_string(program) + '\t' + bank[program].family + '\t' + bank[program].name;
        for (const auto column : columns)
            for (const PlayedLoudness& played : loudness[program])
                text += '\t' + base::fixedText(played.*column, 2);
        text += '\n';
    }
    return text;
}

} // namespace bank
