// Compiled into the effect, holds it to the instruction set named by HELD_SET.

#include "dsp/instruction_set.h"

#include <string_view>

namespace {

bool hold() {
    for (const dsp::Kernels* kernels : dsp::usableKernels()) {
        if (std::string_view(kernels->instructionSet) != HELD_SET)
            continue;
        dsp::chooseKernels(kernels);
        return true;
    }
    return false;
}

const bool held = hold();

} // namespace

/// False on a processor that lacks the set.
extern "C" __attribute__((visibility("default"))) bool usesItsInstructionSet();
extern "C" bool usesItsInstructionSet() {
    return held;
}
