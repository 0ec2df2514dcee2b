// Conversion to integer toward zero, as the processor does it. Static: the audio loops include it, of which
// there is one form for each instruction set.
#pragma once

#include <cstdint>
#include <limits>

namespace base {

/// `value` without its fraction. NaN, infinities and everything beyond 32 bits give the lowest integer, which
/// is what the processor's conversion yields; a plain cast of those would be undefined. Any thread.
static constexpr std::int32_t trunc(double value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value)
                                                         : std::numeric_limits<std::int32_t>::min();
}

/// The same in single precision, where the whole range test needs no wider numbers.
static constexpr std::int32_t trunc(float value) {
    return value >= -2147483648.0f && value < 2147483648.0f ? static_cast<std::int32_t>(value)
                                                            : std::numeric_limits<std::int32_t>::min();
}

} // namespace base
