#include "tools/render/bulk_run.h"

#include "desk/child_process.h"
#include "desk/own_output.h"
#include "platform/module_folder.h"
#include "tools/common/input_file.h"
#include "tools/common/interrupt.h"
#include "tools/common/output_file.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"
#include "tools/render/content_hash.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace tools::render {

namespace {

namespace files = std::filesystem;
using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

constexpr auto kPause = std::chrono::milliseconds(5);
constexpr auto kDisplayPause = std::chrono::milliseconds(100);
/// A child that hangs in the effect ends itself after ten seconds, and so does this process.
constexpr auto kPatience = std::chrono::seconds(8);
constexpr std::string_view kToolPrefix = "quillon-render: ";

/// Changes with what a record means, so that older ones do not count.
constexpr int kRecordVersion = 1;

/// Beside each file, there is its pre-roll and its tail to play.
constexpr double kWeightOfTail = 8e6;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.emplace_back(trimmed(std::string_view(text).substr(begin, end - begin)));
        begin = end + 1;
    }
    return lines;
}

/// The tool's last complaint among all that was written to its standard error.
std::string lastComplaint(const std::string& errors) {
    std::string complaint;
    for (const std::string& line : linesOf(errors))
        if (line.starts_with(kToolPrefix) && !line.substr(kToolPrefix.size()).starts_with("warning: "))
            complaint = line.substr(kToolPrefix.size());
    return complaint;
}

/// How far a rendering says that it is: the last "NAME: 25 %".
double shareDone(const std::string& errors) {
    constexpr std::string_view ending = " %";
    double share = 0.0;
    for (const std::string& line : linesOf(errors)) {
        if (!line.ends_with(ending))
            continue;
        const std::string_view text = std::string_view(line).substr(0, line.size() - ending.size());
        if (const auto percent = numberFrom(text.substr(text.rfind(' ') + 1)))
            share = *percent / 100.0;
    }
    return share;
}

/// This tool in a process of its own; what it writes goes to files in the current directory.
class ToolProcess {
  public:
    ToolProcess(const std::vector<std::string>& words, const files::path& startFolder,
                const std::string& name)
        : output_(files::current_path() / (name + ".out")), errors_(files::current_path() / (name + ".err")),
          child_({platform::programPath(), words, startFolder, output_, errors_}) {}
    ~ToolProcess() {
        std::error_code ignored;
        files::remove(output_, ignored);
        files::remove(errors_, ignored);
    }
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    desk::ChildProcess& child() { return child_; }
    /// What it has written to standard error so far.
    std::string errors() const { return readText(errors_); }
    /// Nothing while it runs.
    std::optional<ToolRun> result() {
        const auto end = child_.end();
        if (!end)
            return std::nullopt;
        std::string reason = lastComplaint(errors());
        if (reason.empty() && end->exitCode != 0)
            reason = "the rendering ended with " +
                     (end->reason.empty() ? "exit code " + std::to_string(end->exitCode) : end->reason);
        return ToolRun{end->exitCode, readText(output_), reason};
    }

  private:
    files::path output_;
    files::path errors_;
    desk::ChildProcess child_;
};

/// Takes away what a process that was ended by force could not take away itself.
void removePartsOf(std::uint32_t process, const files::path& folder) {
    std::error_code error;
    for (files::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (isPartOf(process, entry->path()))
            files::remove(entry->path(), error);
}

/// The effect's library and what it reads from its own folder.
std::vector<files::path> filesOfEffect(const files::path& library) {
    std::vector<files::path> all = {library};
    std::error_code error;
    for (const char* name : {"default.fxb", "Pluginccmap.bin"})
        if (files::is_regular_file(library.parent_path() / name, error))
            all.push_back(library.parent_path() / name);
    return all;
}

BulkDisplay::Style displayStyle(const Options& options) {
    if (options.quiet)
        return BulkDisplay::Style::none;
    return desk::isTerminal(stderr) ? BulkDisplay::Style::line : BulkDisplay::Style::log;
}

} // namespace

ToolRun runThisTool(const std::vector<std::string>& words, const files::path& startFolder) {
    ToolProcess process(words, startFolder, "tool");
    for (;;) {
        stopIfInterrupted();
        if (auto result = process.result())
            return *result;
        std::this_thread::sleep_for(kPause);
    }
}

class BulkRun::RunningJob {
  public:
    RunningJob(std::size_t number, std::string madeFrom, const std::vector<std::string>& words,
               const files::path& startFolder)
        : job(number), fingerprint(std::move(madeFrom)), process(words, startFolder, std::to_string(number)) {
    }

    std::size_t job;
    std::string fingerprint;
    ToolProcess process;
};

