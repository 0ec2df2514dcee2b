// A bank as the tools hold it: 128 programs, each a name and the values of the live parameters, with what
// else the table says about them.
#pragma once

#include "parameters/parameter_table.h"
#include "tools/common/note_length.h"

#include <array>
#include <optional>
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
    /// The note value from one echo to the next, if the program is rhythmic; stands in the table only.
    std::optional<tools::NoteValue> rhythm;

    float value(parameters::ParameterId id) const { return values[static_cast<std::size_t>(id)]; }
};

using Bank = std::array<BankProgram, kNumPrograms>;

/// Whether the time from one echo to the next is always the same: in patterns that are not stretched, and
/// those of a single echo.
bool isEven(const BankProgram& program);

/// A file is not what it should be; what() is one line for a person that starts with the file's name.
class BankError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace bank
