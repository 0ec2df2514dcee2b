// Choice of the tap kernels for this processor.
#pragma once

#include "dsp/tap_kernels.h"

#include <span>

namespace dsp {

/// The kernels that this processor can run, best last; never empty. Any thread.
std::span<const TapKernels* const> usableKernels();

/// The kernels that new engines use: the best, unless chooseKernels was called. Any thread.
const TapKernels& chosenKernels();

/// Sets the kernels of new engines, for tests; null for the best again. Call while no engine is constructed.
void chooseKernels(const TapKernels* kernels);

} // namespace dsp
