// Which form of the tap loops this processor gets.
#pragma once

#include "dsp/tap_kernels.h"

#include <span>

namespace dsp {

/// The forms that this processor can run, plainest first, best last; never empty. Any thread.
std::span<const TapKernels* const> usableKernels();

/// The form that engines made from now on will use: the best one, unless another was asked for. Any thread.
const TapKernels& chosenKernels();

/// Asks for a form, so that tests can compare them; null for the best one again. Call while no engine is
/// being made.
void chooseKernels(const TapKernels* kernels);

} // namespace dsp
