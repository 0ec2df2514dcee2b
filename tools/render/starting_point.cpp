#include "tools/render/starting_point.h"

#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>
#include <map>

namespace tools::render {

namespace {

/// Banks that this effect's first versions saved carry another id than the effect has today.
constexpr std::int32_t kEffectIdToday = vst2::fourCharacterCode("qlvd");
constexpr std::int32_t kEffectIdOnce = vst2::fourCharacterCode("vmdl");

std::string idText(std::int32_t id) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>((id >> shift) & 0xFF);
    return inQuotes(text);
}

void requireChunks(const host::Plugin& plugin, const std::filesystem::path& file) {
    if (!(plugin.effect()->flags & vst2::effFlagsProgramChunks))
        throw ToolError(file.string() + " cannot be loaded: this effect does not use chunks");
}

/// Sizes of an effect's two kinds of chunk.
struct ChunkSizes {
    std::size_t preset = 0;
    std::size_t bank = 0;
};

ChunkSizes chunkSizes(host::Plugin& plugin) {
    return {plugin.getChunk(true).size(), plugin.getChunk(false).size()};
}

Bytes bankFor(host::Plugin& plugin, const std::filesystem::path& path) {
    requireChunks(plugin, path);
    BankFile file = readBankFile(path);
    const std::int32_t id = plugin.effect()->uniqueID;
    if (file.effectId != id && !(id == kEffectIdToday && file.effectId == kEffectIdOnce))
        throw ToolError(path.string() + " is a bank of another effect, " + idText(file.effectId) +
                        ", and not of " + idText(id));
    // A bank that is its programs in a row always has the same size; other effects' banks may have any.
    const ChunkSizes sizes = chunkSizes(plugin);
    const auto programs = static_cast<std::size_t>(plugin.numPrograms());
    if (sizes.bank == sizes.preset * programs && file.chunk.size() != sizes.bank)
        throw ToolError(path.string() + " holds a bank of " + std::to_string(file.chunk.size()) +
                        " bytes; it should be " + std::to_string(sizes.bank));
    return std::move(file.chunk);
}

/// Puts a bare chunk where its size says that it belongs.
void placeChunk(host::Plugin& plugin, const std::filesystem::path& path, StartingPoint& start) {
    requireChunks(plugin, path);
    Bytes bytes = readChunkFile(path);
    const ChunkSizes sizes = chunkSizes(plugin);
    if (bytes.size() == sizes.preset) {
        start.preset = std::move(bytes);
    } else if (bytes.size() != sizes.bank) {
        throw ToolError(path.string() + " is " + std::to_string(bytes.size()) +
                        " bytes long; one program is " + std::to_string(sizes.preset) + " and a whole bank " +
                        std::to_string(sizes.bank));
    } else if (!start.bank.empty()) {
        throw ToolError(path.string() + " is a whole bank, and --bank gives another");
    } else {
        start.bank = std::move(bytes);
    }
}

/// A line of automation, at the file's sample rate. A step ends where it starts.
struct Move {
    const AutomationLine* line = nullptr;
    std::int32_t id = 0;
    std::int64_t start = 0;
    std::int64_t end = 0;
    float from = 0.0f;
    float to = 0.0f;
};

Move moveFor(host::Plugin& asked, const AutomationLine& line, double sampleRate) {
    const ParameterValue value = valueFor(asked, line.setting);
    Move move{&line, value.id, line.time.frameAt(sampleRate), 0, value.value, value.value};
    move.end = move.start;
    if (!line.ramp)
        return move;
    const std::int64_t frames = line.ramp->duration.frameAt(sampleRate);
    if (static_cast<double>(frames) > kLongestRamp * sampleRate)
        throw ToolError("a ramp may last " + fixedText(kLongestRamp, 0) + " s");
    move.end = move.start + std::max<std::int64_t>(frames, 1);
    move.to = valueFor(asked, {line.setting.parameter, line.ramp->target}).value;
    return move;
}

void addEvents(const Move& move, std::vector<ParameterEvent>& events) {
    const auto frames = static_cast<double>(move.end - move.start);
    const double from = static_cast<double>(move.from);
    const double way = static_cast<double>(move.to) - from;
    for (std::int64_t frame = move.start; frame < move.end; frame += kRampStep) {
        const double value = from + way * (static_cast<double>(frame - move.start) / frames);
        events.push_back({frame, move.id, static_cast<float>(value), true});
    }
    events.push_back({move.end, move.id, move.to, false});
}

} // namespace

StartingPoint findStartingPoint(host::Plugin& asked, const Options& options) {
    StartingPoint start;
    if (!options.bank.empty())
        start.bank = bankFor(asked, options.bank);
    if (!options.chunk.empty())
        placeChunk(asked, options.chunk, start);
    // Programs are known by the names that the bank gives them, and displays may depend on the program.
    bringTo(asked, {start.bank, {}, {}, {}});
    if (!options.program.empty())
        start.program = programFor(asked, options.program);
    bringTo(asked, {{}, start.program, start.preset, {}});
    start.values = applySettings(asked, options.settings);
    return start;
}

void bringTo(host::Plugin& plugin, const StartingPoint& start) {
    if (!start.bank.empty())
        plugin.setChunk(start.bank, false);
    if (start.program)
        plugin.setProgram(*start.program);
    if (!start.preset.empty())
        plugin.setChunk(start.preset, true);
    for (const ParameterValue& value : start.values)
        plugin.setParameter(value.id, value.value);
}

std::vector<ParameterEvent> findEvents(host::Plugin& asked, const std::vector<AutomationLine>& lines,
                                       const std::filesystem::path& file, double sampleRate) {
    std::vector<Move> moves;
    const AutomationLine* current = nullptr;
    try {
        for (const AutomationLine& line : lines) {
            current = &line;
            moves.push_back(moveFor(asked, line, sampleRate));
        }
        std::stable_sort(moves.begin(), moves.end(),
                         [](const Move& a, const Move& b) { return a.start < b.start; });
        std::map<std::int32_t, const Move*> ramps;
        for (const Move& move : moves) {
            current = move.line;
            const Move*& ramp = ramps[move.id];
            if (ramp && move.start < ramp->end)
                throw ToolError(inQuotes(move.line->setting.parameter) +
                                " is still moved by the ramp of line " + std::to_string(ramp->line->line));
            ramp = &move;
        }
    } catch (const ToolError& error) {
        throw ToolError(file.string() + ", line " + std::to_string(current->line) + ": " + error.what());
    }
    std::vector<ParameterEvent> events;
    for (const Move& move : moves)
        addEvents(move, events);
    std::stable_sort(events.begin(), events.end(),
                     [](const ParameterEvent& a, const ParameterEvent& b) { return a.frame < b.frame; });
    return events;
}

} // namespace tools::render
