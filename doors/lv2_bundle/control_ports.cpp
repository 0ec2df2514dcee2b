#include "doors/lv2_bundle/control_ports.h"

#include "parameters/parameter_table.h"

#include <string_view>

namespace lv2_bundle {

using namespace parameters;

namespace {

constexpr const Group& kPattern = kGroups[0];
constexpr const Group& kMotion = kGroups[1];
constexpr const Group& kInput = kGroups[2];
constexpr const Group& kOutput = kGroups[3];

constexpr ControlPort kPorts[kNumLiveParameters] = {
    {"Base length", kPattern},    {"Echoes", kPattern},     {"Sweep rate", kMotion}, {"Stretch", kPattern},
    {"Fade / Swell", kPattern},   {"Fade curve", kPattern}, {"Feedback", kOutput},   {"Sweep depth", kMotion},
    {"How echoes move", kMotion}, {"High cut", kInput},     {"Low cut", kInput},     {"Input pan", kInput},
    {"Input gain", kInput},       {"Stereo", kOutput},      {"Mix", kOutput},        {"Echo pan", kOutput},
    {"Output gain", kOutput},
};

constexpr bool isLowerLetterOrDigit(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9');
}

} // namespace

const ControlPort& controlPortOf(std::int32_t id) {
    return kPorts[id];
}

std::string symbolOf(const char* name) {
    std::string symbol;
    for (char letter : std::string_view(name)) {
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
        if (isLowerLetterOrDigit(letter))
            symbol += letter;
        else if (!symbol.empty() && symbol.back() != '_')
            symbol += '_';
    }
    return symbol;
}

std::string shortNameOf(std::int32_t id) {
    const std::string_view name = parameter(id).name;
    return std::string(name.substr(0, name.find_last_not_of(' ') + 1));
}

std::vector<ScalePoint> scalePointsOf(std::int32_t id) {
    if (id == kSet)
        return {{0.0f, "Jump"}, {0.5f, "Glide"}, {1.0f, "Fine"}};
    std::vector<ScalePoint> points;
    for (const float value : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}) {
        char text[kDisplayTextSize];
        parameter(id).display(value, text);
        points.push_back({value, text});
    }
    return points;
}

} // namespace lv2_bundle
