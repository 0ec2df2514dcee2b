#include "tools/render/starting_point.h"

#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>

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
    std::vector<ParameterEvent> events;
    for (const AutomationLine& line : lines) {
        try {
            const ParameterValue value = valueFor(asked, line.setting);
            events.push_back({line.time.frameAt(sampleRate), value.id, value.value});
        } catch (const ToolError& error) {
            throw ToolError(file.string() + ", line " + std::to_string(line.line) + ": " + error.what());
        }
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const ParameterEvent& a, const ParameterEvent& b) { return a.frame < b.frame; });
    return events;
}

} // namespace tools::render
