#include "bench/performance_page.h"

#include "bench/sound_case.h"
#include "bench/value_text.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>

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

TEST_F(PerformancePage, DrawsItsPlots) {
    page({wholeRun("monday", "avx512", 2.0)});
    for (const char* name : {"performance", "performance_cost", "performance_peers"}) {
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

TEST(SoundCases, HoldAllThatIsShownFirst) {
    std::vector<std::string> names;
    for (const bench::SoundCase& situation : bench::soundCases())
        names.push_back(situation.name());
    for (const bench::SoundCase& situation : bench::chosenCases())
        EXPECT_EQ(std::count(names.begin(), names.end(), situation.name()), 1) << situation.name();
}

} // namespace
