// A program started by a test, with its own environment, current directory and outputs. What a message box or
// a tool writes can be known for certain only from outside.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace test {

/// Waits until `condition` holds, looking again and again; false if it does not within a very generous limit.
bool waitUntil(const std::function<bool()>& condition);

class ChildProcess {
  public:
    struct Setting {
        /// Added to this process's environment; an empty value takes a variable away.
        std::map<std::string, std::string> environment;
        std::string currentDirectory;
        bool closeStandardOutput = false;
        bool closeStandardError = false;
    };

    /// Starts `arguments[0]`, a path. Throws std::runtime_error if that fails.
    ChildProcess(const std::vector<std::string>& arguments, const Setting& setting);
    /// Ends the program if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool isRunning();
    /// Waits for the end. The exit status, 128 + the number of the signal that ended it, or -1 if it goes on
    /// and on.
    int wait();
    /// What it has written; complete after wait().
    std::string standardOutput() const;
    std::string standardError() const;

  private:
    pid_t pid_ = -1;
    bool ended_ = false;
    int status_ = 0;
    int output_ = -1;
    int error_ = -1;
};

} // namespace test
