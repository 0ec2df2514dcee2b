#include "effect/large_object.h"

#include "platform/large_pages.h"

#include <new>

namespace effect {

void* LargeObject::operator new(std::size_t size) {
    void* const memory = ::operator new(size, std::align_val_t{platform::kLargePage});
    platform::preferLargePages(memory, size);
    return memory;
}

void LargeObject::operator delete(void* memory) {
    ::operator delete(memory, std::align_val_t{platform::kLargePage});
}

} // namespace effect
