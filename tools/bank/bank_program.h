// A bank as the tools hold it: 128 programs, each a name and the values of the live parameters, with two
// remarks of the person who made them that never leave the table.
#pragma once

#include "parameters/parameter_table.h"

#include <array>
#include <stdexcept>
#include <string>

namespace bank {

constexpr std::size_t kNumPrograms = 128;
constexpr std::size_t kMaxNameLength = 24;

/// One program. Values are normalised, by parameter id.
struct BankProgram {
    std::string family; ///< what the program is for; stands in the table only
    std::string name;   ///< 1 to 24 characters
    bool loud = false;  ///< the wet signal may pass +6 dBFS; stands in the table only
    std::array<float, parameters::kNumLiveParameters> values{};
    std::string note; ///< what it does or is good for, a few words; stands in the table only

    float value(parameters::ParameterId id) const { return values[static_cast<std::size_t>(id)]; }
};

using Bank = std::array<BankProgram, kNumPrograms>;

/// A file is not what it should be; what() is one line for a person that starts with the file's name.
class BankError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace bank
