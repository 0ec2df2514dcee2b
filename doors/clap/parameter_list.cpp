#include "doors/clap/parameter_list.h"

#include "base/fixed_text.h"
#include "parameters/host_panel.h"
#include "presets/program_store.h"

#include <algorithm>

namespace clap_door {

using namespace parameters;

namespace {

constexpr double kLastPlace = kSetPlaces.size() - 1;
constexpr double kLastProgram = presets::kNumPrograms - 1;

} // namespace

double hostValueOf(std::int32_t id, float value) {
    if (id == kSet)
        return static_cast<double>(setPlaceOf(value));
    return value > 0.0f ? static_cast<double>(std::min(value, 1.0f)) : 0.0; // 0 for what is no number
}

float valueOfHost(std::int32_t id, double hostValue, float before) {
    if (id != kSet)
        return static_cast<float>(std::clamp(hostValue, 0.0, 1.0));
    const auto place = static_cast<std::size_t>(std::clamp(hostValue, 0.0, kLastPlace));
    return place == setPlaceOf(before) ? before : kSetPlaces[place].value;
}

std::int32_t programOfHost(double hostValue) {
    return static_cast<std::int32_t>(std::clamp(hostValue, 0.0, kLastProgram));
}

void describe(std::uint32_t index, clap_param_info_t& info) {
    info = {};
    info.id = idAt(index);
    info.flags = CLAP_PARAM_IS_AUTOMATABLE;
    info.max_value = 1.0;
    if (index == kProgramIndex || index == kSet)
        info.flags |= CLAP_PARAM_IS_STEPPED;
    if (index == kSet)
        info.max_value = kLastPlace;
    if (index == kProgramIndex) {
        info.max_value = kLastProgram;
        base::copyText(info.name, "Program");
        return;
    }
    const PanelEntry& entry = panelEntry(static_cast<std::int32_t>(index));
    base::copyText(info.name, entry.name);
    base::copyText(info.module, entry.group.name);
}

} // namespace clap_door
