#include "tools/bank/controller_map.h"

#include "parameters/host_panel.h"
#include "tools/bank/bank_program.h"
#include "tools/common/near_names.h"
#include "tools/common/text.h"
#include "vst2/vst2.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <system_error>

namespace bank {

using namespace parameters;

namespace {

namespace files = std::filesystem;

constexpr int kControllers = 128;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The names of a parameter: the window's, the one of the interface, and what that leaves of it.
std::vector<std::string> namesOf(std::int32_t id) {
    const std::string whole = parameter(id).name;
    return {panelEntry(id).name, std::string(tools::trimmed(whole)),
            std::string(tools::trimmed(whole.substr(0, vst2::kVstMaxParamStrLen)))};
}

std::optional<std::int32_t> idNamed(std::string_view name) {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        for (const std::string& candidate : namesOf(id))
            if (tools::sameName(candidate, name))
                return id;
    return std::nullopt;
}

/// A # may belong to the name, "Taps #", or start a comment behind it: the longest text that is a name
/// counts.
std::optional<std::int32_t> idIn(std::string_view text) {
    for (;;) {
        if (const auto id = idNamed(text))
            return id;
        const std::size_t sign = text.rfind('#');
        if (sign == std::string_view::npos)
            return std::nullopt;
        text = text.substr(0, sign + (tools::trimmed(text).size() > sign + 1 ? 1 : 0));
        text = tools::trimmed(text);
    }
}

std::string suggestionFor(std::string_view name) {
    std::vector<std::string> names;
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        for (const std::string& candidate : namesOf(id))
            names.push_back(candidate);
    return tools::suggestion(names, name, "quillon-render --list shows them");
}

struct Binding {
    std::int32_t controller;
    std::int32_t id;
};

/// Reads "cc 74 = High cut".
Binding bindingIn(std::string_view line) {
    const auto refuse = [](const std::string& what) { throw BankError(what); };
    const std::size_t equals = line.find('=');
    const std::string_view front = tools::trimmed(line.substr(0, equals));
    if (equals == std::string_view::npos || !tools::beginsLike(front, "cc"))
        refuse(tools::inQuotes(line) + " is no binding; write it as cc 74 = High cut");
    const std::string_view number = tools::trimmed(front.substr(2));
    const auto controller = tools::countFrom(number);
    if (!controller || *controller >= kControllers)
        refuse("there is no controller " + tools::inQuotes(number) + "; they are numbered 0 to 127");
    const std::string_view name = tools::trimmed(line.substr(equals + 1));
    const auto id = idIn(name);
    if (!id) {
        const std::string_view meant = tools::trimmed(name.substr(0, name.find('#')));
        refuse("there is no control " + tools::inQuotes(meant) + suggestionFor(meant));
    }
    return {*controller, *id};
}

bool isController(std::int32_t entry) {
    return entry >= 0 && entry < kControllers;
}

std::string nameOf(std::int32_t id) {
    return isLive(id) ? panelEntry(id).name : "place " + std::to_string(id) + ", which has no control";
}

bool isPlugin(const files::path& folder) {
    std::error_code error;
    for (const char* ending : {".so", ".dll", ".clap"})
        if (files::is_regular_file(folder / (std::string("QuillonMultitapDelay") + ending), error))
            return true;
    return false;
}

void addPluginFolders(const files::path& folder, int levels, std::vector<files::path>& found) {
    std::error_code error;
    if (isPlugin(folder) && std::ranges::find(found, folder) == found.end())
        found.push_back(folder);
    if (levels == 0)
        return;
    std::set<files::path> folders; // in order
    for (files::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (entry->is_directory(error))
            folders.insert(entry->path());
    for (const files::path& below : folders)
        addPluginFolders(below, levels - 1, found);
}

} // namespace

ControllerMap parseControllerMap(std::string_view text, const std::string& fileName) {
    ControllerMap map;
    map.fill(kUnbound);
    std::map<std::int32_t, int> lineOf;
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = tools::trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty() || line.front() == '#')
            continue;
        try {
            const Binding binding = bindingIn(line);
            const auto [other, isNew] = lineOf.emplace(binding.id, number);
            if (!isNew)
                throw BankError(nameOf(binding.id) + " has a controller already, in line " +
                                std::to_string(other->second));
            map[static_cast<std::size_t>(binding.id)] = binding.controller;
        } catch (const BankError& error) {
            throw BankError(fileName + ", line " + std::to_string(number) + ": " + error.what());
        }
    }
    return map;
}

std::string controllerMapText(const ControllerMap& map) {
    std::string text = "# MIDI controllers of the Quillon Multitap Delay\n";
    std::string without;
    std::string odd;
    for (std::int32_t id = 0; id < kNumParameters; ++id) {
        const std::int32_t entry = map[static_cast<std::size_t>(id)];
        if (isLive(id) && isController(entry))
            text += "cc " + std::to_string(entry) + " = " + nameOf(id) + '\n';
        else if (entry != kUnbound)
            odd += "# " + nameOf(id) + ": " + std::to_string(entry) +
                   (isController(entry) ? "" : ", which is no controller") + '\n';
        else if (isLive(id))
            without += (without.empty() ? "# without: " : ", ") + nameOf(id);
    }
    return text + odd + without + (without.empty() ? "" : "\n");
}

std::vector<std::uint8_t> controllerMapBytes(const ControllerMap& map) {
    std::vector<std::uint8_t> bytes;
    for (const std::int32_t entry : map)
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(entry) >> shift));
    return bytes;
}

ControllerMap controllerMapFrom(std::span<const std::uint8_t> bytes) {
    ControllerMap map{};
    for (std::size_t i = 0; i < std::min(bytes.size(), kMapFileSize); ++i) {
        std::int32_t& entry = map[i / 4];
        entry = static_cast<std::int32_t>(static_cast<std::uint32_t>(entry) |
                                          static_cast<std::uint32_t>(bytes[i]) << (8 * (i % 4)));
    }
    return map;
}

std::string sharedControllersText(const ControllerMap& map) {
    std::string text;
    for (std::int32_t controller = 0; controller < kControllers; ++controller) {
        std::string names;
        int count = 0;
        for (std::int32_t id = 0; id < kNumLiveParameters; ++id) {
            if (map[static_cast<std::size_t>(id)] != controller)
                continue;
            names += (names.empty() ? "" : " and ") + nameOf(id);
            ++count;
        }
        if (count > 1)
            text += "cc " + std::to_string(controller) + " moves " + names + " together\n";
    }
    return text;
}

std::vector<files::path> pluginFolders(const std::vector<files::path>& folders) {
    constexpr int levels = 2;
    std::vector<files::path> found;
    for (const files::path& folder : folders)
        addPluginFolders(folder, levels, found);
    return found;
}

std::vector<files::path> hostFolders(const KnownFolders& known) {
    std::vector<files::path> folders;
    const auto addBelow = [&](const files::path& folder, std::initializer_list<const char*> names) {
        for (const char* name : names)
            if (!folder.empty())
                folders.push_back((folder / name).lexically_normal());
    };
    addBelow(known.home, {".vst", ".clap"});
    addBelow(known.commonFiles, {"CLAP"});
    addBelow(known.programFiles, {"VSTPlugins", "Steinberg/VSTPlugins"});
    addBelow(known.tool, {"../lib/vst", "../lib/clap"});
    addBelow("/usr", {"local/lib/vst", "local/lib/clap", "lib/vst", "lib/clap"});
    return folders;
}

} // namespace bank
