// The parts of the page docs/performance.md that come from the runs: tables and plots, in Markdown. A part is
// empty where no run has its figures.
#pragma once

#include "bench/shown_runs.h"

#include <string>
#include <vector>

namespace bench {

struct Plot;

struct Page {
    std::string folder; ///< of the page; plots go to its folder "images"
    std::vector<SetRuns> sets;
};

/// How many instances one core carries, with the plot.
std::string instancesPart(const Page& page);
/// The few situations that stand for all, with the plot.
std::string chosenPart(const Page& page);

/// The corner of each kind in which the effect gains least.
std::string leastGainsPart(const Page& page);
std::string shortBlocksPart(const Page& page);
std::string afterSoundPart(const Page& page);
std::string clearingPart(const Page& page);
std::string pageFaultsPart(const Page& page);

std::string callsPart(const Page& page);
/// Where the time goes, with the plot. Throws std::runtime_error if a newest run lacks a measurement.
std::string breakdownPart(const Page& page);
std::string limitsPart(const Page& page);

/// The plot of the effect beside other programs.
std::string peersPart(const Page& page);
std::string faustPart(const Page& page);
std::string programsPart(const Page& page);

// The long tables.
std::string allSoundPart(const Page& page);
std::string allShortBlocksPart(const Page& page);
std::string allFaustPart(const Page& page);

/// A plot as the page shows it, after it was written to its folder.
std::string shownPlot(const Page& page, const std::string& file, const Plot& plot);
/// Every result of a section against the reference: both times and their ratio, all sets side by side.
std::string timesOfSection(const Page& page, const std::string& section);

} // namespace bench
