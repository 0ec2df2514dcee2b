#include "tools/bank/preset_page.h"

#include "base/number_text.h"
#include "tools/bank/parallel.h"
#include "tools/bank/retune.h"
#include "tools/common/note_length.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace bank {

using base::fixedText;

namespace {

constexpr double kLongestTail = 20.0;
constexpr double kLongestPattern = 100.0;

constexpr int kWidth = 180;
constexpr int kHalfHeight = 20;
constexpr int kHeight = 2 * kHalfHeight + 12;
constexpr double kRangeDecibels = 60.0;
// As in the renderer's pictures.
constexpr const char* kLeftColour = "#d9822b";
constexpr const char* kRightColour = "#3f86d8";

std::string secondsText(double seconds) {
    if (seconds < 0.9995)
        return fixedText(seconds * 1000.0, seconds < 0.01 ? 1 : 0) + " ms";
    return fixedText(seconds, seconds < 10.0 ? 2 : 1) + " s";
}

/// One decimal, and no sign on what is zero when rounded.
std::string decimalText(double value) {
    const std::string text = fixedText(value, 1);
    return text == "-0.0" ? "0.0" : text;
}

/// One upright line for each column in which the channel sounds; `sign` -1 draws upward.
std::string stems(const Signal& channel, double seconds, int sign) {
    std::vector<float> peaks(kWidth, 0.0f);
    const double framesPerColumn = seconds * kAuditionRate / kWidth;
    for (std::size_t frame = 0; frame < channel.size(); ++frame) {
        const auto column = static_cast<std::size_t>(static_cast<double>(frame) / framesPerColumn);
        if (column < peaks.size())
            peaks[column] = std::max(peaks[column], std::abs(channel[frame]));
    }
    std::string path;
    for (std::size_t column = 0; column < peaks.size(); ++column) {
        const double level = decibels(static_cast<double>(peaks[column])) + kRangeDecibels;
        const int height =
            std::min(kHalfHeight, static_cast<int>(std::lround(level / kRangeDecibels * kHalfHeight)));
        if (height <= 0)
            continue;
        path += 'M';
        path += std::to_string(column) + ".5 " + std::to_string(kHalfHeight) + 'v';
        path += std::to_string(sign * height);
    }
    return path;
}

StereoSignal clickAnswer(const Audition& audition, std::size_t program, double seconds) {
    return audition.play(program, click(), std::min(seconds, kLongestPattern), Listening::wetOnly);
}

ProgramNumbers measureOne(const Audition& audition, std::size_t number, const BankProgram& program,
                          const std::vector<Signal>& sources) {
    ProgramNumbers numbers;
    const dsp::TapPattern pattern = patternOf(program);
    numbers.taps = pattern.numTaps.load();
    numbers.firstSeconds = static_cast<double>(pattern.tapTimeTarget[0].load()) / kAuditionRate;
    numbers.patternSeconds = patternSeconds(pattern);

    const double tail = std::min(feedbackTail(program).secondsTo60dB, kLongestTail);
    const double length =
        std::max(numbers.patternSeconds + 1.0, std::min(numbers.patternSeconds + tail + 1.0, kLongestTail));
    const StereoSignal answer = clickAnswer(audition, number, length);
    numbers.tailSeconds = secondsToFall(answer, kRangeDecibels);
    // Near the end the rest is cut off, and the fall looks faster than it is.
    numbers.tailGoesOn = feedbackTail(program).secondsTo60dB > 0.0 && numbers.tailSeconds > 0.9 * length;
    numbers.correlation = correlation(answer);
    numbers.picture = pictureOf(answer, 1.05 * numbers.tailSeconds);

    numbers.peakDecibels = decibels(0.0);
    for (const Signal& source : sources) {
        const double seconds = static_cast<double>(source.size()) / kAuditionRate + length;
        const StereoSignal wet =
            audition.play(number, source, std::min(seconds, kLongestTail), Listening::wetOnly);
        numbers.peakDecibels = std::max(numbers.peakDecibels, decibels(peakOf(wet)));
        numbers.levelDecibels +=
            decibels(loudestPassage(wet) / loudestPassage(source)) / static_cast<double>(sources.size());
    }
    return numbers;
}

constexpr const char* kOrigin =
    R"(# The factory programs

The plug-in starts with these 128 programs, in sixteen families of eight. They come from the table
[`skins/factory_bank.tsv`](../skins/factory_bank.tsv), which you can open in a spreadsheet; `quillon-bank` compiles it
into `default.fxb`. This page is written by `quillon-bank page`, which measures the sound of the built plug-in.
[The listening table](listening.md) tells what was changed in them last, and why.
)";

