// What two threads take in turn.
#pragma once

#include <memory>

namespace platform {

/// To be held by a std::lock_guard. Never on the audio thread.
class Lock {
  public:
    Lock();
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void lock();
    void unlock();

  private:
    class System;
    std::unique_ptr<System> system_;
};

} // namespace platform
