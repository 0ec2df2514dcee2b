// Everything that is timed, in the order of the tables.
#pragma once

#include "bench/result.h"

#include <string>

namespace bench {

/// In SuiteOptions::only.
constexpr char kAllCorners[] = "corners";

struct SuiteOptions {
    std::string library;        ///< path of the effect
    std::string instructionSet; ///< that it uses: "sse2", "avx2", "avx512"
    /// The section of this name, or else the situations whose names contain this; "corners" is all sections
    /// of corners. All if empty.
    std::string only;
    bool faust = false;        ///< whether the Faust programs are timed too
    bool programs = false;     ///< whether ffmpeg and Csound are
    bool window = false;       ///< whether the editor's window is; this process needs a display then
    std::string faustPrograms; ///< path of the module with the Faust programs
};

/// Times what the options ask for and hands over each result as soon as it is there. Throws
/// std::runtime_error if something cannot be run.
void runSuite(const SuiteOptions& options, const Take& take);

} // namespace bench
