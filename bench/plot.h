// Plots of bars, as SVG.
#pragma once

#include <string>
#include <vector>

namespace bench {

/// One bar of one or more parts behind each other. Lengths are in the plot's unit.
struct Bar {
    struct Part {
        double length;
        int colour; ///< by its place in the plot's legend
    };
    std::string name;
    std::vector<Part> parts;
    std::string label; ///< behind the bar
};

struct Plot {
    std::string title;
    std::vector<std::string> legend; ///< what the colours mean; at most four
    std::vector<Bar> bars;           ///< from the top; an empty name belongs to the bar before
};

/// Throws std::runtime_error if the file cannot be written.
void writePlot(const std::string& path, const Plot& plot);

} // namespace bench
