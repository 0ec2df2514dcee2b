// Fields that one thread writes while another reads. There is no lock on the audio path and none may be
// added: a shared field has the layout of a plain 32-bit value (or a byte, or a pointer), and each access is
// one relaxed atomic load or store, which costs what a plain one costs. Only what several threads compute at
// once is stored in an order (base/recompute.h).
#pragma once

#include <algorithm>
#include <atomic>
#include <cstring>
#include <type_traits>

namespace base {

/// Whether two plain values are the same, bit by bit. No padding.
template <class T>
bool sameBits(const T& a, const T& b) {
    static_assert(std::is_trivially_copyable_v<T>);
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

/// A field that several threads use. Only these functions read and write it; any thread may call them, and
/// none of them waits.
template <class T>
class Shared {
  public:
    constexpr Shared(T value = T{}) : value_(value) {}
    /// Copies the present value.
    Shared(const Shared& other) : value_(other.load()) {}
    Shared& operator=(const Shared&) = delete;
    ~Shared() = default;

    /// The present value.
    T load() const { return value_.load(std::memory_order_relaxed); }
    void store(T value) { value_.store(value, std::memory_order_relaxed); }
    /// Stores `value` and gives the previous one.
    T exchange(T value) { return value_.exchange(value, std::memory_order_relaxed); }
    /// Sets `bits` in addition to those that are set.
    void setBits(T bits) { value_.fetch_or(bits, std::memory_order_relaxed); }
    /// Stores `value` if the field still holds `expected`.
    void replace(T expected, T value) {
        value_.compare_exchange_strong(expected, value, std::memory_order_relaxed);
    }

    /// Sequentially consistent load and store (base/recompute.h).
    T loadInOrder() const { return value_.load(); }
    void storeInOrder(T value) { value_.store(value); }
    /// Adds `amount` and gives the sum.
    T addInOrder(T amount) { return value_.fetch_add(amount) + amount; }
    /// Sets `bits` in addition to those that are set, and gives those of them that were.
    T setBitsInOrder(T bits) { return value_.fetch_or(bits) & bits; }
    /// Clears `bits`, and gives those of them that were set.
    T takeBitsInOrder(T bits) { return value_.fetch_and(~bits) & bits; }
    /// Stores a result unless the field already holds it.
    void renew(T value) {
        if (!sameBits(loadInOrder(), value))
            storeInOrder(value);
    }
    /// Lowers the field to `limit`, unless another thread changes it meanwhile: then that thread's value
    /// stays. Gives the field's value, limited.
    T limit(T limit) {
        T value = loadInOrder();
        if (limit < value)
            value_.compare_exchange_strong(value, limit);
        return std::min(value, limit);
    }

  private:
    std::atomic<T> value_;
    static_assert(sizeof(std::atomic<T>) == sizeof(T) && std::atomic<T>::is_always_lock_free);
};

} // namespace base
