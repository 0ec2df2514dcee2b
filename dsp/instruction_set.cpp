#include "dsp/instruction_set.h"

#include <cstddef>

namespace dsp {

namespace {

constexpr Kernels kSse2 = {"sse2", sse2::kRowKernels, sse2::kTapKernels};
constexpr Kernels kAvx2 = {"avx2", avx2::kRowKernels, avx2::kTapKernels};
constexpr Kernels kAvx512 = {"avx512", avx512::kRowKernels, avx512::kTapKernels};
constexpr const Kernels* kKernels[] = {&kSse2, &kAvx2, &kAvx512};

/// How many of kKernels the processor and the operating system support; each set includes the one before.
std::size_t countUsable() {
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("avx2"))
        return 1;
    const bool wide = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
                      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw");
    return wide ? 3 : 2;
}

const Kernels* forced = nullptr;

} // namespace

std::span<const Kernels* const> usableKernels() {
    return {kKernels, countUsable()};
}

const Kernels& chosenKernels() {
    return forced ? *forced : *usableKernels().back();
}

void chooseKernels(const Kernels* kernels) {
    forced = kernels;
}

} // namespace dsp
