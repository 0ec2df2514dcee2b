// What a tool was called with.
#pragma once

#include <string>
#include <vector>

namespace desk {

/// The words of this process's command line as UTF-8 where the system tells letters apart, else byte for
/// byte.
class CommandLine {
  public:
    /// From what main() got.
    CommandLine(int count, const char* const* words);
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// As main() has them, the program first.
    int count() const { return static_cast<int>(pointers_.size()); }
    const char* const* words() const { return pointers_.data(); }

  private:
    std::vector<std::string> words_;
    std::vector<const char*> pointers_;
};

} // namespace desk
