#include "dsp/instruction_set.h"

#include <cstddef>

namespace dsp {

namespace {

constexpr const TapKernels* kKernels[] = {&sse2::kTapKernels, &avx2::kTapKernels, &avx512::kTapKernels};

/// How many of kKernels the processor and the operating system support; each set includes the one before.
std::size_t countUsable() {
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("avx2"))
        return 1;
    const bool wide = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
                      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw");
    return wide ? 3 : 2;
}

const TapKernels* forced = nullptr;

} // namespace

std::span<const TapKernels* const> usableKernels() {
    return {kKernels, countUsable()};
}

const TapKernels& chosenKernels() {
    return forced ? *forced : *usableKernels().back();
}

void chooseKernels(const TapKernels* kernels) {
    forced = kernels;
}

} // namespace dsp
