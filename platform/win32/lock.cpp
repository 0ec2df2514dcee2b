#include "platform/lock.h"

#include <windows.h>

namespace platform {

class Lock::System {
  public:
    System() { InitializeCriticalSection(&section); }
    ~System() { DeleteCriticalSection(&section); }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    CRITICAL_SECTION section;
};

Lock::Lock() : system_(std::make_unique<System>()) {}

Lock::~Lock() = default;

void Lock::lock() {
    EnterCriticalSection(&system_->section);
}

void Lock::unlock() {
    LeaveCriticalSection(&system_->section);
}

} // namespace platform
