#include "midi/learn_machine.h"

#include "midi/cc_map.h"
#include "parameters/parameter_table.h"

#include <atomic>

namespace midi {
namespace {

constexpr int kControlChange = 0xB0;

std::atomic_ref<std::int32_t> shared(std::int32_t& field) {
    return std::atomic_ref<std::int32_t>(field);
}

} // namespace

void LearnMachine::controlChanged(std::int32_t tag, float value) {
    const bool isOverlay = tag >= kLearnTagBase && tag < kLearnTagBase + parameters::kNumParameters;
    if (isOverlay && value == 1.0f)
        shared(learnTarget).store(tag, std::memory_order_relaxed);
}

void LearnMachine::disarm() {
    shared(learnTarget).store(kNobody, std::memory_order_relaxed);
}

void LearnMachine::bind(std::int32_t controller) {
    const std::int32_t tag = shared(learnTarget).exchange(kNobody, std::memory_order_relaxed);
    if (tag != kNobody)
        bindController(tag - kLearnTagBase, controller);
}

void LearnMachine::learnFromMidi(const std::uint8_t* midiData) {
    if ((midiData[0] & 0xF0) == kControlChange)
        bind(static_cast<std::int8_t>(midiData[1]));
}

bool LearnMachine::isArmed() const {
    return shared(const_cast<std::int32_t&>(learnTarget)).load(std::memory_order_relaxed) != kNobody;
}

} // namespace midi
