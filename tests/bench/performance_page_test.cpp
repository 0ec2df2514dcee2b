#include "bench/performance_page.h"

#include "bench/sound_case.h"
#include "bench/value_text.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using bench::Read;
using bench::Run;

std::string textOf(const std::string& path) {
    const auto bytes = readFile(path);
    return {bytes.begin(), bytes.end()};
}

/// A run in which each situation takes a nanosecond more than the one before, and the reference `times` as
/// long.
Run wholeRun(const std::string& when, const std::string& set, double times) {
    Run run{when, "A processor", set, {}};
    double built = 10.0;
    for (const bench::SoundCase& situation : bench::soundCases()) {
        run.results.push_back({"sound", situation.name(), "reference", built, built * times});
        built += 1.0;
    }
    for (const Read read : {Read::whole, Read::linear, Read::cubic})
        for (const bench::SoundCase& situation : bench::costCases(read))
            run.results.push_back({"cost", situation.name(), "itself", built += 1.0, built});
    run.results.push_back({"calls", "one new instance", "reference", 2.0e6, 30.0e6});
    return run;
}

/// The same with corners of each kind.
Run runWithCorners(const std::string& when, const std::string& set) {
    Run run = wholeRun(when, set, 2.0);
    double times = 1.0;
    for (const bench::SoundCase& situation : bench::shortBlockCases())
        run.results.push_back({"blocks", situation.name(), "reference", 50.0, 50.0 * (times += 0.1)});
    run.results.push_back({"after", "silence after a sound", "reference", 90.0, 270.0});
    run.results.push_back({"after", "silence after a sound", "itself, fresh", 90.0, 20.0});
    run.results.push_back({"clearing", "after a resume", "reference", 120.0, 480.0});
    run.results.push_back({"clearing", "after a resume", "itself, going on", 120.0, 100.0});
    run.results.push_back({"instances", "Slow Dawn (20 taps)", "reference", 100.0, 1000.0});
    run.results.push_back({"faults", "first block", "reference", 0.0, 3.0});
    return run;
}

/// The page's lines, and those of its tables with their places.
struct Lines {
    explicit Lines(const std::string& text) {
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            all.push_back(line);
    }
    std::vector<std::string> headings(const std::string& mark) const {
        std::vector<std::string> found;
        for (const std::string& line : all)
            if (line.starts_with(mark + " "))
                found.push_back(line.substr(mark.size() + 1));
        return found;
    }
    bool isRow(std::size_t line) const { return line < all.size() && all[line].starts_with("|"); }
    /// The first lines of the tables, with their numbers of rows.
    std::vector<std::pair<std::size_t, std::size_t>> tables() const {
        std::vector<std::pair<std::size_t, std::size_t>> found;
        for (std::size_t line = 0; line < all.size(); ++line)
            if (all[line].starts_with("| ---")) {
                std::size_t rows = 0;
                while (isRow(line + 1 + rows))
                    ++rows;
                found.emplace_back(line - 1, rows);
            }
        return found;
    }
    std::vector<std::string> all;
};

/// Behind the name of a row.
std::vector<std::string> valuesOf(const std::string& row) {
    std::vector<std::string> values;
    std::istringstream stream(row.substr(row.find('|', 1) + 1));
    for (std::string field; std::getline(stream, field, '|');) {
        field.erase(0, field.find_first_not_of(' '));
        values.push_back(field.substr(0, field.find_last_not_of(' ') + 1));
    }
    return values;
}

class PerformancePage : public testing::Test {
  protected:
    std::string page(const std::vector<bench::Run>& runs) {
        bench::writePerformancePage(folder.file("."), runs);
        return textOf(folder.file("performance.md"));
    }
    ScratchFolder folder;
};

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(PerformancePage, ShowsTheLastThreeRunsOfEachInstructionSetSideBySide) {
    const std::string text = page({wholeRun("monday", "avx512", 2.0), wholeRun("tuesday", "avx512", 3.0),
                                   wholeRun("tuesday", "avx2", 6.0), wholeRun("wednesday", "avx512", 4.0),
                                   wholeRun("thursday", "avx512", 5.0)});
    EXPECT_TRUE(has(text, "| AVX-512 | tuesday | wednesday | thursday |"));
    EXPECT_TRUE(has(text, "| 128 taps, cubic, spread, at rest, blocks of 512 | 3.0 | 4.0 | 5.0 |"));
    EXPECT_TRUE(has(text, "| AVX2 | tuesday |"));
    EXPECT_FALSE(has(text, "monday"));
}

