// Round numbers for the axes of a picture.
#pragma once

#include <string>
#include <vector>

namespace tools::render {

/// 1, 2 or 5 times a power of ten, the smallest not below `value`; `value` is above 0.
double roundUp(double value);

/// Marks from 0 to `span`, at most `most` + 1 of them, a round step apart.
struct Marks {
    double step = 1.0;
    int decimals = 0; ///< that the step needs
    std::vector<double> places;
};
Marks marksFor(double span, int most);

/// A number for an axis, with a proper minus sign.
std::string axisText(double value, int decimals);

} // namespace tools::render
