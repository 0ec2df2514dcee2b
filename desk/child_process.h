// Runs another program, or the tool once more, without a shell: what fails there takes nothing else down.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace desk {

struct ChildCommand {
    std::filesystem::path program;
    std::vector<std::string> words; ///< without the program's name; as desk::CommandLine gives them
    std::filesystem::path folder;   ///< the child's current directory
    std::filesystem::path output;   ///< file that standard output goes to
    std::filesystem::path errors;   ///< file that standard error goes to
};

/// How a process ended.
struct ProcessEnd {
    int exitCode = -1;  ///< -1 after an abrupt end
    std::string reason; ///< of an abrupt end: "signal 11", "exception 0xC0000005"
};

/// A running process. It reads nothing from standard input. If this process dies, the child is asked to end,
/// or on Windows ended. Everything is called on the thread that made the object.
class ChildProcess {
  public:
    /// Starts it. Throws std::runtime_error naming the program.
    explicit ChildProcess(const ChildCommand& command);
    /// Ends the child by force if it is still running.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Nothing while it runs.
    std::optional<ProcessEnd> end();
    /// Asks it to end, as a person would. On Windows nothing is sent: a console passes Control-C on to all
    /// its processes.
    void requestEnd();
    void endByForce();
    /// What ownProcessId() gives in the child.
    std::uint32_t id() const;

  private:
    class System;
    std::unique_ptr<System> system_;
};

/// Different for all processes that run at the same time.
std::uint32_t ownProcessId();

} // namespace desk
