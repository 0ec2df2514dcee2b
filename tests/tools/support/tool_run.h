// Runs quillon-render as a person or a script would: in a process of its own, with a home of its own.
#pragma once

#include "support/scratch_folder.h"

#include <cstdint>
#include <string>
#include <vector>

struct ToolResult {
    int exitCode = -1; ///< -1 if a signal, or on Windows an exception of the system, ended it
    int signal = 0;    ///< that ended it
    std::string out;
    std::string err;
    std::vector<std::string> leftBehind; ///< among the temporary files

    /// Lines of standard error.
    std::vector<std::string> errorLines() const;
};

/// Where the child's standard error goes. There are terminals and signals on Linux alone.
enum class ErrorEnd { file, terminal };

/// Runs the tool in `folder` with these arguments and waits for it.
ToolResult runTool(const ScratchFolder& folder, const std::vector<std::string>& arguments,
                   ErrorEnd errorEnd = ErrorEnd::file, const std::string& tool = QUILLON_RENDER);

/// The tool in the background, so that a test can stop it.
class RunningTool {
  public:
    RunningTool(const ScratchFolder& folder, const std::vector<std::string>& arguments,
                ErrorEnd errorEnd = ErrorEnd::file, const std::string& tool = QUILLON_RENDER);
    ~RunningTool();
    RunningTool(const RunningTool&) = delete;
    RunningTool& operator=(const RunningTool&) = delete;

    void send(int signal);
    ToolResult wait();
    /// Whether there is a file of this name among its temporary files, however deep.
    bool hasTemporaryFile(const std::string& name) const { return temporary_.holds(name); }

  private:
    std::string readTerminal();

    ScratchFolder own_;
    ScratchFolder temporary_;
    std::intptr_t process_ = -1; ///< the system's name for it
    int terminal_ = -1;
};
