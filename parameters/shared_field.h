// Fields that one thread writes while another reads. There is no lock on the audio path and none may be
// added: a shared field is a plain 32-bit value (or a byte), and each access is one relaxed atomic load or
// store, which costs what a plain one costs. Only what several threads compute at once is stored in an order
// (parameters/recompute.h).
#pragma once

#include <algorithm>
#include <atomic>

namespace parameters {

/// The field's value at this moment. Any thread.
template <class T>
T loadShared(const T& field) {
    return std::atomic_ref<T>(const_cast<T&>(field)).load(std::memory_order_relaxed);
}

/// Any thread.
template <class T>
void storeShared(T& field, T value) {
    std::atomic_ref<T>(field).store(value, std::memory_order_relaxed);
}

/// As loadShared and storeShared, but in the one order that all such accesses have (parameters/recompute.h).
/// Any thread.
template <class T>
T loadInOrder(const T& field) {
    return std::atomic_ref<T>(const_cast<T&>(field)).load(std::memory_order_seq_cst);
}

/// Any thread.
template <class T>
void storeInOrder(T& field, T value) {
    std::atomic_ref<T>(field).store(value, std::memory_order_seq_cst);
}

/// Lowers a field to `limit`, unless another thread changes it at this very moment: then its value stays.
/// Gives the field's value, limited. Any thread.
template <class T>
T limitShared(T& field, T limit) {
    T value = loadInOrder(field);
    if (limit < value)
        std::atomic_ref<T>(field).compare_exchange_strong(value, limit, std::memory_order_seq_cst);
    return std::min(value, limit);
}

} // namespace parameters
