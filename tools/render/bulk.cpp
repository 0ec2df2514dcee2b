#include "tools/render/bulk.h"

#include "desk/private_folder.h"
#include "tools/common/interrupt.h"
#include "tools/common/output_file.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"
#include "tools/render/bulk_plan.h"
#include "tools/render/bulk_run.h"
#include "tools/render/contact_sheet.h"
#include "tools/render/program_choice.h"
#include "tools/render/sound_files.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <vector>

namespace tools::render {

namespace {

namespace files = std::filesystem;
using Json = nlohmann::ordered_json;
using State = BulkOutcome::State;

/// What the effect says about itself.
struct EffectList {
    files::path library;
    std::vector<std::string> programs;
};

/// Asks the effect in a process of its own. What is wrong with the settings is found here, once for all
/// files.
EffectList askEffect(const BulkOptions& bulk, const files::path& startFolder) {
    std::vector<std::string> words = {"--list", "--json"};
    words.insert(words.end(), bulk.listWords.begin(), bulk.listWords.end());
    const ToolRun result = runThisTool(words, startFolder);
    if (result.exitCode != 0)
        throw ToolError(result.reason);
    const Json json = Json::parse(result.output);
    EffectList list;
    const std::string library = json.at("library");
    list.library = std::u8string(library.begin(), library.end());
    for (const Json& program : json.at("programs"))
        list.programs.push_back(program.at("name"));
    return list;
}

std::vector<ProgramName> chosenPrograms(const BulkOptions& bulk, const EffectList& effect) {
    std::vector<std::string> texts = bulk.programs;
    if (texts.empty() && bulk.isContactSheet)
        texts = {"*"};
    std::vector<ProgramName> programs;
    for (const std::int32_t number : choosePrograms(effect.programs, texts))
        programs.push_back({number, effect.programs[static_cast<std::size_t>(number)]});
    return programs;
}

void checkFolder(const files::path& folder) {
    std::error_code error;
    if (files::exists(folder, error) && !files::is_directory(folder, error))
        throw ToolError(folder.string() + " is a file; give a folder to write to");
}

const char* stateName(State state) {
    switch (state) {
    case State::rendered:
        return "rendered";
    case State::kept:
        return "kept";
    case State::failed:
        return "failed";
    case State::waiting:
        break;
    }
    return "notRendered";
}

class Bulk {
  public:
    Bulk(const Options& options, std::FILE* output)
        : options_(options), bulk_(*options.bulk), output_(output) {}

    bool run() {
        const auto began = std::chrono::steady_clock::now();
        const files::path startFolder = files::current_path();
        checkFolder(bulk_.folder);
        const std::vector<SoundFile> inputs = findSoundFiles(bulk_.inputs, bulk_.folder);
        const desk::PrivateFolder folder;
        const EffectList effect = askEffect(bulk_, startFolder);
        const std::string ending = bulk_.isContactSheet ? endingForBrowsers(inputs) : bulk_.ending;
        jobs_ = planJobs(inputs, chosenPrograms(bulk_, effect), bulk_.folder, ending);
        if (bulk_.isContactSheet) {
            arrangeForContactSheet(jobs_, bulk_.folder);
            checkPage(ending);
        }
        outcomes_ = BulkRun(options_, jobs_, startFolder, effect.library).run();
        if (hasPage())
            writePage(inputs.front().file, ending, effect.library.stem().string());
        seconds_ = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
        report();
        return count(State::failed) == 0;
    }

  private:
    std::size_t count(State state) const {
        return static_cast<std::size_t>(std::ranges::count(outcomes_, state, &BulkOutcome::state));
    }

    /// The type that was asked for, or that of the input, if browsers play it.
    std::string endingForBrowsers(const std::vector<SoundFile>& inputs) const {
        if (inputs.size() != 1)
            throw ToolError("--contact-sheet plays one file, and " + inQuotes(bulk_.inputs.front()) +
                            " means " + std::to_string(inputs.size()));
        const std::string own = lowered(inputs.front().file.extension().string());
        const std::string& ending = bulk_.ending.empty() ? own : bulk_.ending;
        for (const char* played : {".wav", ".flac", ".ogg"})
            if (ending == played)
                return ending;
        if (!bulk_.ending.empty())
            throw ToolError("--type " + bulk_.ending.substr(1) +
                            ": browsers do not play such files; use wav, flac or ogg");
        return ".wav";
    }

    bool hasPage() const {
        return bulk_.isContactSheet && !isInterrupted() && count(State::rendered) + count(State::kept) > 0;
    }

