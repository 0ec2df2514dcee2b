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
    const bool isConnected = inputs_[0] && inputs_[1] && outputs_[0] && outputs_[1];
    if (isConnected || frames == 0)
        effect_.processReplacing(inputs_.data(), outputs_.data(), static_cast<std::int32_t>(frames));
    else
        playWithoutSomePorts(frames);
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

/// A missing input is silent, a missing output unheard.
void Lv2Delay::playWithoutSomePorts(std::uint32_t frames) {
    for (std::uint32_t first = 0; first < frames; first += kMostFramesAtOnce) {
        std::array<const float*, 2> inputs;
        std::array<float*, 2> outputs;
        for (std::size_t channel = 0; channel < 2; ++channel) {
            inputs[channel] = inputs_[channel] ? inputs_[channel] + first : silence_.data();
            outputs[channel] = outputs_[channel] ? outputs_[channel] + first : unheard_.data();
        }
        const std::uint32_t count = std::min(frames - first, kMostFramesAtOnce);
        effect_.processReplacing(inputs.data(), outputs.data(), static_cast<std::int32_t>(count));
    }
}

} // namespace lv2_door