constexpr const char* kReading = R"(
Each picture shows the echoes of a single click: left upward, right downward, over a range of 60 dB. The number in its
corner is the time from edge to edge. Beside it:

- how many **echoes** the pattern has, and the times of the first and the last one;
- **mix**, the share of echoes that is stored in the program;
- **gone**, the time when the answer to a click has fallen by 60 dB; "> 20 s" means that it is longer than the
  measurement;
- for programs with a rhythm, the **tempo** at which an echo comes with every note. `quillon-bank tempo` sets all of them
  to the tempo of your song.

The values are measured at 48 kHz after a program change. In a VST host, the two filters take away more when the host
has switched the effect off and on, until you turn them or choose the program again: echoes of speech are then softer by
7 to 15 dB. In programs that glide ("How echoes move" at Glide or Fine), the echoes need about a second to reach their
places after a program change. "High cut" is safe in every program at sample rates from 32 kHz up.
)";

constexpr const char* kLevels = R"(
## Levels

- **Drums**, **plucks** and **speech** say how much louder the program makes a sound, at its own mix: the difference in
  integrated loudness (EBU R 128) between output and input, in LU. The sounds are four bars of drums, sixteen plucked
  notes and a spoken phrase said four times, each 8 s long, at a peak of -6 dBFS on both channels, followed by the
  program's tail.
- **Peak** is the highest sample of these three outputs, and **true peak** the highest level between the samples.
- **Echoes alone** compares the loudest passage of the echoes without the dry sound with that of the input: the mean of a
  drum hit, a plucked string and speech. **Their peak** is the highest sample of the echoes, with the three inputs at full
  scale. Programs with an asterisk may exceed +6 dB, because many echoes add up. Their stored mix allows for that; take
  care when you turn "Mix" up.
- **L/R** says how similar left and right are: 1 is mono, 0 is wide.

| No. | Program | Drums | Plucks | Speech | Peak | True peak | Echoes alone | Their peak | L/R |
| ---: | --- | ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: |
)";

/// With blanks at which no line breaks.
std::string unbroken(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c == ' ' ? std::string("\u00a0") : std::string(1, c);
    return result;
}

std::string echoesText(const ProgramNumbers& numbers) {
    if (numbers.taps == 1)
        return "1 echo at " + secondsText(numbers.firstSeconds);
    return std::to_string(numbers.taps) + " echoes, " + secondsText(numbers.firstSeconds) + " to " +
           secondsText(numbers.patternSeconds);
}

std::string row(std::size_t number, const BankProgram& program, const ProgramNumbers& numbers,
                const std::string& pictureFolder) {
    const double mix = 100.0 * static_cast<double>(program.value(parameters::kDryWet));
    const std::string tempo = tempoText(program);
    return "| " + std::to_string(number) + " | <img src=\"" + pictureFolder + "/" + pictureName(number) +
           "\" alt=\"\" width=\"" + std::to_string(kWidth) + "\"> | **" + program.name + "**<br>" +
           program.note + " | " +
           unbroken(echoesText(numbers) + "<br>mix " + fixedText(mix, 0) + " %, gone " +
                    (numbers.tailGoesOn ? "> 20 s" : secondsText(numbers.tailSeconds)) +
                    (tempo.empty() ? "" : "<br>" + tempo)) +
           " |\n";
}

