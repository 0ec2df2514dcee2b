// The function that an LV2 host's loader looks for, and those that it finds through it. Only making an
// instance can fail, where memory is short.
#include "doors/lv2/lv2_delay.h"

namespace {

using lv2_door::Lv2Delay;

Lv2Delay& delayOf(LV2_Handle instance) {
    return *static_cast<Lv2Delay*>(instance);
}

LV2_Handle instantiate(const LV2_Descriptor*, double rate, const char*,
                       const LV2_Feature* const* features) noexcept try {
    return new Lv2Delay(rate, features);
} catch (...) {
    return nullptr;
}

void connectPort(LV2_Handle instance, std::uint32_t port, void* place) noexcept {
    delayOf(instance).connectPort(port, place);
}

void activate(LV2_Handle instance) noexcept {
    delayOf(instance).activate();
}

void run(LV2_Handle instance, std::uint32_t frames) noexcept {
    delayOf(instance).run(frames);
}

void deactivate(LV2_Handle) noexcept {}

void cleanup(LV2_Handle instance) noexcept {
    delete static_cast<Lv2Delay*>(instance);
}

const void* extensionData(const char*) noexcept {
    return nullptr;
}

constexpr LV2_Descriptor kDescriptor = {lv2_door::kPluginUri, instantiate, connectPort,  activate, run,
                                        deactivate,           cleanup,     extensionData};

} // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index) {
    return index == 0 ? &kDescriptor : nullptr;
}
