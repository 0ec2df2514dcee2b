#include "parameters/host_panel.h"

#include <algorithm>

namespace parameters {
namespace {

constexpr const Group& kPattern = kGroups[0];
constexpr const Group& kMotion = kGroups[1];
constexpr const Group& kInput = kGroups[2];
constexpr const Group& kOutput = kGroups[3];

constexpr PanelEntry kEntries[kNumLiveParameters] = {
    {"Base length", kPattern},    {"Echoes", kPattern},     {"Sweep rate", kMotion}, {"Stretch", kPattern},
    {"Fade / Swell", kPattern},   {"Fade curve", kPattern}, {"Feedback", kOutput},   {"Sweep depth", kMotion},
    {"How echoes move", kMotion}, {"High cut", kInput},     {"Low cut", kInput},     {"Input pan", kInput},
    {"Input gain", kInput},       {"Stereo", kOutput},      {"Mix", kOutput},        {"Echo pan", kOutput},
    {"Output gain", kOutput},
};

} // namespace

const PanelEntry& panelEntry(std::int32_t id) {
    return kEntries[id];
}

std::size_t setPlaceOf(float set) {
    return static_cast<std::size_t>(
        kWholeSamples - std::clamp<std::int32_t>(interpolationModeOf(set), kCubic, kWholeSamples));
}

} // namespace parameters
