#include "failing_memory.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace {

constexpr long plenty = std::numeric_limits<long>::max();

std::atomic<long> living = 0;
thread_local long left = plenty;
thread_local bool isLasting = false;
thread_local bool failed = false;

bool isGranted() {
    if (left == plenty)
        return true;
    if (left > 0) {
        --left;
        return true;
    }
    failed = true;
    if (!isLasting)
        left = plenty;
    return false;
}

/// Null if there is no memory.
void* allocate(std::size_t size) noexcept {
    void* const memory = isGranted() ? std::malloc(size > 0 ? size : 1) : nullptr;
    if (memory)
        ++living;
    return memory;
}

void* allocateOrThrow(std::size_t size) {
    if (void* const memory = allocate(size))
        return memory;
    throw std::bad_alloc();
}

void giveBack(void* memory) noexcept {
    if (memory)
        --living;
    std::free(memory);
}

/// Before what is aligned stands where its memory really begins.
void* allocateAligned(std::size_t size, std::size_t alignment) {
    auto* const memory = static_cast<char*>(allocateOrThrow(size + alignment + sizeof(void*)));
    const auto begin = reinterpret_cast<std::uintptr_t>(memory + sizeof(void*));
    auto* const aligned = reinterpret_cast<char*>((begin + alignment - 1) / alignment * alignment);
    std::memcpy(aligned - sizeof(void*), &memory, sizeof memory);
    return aligned;
}

void giveBackAligned(void* aligned) noexcept {
    void* memory = nullptr;
    if (aligned)
        std::memcpy(&memory, static_cast<char*>(aligned) - sizeof(void*), sizeof memory);
    giveBack(memory);
}

} // namespace

void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocateAligned(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    giveBack(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    giveBack(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    giveBackAligned(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    giveBackAligned(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    giveBack(memory);
}
void operator delete[](void* memory) noexcept {
    giveBack(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    giveBack(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    giveBack(memory);
}

namespace test {

MemoryFor::MemoryFor(long allocations, Shortage shortage) {
    left = allocations;
    isLasting = shortage == Shortage::lasting;
    failed = false;
}

MemoryFor::~MemoryFor() {
    left = plenty;
}

bool MemoryFor::hasFailed() const {
    return failed;
}

long livingAllocations() {
    return living;
}

} // namespace test
