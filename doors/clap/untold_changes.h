// Which parameters have changed without the host's doing since it was told last.
#pragma once

#include "base/shared.h"
#include "doors/clap/parameter_list.h"

#include <cstdint>

namespace clap_door {

/// Bits by the parameters' places in the list. Any thread.
class UntoldChanges {
  public:
    void note(std::uint32_t index) { bits_.setBits(1u << index); }
    void noteAll() { bits_.setBits(kAll); }
    /// Those that could not be told after all.
    void putBack(std::uint32_t bits) { bits_.setBits(bits); }
    /// Gives them and forgets them.
    std::uint32_t take() { return bits_.exchange(0); }

  private:
    static constexpr std::uint32_t kAll = (1u << kNumListed) - 1;
    base::Shared<std::uint32_t> bits_;
};

} // namespace clap_door
