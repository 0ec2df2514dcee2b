#include "bench/runs_file.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

std::string textOf(const std::string& path) {
    const auto bytes = readFile(path);
    return {bytes.begin(), bytes.end()};
}

bench::Run sampleRun(const std::string& when) {
    return {when,
            "A processor @ 2.50GHz",
            "avx2",
            {{"sound", "8 taps, cubic", "reference", 50.0, 150.0},
             {"faust", "8 taps, cubic", "faust -vec", 50.0, 200.0},
             {"faust", "8 taps, cubic", "faust", 50.0, 125.0}}};
}

TEST(RunsFile, GivesBackWhatWasPutIn) {
    const ScratchFolder folder;
    const std::string path = folder.file("runs.tsv");
    bench::appendRun(path, sampleRun("2026-01-01 10:00"));
    bench::appendRun(path, sampleRun("2026-01-02 10:00"));
    const auto runs = bench::readRuns(path);
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].when, "2026-01-01 10:00");
    EXPECT_EQ(runs[1].when, "2026-01-02 10:00");
    EXPECT_EQ(runs[1].processor, "A processor @ 2.50GHz");
    EXPECT_EQ(runs[1].instructionSet, "avx2");
    ASSERT_EQ(runs[1].results.size(), 3u);
    EXPECT_EQ(runs[1].results[1].against, "faust -vec");
    EXPECT_DOUBLE_EQ(runs[1].results[1].other, 200.0);
}

TEST(RunsFile, HoldsNoRunsWhereThereIsNone) {
    const ScratchFolder folder;
    EXPECT_TRUE(bench::readRuns(folder.file("runs.tsv")).empty());
}

TEST(RunsFile, IsRefusedWhenItHoldsSomethingElse) {
    const ScratchFolder folder;
    folder.writeText("words.tsv", "only words\n");
    EXPECT_THROW(bench::readRuns(folder.file("words.tsv")), std::runtime_error);
    bench::appendRun(folder.file("runs.tsv"), sampleRun("2026-01-01 10:00"));
    const std::string good = textOf(folder.file("runs.tsv"));
    folder.writeText("runs.tsv", good + "a line\twith two fields\n");
    EXPECT_THROW(bench::readRuns(folder.file("runs.tsv")), std::runtime_error);
    folder.writeText("runs.tsv", good + "when\tprocessor\tavx2\tsound\t8 taps\treference\tfast\t1.0\n");
    EXPECT_THROW(bench::readRuns(folder.file("runs.tsv")), std::runtime_error);
}

TEST(RunsFile, KeepsANumberThatIsNoneAtAll) {
    const ScratchFolder folder;
    bench::Run run = sampleRun("2026-01-01 10:00");
    run.results.push_back({"faults", "first block of 64", "reference", 0.0, 4096.0});
    bench::appendRun(folder.file("runs.tsv"), run);
    const auto runs = bench::readRuns(folder.file("runs.tsv"));
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].results.back().built, 0.0);
    EXPECT_EQ(runs[0].results.back().other, 4096.0);
}

TEST(RunsFile, FindsTheStrongestOpponent) {
    const bench::Run run = sampleRun("2026-01-01 10:00");
    ASSERT_NE(run.find("faust", "8 taps, cubic"), nullptr);
    EXPECT_EQ(run.find("faust", "8 taps, cubic")->against, "faust");
    EXPECT_EQ(run.find("faust", "9 taps, cubic"), nullptr);
}

} // namespace
