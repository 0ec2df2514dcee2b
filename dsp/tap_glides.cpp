#include "dsp/tap_glides.h"

#include "parameters/parameter_table.h"

#include <algorithm>

namespace dsp {

namespace {

/// From this many taps on, tap times jump, which limits the cost of the largest patterns.
constexpr std::int32_t kMinTapsWithoutGlide = 102;

} // namespace

const TapPaths& TapGlides::advance(const ControlSnapshot& controls, const TapKernels& kernels,
                                   std::int32_t frames) {
    if (atRest_)
        return paths_;
    const bool glides =
        controls.interpMode != parameters::kWholeSamples && controls.numTaps < kMinTapsWithoutGlide;
    std::array<std::size_t, kMaxTaps> gliding;
    std::size_t count = 0;
    for (std::size_t tap = 0; tap < static_cast<std::size_t>(controls.numTaps); ++tap) {
        const float target = controls.tapTimeTarget[tap];
        float time = target;
        if (glides && !OnePole::opens(target))
            time = 0.0f;
        else if (glides && tapSmoother_[tap].rests(target))
            time = tapSmoother_[tap].z;
        else if (glides)
            gliding[count++] = tap;
        paths_.firstTimes[tap] = time;
        paths_.lastTimes[tap] = time;
        paths_.times[tap] = nullptr;
    }
    for (std::size_t first = 0; first < count; first += kGlideLanes)
        glide({gliding.data() + first, std::min<std::size_t>(kGlideLanes, count - first)}, controls, kernels,
              frames);
    atRest_ = count == 0;
    return paths_;
}

/// Up to kGlideLanes taps. Each frame of a glide depends on the one before, so glides are computed side by
/// side.
void TapGlides::glide(std::span<const std::size_t> taps, const ControlSnapshot& controls,
                      const TapKernels& kernels, std::int32_t frames) {
    alignas(64) std::array<float, kGlideLanes> step{}, now{};
    std::array<float*, kGlideLanes> rows;
    alignas(64) Row unused;
    rows.fill(unused.data());
    for (std::size_t lane = 0; lane < taps.size(); ++lane) {
        const std::size_t tap = taps[lane];
        step[lane] = controls.tapTimeTarget[tap] * tapSmoother_[tap].b;
        now[lane] = tapSmoother_[tap].z;
        rows[lane] = tapTimeNow_[tap].data();
        paths_.times[tap] = rows[lane];
    }
    kernels.glide(step.data(), OnePole{}.a, now.data(), rows.data(), frames);
    for (std::size_t lane = 0; lane < taps.size(); ++lane) {
        const std::size_t tap = taps[lane];
        tapSmoother_[tap].z = now[lane];
        paths_.firstTimes[tap] = rows[lane][0];
        paths_.lastTimes[tap] = now[lane];
    }
}

} // namespace dsp