TEST_F(PerformancePage, PutsATableInThePlaceOfEveryMark) {
    const std::string text = page({wholeRun("monday", "avx512", 2.0)});
    EXPECT_FALSE(has(text, "<!--"));
    EXPECT_TRUE(has(text, "| one new instance | 2000 µs | 30.0 ms | 15.0 |"));
}

TEST_F(PerformancePage, BreaksTheCostDownIntoPartsThatAddUp) {
    bench::Run run = wholeRun("monday", "avx2", 2.0);
    const auto set = [&](const bench::SoundCase& situation, double built) {
        for (bench::Result& result : run.results)
            if (result.section == "cost" && result.situation == situation.name())
                result.built = built;
    };
    const auto cases = bench::costCases(Read::whole);
    set(cases[0], 31.0);
    set(cases[1], 31.0 + 127.0);
    set(cases[2], 200.0);
    const std::string text = page({run});
    EXPECT_TRUE(has(text, "| what does not depend on the taps | 30.0 |"));
    EXPECT_TRUE(has(text, "| 128 taps near together: finding, reading, interpolating, adding | 128.0 |"));
    EXPECT_TRUE(has(text, "| having them all over the memory | 42.0 |"));
    EXPECT_TRUE(has(text, "| **together, as measured** | 200.0 |"));
}

TEST_F(PerformancePage, TakesTheLeastDisturbedMeasurementOfALimit) {
    bench::Run run = wholeRun("monday", "avx512", 2.0);
    for (const double time : {12.0, 11.0, 14.0})
        run.results.push_back({"limits", "128 taps", "waiting", 100.0, time});
    EXPECT_TRUE(has(page({run}), "| waiting | 11.0 |"));
}

TEST_F(PerformancePage, IsRefusedWithoutWhatItIsDerivedFrom) {
    bench::Run run = wholeRun("monday", "avx512", 2.0);
    std::erase_if(run.results, [](const bench::Result& row) { return row.section == "cost"; });
    EXPECT_THROW(page({run}), std::runtime_error);
}

TEST_F(PerformancePage, BeginsWithTheInstancesThatACoreCarries) {
    const std::string text = page({runWithCorners("monday", "avx512")});
    // 208.3 and 20.8 times 100 and 1000 ns are a sample at 48 kHz.
    EXPECT_TRUE(has(text, "| Slow Dawn (20 taps) | 208 | 20 | 10.0 |"));
    const std::string plot = textOf(folder.file("images/performance_instances.svg"));
    EXPECT_TRUE(has(plot, ">Slow Dawn (20 taps)<"));
    EXPECT_TRUE(has(plot, ">208<"));
    EXPECT_TRUE(has(plot, ">20<"));
    EXPECT_LT(text.find("performance_instances.svg"), text.find("performance.svg"));
}

TEST_F(PerformancePage, PutsItsSectionsInThisOrder) {
    bench::Run run = runWithCorners("monday", "avx512");
    for (const char* kind : {"faust", "programs"})
        run.results.push_back({kind, bench::SoundCase{}.name(), "another", 50.0, 100.0});
    const Lines lines(page({run}));
    EXPECT_EQ(lines.headings("##"),
              (std::vector<std::string>{"How many instances run at once",
                                        "How it compares with the plain loop", "Corner cases",
                                        "The other calls of a host", "How it is done", "Where the time goes",
                                        "What else one might use", "How it is measured", "All figures"}));
}

