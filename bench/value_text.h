// Values of results as a person reads them.
#pragma once

#include "bench/result.h"

#include <string>

namespace bench {

std::string fixed(double number, int digits);
/// "45.2 ns", "3.10 µs", "12.4 ms".
std::string timeText(double nanoseconds);
/// One of the two values of a result: a time, or a plain number.
std::string valueText(const Result& result, double value);
/// How many times as long the other takes; nothing for numbers, which may be 0.
std::string timesText(const Result& result);

} // namespace bench
