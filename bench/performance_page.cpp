#include "bench/performance_page.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <stdexcept>

namespace bench {

namespace {

constexpr int kRowHeight = 18;
constexpr int kNames = 330;
constexpr int kBars = 480;

std::ofstream open(const std::filesystem::path& path) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path);
    if (!file)
        throw std::runtime_error("cannot write " + path.string());
    file << std::fixed << std::setprecision(1);
    return file;
}

/// One bar a row: how many times the reference's speed.
void writePlot(const std::filesystem::path& path, const std::vector<Measurement>& rows) {
    double best = 1.0;
    for (const Measurement& row : rows)
        best = std::max(best, row.reference / row.built);
    std::ofstream file = open(path);
    const auto height = static_cast<int>(rows.size()) * kRowHeight + 10;
    file << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kNames + kBars + 60 << "\" height=\""
         << height << "\" font-family=\"sans-serif\" font-size=\"12\">\n"
         << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    int y = 5;
    for (const Measurement& row : rows) {
        const double times = row.reference / row.built;
        const double width = times / best * kBars;
        file << "<text x=\"" << kNames - 8 << "\" y=\"" << y + 13 << "\" text-anchor=\"end\">"
             << row.situation.name() << "</text><rect x=\"" << kNames << "\" y=\"" << y + 2 << "\" width=\""
             << width << "\" height=\"" << kRowHeight - 4 << "\" fill=\"#3b6ea5\"/><text x=\""
             << kNames + width + 5 << "\" y=\"" << y + 13 << "\">" << times << "</text>\n";
        y += kRowHeight;
    }
    file << "</svg>\n";
}

} // namespace

void writePerformancePage(const std::string& folder, const std::string& instructionSet,
                          const std::vector<Measurement>& rows) {
    const std::filesystem::path root = folder;
    writePlot(root / "images" / "performance.svg", rows);
    std::ifstream words(QUILLON_PERFORMANCE_WORDS);
    std::ofstream page = open(root / "performance.md");
    page << words.rdbuf() << "\n## Measured\n\nNanoseconds a sample, medians, with the loops for "
         << instructionSet
         << "; made by `./quillon bench --page`.\n\n![How many times as fast as the "
            "reference](images/performance.svg)\n"
         << "\n| Situation | built | reference | times |\n| --- | --: | --: | --: |\n";
    for (const Measurement& row : rows)
        page << "| " << row.situation.name() << " | " << row.built << " | " << row.reference << " | "
             << row.reference / row.built << " |\n";
}

} // namespace bench
