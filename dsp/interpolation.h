// Interpolation between slots of the delay memory. Static, for the same reason as in dsp/memory_span.h.
#pragma once

namespace dsp {

/// Samples of four neighbouring slots, oldest first. The read position lies between s1 and s2.
struct Points {
    float s0, s1, s2, s3;
};

/// Four points, Catmull-Rom; `f` is the fraction beyond s1.
static inline float cubic(const Points& points, float f) {
    const auto [s0, s1, s2, s3] = points;
    const float h = s3 * 0.5f;
    return (((s2 + s2 + s0 - (s1 * 2.5f + h)) + (((s1 - s2) * 3.0f - s0) * 0.5f + h) * f) * f +
            (s2 - s0) * 0.5f) *
               f +
           s1;
}

/// Two points; s0 and s3 are not used.
static inline float linear(const Points& points, float f) {
    return (points.s2 - points.s1) * f + points.s1;
}

} // namespace dsp
