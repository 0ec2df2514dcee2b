#include "tools/bank/fingerprint.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace bank {
namespace {

constexpr double kClickSeconds = 10.0;
constexpr double kHeldSeconds = 4.0;
constexpr double kFirstSpanSeconds = 0.001;
constexpr double kSpansPerOctave = 8.0;
constexpr double kHeldSpanSeconds = 0.05;
/// Energies below these count as silence: 70 dB under the click, and 50 dB under a band of the held sound.
constexpr double kClickFloor = 1e-7;
constexpr double kHeldFloor = 1e-3;

constexpr double kSilence = 1e-30;

/// A band pass, unity at its centre.
class Band {
  public:
    /// `centre` in Hz, `octaves` wide.
    Band(double centre, double octaves) {
        const double w = 2.0 * std::numbers::pi * centre / kAuditionRate;
        const double alpha = std::sin(w) * std::sinh(std::numbers::ln2 / 2.0 * octaves * w / std::sin(w));
        gain_ = alpha / (1.0 + alpha);
        a1_ = -2.0 * std::cos(w) / (1.0 + alpha);
        a2_ = (1.0 - alpha) / (1.0 + alpha);
    }
    double next(double x) {
        double y = gain_ * (x - x2_) - a1_ * y1_ - a2_ * y2_;
        // A tail that has died away would go on as numbers that processors are slow with.
        if (std::abs(y) < kSilence)
            y = 0.0;
        x2_ = x1_;
        x1_ = x;
        y2_ = y1_;
        y1_ = y;
        return y;
    }

  private:
    double gain_, a1_, a2_;
    double x1_ = 0.0, x2_ = 0.0, y1_ = 0.0, y2_ = 0.0;
};

std::vector<double> bandCentres(double first, double last, double octaves) {
    std::vector<double> centres;
    for (double centre = first; centre < last * 1.01; centre *= std::exp2(octaves))
        centres.push_back(centre);
    return centres;
}

/// Ends of the spans, in frames: ever wider ones.
std::vector<std::size_t> widening(double seconds) {
    std::vector<std::size_t> ends;
    for (int span = 0;; ++span) {
        const double end = kFirstSpanSeconds * std::exp2(span / kSpansPerOctave);
        if (end >= seconds)
            break;
        ends.push_back(static_cast<std::size_t>(end * kAuditionRate));
    }
    ends.push_back(static_cast<std::size_t>(seconds * kAuditionRate));
    return ends;
}

/// Ends of the spans, in frames: equal ones.
std::vector<std::size_t> equal(double seconds) {
    std::vector<std::size_t> ends;
    for (double end = kHeldSpanSeconds; end < seconds + kHeldSpanSeconds / 2.0; end += kHeldSpanSeconds)
        ends.push_back(static_cast<std::size_t>(end * kAuditionRate));
    return ends;
}

/// Appends the levels of one channel in one band, span by span, in dB over `floor`.
void appendLevels(std::vector<float>& levels, const Signal& channel, Band band,
                  const std::vector<std::size_t>& ends, double floor) {
    std::size_t frame = 0;
    for (const std::size_t end : ends) {
        double energy = 0.0;
        for (; frame < std::min(end, channel.size()); ++frame) {
            const double sample = band.next(static_cast<double>(channel[frame]));
            energy += sample * sample;
        }
        levels.push_back(static_cast<float>(10.0 * std::log10(1.0 + energy / floor)));
    }
}

double meanSquare(const std::vector<float>& a, const std::vector<float>& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double difference = static_cast<double>(a[i]) - static_cast<double>(b[i]);
        sum += difference * difference;
    }
    return sum / static_cast<double>(a.size());
}

} // namespace

Fingerprint fingerprintOf(const Audition& audition, std::size_t program) {
    Fingerprint fingerprint;
    const StereoSignal click = audition.play(program, bank::click(), kClickSeconds, Listening::wetOnly);
    for (const Signal* channel : {&click.left, &click.right})
        for (const double centre : bandCentres(125.0, 8000.0, 1.0))
            appendLevels(fingerprint.click, *channel, Band(centre, 1.0), widening(kClickSeconds),
                         kClickFloor);
    const StereoSignal held =
        audition.play(program, sustained(kHeldSeconds), kHeldSeconds, Listening::wetOnly);
    for (const Signal* channel : {&held.left, &held.right})
        for (const double centre : bandCentres(80.0, 10000.0, 1.0 / 3.0))
            appendLevels(fingerprint.held, *channel, Band(centre, 1.0 / 3.0), equal(kHeldSeconds),
                         kHeldFloor);
    return fingerprint;
}

double distance(const Fingerprint& a, const Fingerprint& b) {
    return std::sqrt(0.5 * (meanSquare(a.click, b.click) + meanSquare(a.held, b.held)));
}

} // namespace bank
