// A check for code that only one thread may be in at a time. It never waits.
#pragma once

#include "base/shared.h"

namespace dsp {

/// Meant for assert(entry.enter()) and assert(entry.leave()), which cost nothing in release builds.
class SingleEntry {
  public:
    /// False if another call is inside. Any thread.
    bool enter() { return !inside_.exchange(true); }
    /// False if no call was inside. Any thread.
    bool leave() { return inside_.exchange(false); }

  private:
    base::Shared<bool> inside_;
};

} // namespace dsp
