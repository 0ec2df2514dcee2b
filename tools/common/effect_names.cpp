#include "tools/common/effect_names.h"

#include "parameters/host_panel.h"
#include "parameters/parameter_table.h"
#include "tools/common/near_names.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

namespace tools {

namespace {

/// "3, 4, 5 and 6", or the first few of more.
std::string listOf(const std::vector<std::int32_t>& numbers) {
    constexpr std::size_t most = 6;
    std::string text;
    const std::size_t shown = std::min(numbers.size(), most);
    for (std::size_t i = 0; i < shown; ++i) {
        const bool isLast = i + 1 == numbers.size();
        text += (i == 0 ? "" : isLast ? " and " : ", ") + std::to_string(numbers[i]);
    }
    return numbers.size() > most ? text + " and so on" : text;
}

/// What the interface leaves of a name that is longer than it can carry.
std::string_view asHostsSee(std::string_view name) {
    return name.substr(0, vst2::kVstMaxParamStrLen);
}

std::vector<std::int32_t> parametersNamed(host::Plugin& plugin, std::string_view name) {
    std::vector<std::int32_t> whole, cut;
    for (std::int32_t id = 0; id < plugin.numParams(); ++id) {
        const std::string shown = plugin.parameterName(id);
        const std::string inWindow = windowName(plugin, id);
        if (sameName(shown, name) || (!inWindow.empty() && sameName(inWindow, name)))
            whole.push_back(id);
        else if (shown.size() == vst2::kVstMaxParamStrLen && sameName(shown, asHostsSee(trimmed(name))))
            cut.push_back(id);
    }
    return whole.empty() ? cut : whole;
}

/// Every name that findParameter() takes, without blanks at the ends; the whole names of the table in place
/// of what the interface leaves of them.
std::vector<std::string> parameterNames(host::Plugin& plugin) {
    std::vector<std::string> names;
    for (std::int32_t id = 0; id < plugin.numParams(); ++id) {
        const bool isOurs = isQuillon(plugin) && parameters::isLive(id);
        names.emplace_back(trimmed(isOurs ? parameters::parameter(id).name : plugin.parameterName(id)));
        if (isOurs)
            names.push_back(windowName(plugin, id));
    }
    return names;
}

std::vector<std::int32_t> programsMatching(const std::vector<std::string>& names, std::string_view name,
                                           bool (*matches)(std::string_view, std::string_view)) {
    std::vector<std::int32_t> found;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (matches(names[i], name))
            found.push_back(static_cast<std::int32_t>(i));
    return found;
}

} // namespace

bool isQuillon(const host::Plugin& plugin) {
    return plugin.effect()->uniqueID == vst2::fourCharacterCode("qlvd");
}

std::string windowName(const host::Plugin& plugin, std::int32_t id) {
    return isQuillon(plugin) && parameters::isLive(id) ? parameters::panelEntry(id).name : "";
}

std::int32_t findParameter(host::Plugin& plugin, std::string_view nameOrId) {
    const auto found = parametersNamed(plugin, nameOrId);
    if (found.size() == 1)
        return found.front();
    if (found.size() > 1)
        throw ToolError(inQuotes(nameOrId) +
                        " is the name of several parameters; give the number: " + listOf(found));
    const auto id = countFrom(nameOrId);
    if (id && *id < plugin.numParams())
        return *id;
    throw ToolError("there is no parameter " + inQuotes(nameOrId) +
                    suggestion(parameterNames(plugin), nameOrId, "quillon-render --list shows them"));
}

std::optional<std::int32_t> parameterNamed(host::Plugin& plugin, std::string_view name) {
    const auto found = parametersNamed(plugin, name);
    return found.size() == 1 ? std::optional(found.front()) : std::nullopt;
}

std::vector<std::string> programNames(host::Plugin& plugin) {
    std::vector<std::string> names;
    for (std::int32_t number = 0; number < plugin.numPrograms(); ++number) {
        auto name = plugin.programName(number);
        if (!name) {
            plugin.setProgram(number);
            name = plugin.programName();
        }
        names.push_back(*name);
    }
    return names;
}

std::int32_t findProgram(const std::vector<std::string>& names, std::string_view nameOrNumber) {
    if (names.empty())
        throw ToolError("this effect has no programs");
    if (const auto number = countFrom(nameOrNumber)) {
        if (static_cast<std::size_t>(*number) < names.size())
            return *number;
        throw ToolError("there is no program " + std::to_string(*number) + "; they are numbered 0 to " +
                        std::to_string(names.size() - 1));
    }
    auto found = programsMatching(names, nameOrNumber, sameName);
    if (found.empty() && !trimmed(nameOrNumber).empty())
        found = programsMatching(names, nameOrNumber, beginsLike);
    if (found.empty())
        throw ToolError("there is no program " + inQuotes(nameOrNumber) +
                        suggestion(names, nameOrNumber, "quillon-render --list shows them"));
    if (found.size() > 1)
        throw ToolError(inQuotes(nameOrNumber) +
                        " could be several programs; give the number: " + listOf(found));
    return found.front();
}

} // namespace tools
