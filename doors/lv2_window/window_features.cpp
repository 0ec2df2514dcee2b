#include "doors/lv2_window/window_features.h"

#include "doors/lv2/features.h"

#include <lv2/atom/atom.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>
#include <lv2/urid/urid.h>

#include <cmath>
#include <cstdint>
#include <cstring>

namespace lv2_window {

using lv2_door::featureOf;

namespace {

/// The number that an option holds; 0 if it holds none.
template <class Number>
float numberIn(const LV2_Options_Option& option) {
    Number number = 0;
    if (option.size == sizeof number)
        std::memcpy(&number, option.value, sizeof number);
    return static_cast<float>(number);
}

/// The rate in Hz that an option tells; 0 if it tells none.
float rateIn(const LV2_Options_Option& option, const LV2_URID_Map& map) {
    const auto isA = [&](const char* type) { return option.type == map.map(map.handle, type); };
    if (!option.value)
        return 0.0f;
    if (isA(LV2_ATOM__Float))
        return numberIn<float>(option);
    if (isA(LV2_ATOM__Double))
        return numberIn<double>(option);
    return isA(LV2_ATOM__Int) ? numberIn<std::int32_t>(option) : 0.0f;
}

/// `otherwise` where the host does not say.
float sampleRateOf(const LV2_Feature* const* features, float otherwise) {
    const auto* const map = featureOf<LV2_URID_Map>(features, LV2_URID__map);
    const auto* option = featureOf<LV2_Options_Option>(features, LV2_OPTIONS__options);
    if (!map || !option)
        return otherwise;
    const LV2_URID sampleRate = map->map(map->handle, LV2_PARAMETERS__sampleRate);
    for (; option->key || option->value; ++option)
        if (option->key == sampleRate) {
            const float rate = rateIn(*option, *map);
            return std::isfinite(rate) && rate > 0.0f ? rate : otherwise;
        }
    return otherwise;
}

} // namespace

WindowFeatures::WindowFeatures(const LV2_Feature* const* features)
    : parent(featureOf<void>(features, LV2_UI__parent)),
      resize(featureOf<LV2UI_Resize>(features, LV2_UI__resize)),
      touch(featureOf<LV2UI_Touch>(features, LV2_UI__touch)),
      sampleRate(sampleRateOf(features, WindowFeatures().sampleRate)) {}

} // namespace lv2_window
