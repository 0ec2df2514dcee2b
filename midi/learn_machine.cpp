#include "midi/learn_machine.h"

#include "midi/cc_map.h"
#include "parameters/parameter_table.h"

namespace midi {

namespace {

constexpr int kControlChange = 0xB0;

} // namespace

void LearnMachine::controlChanged(std::int32_t tag, float value) {
    const bool isOverlay = tag >= kLearnTagBase && tag < kLearnTagBase + parameters::kNumParameters;
    if (isOverlay && value == 1.0f)
        learnTarget.store(tag);
}

void LearnMachine::disarm() {
    learnTarget.store(kNobody);
}

void LearnMachine::bind(std::int32_t controller) {
    const std::int32_t tag = learnTarget.load();
    if (tag == kNobody)
        return;
    bindController(tag - kLearnTagBase, controller);
    learnTarget.store(kNobody);
}

void LearnMachine::learnFromMidi(const std::uint8_t* midiData) {
    if ((midiData[0] & 0xF0) == kControlChange)
        bind(static_cast<std::int8_t>(midiData[1]));
}

bool LearnMachine::isArmed() const {
    return learnTarget.load() != kNobody;
}

} // namespace midi
