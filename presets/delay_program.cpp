#include "presets/delay_program.h"

#include "base/number_text.h"

#include <algorithm>

namespace presets {

DelayProgram::DelayProgram() : reserved{} {
    const auto defaults = parameters::defaultValues();
    std::copy(defaults.begin(), defaults.end(), values);
    // The terminator is the byte behind the name.
    static_assert(offsetof(DelayProgram, terminator) == offsetof(DelayProgram, name) + kProgramNameLength);
    terminator = '\0';
    std::fill(name, name + kProgramNameLength, '\0');
    constexpr char defaultName[] = "Fiber Cascade";
    std::copy(defaultName, defaultName + sizeof defaultName - 1, name);
}

} // namespace presets
