// What the host's other calls cost: making instances, changing programs, turning the effect on, setting
// parameters.
#pragma once

#include "bench/result.h"

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// One kind of call, timed when asked for.
struct CallCase {
    std::string name;
    Result (*measure)(const CallCase& call, const std::string& library);
    std::int32_t argument; ///< what the kind of call makes of it
};

std::vector<CallCase> callCases();

} // namespace bench