TEST_F(PerformancePage, PutsItsLongTablesLast) {
    constexpr std::size_t kLong = 12;
    const Lines lines(page({runWithCorners("monday", "avx512"), runWithCorners("monday", "avx2")}));
    const auto end = std::ranges::find(lines.all, "## All figures");
    ASSERT_NE(end, lines.all.end());
    std::size_t longOnes = 0;
    for (const auto& [first, rows] : lines.tables()) {
        const bool isLast = static_cast<std::ptrdiff_t>(first) > end - lines.all.begin();
        longOnes += rows > kLong;
        EXPECT_TRUE(isLast || rows <= kLong) << lines.all[first] << " has " << rows << " rows";
    }
    EXPECT_EQ(longOnes, 2u) << "all sounds and all short blocks";
}

TEST_F(PerformancePage, HasNoEmptyRowsAndTables) {
    bench::Run old = wholeRun("monday", "avx512", 2.0);
    std::erase_if(old.results, [](const bench::Result& row) { return has(row.situation, "silence"); });
    for (const auto& runs :
         {std::vector<bench::Run>{old}, std::vector<bench::Run>{old, runWithCorners("tuesday", "avx2")},
          std::vector<bench::Run>{runWithCorners("tuesday", "avx2"), old}}) {
        const Lines lines(page(runs));
        const auto tables = lines.tables();
        EXPECT_FALSE(tables.empty());
        for (const auto& [first, rows] : tables) {
            EXPECT_GT(rows, 0u) << lines.all[first];
            const std::size_t columns = valuesOf(lines.all[first]).size();
            for (std::size_t row = first + 2; row < first + 2 + rows; ++row) {
                const auto values = valuesOf(lines.all[row]);
                EXPECT_EQ(values.size(), columns) << lines.all[row];
                EXPECT_TRUE(std::ranges::any_of(values, [](const std::string& value) {
                    return !value.empty() && value != "–";
                })) << lines.all[row];
                EXPECT_EQ(std::ranges::count(values, ""), 0) << lines.all[row];
            }
        }
    }
}

TEST_F(PerformancePage, LeavesOutTheSectionsThatNoRunHasFiguresFor) {
    const Lines lines(page({wholeRun("monday", "avx512", 2.0)}));
    for (const char* name : {"How many instances run at once", "Corner cases", "What else one might use"})
        EXPECT_EQ(std::ranges::count(lines.headings("##"), name), 0) << name;
    EXPECT_EQ(std::ranges::count(lines.headings("##"), "How it is done"), 1);
    for (const std::string& heading : lines.headings("###"))
        EXPECT_EQ(
            std::ranges::count(std::vector<std::string>{"Short blocks", "After a sound", "Faust"}, heading),
            0)
            << heading;
}

TEST_F(PerformancePage, ShowsFiguresThatOnlyAnOlderRunHas) {
    const std::string text = page({runWithCorners("monday", "avx512"), wholeRun("tuesday", "avx512", 2.0)});
    EXPECT_TRUE(has(text, "| Slow Dawn (20 taps) | 208 | 20 | 10.0 |"));
    EXPECT_TRUE(has(text, "Measured on monday UTC"));
}

TEST_F(PerformancePage, HasRowsForEveryCorner) {
    const std::string text = page({runWithCorners("monday", "avx512"), wholeRun("monday", "avx2", 2.0)});
    EXPECT_TRUE(has(text, "| AVX-512, frames in a block | 1 | 2 | 4 | 8 | 16 | 65 |"));
    EXPECT_TRUE(has(text, "| 128 taps, cubic, spread, at rest | 1.1 | 1.2 | 1.3 | 1.4 | 1.5 | 1.6 |"));
    EXPECT_TRUE(has(text, "| silence after a sound | 90.0 ns | 3.0 | 4.50 |"));
    EXPECT_TRUE(has(text, "| after a resume | 120 ns | 4.0 | 1.20 |"));
    EXPECT_TRUE(has(text, "| first block | 0 | 3 |"));
}

TEST_F(PerformancePage, NamesTheLeastGainOfEachKindOfCorner) {
    const std::string text = page({runWithCorners("monday", "avx512")});
    EXPECT_TRUE(has(text, "| short blocks: 128 taps, cubic, spread, at rest, blocks of 1 | 1.1 |"));
    EXPECT_TRUE(has(text, "| after a sound: silence after a sound | 3.0 |"));
    EXPECT_TRUE(has(text, "| after a clearing: after a resume | 4.0 |"));
}

