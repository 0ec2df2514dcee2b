// Which form of the tap loops is used.
#include "dsp/instruction_set.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using dsp::chooseKernels;
using dsp::chosenKernels;
using dsp::usableKernels;

TEST(InstructionSet, IsTheBestThatTheProcessorHas) {
    const auto usable = usableKernels();
    ASSERT_FALSE(usable.empty());
    EXPECT_EQ(std::string(usable.front()->instructionSet), "sse2");
    EXPECT_EQ(&chosenKernels(), usable.back());
}

TEST(InstructionSet, IsTheOneThatWasAskedForUntilTheBestIsAgain) {
    for (const dsp::Kernels* kernels : usableKernels()) {
        chooseKernels(kernels);
        EXPECT_EQ(&chosenKernels(), kernels) << kernels->instructionSet;
    }
    chooseKernels(usableKernels().front());
    chooseKernels(nullptr);
    EXPECT_EQ(&chosenKernels(), usableKernels().back());
}

} // namespace
