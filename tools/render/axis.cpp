#include "tools/render/axis.h"

#include "tools/common/text.h"

#include <algorithm>
#include <cmath>

namespace tools::render {

namespace {

/// Forgives the last place of a division.
constexpr double kAlmost = 1.0 - 1e-9;

} // namespace

double roundUp(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (double factor : {1.0, 2.0, 5.0})
        if (value * kAlmost <= factor * power)
            return factor * power;
    return 10.0 * power;
}

Marks marksFor(double span, int most) {
    Marks marks;
    marks.step = roundUp(span / most);
    marks.decimals = std::max(0, static_cast<int>(-std::floor(std::log10(marks.step) + 1e-9)));
    for (int i = 0; i * marks.step <= span / kAlmost; ++i)
        marks.places.push_back(i * marks.step);
    return marks;
}

std::string axisText(double value, int decimals) {
    const std::string text = fixedText(value, decimals);
    return text.front() == '-' ? "\u2212" + text.substr(1) : text;
}

} // namespace tools::render
