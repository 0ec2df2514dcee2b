#include "doors/lv2/lv2_delay.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace lv2_door {

using namespace parameters;

Lv2Delay::Lv2Delay(double rate, const LV2_Feature* const* features) : log_(features) {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        values_[static_cast<std::size_t>(id)] = parameter(id).defaultValue;
    effect_.makePrograms();
    effect_.startUp();
    effect_.setSampleRate(static_cast<float>(rate));
}

void Lv2Delay::connectPort(std::uint32_t port, void* place) {
    switch (port) {
    case kInputLeft:
    case kInputRight:
        inputs_[port - kInputLeft] = static_cast<const float*>(place);
        break;
    case kOutputLeft:
    case kOutputRight:
        outputs_[port - kOutputLeft] = static_cast<float*>(place);
        break;
    default:
        if (port < kNumPorts)
            controls_[port - kFirstControl] = static_cast<const float*>(place);
    }
}

void Lv2Delay::activate() {
    setAllParameters();
    isPlaying_ = false;
}

void Lv2Delay::run(std::uint32_t frames) {
    if (isPlaying_)
        setChangedParameters();
    else
        setAllParameters();
    isPlaying_ = true;
    missing_.process(effect_, inputs_, outputs_, frames);
}

/// What a control's port says, within its range; where it says nothing or no number, what it said before.
float Lv2Delay::controlValue(std::int32_t id) const {
    const auto index = static_cast<std::size_t>(id);
    const float* const place = controls_[index];
    if (!place || std::isnan(*place))
        return values_[index];
    return std::clamp(*place, 0.0f, 1.0f);
}

void Lv2Delay::setParameter(std::int32_t id, float value) {
    values_[static_cast<std::size_t>(id)] = value;
    effect_.setParameter(id, value);
}

/// The order decides which law the filters follow: that of a parameter that was set.
void Lv2Delay::setAllParameters() {
    effect_.resume();
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        setParameter(id, controlValue(id));
}

void Lv2Delay::setChangedParameters() {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id) {
        const float value = controlValue(id);
        const float before = values_[static_cast<std::size_t>(id)];
        if (std::bit_cast<std::uint32_t>(value) != std::bit_cast<std::uint32_t>(before))
            setParameter(id, value);
    }
}

} // namespace lv2_door