BulkRun::BulkRun(const Options& options, const std::vector<BulkJob>& jobs, const files::path& startFolder,
                 const files::path& library)
    : options_(options), jobs_(jobs), startFolder_(startFolder), library_(library),
      record_(options.bulk->folder), display_(displayStyle(options)), outcomes_(jobs.size()) {
    progress_.files = jobs.size();
    for (const BulkJob& job : jobs)
        weightLeft_ += weightOf(job);
}

BulkRun::~BulkRun() = default;

std::vector<BulkOutcome> BulkRun::run() {
    makeFolderFor(options_.bulk->folder / kRecordName);
    record_.open();
    began_ = Clock::now();
    try {
        workThroughJobs();
    } catch (const Interrupted&) {
        stopAll();
    } catch (...) {
        stopAll();
        throw;
    }
    record_.removeIfEmpty();
    removeEmptyFolders();
    return std::move(outcomes_);
}

void BulkRun::workThroughJobs() {
    while (next_ < jobs_.size() || !running_.empty()) {
        stopIfInterrupted();
        collectFinished();
        while (next_ < jobs_.size() && running_.size() < options_.bulk->jobs)
            begin(next_++);
        showProgress();
        if (!running_.empty())
            std::this_thread::sleep_for(kPause);
    }
}

void BulkRun::collectFinished() {
    for (auto& running : running_)
        if (running->process.child().end()) {
            finish(*running);
            running.reset();
        }
    std::erase(running_, nullptr);
}

/// Starts the job unless its output is there already, or must not be replaced.
void BulkRun::begin(std::size_t job) {
    const BulkJob& wanted = jobs_[job];
    stopIfInterrupted();
    std::string fingerprint;
    try {
        fingerprint = fingerprintOf(wanted);
        const RecordEntry* known = record_.find(wanted.output);
        if (const std::string obstacle = whyNotToBeReplaced(job, known); !obstacle.empty())
            return fail(job, obstacle);
        if (isMade(wanted, known, fingerprint))
            return keep(job, *known);
        makeFolderFor(wanted.output);
        if (!wanted.plot.empty())
            makeFolderFor(wanted.plot);
    } catch (const ToolError& error) {
        return fail(job, error.what());
    }
    start(job, fingerprint);
}

/// Whether the output is there, made from the same.
bool BulkRun::isMade(const BulkJob& job, const RecordEntry* known, const std::string& fingerprint) const {
    std::error_code error;
    return known && known->isDone && known->fingerprint == fingerprint && !options_.bulk->again &&
           files::exists(job.output, error) && (job.plot.empty() || files::exists(job.plot, error));
}

void BulkRun::keep(std::size_t job, const RecordEntry& known) {
    outcomes_[job] = {BulkOutcome::State::kept, "", known.report};
    weightLeft_ -= weightOf(jobs_[job]);
    ++progress_.finished;
}

/// Empty if nothing is in the way.
std::string BulkRun::whyNotToBeReplaced(std::size_t job, const RecordEntry* known) const {
    if (options_.bulk->again)
        return "";
    for (const files::path& file : {jobs_[job].output, jobs_[job].plot}) {
        std::error_code error;
        if (file.empty() || !files::exists(file, error))
            continue;
        if (!known)
            return file.string() + " is there already and is not from this tool; --again replaces it";
        if (known->isDone && file == jobs_[job].output && !isUnchanged(file, *known))
            return file.string() + " has been changed since it was rendered; --again replaces it";
    }
    return "";
}

void BulkRun::start(std::size_t job, const std::string& fingerprint) {
    const BulkJob& wanted = jobs_[job];
    std::vector<std::string> words = {wanted.input.string(), wanted.output.string()};
    words.insert(words.end(), options_.bulk->words.begin(), options_.bulk->words.end());
    if (wanted.program)
        words.insert(words.end(), {"--program", std::to_string(wanted.program->number)});
    if (!wanted.plot.empty())
        words.insert(words.end(), {"--plot", wanted.plot.string()});
    words.emplace_back("--json");
    record_.begin(wanted.output);
    try {
        running_.push_back(std::make_unique<RunningJob>(job, fingerprint, words, startFolder_));
        progress_.current = titleOf(job);
    } catch (const std::runtime_error& error) {
        record_.abandon(wanted.output);
        fail(job, error.what());
    }
}

void BulkRun::finish(RunningJob& running) {
    const ToolRun result = *running.process.result();
    if (result.exitCode == 0)
        return succeed(running, result.output);
    const BulkJob& job = jobs_[running.job];
    record_.abandon(job.output);
    if (result.exitCode < 0) {
        const std::uint32_t process = running.process.child().id();
        removePartsOf(process, job.output.parent_path());
        removePartsOf(process, job.plot.parent_path());
    }
    if (!isStopping_ && !isInterrupted())
        fail(running.job, result.reason);
}

