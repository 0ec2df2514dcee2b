// Control-C and a polite request to end: the tool stops between two steps and takes its unfinished files
// away.
#pragma once

#include <stdexcept>
#include <string>

namespace tools {

/// Thrown by stopIfInterrupted().
class Interrupted : public std::runtime_error {
  public:
    explicit Interrupted(const std::string& what = "stopped; nothing was written")
        : std::runtime_error(what) {}
};

/// From here on SIGINT and SIGTERM are taken note of and do not end the process.
void watchForInterrupts();

/// Whether one has come. Any thread.
bool isInterrupted();

/// Throws Interrupted if one has come.
void stopIfInterrupted();

} // namespace tools
