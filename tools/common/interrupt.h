// Control-C, a closed terminal or a polite request to end: the tool stops between two steps and takes its
// unfinished files away.
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

/// From here on a request to end is taken note of and does not end the process at once; a second one does.
void watchForInterrupts();

/// Whether one has come. Any thread.
bool isInterrupted();

/// Throws Interrupted if one has come.
void stopIfInterrupted();

} // namespace tools
