// Running a piece of a test apart from the rest, so that what the library prints can be read and what may end
// the process ends only its own. Linux copies the process for it. Windows cannot: there a process of its own
// is the test program started anew, for what it takes to get to this place again; where only the printed text
// is wanted, the piece runs in this very process.
#pragma once

#include <functional>
#include <string>

namespace conversation {

/// How a process ended and what it printed to standard error.
struct ProcessEnd {
    bool exited = false; ///< false where a signal, or on Windows an exception of the system, ended it
    int code = 0;        ///< exit code, or the signal's or the exception's number
    std::string errors;  ///< all of its standard error
};

/// Runs `body` in a process of its own without a display, and waits for it. Failed expectations in `body`
/// are printed and make the exit code 1, an exception makes it 2. A body that never ends is killed after
/// minutes of work. Once in a test, and with nothing before it that may happen only once.
ProcessEnd runInOwnProcess(const std::function<void()>& body);

/// Runs `body` apart, expecting that all goes well; gives its standard error. Current directory and locale
/// are afterwards what they were before; what else `body` changes in memory may last or not.
std::string errorsOf(const std::function<void()>& body);

/// Points the process's home and settings folders at `folder` and takes the display away: no window of the
/// library can appear on a person's screen and no setting of theirs is read or changed.
void leaveThePersonsSettingsAlone(const std::string& folder);

} // namespace conversation
