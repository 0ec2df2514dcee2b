// Loops whose most frequent length is known when they are compiled. Static, as all that the kernels include
// (dsp/memory_span.h).
#pragma once

#include <cstdint>

namespace dsp {

/// A length known at compile time, which leaves a vectorised loop without a remainder.
template <std::int32_t length>
struct Fixed {
    constexpr operator std::int32_t() const { return length; }
};

/// Runs `loop` over `frames` frames, as Fixed if there are `length` of them.
template <std::int32_t length, class Loop>
static inline auto atItsLength(std::int32_t frames, Loop loop) {
    return frames == length ? loop(Fixed<length>{}) : loop(frames);
}

} // namespace dsp
