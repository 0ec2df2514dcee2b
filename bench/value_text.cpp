#include "bench/value_text.h"

#include <cmath>
#include <cstddef>
#include <iomanip>
#include <iterator>
#include <sstream>

namespace bench {

std::string fixed(double number, int digits) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << number;
    return text.str();
}

std::string timeText(double nanoseconds) {
    constexpr const char* units[] = {" ns", " µs", " ms", " s"};
    std::size_t unit = 0;
    while (std::fabs(nanoseconds) >= 9999.5 && unit + 1 < std::size(units)) {
        nanoseconds /= 1000.0;
        ++unit;
    }
    return fixed(nanoseconds, nanoseconds < 99.95 ? 1 : 0) + units[unit];
}

std::string valueText(const Result& result, double value) {
    return result.isCount() ? fixed(value, 0) : timeText(value);
}

std::string timesText(const Result& result) {
    return result.isCount() || result.isLostInNoise() ? "" : fixed(result.times(), 1);
}

} // namespace bench