std::string levelRow(std::size_t number, const BankProgram& program, const ProgramNumbers& numbers) {
    std::string text = "| " + std::to_string(number) + " | " + program.name + " | ";
    double peak = -std::numeric_limits<double>::infinity();
    double truePeak = peak;
    for (const PlayedLoudness& played : numbers.loudness) {
        text += decimalText(played.change) + " LU | ";
        peak = std::max(peak, played.peak);
        truePeak = std::max(truePeak, played.truePeak);
    }
    return text + decimalText(peak) + " dBFS | " + decimalText(truePeak) + " dBTP | " +
           decimalText(numbers.levelDecibels) + " dB | " + decimalText(numbers.peakDecibels) + " dB" +
           (program.loud ? " \\*" : "") + " | " + decimalText(numbers.correlation) + " |\n";
}

/// What all programs have in common, as it was measured.
std::string summary(const BankNumbers& numbers) {
    BankLoudness loudness;
    std::transform(numbers.begin(), numbers.end(), loudness.begin(),
                   [](const ProgramNumbers& program) { return program.loudness; });
    std::string spreads;
    for (std::size_t sound = 0; sound < kLoudnessSounds.size(); ++sound)
        spreads += std::string(sound == 0                           ? ""
                               : sound + 1 < kLoudnessSounds.size() ? ", "
                                                                    : " and ") +
                   decimalText(spreadOf(loudness, sound).decibels) + " LU with " + kLoudnessSounds[sound];
    const HighestPeak highest = highestPeakOf(loudness);
    return "\n**How loud they are.** At its own mix, the loudest program is above the softest by " + spreads +
           ".\nWith these sounds at -6 dBFS, the highest peak of any program is " +
           decimalText(highest.peak) + " dBFS, and the highest true peak " + decimalText(highest.truePeak) +
           " dBTP.\n[Levels](#levels) has the figures of each program.\n";
}

} // namespace

BankNumbers measure(const Audition& audition, const Bank& bank, const Signal& speech) {
    const std::vector<Signal> sources = {drumHit(), pluckedString(), speech};
    const LoudnessProbe probe(speech);
    BankNumbers numbers;
    forEachInParallel(bank.size(), [&](std::size_t number) {
        numbers[number] = measureOne(audition, number, bank[number], sources);
        numbers[number].loudness = probe.measure(audition, number, bank[number]);
    });
    return numbers;
}

std::string tempoText(const BankProgram& program) {
    if (!program.rhythm)
        return {};
    std::string number = fixedText(ownTempo(program), 1);
    if (number.ends_with(".0"))
        number.resize(number.size() - 2);
    return tools::noteText(*program.rhythm) + " at " + number + " bpm";
}

std::string pageText(const Bank& bank, const BankNumbers& numbers, const std::string& pictureFolder) {
    std::string text = kOrigin + summary(numbers) + kReading;
    for (std::size_t number = 0; number < bank.size(); ++number) {
        if (number == 0 || bank[number].family != bank[number - 1].family)
            text += "\n## " + bank[number].family +
                    "\n\n| No. | Echoes | Program | |\n| ---: | --- | --- | --- |\n";
        text += row(number, bank[number], numbers[number], pictureFolder);
    }
    text += kLevels;
    for (std::size_t number = 0; number < bank.size(); ++number)
        text += levelRow(number, bank[number], numbers[number]);
    return text;
}

std::string pictureName(std::size_t program) {
    const std::string digits = std::to_string(program);
    return std::string(3 - digits.size(), '0') + digits + ".svg";
}

std::string pictureOf(const StereoSignal& answer, double seconds) {
    const std::string middle = std::to_string(kHalfHeight);
    const std::string width = std::to_string(kWidth);
    const std::string height = std::to_string(kHeight);
    const auto channel = [](const std::string& path, const char* colour) {
        return "<path d=\"" + path + "\" stroke=\"" + colour + "\"/>\n";
    };
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" + height +
           "\" viewBox=\"0 0 " + width + " " + height + "\" fill=\"none\">\n" +
           channel(stems(answer.left, seconds, -1), kLeftColour) +
           channel(stems(answer.right, seconds, 1), kRightColour) +
           channel("M0 " + middle + "h" + width, "#8a8a8a") + "<text x=\"" + width + "\" y=\"" +
           std::to_string(kHeight - 2) +
           "\" fill=\"#8a8a8a\" font-family=\"sans-serif\" font-size=\"9\" text-anchor=\"end\">" +
           secondsText(seconds) + "</text>\n</svg>\n";
}

} // namespace bank
