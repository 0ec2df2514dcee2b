// The one growable array of the skin engine: a block of plain records that are copied when the block gets too
// small. The records hold no resources of their own, so nothing runs on one when it is copied or dropped.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

/// Items in the order in which they were appended; `items[0]` to `items[count - 1]` are valid. Appending may
/// move them, so keep no address of an item across it. Not for use by two threads at once.
template <class Item>
struct GrowArray {
    static_assert(std::is_trivially_copyable_v<Item> && std::is_trivially_destructible_v<Item>);
    static_assert(alignof(Item) <= alignof(std::max_align_t));

    /// A full array of n items gets room for n * factor + step.
    Item* items = nullptr;
    std::int64_t count = 0;
    std::int64_t capacity = 32;
    std::int64_t factor = 1;
    std::int64_t step = 16;

    GrowArray() {
        items = allocate(capacity);
        if (!items)
            capacity = 0;
    }
    ~GrowArray() { release(items); }
    GrowArray(const GrowArray&) = delete;
    GrowArray& operator=(const GrowArray&) = delete;

    /// Appends a copy, which may be of one of the array's own items. False, with nothing changed, if memory
    /// is out.
    bool append(Item item) {
        if (count == capacity && !grow())
            return false;
        items[count] = item;
        ++count;
        return true;
    }

    /// Forgets the items and keeps the room.
    void clear() { count = 0; }

    Item& operator[](std::int64_t index) { return items[index]; }
    const Item& operator[](std::int64_t index) const { return items[index]; }

    Item* begin() { return items; }
    Item* end() { return items + count; }
    const Item* begin() const { return items; }
    const Item* end() const { return items + count; }

  private:
    static Item* allocate(std::int64_t room) {
        return static_cast<Item*>(std::malloc(static_cast<std::size_t>(room) * sizeof *items));
    }

    static void release(Item* block) { std::free(static_cast<void*>(block)); }

    bool grow() {
        const std::int64_t newCapacity = capacity * factor + step;
        Item* newItems = allocate(newCapacity);
        if (!newItems)
            return false;
        std::copy_n(items, count, newItems);
        release(items);
        items = newItems;
        capacity = newCapacity;
        return true;
    }
};
