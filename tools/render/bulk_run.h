// Renders many files, each in a process of its own, several at a time.
#pragma once

#include "tools/render/bulk_display.h"
#include "tools/render/bulk_plan.h"
#include "tools/render/bulk_record.h"
#include "tools/render/options.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tools::render {

/// What has become of one job.
struct BulkOutcome {
    enum class State {
        waiting,  ///< not begun, or stopped
        rendered, ///< now
        kept,     ///< it was there already, made from the same
        failed,
    };
    State state = State::waiting;
    std::string reason; ///< of a failure
    std::string report; ///< JSON of the rendering; empty if there is none
};

/// What this tool says and how it ends in a process of its own.
struct ToolRun {
    int exitCode = 0;
    std::string output;
    std::string reason; ///< its last complaint, or how it ended
};

/// Runs this tool with the words and waits for it. `startFolder` is the current directory of the words.
/// Throws Interrupted.
ToolRun runThisTool(const std::vector<std::string>& words, const std::filesystem::path& startFolder);

class BulkRun {
  public:
    /// `startFolder`: where relative paths among the words passed on count from. `library`: of the effect.
    /// The process's current directory is a private one. All must outlive the object.
    BulkRun(const Options& options, const std::vector<BulkJob>& jobs,
            const std::filesystem::path& startFolder, const std::filesystem::path& library);
    ~BulkRun();

    /// Does what is left to do, and gives what became of each job. After a request to end, the jobs that run
    /// are stopped and the others left. Throws ToolError if the record cannot be written.
    std::vector<BulkOutcome> run();

  private:
    class RunningJob;

    void workThroughJobs();
    void collectFinished();
    void begin(std::size_t job);
    bool isMade(const BulkJob& job, const RecordEntry* known, const std::string& fingerprint) const;
    void keep(std::size_t job, const RecordEntry& known);
    void start(std::size_t job, const std::string& fingerprint);
    void finish(RunningJob& running);
    void succeed(const RunningJob& running, const std::string& report);
    void fail(std::size_t job, const std::string& reason);
    void stopAll();
    void makeFolderFor(const std::filesystem::path& file);
    void removeEmptyFolders();
    std::string whyNotToBeReplaced(std::size_t job, const RecordEntry* known) const;
    std::string fingerprintOf(const BulkJob& job);
    const std::string& hashOf(const std::filesystem::path& file);
    double weightOf(const BulkJob& job) const;
    void showProgress();
    std::string titleOf(std::size_t job) const;

    const Options& options_;
    const std::vector<BulkJob>& jobs_;
    std::filesystem::path startFolder_;
    std::filesystem::path library_;
    BulkRecord record_;
    BulkDisplay display_;
    std::vector<BulkOutcome> outcomes_;
    std::vector<std::unique_ptr<RunningJob>> running_;
    std::size_t next_ = 0;
    bool isStopping_ = false;
    std::map<std::filesystem::path, std::string> hashes_;
    std::vector<std::filesystem::path> madeFolders_;
    BulkProgress progress_;
    double weightDone_ = 0.0, weightLeft_ = 0.0; ///< bytes, about; weightLeft_ includes what runs
    std::chrono::steady_clock::time_point began_, lastShown_;
};

} // namespace tools::render
