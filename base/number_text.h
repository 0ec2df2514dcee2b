// Numbers as hosts and windows show them. A decimal point is a point whatever the host's locale says, so
// nothing here goes through the C library's formatting.
#pragma once

#include "base/fixed_text.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace base {

/// The number with exactly `decimals` decimals, rounded to nearest.
std::string fixedText(double value, int decimals);

/// Fixed point in eight characters in all: sign, integer digits, the point, and as many decimals as fill the
/// eight; what does not fit is cut, not rounded. Beyond eight integer digits nothing is written at all:
/// `text` keeps what it held, up to the NUL at maxLen.
void float2string(float value, char* text, std::size_t maxLen);

/// Decimal digits without leading zeros, so that 0 is the empty text; "Huge!" from 100000000 up.
void int2string(std::int32_t value, char* text, std::size_t maxLen);

/// A gain factor in decibels, "-oo" at 0 and below.
void dB2string(float value, char* text, std::size_t maxLen);

} // namespace base
