#include "dsp/biquad.h"

#include <cmath>

namespace dsp {

void designBiquad(SharedCoefficients& filter, BiquadType type, double frequency, double sampleRate,
                  double q) {
    const double w = frequency * 6.283185307179586 / sampleRate;
    const double s = std::sin(w);
    const double c = std::cos(w);
    const double alpha = (0.5 / q) * s;
    const double a0 = alpha + 1.0;
    const bool low = type == BiquadType::lowPass;
    const double b0 = low ? (1.0 - c) * 0.5 : (c + 1.0) * 0.5;
    const double b1 = low ? 1.0 - c : -(c + 1.0);
    const double a1 = c * -2.0;
    const double a2 = 1.0 - alpha;
    const double scale = 1.0 / a0;
    const auto rounded = [scale](double value) { return static_cast<float>(value * scale); };
    filter.publish({rounded(b0), rounded(b1), rounded(b0), rounded(a1), rounded(a2)});
}

} // namespace dsp