    /// Without a record, the page and the dry sound are somebody else's.
    void checkPage(const std::string& ending) const {
        std::error_code error;
        if (bulk_.again || files::exists(bulk_.folder / kRecordName, error))
            return;
        for (const files::path& file : {bulk_.folder / kContactSheetName, bulk_.folder / ("dry" + ending)})
            if (files::exists(file, error))
                throw ToolError(file.string() +
                                " is there already and is not from this tool; --again replaces it");
    }

    void writePage(const files::path& input, const std::string& ending, const std::string& effect) {
        const files::path dry = copyDrySound(input, bulk_.folder, ending, options_.format);
        OutputFile page(bulk_.folder / kContactSheetName);
        std::ofstream stream(page.temporary(), std::ios::binary);
        stream << contactSheetText({bulk_.folder, input, dry, effect, jobs_, outcomes_});
        stream.close();
        if (!stream)
            throw ToolError(page.target().string() + " cannot be written");
        page.commit();
    }

    void report() const {
        if (options_.json)
            print(json());
        else if (!options_.quiet && !isInterrupted())
            print(summary());
        for (std::size_t i = 0; i < jobs_.size(); ++i)
            if (outcomes_[i].state == State::failed)
                std::fprintf(stderr, "quillon-render: %s\n", printable(failureText(i)).c_str());
        if (isInterrupted() && count(State::waiting) > 0)
            throw Interrupted("stopped; " + std::to_string(count(State::rendered) + count(State::kept)) +
                              " of " + std::to_string(jobs_.size()) +
                              " files are written, and the same command goes on from there");
    }

    void print(const std::string& text) const {
        if (std::fputs(text.c_str(), output_) < 0 || std::fflush(output_) != 0)
            throw ToolError("standard output cannot be written; the files are in " + bulk_.folder.string());
    }

    /// The reason, after what it is about unless the reason says that itself.
    std::string failureText(std::size_t job) const {
        const BulkJob& failed = jobs_[job];
        const std::string& reason = outcomes_[job].reason;
        std::string text = reason.find(failed.input.string()) == std::string::npos &&
                                   reason.find(failed.output.string()) == std::string::npos
                               ? failed.input.string() + ": " + reason
                               : reason;
        if (failed.program)
            text += " (program " + std::to_string(failed.program->number) + ", " + failed.program->name + ")";
        return text;
    }

    std::string summary() const {
        std::string text = std::to_string(jobs_.size()) + (jobs_.size() == 1 ? " file" : " files") + " in " +
                           bulk_.folder.string() + ": " + std::to_string(count(State::rendered)) +
                           " rendered";
        if (count(State::kept) > 0)
            text += ", " + std::to_string(count(State::kept)) + " already there";
        if (count(State::failed) > 0)
            text += ", " + std::to_string(count(State::failed)) + " failed";
        text += "; " + roughTime(seconds_) + "\n";
        if (hasPage())
            text += "open " + (bulk_.folder / kContactSheetName).string() + " in a browser\n";
        return text;
    }

    std::string json() const {
        Json list = Json::array();
        for (std::size_t i = 0; i < jobs_.size(); ++i) {
            const BulkJob& job = jobs_[i];
            const BulkOutcome& outcome = outcomes_[i];
            Json entry = {{"input", utf8(job.input.string())},
                          {"output", utf8(job.output.string())},
                          {"state", stateName(outcome.state)}};
            entry["program"] = job.program ? Json(job.program->number) : Json();
            entry["error"] = outcome.reason.empty() ? Json() : Json(utf8(outcome.reason));
            entry["report"] = outcome.report.empty() ? Json() : Json::parse(outcome.report, nullptr, false);
            list.push_back(std::move(entry));
        }
        const Json all = {{"folder", utf8(bulk_.folder.string())},
                          {"rendered", count(State::rendered)},
                          {"kept", count(State::kept)},
                          {"failed", count(State::failed)},
                          {"notRendered", count(State::waiting)},
                          {"seconds", seconds_},
                          {"files", std::move(list)}};
        return all.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
    }

    const Options& options_;
    const BulkOptions& bulk_;
    std::FILE* output_;
    std::vector<BulkJob> jobs_;
    std::vector<BulkOutcome> outcomes_;
    double seconds_ = 0.0;
};

} // namespace

bool renderInBulk(const Options& options, std::FILE* output) {
    return Bulk(options, output).run();
}

} // namespace tools::render