TEST_F(PerformancePage, IsWrittenFromTheRunsThatAreKept) {
    const std::string text = page(bench::readRuns(QUILLON_KEPT_RUNS));
    EXPECT_TRUE(has(text, "| 128 taps, cubic, spread, at rest, blocks of 64 |"));
}

TEST_F(PerformancePage, SaysWhereAProgramIsLostInNoise) {
    bench::Run run = runWithCorners("monday", "avx512");
    const std::string situation = bench::SoundCase{}.name();
    run.results.push_back({"programs", situation, "heard", 50.0, 100.0});
    run.results.push_back({"programs", situation, "lost", 50.0, -1.0});
    const std::string text = page({run});
    EXPECT_TRUE(has(text, "heard | 50.0 ns | 100 ns | 2.0 |")) << text;
    EXPECT_TRUE(has(text, "lost | 50.0 ns | lost in noise | – |")) << text;
    const std::string plot = textOf(folder.file("images/performance_peers.svg"));
    EXPECT_TRUE(has(plot, "heard"));
    EXPECT_FALSE(has(plot, "lost"));
}

TEST_F(PerformancePage, ShowsOnlyPlotsThatAreThere) {
    for (const bench::Run& run : {wholeRun("monday", "avx512", 2.0), runWithCorners("monday", "avx512")})
        for (const std::string& line : Lines(page({run})).all)
            if (line.starts_with("![")) {
                const std::size_t place = line.find('(') + 1;
                const std::string file = line.substr(place, line.find(')', place) - place);
                EXPECT_TRUE(std::filesystem::exists(folder.file(file))) << line;
            }
}

TEST_F(PerformancePage, DrawsItsPlots) {
    bench::Run run = runWithCorners("monday", "avx512");
    run.results.push_back({"faust", bench::SoundCase{}.name(), "faust", 50.0, 100.0});
    page({run});
    for (const char* name :
         {"performance", "performance_cost", "performance_instances", "performance_peers"}) {
        const std::string plot = textOf(folder.file(std::string("images/") + name + ".svg"));
        EXPECT_TRUE(plot.starts_with("<svg")) << name;
        EXPECT_TRUE(plot.ends_with("</svg>\n")) << name;
    }
}

TEST(TimeText, ChoosesTheUnit) {
    EXPECT_EQ(bench::timeText(45.23), "45.2 ns");
    EXPECT_EQ(bench::timeText(163.7), "164 ns");
    EXPECT_EQ(bench::timeText(12345.0), "12.3 µs");
    EXPECT_EQ(bench::timeText(12.3e6), "12.3 ms");
    EXPECT_EQ(bench::timeText(1.5e12), "1500 s");
}

TEST(ValueText, GivesNumbersWithoutUnitAndRatio) {
    const bench::Result faults{"faults", "first block", "reference", 0.0, 4096.0};
    EXPECT_EQ(bench::valueText(faults, faults.other), "4096");
    EXPECT_EQ(bench::timesText(faults), "");
    const bench::Result sound{"sound", "8 taps", "reference", 50.0, 125.0};
    EXPECT_EQ(bench::valueText(sound, sound.other), "125 ns");
    EXPECT_EQ(bench::timesText(sound), "2.5");
    const bench::Result lost{"programs", "128 taps", "a program", 50.0, -125.0};
    EXPECT_EQ(bench::timesText(lost), "");
}

TEST(SoundCases, HaveNamesThatDifferInTheTableOfShortBlocks) {
    std::vector<std::string> names;
    for (const bench::SoundCase& situation : bench::shortBlockCases())
        names.push_back(situation.name());
    EXPECT_EQ(names.size(), bench::shortBlockRows().size() * bench::kShortBlocks.size());
    std::ranges::sort(names);
    EXPECT_EQ(std::ranges::adjacent_find(names), names.end());
}

TEST(SoundCases, HoldAllThatIsShownFirst) {
    std::vector<std::string> names;
    for (const bench::SoundCase& situation : bench::soundCases())
        names.push_back(situation.name());
    for (const bench::SoundCase& situation : bench::chosenCases())
        EXPECT_EQ(std::count(names.begin(), names.end(), situation.name()), 1) << situation.name();
}

} // namespace
