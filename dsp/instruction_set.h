// Choice of the kernels for this processor.
#pragma once

#include "dsp/row_kernels.h"
#include "dsp/tap_kernels.h"

#include <span>

namespace dsp {

/// All loops of one instruction set.
struct Kernels {
    const char* instructionSet;
    const RowKernels& rows;
    const TapKernels& taps;
};

/// The kernels that this processor can run, best last; never empty. Any thread.
std::span<const Kernels* const> usableKernels();

/// The kernels that new engines use: the best, unless chooseKernels was called. Any thread.
const Kernels& chosenKernels();

/// Sets the kernels of new engines, for tests; null for the best again. Call while no engine is constructed.
void chooseKernels(const Kernels* kernels);

} // namespace dsp
