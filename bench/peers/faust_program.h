// The programs that Faust has made of the .dsp files here, one for each of its settings, in a module that is
// loaded only to be timed.
#pragma once

#include "bench/subject.h"

#include <cstddef>

namespace bench {

struct FaustProgram {
    const char* read;            ///< "whole", "linear", "cubic"
    const char* faustOptions;    ///< as given to faust
    const char* compilerOptions; ///< as given to the C++ compiler
    const char* instructionSet;  ///< that the processor must have: "sse2", "avx2", "avx512"
    Subject* (*make)();          ///< a new one, the caller's to delete
};

/// The module's one export, by this name.
using FaustProgramsFunction = const FaustProgram* (*)(std::size_t* count);
constexpr char kFaustProgramsName[] = "faustPrograms";

} // namespace bench
