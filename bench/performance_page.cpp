#include "bench/performance_page.h"

#include "bench/page_parts.h"

#include <fstream>
#include <istream>
#include <map>
#include <stdexcept>
#include <string>

namespace bench {

namespace {

using Part = std::string (*)(const Page&);

/// By the line of the words that each takes the place of.
const std::map<std::string, Part> kParts = {{"<!-- instances -->", instancesPart},
                                            {"<!-- chosen -->", chosenPart},
                                            {"<!-- least gains -->", leastGainsPart},
                                            {"<!-- short blocks -->", shortBlocksPart},
                                            {"<!-- after a sound -->", afterSoundPart},
                                            {"<!-- after a clearing -->", clearingPart},
                                            {"<!-- page faults -->", pageFaultsPart},
                                            {"<!-- calls -->", callsPart},
                                            {"<!-- breakdown -->", breakdownPart},
                                            {"<!-- limits -->", limitsPart},
                                            {"<!-- peers -->", peersPart},
                                            {"<!-- faust -->", faustPart},
                                            {"<!-- programs -->", programsPart},
                                            {"<!-- all sound -->", allSoundPart},
                                            {"<!-- all short blocks -->", allShortBlocksPart},
                                            {"<!-- all faust -->", allFaustPart}};

/// A heading and what follows it, up to the next heading.
struct Section {
    std::string text;
    bool wantsFigures = false, hasFigures = false;

    bool isShown() const { return hasFigures || !wantsFigures; }
};

std::string pageText(std::istream& words, const Page& page) {
    std::string text;
    Section section;
    const auto endSection = [&] {
        if (section.isShown())
            text += section.text;
        section = {};
    };
    for (std::string line; std::getline(words, line);) {
        if (line.starts_with("#"))
            endSection();
        if (const auto part = kParts.find(line); part != kParts.end()) {
            const std::string figures = part->second(page);
            section.wantsFigures = true;
            section.hasFigures |= !figures.empty();
            // A part ends with its own empty line, if any.
            section.text += figures.ends_with("\n\n") ? figures.substr(0, figures.size() - 1) : figures;
        } else {
            section.text += line + "\n";
        }
    }
    endSection();
    return text;
}

} // namespace

void writePerformancePage(const std::string& folder, const std::vector<Run>& runs) {
    const Page shown{folder, runsBySet(runs)};
    if (shown.sets.empty())
        throw std::runtime_error("there are no runs to show");
    std::ifstream words(QUILLON_PERFORMANCE_WORDS);
    std::ofstream page(folder + "/performance.md");
    page << pageText(words, shown);
    if (!page.flush())
        throw std::runtime_error(folder + "/performance.md cannot be written");
}

} // namespace bench
