#include "doors/lv2_bundle/control_ports.h"

#include "parameters/host_panel.h"

#include <string_view>

namespace lv2_bundle {

using namespace parameters;

namespace {

constexpr bool isLowerLetterOrDigit(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9');
}

} // namespace

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
    std::vector<ScalePoint> points;
    if (id == kSet) {
        for (const SetPlace& place : kSetPlaces)
            points.push_back({place.value, place.name});
        return points;
    }
    for (const float value : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}) {
        char text[kDisplayTextSize];
        parameter(id).display(value, text);
        points.push_back({value, text});
    }
    return points;
}

} // namespace lv2_bundle
