// Control-C and a polite request to end: the tool stops between two blocks and takes its unfinished files
// away.
#pragma once

#include <stdexcept>

namespace tools {

/// Thrown by stopIfInterrupted().
class Interrupted : public std::runtime_error {
  public:
    Interrupted() : std::runtime_error("stopped; nothing was written") {}
};

/// From here on SIGINT and SIGTERM are taken note of and do not end the process.
void watchForInterrupts();

/// Throws Interrupted if one has come.
void stopIfInterrupted();

} // namespace tools
