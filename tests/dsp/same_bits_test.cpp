// The systems' C libraries differ in the last bits of exp, pow, sine and cosine, which the tap pattern and
// the filters are computed with. That is all in which the sound may differ: here the linker puts other
// functions in their place, the same ones everywhere, and then every system, compiler and instruction set
// must give the same bits.
#include "dsp/delay_engine.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

/// Of plain arithmetic alone, whose every step is rounded alike everywhere. Good to a few parts in a million.
double exponential(double x) {
    double result = 1.0 + x / 1048576.0;
    for (int i = 0; i < 20; ++i)
        result *= result;
    return result;
}

/// By the series of the inverse hyperbolic tangent; for 0.1 to 10.
double logarithm(double x) {
    const double y = (x - 1.0) / (x + 1.0);
    double power = y, sum = 0.0;
    for (int i = 1; i < 200; i += 2, power *= y * y)
        sum += power / i;
    return 2.0 * sum;
}

/// By its series; for angles of a turn or less.
double sine(double x) {
    double term = x, sum = 0.0;
    for (int i = 1; i < 60; i += 2, term *= -x * x / ((i - 1) * i))
        sum += term;
    return sum;
}

constexpr double kQuarterTurn = 1.57079632679489662;

int calls = 0;

} // namespace

extern "C" {
float __wrap_expf(float x) {
    ++calls;
    return static_cast<float>(exponential(static_cast<double>(x)));
}
double __wrap_exp(double x) {
    ++calls;
    return exponential(x);
}
float __wrap_powf(float base, float exponent) {
    ++calls;
    return base <= 0.0f ? 0.0f
                        : static_cast<float>(exponential(static_cast<double>(exponent) *
                                                         logarithm(static_cast<double>(base))));
}
double __wrap_sin(double x) {
    ++calls;
    return sine(x);
}
double __wrap_cos(double x) {
    ++calls;
    return sine(x + kQuarterTurn);
}
void __wrap_sincos(double x, double* s, double* c) {
    ++calls;
    *s = sine(x);
    *c = sine(x + kQuarterTurn);
}
}

namespace {

/// The same numbers on every machine.
class Numbers {
  public:
    float unit() {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<float>(state_ >> 40) * 0x1p-24f;
    }

  private:
    std::uint64_t state_ = 1;
};

class Fingerprint {
  public:
    void take(const std::vector<float>& samples) {
        for (const float sample : samples) {
            value_ ^= std::bit_cast<std::uint32_t>(sample);
            value_ *= 1099511628211u;
        }
    }
    std::uint64_t value() const { return value_; }

  private:
    std::uint64_t value_ = 14695981039346656037u;
};

void setParameters(dsp::DelayEngine& engine, Numbers& numbers, float readMode, float sampleRate) {
    for (std::int32_t id = 0; id < parameters::kNumLiveParameters; ++id)
        engine.setParameterValue(id, numbers.unit());
    engine.setParameterValue(parameters::kSet, readMode);
    engine.computeTapPattern(sampleRate);
    engine.designLowPassOnChange(sampleRate);
    engine.designHighPassOnChange(sampleRate);
}

/// Of noise through eight settings in each of the three ways to read the memory.
std::uint64_t fingerprint() {
    constexpr float sampleRate = 44100.0f;
    constexpr std::int32_t frames = 4099;
    const auto engine = std::make_unique<dsp::DelayEngine>();
    engine->startUp();
    engine->prepare(sampleRate);
    Numbers numbers;
    Fingerprint print;
    std::vector<float> left(frames), right(frames), outLeft(frames), outRight(frames);
    const float* const inputs[] = {left.data(), right.data()};
    float* const outputs[] = {outLeft.data(), outRight.data()};
    for (const float readMode : {0.0f, 0.5f, 1.0f})
        for (int setting = 0; setting < 8; ++setting) {
            setParameters(*engine, numbers, readMode, sampleRate);
            for (int block = 0; block < 4; ++block) {
                for (std::size_t i = 0; i < left.size(); ++i) {
                    left[i] = numbers.unit() - 0.5f;
                    right[i] = numbers.unit() - 0.5f;
                }
                engine->processReplacing(inputs, outputs, frames);
                print.take(outLeft);
                print.take(outRight);
            }
        }
    return print.value();
}

/// As every system has given it so far.
constexpr std::uint64_t kFingerprint = 14101761118224812551u;

TEST(SameTables, GiveTheSameBitsOnEverySystem) {
    for (const dsp::Kernels* kernels : dsp::usableKernels()) {
        SCOPED_TRACE(kernels->instructionSet);
        dsp::chooseKernels(kernels);
        calls = 0;
        EXPECT_EQ(fingerprint(), kFingerprint);
        EXPECT_GT(calls, 1000) << "the functions of the C library were not replaced";
    }
    dsp::chooseKernels(nullptr);
}

} // namespace
