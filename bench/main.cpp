// quillon-bench: what the effect costs, against the literal reference loop and, if wanted, against what else
// a person might use; on the terminal, as JSON, or as the page docs/performance.md.
#include "bench/performance_page.h"
#include "bench/player.h"
#include "bench/runs_file.h"
#include "bench/suite.h"
#include "bench/value_text.h"
#include "desk/abrupt_end.h"
#include "desk/display.h"
#include "desk/host_settings.h"
#include "desk/measuring.h"
#include "desk/own_output.h"
#include "desk/private_folder.h"
#include "desk/virtual_display.h"
#include "dsp/instruction_set.h"
#include "host/library_call.h"
#include "tools/common/command_line.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <exception>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace bench;

constexpr int kExitFailure = 2;
constexpr int kDisplayWidth = 1280, kDisplayHeight = 1024;

struct Options {
    bool json = false, peers = false, window = false, redraw = false;
    std::string only, page;
    std::vector<std::string> sets;
};

struct HeldLibrary {
    std::string instructionSet, path;
};

std::optional<std::string> readOptions(Options& options, int argumentCount, const char* const* arguments) {
    CLI::App app("Times the effect against the literal reference loop.", "quillon-bench");
    app.add_flag("--json", options.json, "Print the figures as JSON");
    app.add_option("--only", options.only,
                   "Only the situations whose names contain this text; or \"corners\", or a section");
    app.add_option("--instruction-set", options.sets,
                   "sse2, avx2 or avx512; may be given again (default: the best one)");
    app.add_flag("--peers", options.peers, "Compare with Faust, ffmpeg and Csound too");
    app.add_flag("--window", options.window,
                 "Time the editor's window too, on an X server that nobody sees (not on the page)");
    app.add_option("--page", options.page,
                   "Keep the figures in this folder and write the page with the plots there");
    app.add_flag("--redraw", options.redraw, "Time nothing, write the page from the figures kept");
    if (auto help = tools::parseOrHelp(app, argumentCount, arguments))
        return help;
    tools::checkNothingIsEmpty(app);
    if (!options.page.empty() && !options.only.empty())
        throw tools::ToolError("--page shows every situation, so it does not go with --only");
    if (options.redraw && options.page.empty())
        throw tools::ToolError("--redraw: no --page was given");
    for (const std::string& set : options.sets)
        if (std::ranges::count(options.sets, set) > 1)
            throw tools::ToolError("--instruction-set: \"" + set + "\" is given twice");
    options.page = tools::settled(options.page).string();
    if (!options.page.empty() && !std::filesystem::is_directory(options.page))
        throw tools::ToolError("--page: there is no folder " + options.page);
    return std::nullopt;
}

void checkUsable(const std::string& set) {
    for (const dsp::Kernels* kernels : dsp::usableKernels())
        if (set == kernels->instructionSet)
            return;
    throw tools::ToolError("--instruction-set: this processor has no \"" + set + "\"");
}

/// What is missing is noticed now and not when all else is measured.
void checkPeers() {
    if (!std::filesystem::exists(QUILLON_FAUST_PROGRAMS))
        throw tools::ToolError("--peers: there are no Faust programs; `./quillon bench --peers` builds them");
    desk::processorSecondsOf({"ffmpeg", "-version"});
    desk::processorSecondsOf({"csound", "--version"});
}

/// The effect held to an instruction set, with all that is delivered beside it, as a copy in the folder.
HeldLibrary heldLibrary(const std::string& set, const std::filesystem::path& folder) {
    const std::filesystem::path library = folder / set / (set + ".so");
    std::filesystem::copy(QUILLON_STAGE, folder / set, std::filesystem::copy_options::recursive);
    std::filesystem::copy(QUILLON_HELD_LIBRARIES "/" + set + ".so", library);
    return {set, library.string()};
}

/// The effect as it is delivered, or held to the instruction sets that were asked for.
std::vector<HeldLibrary> librariesFor(const std::vector<std::string>& sets,
                                      const std::filesystem::path& folder) {
    if (sets.empty())
        return {{dsp::chosenKernels().instructionSet, QUILLON_LIBRARY}};
    std::vector<HeldLibrary> libraries;
    libraries.reserve(sets.size());
    for (const std::string& set : sets)
        libraries.push_back(heldLibrary(set, folder));
    return libraries;
}

