#include "dsp/instruction_set.h"

#include <cstddef>

namespace dsp {

namespace {

constexpr const TapKernels* kForms[] = {&sse2::kTapKernels, &avx2::kTapKernels, &avx512::kTapKernels};

/// How many of the forms the processor and the system beneath it can run; each set contains the one before.
std::size_t countUsable() {
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("avx2"))
        return 1;
    const bool wide = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
                      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw");
    return wide ? 3 : 2;
}

const TapKernels* asked = nullptr;

} // namespace

std::span<const TapKernels* const> usableKernels() {
    return {kForms, countUsable()};
}

const TapKernels& chosenKernels() {
    return asked ? *asked : *usableKernels().back();
}

void chooseKernels(const TapKernels* kernels) {
    asked = kernels;
}

} // namespace dsp
