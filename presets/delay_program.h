// One program: a full set of parameter values with a name, exactly as it stands in every saved project and
// bank.
#pragma once

#include "parameters/parameter_table.h"

#include <cstdint>

namespace presets {

constexpr std::int32_t kProgramNameLength = 24;

/// A persisted format, little-endian: the layout must never change.
struct DelayProgram {
    float values[parameters::kNumParameters]; ///< normalised, by id; the free ids are carried along
    char name[kProgramNameLength];            ///< padded with NULs; not terminated at full length
    char terminator;                          ///< always NUL
    char reserved[3];                         ///< carried along as they are

    /// The default program, "Fiber Cascade".
    DelayProgram();
};
static_assert(sizeof(DelayProgram) == 112);

} // namespace presets
