#include "tools/render/report.h"

#include "tools/common/text.h"
#include "tools/render/json.h"

#include <algorithm>

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

std::string secondsText(std::int64_t frames, int sampleRate) {
    return fixedText(static_cast<double>(frames) / sampleRate, 2) + " s";
}

void writeParameters(JsonWriter& json, const std::vector<ParameterState>& parameters) {
    json.name("parameters");
    json.beginArray();
    for (const ParameterState& parameter : parameters) {
        json.beginObject();
        json.field("id", parameter.id);
        json.field("name", parameter.name);
        json.field("value", parameter.value);
        json.field("display", parameter.display);
        json.field("label", parameter.label);
        json.endObject();
    }
    json.endArray();
}

void writeProgram(JsonWriter& json, const char* field, std::int32_t number, const std::string& name) {
    if (field)
        json.name(field);
    json.beginObject();
    json.field("number", number);
    json.field("name", name);
    json.endObject();
}

void writeTail(JsonWriter& json, const RenderReport& report) {
    const std::int64_t frames = report.result.frames - report.result.inputFrames;
    json.name("tail");
    json.beginObject();
    json.field("rule", report.isTailAutomatic ? "auto" : "fixed");
    json.field("frames", frames);
    json.field("seconds", static_cast<double>(frames) / report.sampleRate);
    json.field("cutShort", report.result.tailCutShort);
    json.endObject();
}

void writeLevels(JsonWriter& json, const RenderReport& report) {
    const std::int64_t clipped = clippedSamples(report);
    json.field("peak", report.result.peak);
    json.field("peakDbfs", decibels(report.result.peak));
    json.field("samplesOverFullScale", report.result.samplesOver);
    json.field("clippedSamples", clipped);
    json.field("clippedByDb", clipped > 0 ? decibels(report.result.peak) : 0.0);
}

} // namespace

EffectState stateOf(host::Plugin& plugin) {
    EffectState state;
    state.effectName = plugin.effectName();
    state.vendor = plugin.vendor();
    state.program = plugin.getProgram();
    state.programName = plugin.programName();
    for (std::int32_t id = 0; id < plugin.numParams(); ++id)
        state.parameters.push_back({id, plugin.parameterName(id), plugin.getParameter(id),
                                    plugin.parameterDisplay(id), plugin.parameterLabel(id)});
    return state;
}

std::string listText(const EffectState& state, const std::vector<std::string>& programs) {
    Table programTable;
    for (std::size_t i = 0; i < programs.size(); ++i)
        programTable.add({std::to_string(i), printable(programs[i])});
    Table parameterTable;
    parameterTable.add({"id", "name", "value", "shown"});
    for (const ParameterState& parameter : state.parameters)
        parameterTable.add(
            {std::to_string(parameter.id), printable(parameter.name), shortText(parameter.value),
             printable(parameter.display + (parameter.label.empty() ? "" : " " + parameter.label))});
    return "Programs\n" + programTable.text() + "\nParameters of program " + std::to_string(state.program) +
           ", " + printable(state.programName) + "\n" + parameterTable.text();
}

std::string listJson(const EffectState& state, const std::vector<std::string>& programs,
                     const std::filesystem::path& library) {
    JsonWriter json;
    json.beginObject();
    json.field("library", library.string());
    json.field("effect", state.effectName);
    json.field("vendor", state.vendor);
    json.name("programs");
    json.beginArray();
    for (std::size_t i = 0; i < programs.size(); ++i)
        writeProgram(json, nullptr, static_cast<std::int32_t>(i), programs[i]);
    json.endArray();
    writeProgram(json, "program", state.program, state.programName);
    writeParameters(json, state.parameters);
    json.endObject();
    return json.text();
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
        warnings.push_back("the echoes still sound " + fixedText(longestTail, 0) +
                           " s behind the input and are cut there; --tail SECONDS takes as long as you say");
    if (result.eventsMissed > 0)
        warnings.push_back(std::to_string(result.eventsMissed) +
                           (result.eventsMissed == 1 ? " event lies" : " events lie") +
                           " behind the output's end and had no effect");
    return warnings;
}

std::string reportText(const RenderReport& report) {
    const RenderResult& result = report.result;
    const std::int64_t tail = result.frames - result.inputFrames;
    std::string text = report.output.string() + ": " + secondsText(result.frames, report.sampleRate) + " (" +
                       secondsText(tail, report.sampleRate) + " of it tail), " +
                       std::to_string(report.sampleRate) + " Hz, " + report.kind + ", peak " +
                       levelText(result.peak) + "\n";
    if (!report.state.programName.empty())
        text += "program " + std::to_string(report.state.program) + ", " +
                printable(report.state.programName) + "\n";
    if (!report.plot.empty())
        text += report.plot.string() + ": the picture\n";
    return text;
}

std::string reportJson(const RenderReport& report) {
    JsonWriter json;
    json.beginObject();
    json.field("input", report.input.string());
    json.field("output", report.output.string());
    json.field("library", report.library.string());
    json.name("plot");
    report.plot.empty() ? json.null() : json.value(report.plot.string());
    json.field("format", report.kind);
    json.field("sampleRate", report.sampleRate);
    json.field("inputChannels", report.inputChannels);
    json.field("channels", report.outputChannels);
    json.field("blockSize", report.blockSize);
    json.field("preRollFrames", report.preRollFrames);
    json.field("inputFrames", report.result.inputFrames);
    json.field("frames", report.result.frames);
    writeTail(json, report);
    writeLevels(json, report);
    writeProgram(json, "program", report.state.program, report.state.programName);
    writeParameters(json, report.state.parameters);
    json.name("warnings");
    json.beginArray();
    for (const std::string& warning : report.warnings)
        json.value(warning);
    json.endArray();
    json.endObject();
    return json.text();
}

std::string levelText(double level) {
    return level > 0.0 ? fixedText(decibels(level), 1) + " dBFS" : "none, it is silent";
}

} // namespace tools::render
