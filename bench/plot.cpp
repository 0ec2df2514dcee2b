#include "bench/plot.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <stdexcept>

namespace bench {

namespace {

constexpr int kMargin = 12;
constexpr int kTop = 62;
constexpr int kBarHeight = 15;
constexpr int kBarGap = 3;
constexpr int kGroupGap = 9;
constexpr int kNames = 350;
constexpr int kBars = 420;
constexpr int kLabels = 130;
constexpr int kLegendStep = 190;
constexpr std::array<const char*, 4> kColours = {"#1f5a92", "#8fb8de", "#d98032", "#b8b8b8"};

double lengthOf(const Bar& bar) {
    double length = 0.0;
    for (const Bar::Part& part : bar.parts)
        length += part.length;
    return length;
}

void writeText(std::ostream& svg, double x, double y, const char* anchor, const std::string& text,
               const char* more = "") {
    svg << "<text x=\"" << x << "\" y=\"" << y << "\" text-anchor=\"" << anchor << "\" " << more << ">"
        << text << "</text>\n";
}

void writeLegend(std::ostream& svg, const Plot& plot) {
    for (std::size_t i = 0; i < plot.legend.size(); ++i) {
        const double x = kMargin + static_cast<double>(i) * kLegendStep;
        svg << "<rect x=\"" << x << "\" y=\"34\" width=\"12\" height=\"12\" fill=\"" << kColours.at(i)
            << "\"/>";
        writeText(svg, x + 18, 44, "start", plot.legend[i]);
    }
}

void writeBar(std::ostream& svg, const Bar& bar, int y, double scale) {
    writeText(svg, kNames - 8, y + 12, "end", bar.name);
    double x = kNames;
    for (const Bar::Part& part : bar.parts) {
        const double width = std::max(part.length, 0.0) * scale;
        svg << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"" << width << "\" height=\"" << kBarHeight
            << "\" fill=\"" << kColours.at(static_cast<std::size_t>(part.colour)) << "\"/>";
        x += width;
    }
    writeText(svg, x + 6, y + 12, "start", bar.label);
}

/// Where each bar begins, and the end of the plot behind them.
std::vector<int> placesOf(const std::vector<Bar>& bars) {
    std::vector<int> places;
    int y = kTop;
    for (const Bar& bar : bars) {
        if (!bar.name.empty() && !places.empty())
            y += kGroupGap - kBarGap;
        places.push_back(y);
        y += kBarHeight + kBarGap;
    }
    places.push_back(y + kMargin);
    return places;
}

} // namespace

void writePlot(const std::string& path, const Plot& plot) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream svg(path);
    svg << std::fixed << std::setprecision(1);
    double longest = 0.0;
    for (const Bar& bar : plot.bars)
        longest = std::max(longest, lengthOf(bar));
    const double scale = longest > 0.0 ? kBars / longest : 0.0;
    const std::vector<int> places = placesOf(plot.bars);
    svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kNames + kBars + kLabels << "\" height=\""
        << places.back() << "\" font-family=\"sans-serif\" font-size=\"12\">\n"
        << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    writeText(svg, kMargin, 22, "start", plot.title, "font-size=\"14\" font-weight=\"bold\"");
    writeLegend(svg, plot);
    for (std::size_t i = 0; i < plot.bars.size(); ++i)
        writeBar(svg, plot.bars[i], places[i], scale);
    svg << "</svg>\n";
    if (!svg.flush())
        throw std::runtime_error(path + " cannot be written");
}

} // namespace bench
