#include "tools/render/report.h"

#include "tools/common/effect_names.h"
#include "tools/common/text.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

namespace tools::render {

namespace {

/// A table whose columns are as wide as their widest entry.
class Table {
  public:
    void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
    std::string text() const {
        std::string result;
        for (const auto& row : rows_) {
            std::string line = "  ";
            for (std::size_t column = 0; column < row.size(); ++column) {
                line += row[column];
                if (column + 1 < row.size())
                    line.append(widthOf(column) - lettersIn(row[column]) + 2, ' ');
            }
            result += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
        }
        return result;
    }

  private:
    static std::size_t lettersIn(const std::string& text) {
        return static_cast<std::size_t>(
            std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
    }
    std::size_t widthOf(std::size_t column) const {
        std::size_t width = 0;
        for (const auto& row : rows_)
            if (column < row.size())
                width = std::max(width, lettersIn(row[column]));
        return width;
    }

    std::vector<std::vector<std::string>> rows_;
};

/// Without a sign on what is zero when rounded.
std::string levelWithUnit(double level, const char* unit) {
    const std::string text = fixedText(level, 1);
    return (text == "-0.0" ? "0.0" : text) + " " + unit;
}

std::string integratedText(const Loudness& loudness, std::int64_t frames, int sampleRate) {
    if (loudness.integrated)
        return levelWithUnit(*loudness.integrated, "LUFS");
    const bool isTooShort = static_cast<double>(frames) < LoudnessMeter::kShortest * sampleRate;
    return isTooShort ? "not measured below " + fixedText(LoudnessMeter::kShortest, 1) + " s"
                      : "none above -70 LUFS";
}

/// A line about the output, with the input's loudness beside its own.
std::string loudnessText(const RenderReport& report) {
    if (report.sampleRate < LoudnessMeter::kLowestRate)
        return "loudness not measured below " + std::to_string(LoudnessMeter::kLowestRate) + " Hz\n";
    const RenderResult& result = report.result;
    std::string text = "loudness " + integratedText(result.loudness, result.frames, report.sampleRate) +
                       " (input " +
                       integratedText(result.inputLoudness, result.inputFrames, report.sampleRate) + ")";
    if (result.loudness.range)
        text += ", range " + levelWithUnit(*result.loudness.range, "LU");
    if (result.loudness.truePeak && std::isfinite(*result.loudness.truePeak))
        text += ", true peak " + levelWithUnit(*result.loudness.truePeak, "dBTP");
    return text + "\n";
}

std::string secondsText(std::int64_t frames, int sampleRate) {
    return fixedText(static_cast<double>(frames) / sampleRate, 2) + " s";
}

/// Objects whose fields stay in the order in which they are made. What is not finite is written as null.
using Json = nlohmann::ordered_json;

/// As short as the float can be: 0.1 and not 0.10000000149011612.
Json jsonOf(float value) {
    const std::optional<double> number = numberFrom(shortText(value));
    return number ? Json(*number) : Json();
}

/// null for what is not measured, and for silence.
Json jsonOf(const std::optional<double>& level) {
    return level && std::isfinite(*level) ? Json(*level) : Json();
}

Json loudnessJson(const Loudness& loudness) {
    return {{"integratedLufs", jsonOf(loudness.integrated)}, {"rangeLu", jsonOf(loudness.range)}};
}

/// Indented, with a line end.
std::string textOf(const Json& json) {
    return json.dump(2) + '\n';
}

Json jsonOf(const std::vector<ParameterState>& parameters) {
    Json list = Json::array();
    for (const ParameterState& parameter : parameters) {
        list.push_back({{"id", parameter.id},
                        {"name", utf8(parameter.name)},
                        {"value", jsonOf(parameter.value)},
                        {"display", utf8(parameter.display)},
                        {"label", utf8(parameter.label)}});
        if (!parameter.windowName.empty())
            list.back()["windowName"] = parameter.windowName;
    }
    return list;
}

Json programJson(std::int32_t number, const std::string& name) {
    return {{"number", number}, {"name", utf8(name)}};
}

Json tailJson(const RenderReport& report) {
    const std::int64_t frames = report.result.frames - report.result.inputFrames;
    return {{"rule", report.isTailAutomatic ? "auto" : "fixed"},
            {"frames", frames},
            {"seconds", static_cast<double>(frames) / report.sampleRate},
            {"cutShort", report.result.tailCutShort}};
}

} // namespace

EffectState stateOf(host::Plugin& plugin) {
    EffectState state;
    state.effectName = plugin.effectName();
    state.vendor = plugin.vendor();
    state.program = plugin.getProgram();
    state.programName = plugin.programName();
    for (std::int32_t id = 0; id < plugin.numParams(); ++id)
        state.parameters.push_back({id, plugin.parameterName(id), windowName(plugin, id),
                                    plugin.getParameter(id), plugin.parameterDisplay(id),
                                    plugin.parameterLabel(id)});
    return state;
}

std::string listText(const EffectState& state, const std::vector<std::string>& programs) {
    Table programTable;
    for (std::size_t i = 0; i < programs.size(); ++i)
        programTable.add({std::to_string(i), printable(programs[i])});
    const bool hasWindowNames = std::ranges::any_of(
        state.parameters, [](const ParameterState& parameter) { return !parameter.windowName.empty(); });
    Table parameterTable;
    const auto addParameter = [&](std::vector<std::string> row) {
        if (!hasWindowNames)
            row.erase(row.begin() + 2);
        parameterTable.add(std::move(row));
    };
    addParameter({"id", "name", "in the window", "value", "shown"});
    for (const ParameterState& parameter : state.parameters)
        addParameter({std::to_string(parameter.id), printable(parameter.name), parameter.windowName,
                      shortText(parameter.value),
                      printable(parameter.display + (parameter.label.empty() ? "" : " " + parameter.label))});
    return "Programs\n" + programTable.text() + "\nParameters of program " + std::to_string(state.program) +
           ", " + printable(state.programName) + "\n" + parameterTable.text();
}

std::string listJson(const EffectState& state, const std::vector<std::string>& programs,
                     const std::filesystem::path& library) {
    Json list = Json::array();
    for (std::size_t i = 0; i < programs.size(); ++i)
        list.push_back(programJson(static_cast<std::int32_t>(i), programs[i]));
    return textOf({{"library", utf8(library.string())},
                   {"effect", utf8(state.effectName)},
                   {"vendor", utf8(state.vendor)},
                   {"programs", std::move(list)},
                   {"program", programJson(state.program, state.programName)},
                   {"parameters", jsonOf(state.parameters)}});
}

std::int64_t clippedSamples(const RenderReport& report) {
    return report.keepsOverloads ? 0 : report.result.samplesOver;
}

std::vector<std::string> warningsFrom(const RenderReport& report) {
    const RenderResult& result = report.result;
    std::vector<std::string> warnings;
    if (const std::int64_t clipped = clippedSamples(report); clipped > 0)
        warnings.push_back(report.output.string() + " is clipped: " + std::to_string(clipped) +
                           (clipped == 1 ? " sample lies" : " samples lie") + " above full scale, by up to " +
                           fixedText(decibels(result.peak), 2) +
                           " dB; use a quieter input, or --format float, which keeps them");
    if (result.tailCutShort)
        warnings.push_back("the echoes still sound " + fixedText(kLongestTail, 0) +
                           " s after the input and are cut there; set a longer time with --tail SECONDS");
    if (result.eventsMissed > 0)
        warnings.push_back(std::to_string(result.eventsMissed) +
                           (result.eventsMissed == 1 ? " event comes" : " events come") +
                           " after the end of the output and had no effect");
    return warnings;
}

std::string reportText(const RenderReport& report) {
    const RenderResult& result = report.result;
    const std::int64_t tail = result.frames - result.inputFrames;
    std::string text = report.output.string() + ": " + secondsText(result.frames, report.sampleRate) + " (" +
                       secondsText(tail, report.sampleRate) + " of it tail), " +
                       std::to_string(report.sampleRate) + " Hz, " + report.kind + ", peak " +
                       levelText(result.peak) + "\n";
    text += loudnessText(report);
    if (!report.state.programName.empty())
        text += "program " + std::to_string(report.state.program) + ", " +
                printable(report.state.programName) + "\n";
    if (!report.plot.empty())
        text += report.plot.string() + ": the picture\n";
    return text;
}

std::string reportJson(const RenderReport& report) {
    const RenderResult& result = report.result;
    const std::int64_t clipped = clippedSamples(report);
    Json loudness = loudnessJson(result.loudness);
    loudness["truePeakDbtp"] = jsonOf(result.loudness.truePeak);
    Json warnings = Json::array();
    for (const std::string& warning : report.warnings)
        warnings.push_back(utf8(warning));
    return textOf({{"input", utf8(report.input.string())},
                   {"output", utf8(report.output.string())},
                   {"library", utf8(report.library.string())},
                   {"plot", report.plot.empty() ? Json() : Json(utf8(report.plot.string()))},
                   {"format", report.kind},
                   {"sampleRate", report.sampleRate},
                   {"inputChannels", report.inputChannels},
                   {"channels", report.outputChannels},
                   {"blockSize", report.blockSize},
                   {"preRollFrames", report.preRollFrames},
                   {"inputFrames", result.inputFrames},
                   {"frames", result.frames},
                   {"tail", tailJson(report)},
                   {"peak", jsonOf(result.peak)},
                   {"peakDbfs", decibels(result.peak)},
                   {"loudness", std::move(loudness)},
                   {"inputLoudness", loudnessJson(result.inputLoudness)},
                   {"samplesOverFullScale", result.samplesOver},
                   {"clippedSamples", clipped},
                   {"clippedByDb", clipped > 0 ? decibels(result.peak) : 0.0},
                   {"program", programJson(report.state.program, report.state.programName)},
                   {"parameters", jsonOf(report.state.parameters)},
                   {"warnings", std::move(warnings)}});
}

std::string levelText(double level) {
    return level > 0.0 ? fixedText(decibels(level), 1) + " dBFS" : "none, it is silent";
}

} // namespace tools::render