std::string now() {
    const std::time_t time = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", std::gmtime(&time));
    return text;
}

void printRow(std::FILE* output, const Result& row) {
    std::fprintf(output, "%-70s %10s %10s %8s  %s\n", row.situation.c_str(),
                 valueText(row, row.built).c_str(), valueText(row, row.other).c_str(),
                 (row.isCount() ? "" : fixed(row.times(), 2)).c_str(), row.against.c_str());
    std::fflush(output);
}

/// With other programs too, or without: what they cost does not depend on the effect's instruction set.
Run measure(const HeldLibrary& held, const Options& options, bool programs, std::FILE* output) {
    Run run{now(), desk::processorName(), held.instructionSet, {}};
    if (!options.json)
        std::fprintf(output, "%-70s %10s %10s %8s  %s\n", ("With " + held.instructionSet).c_str(), "effect",
                     "other", "times", "which is");
    runSuite({held.path, held.instructionSet, options.only, options.peers, programs, options.window,
              QUILLON_FAUST_PROGRAMS},
             [&](const Result& row) {
                 run.results.push_back(row);
                 if (!options.json)
                     printRow(output, row);
             });
    return run;
}

/// With two decimals.
double rounded(double value) {
    return std::round(value * 100) / 100;
}

void printJson(std::FILE* output, const std::vector<Run>& runs) {
    auto list = nlohmann::ordered_json::array();
    for (const Run& run : runs) {
        auto rows = nlohmann::ordered_json::array();
        for (const Result& row : run.results)
            rows.push_back({{"section", row.section},
                            {"case", row.situation},
                            {"against", row.against},
                            {"unit", row.isCount() ? "page faults" : "ns"},
                            {"effect", rounded(row.built)},
                            {"other", rounded(row.other)}});
        list.push_back({{"when", run.when},
                        {"processor", tools::utf8(run.processor)},
                        {"instructionSet", run.instructionSet},
                        {"rows", std::move(rows)}});
    }
    std::fprintf(output, "%s\n", list.dump(2).c_str());
}

void run(const Options& options) {
    for (const std::string& set : options.sets)
        checkUsable(set);
    if (options.peers && !options.redraw)
        checkPeers();
    std::FILE* const output = desk::takeOwnOutput();
    const std::string kept = options.page + "/performance_runs.tsv";
    // A file that is spoilt is noticed now and not when all is measured.
    if (!options.page.empty())
        static_cast<void>(readRuns(kept));
    if (!options.redraw) {
        // Before this process stays on one processor, where the server would be in its way.
        std::optional<desk::VirtualDisplay> display;
        if (options.window)
            display.emplace(kDisplayWidth, kDisplayHeight);
        desk::stayOnThisProcessor();
        desk::takeLargeBlocksFresh();
        const desk::PrivateFolder privateFolder;
        desk::keepSettingsIn(privateFolder.path());
        std::vector<Run> runs;
        for (const HeldLibrary& held : librariesFor(options.sets, privateFolder.path())) {
            runs.push_back(measure(held, options, options.peers && runs.empty(), output));
            if (runs.back().results.empty())
                throw tools::ToolError("--only: the name of no situation contains \"" + options.only + "\"");
            if (!options.page.empty())
                appendRun(kept, runs.back());
        }
        if (options.json)
            printJson(output, runs);
    }
    if (!options.page.empty())
        writePerformancePage(options.page, readRuns(kept));
}

} // namespace

int main(int argumentCount, char** arguments) {
    const desk::AbruptEndWatch watch("quillon-bench", host::LibraryCall::describe);
    desk::leaveDisplay();
    try {
        Options options;
        if (const auto help = readOptions(options, argumentCount, arguments))
            std::fputs(help->c_str(), stdout);
        else
            run(options);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillon-bench: %s\n", tools::printable(error.what()).c_str());
        return kExitFailure;
    }
}
