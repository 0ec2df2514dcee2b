// What the normalised value of a parameter is worth in its unit, and back. Display and engine follow a law in
// single precision; the table of factory programs in double, where the normalised float is the one nearest to
// the number.
#pragma once

#include <cmath>

namespace parameters {

struct Law {
    enum class Shape { linear, square };
    Shape shape;
    double span;
    double lowest;
    const char* unit; ///< or the range, where there is none; may be empty

    constexpr double highest() const { return lowest + span; }

    /// The number for the normalised value `p`, which may lie outside 0..1. The order of operations is part
    /// of the sound. Any thread.
    template <class Float>
    constexpr Float numberFor(Float p) const {
        const Float scaled = p * static_cast<Float>(span);
        return (shape == Shape::square ? scaled * p : scaled) + static_cast<Float>(lowest);
    }

    /// The normalised value for a number from `lowest` to `highest()`.
    double normalised(double number) const {
        const double share = (number - lowest) / span;
        return shape == Shape::square ? std::sqrt(share) : share;
    }
};

/// What one gap between two taps can reach; even gaps are half of it. Sound and display follow baseLengthOf,
/// which adds one sample or millisecond.
inline constexpr Law kLongestGap = {Law::Shape::square, 2000.0, 0.0, "ms"};
/// Cut to a whole number.
inline constexpr Law kTapCount = {Law::Shape::linear, 127.0, 1.0, ""};
inline constexpr Law kSweepRate = {Law::Shape::square, 14.0, 0.0, "Hz"};
inline constexpr Law kStretchPercent = {Law::Shape::linear, 60.0, -30.0, "%"};
/// Of the filters after their parameters were set. When the effect is turned on or the rate changes,
/// EngineControls::prepare designs them by laws of its own.
inline constexpr Law kLowPassFrequency = {Law::Shape::square, 20090.0, 500.0, "Hz"};
inline constexpr Law kHighPassFrequency = {Law::Shape::square, 2400.0, 102.0, "Hz"};
inline constexpr Law kWetPercent = {Law::Shape::linear, 100.0, 0.0, "% wet"};
inline constexpr Law kBipolar = {Law::Shape::linear, 2.0, -1.0, "-1..1"};
inline constexpr Law kPlain = {Law::Shape::linear, 1.0, 0.0, "0..1"};

} // namespace parameters
