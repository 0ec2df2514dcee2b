#include "tools/common/effect_settings.h"

#include "parameters/host_panel.h"
#include "tools/common/display_search.h"
#include "tools/common/effect_names.h"
#include "tools/common/law_values.h"
#include "tools/common/note_length.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <string_view>

namespace tools {

namespace {

ToolError atSetting(const std::string& text, const ToolError& error) {
    return ToolError("--set " + inQuotes(text) + ": " + error.what());
}

/// The value of "Set" for one of the window's three words, Jump, Glide and Fine.
std::optional<float> movementNamed(std::string_view text) {
    for (const parameters::SetPlace& place : parameters::kSetPlaces)
        if (sameName(place.name, text))
            return place.value;
    return std::nullopt;
}

} // namespace

std::optional<double> tempoFrom(const std::string& text) try {
    return text.empty() ? std::nullopt : std::optional(bpmFrom(text));
} catch (const ToolError& error) {
    throw ToolError(std::string("--bpm: ") + error.what());
}

std::vector<SettingOption> settingsFrom(const std::vector<std::string>& texts, std::optional<double> bpm) {
    std::vector<SettingOption> settings;
    for (const std::string& text : texts) {
        try {
            settings.push_back({settingFrom(text, bpm), text});
        } catch (const ToolError& error) {
            throw atSetting(text, error);
        }
    }
    return settings;
}

std::int32_t programFor(host::Plugin& asked, const std::string& nameOrNumber) {
    const std::int32_t before = asked.getProgram();
    const auto names = programNames(asked);
    asked.setProgram(before);
    try {
        return findProgram(names, nameOrNumber);
    } catch (const ToolError& error) {
        throw ToolError("--program " + inQuotes(nameOrNumber) + ": " + error.what());
    }
}

ParameterValue valueFor(host::Plugin& asked, const Setting& setting) {
    const std::int32_t id = findParameter(asked, setting.parameter);
    const bool isMovement = isQuillon(asked) && id == parameters::kSet;
    if (isMovement && setting.value.kind == WantedValue::Kind::shownText)
        if (const auto value = movementNamed(setting.value.text))
            return {id, *value};
    if (isQuillon(asked) && parameters::isLive(id))
        if (const auto value = valueByLaw(id, setting.value))
            return {id, *value};
    return {id, valueShowing(asked, id, setting.value)};
}

std::vector<ParameterValue> applySettings(host::Plugin& asked, const std::vector<SettingOption>& settings) {
    std::vector<ParameterValue> values;
    for (const SettingOption& option : settings) {
        try {
            values.push_back(valueFor(asked, option.setting));
        } catch (const ToolError& error) {
            throw atSetting(option.text, error);
        }
        asked.setParameter(values.back().id, values.back().value);
    }
    return values;
}

} // namespace tools
