// Running a piece of a test in a process of its own, so that what the library prints can be read and what may
// end the process ends only that one.
#pragma once

#include <functional>
#include <string>

namespace conversation {

/// How a process ended and what it printed to standard error.
struct ProcessEnd {
    bool exited = false; ///< false where a signal ended it
    int code = 0;        ///< exit code, or the signal's number
    std::string errors;  ///< all of its standard error
};

/// Runs `body` in a copy of this process without a display, and waits for it. Failed expectations in `body`
/// are printed and make the exit code 1, an exception makes it 2. A body that never ends is killed after
/// minutes of work.
ProcessEnd runInOwnProcess(const std::function<void()>& body);

/// As above, expecting that all went well; gives the standard error.
std::string errorsOf(const std::function<void()>& body);

/// Points the process's home and settings folders at `folder` and takes the display away: no window of the
/// library can appear on a person's screen and no setting of theirs is read or changed.
void leaveThePersonsSettingsAlone(const std::string& folder);

} // namespace conversation
