#include "platform/lock.h"

#include <mutex>

namespace platform {

class Lock::System : public std::mutex {};

Lock::Lock() : system_(std::make_unique<System>()) {}

Lock::~Lock() = default;

void Lock::lock() {
    system_->lock();
}

void Lock::unlock() {
    system_->unlock();
}

} // namespace platform
