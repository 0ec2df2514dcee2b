// What the tool says when it cannot go on.
#pragma once

#include <stdexcept>

namespace tools {

/// Ends the tool. what() is one line for the person who called it; it names the file or the argument at
/// fault.
class ToolError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace tools
