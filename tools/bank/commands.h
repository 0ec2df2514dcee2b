// What the commands of quillon-bank do.
#pragma once

#include "tools/bank/options.h"

#include <cstdio>

namespace bank {

/// Does what was asked for and prints to `output`. Throws BankError or ToolError with one line for a person.
void runJob(const Job& job, std::FILE* output);

} // namespace bank