void BulkRun::succeed(const RunningJob& running, const std::string& report) {
    const BulkJob& job = jobs_[running.job];
    RecordEntry entry = entryFor(job.output);
    entry.fingerprint = running.fingerprint;
    entry.report = report;
    record_.finish(job.output, entry);
    outcomes_[running.job] = {BulkOutcome::State::rendered, "", report};
    weightLeft_ -= weightOf(job);
    weightDone_ += weightOf(job);
    ++progress_.finished;
    const std::string count = std::to_string(progress_.finished) + "/" + std::to_string(progress_.files);
    display_.log("[" + count + "] " + titleOf(running.job));
    const Json json = Json::parse(report, nullptr, false);
    if (json.is_object() && json.contains("warnings"))
        for (const Json& warning : json["warnings"])
            display_.say("quillon-render: warning: " + titleOf(running.job) + ": " +
                         printable(warning.get<std::string>()));
}

void BulkRun::fail(std::size_t job, const std::string& reason) {
    outcomes_[job] = {BulkOutcome::State::failed, reason, ""};
    weightLeft_ -= weightOf(jobs_[job]);
    ++progress_.finished;
    ++progress_.failed;
    const std::string count = std::to_string(progress_.finished) + "/" + std::to_string(progress_.files);
    display_.say("[" + count + "] " + titleOf(job) + " FAILED: " + printable(reason));
}

/// A request to end has reached the children, too, if it came from a terminal; a second one ends them at
/// once, which is no harm.
void BulkRun::stopAll() {
    isStopping_ = true;
    for (const auto& running : running_)
        running->process.child().requestEnd();
    const auto deadline = Clock::now() + kPatience;
    while (!running_.empty() && Clock::now() < deadline) {
        collectFinished();
        std::this_thread::sleep_for(kPause);
    }
    for (const auto& running : running_)
        running->process.child().endByForce();
    while (!running_.empty())
        collectFinished();
}

void BulkRun::makeFolderFor(const files::path& file) {
    std::vector<files::path> missing;
    std::error_code error;
    for (files::path folder = file.parent_path();
         !files::exists(folder, error) && folder != folder.parent_path(); folder = folder.parent_path())
        missing.push_back(folder);
    for (; !missing.empty(); missing.pop_back()) {
        files::create_directory(missing.back(), error);
        if (error)
            throw ToolError(missing.back().string() + " cannot be made: " + error.message());
        madeFolders_.push_back(missing.back());
    }
}

void BulkRun::removeEmptyFolders() {
    std::error_code ignored;
    for (; !madeFolders_.empty(); madeFolders_.pop_back())
        if (files::is_empty(madeFolders_.back(), ignored))
            files::remove(madeFolders_.back(), ignored);
}

std::string BulkRun::fingerprintOf(const BulkJob& job) {
    Json all = {kRecordVersion, QUILLON_VERSION, hashOf(job.input)};
    for (const files::path& file : filesOfEffect(library_))
        all.push_back(hashOf(file));
    for (const files::path& file : options_.bulk->files)
        all.push_back(hashOf(file));
    for (const std::string& word : options_.bulk->words)
        all.push_back(word);
    all.push_back(job.program ? Json(job.program->number) : Json());
    return contentHash(all.dump(-1, ' ', false, Json::error_handler_t::replace));
}

const std::string& BulkRun::hashOf(const files::path& file) {
    std::string& hash = hashes_[file];
    if (hash.empty())
        hash = contentHashOf(file);
    return hash;
}

double BulkRun::weightOf(const BulkJob& job) const {
    std::error_code error;
    const auto size = files::file_size(job.input, error);
    return kWeightOfTail + (error ? 0.0 : static_cast<double>(size));
}

void BulkRun::showProgress() {
    const auto now = Clock::now();
    if (displayStyle(options_) != BulkDisplay::Style::line || now - lastShown_ < kDisplayPause)
        return;
    lastShown_ = now;
    double done = weightDone_;
    for (const auto& running : running_)
        done += shareDone(running->process.errors()) * weightOf(jobs_[running->job]);
    const double left = weightLeft_ - (done - weightDone_);
    const double elapsed = std::chrono::duration<double>(now - began_).count();
    progress_.secondsLeft.reset();
    if (done > 0.0 && progress_.finished < progress_.files)
        progress_.secondsLeft = elapsed * left / done;
    display_.show(progress_);
}

std::string BulkRun::titleOf(std::size_t job) const {
    return printable(jobs_[job].output.lexically_relative(options_.bulk->folder).string());
}

} // namespace tools::render
