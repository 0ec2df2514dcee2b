// The table behind UnfinishedPath, in the system's own characters. Read in the middle of a crash or a signal.
#pragma once

#include "desk/abrupt_end.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <string_view>

namespace desk {

template <typename Character, std::size_t longestPath>
class UnfinishedPaths {
  public:
    using Kind = UnfinishedPath::Kind;

    /// The place of the path in the table; one behind it if there is no room.
    std::size_t add(std::basic_string_view<Character> path, Kind kind) {
        std::size_t place = 0;
        while (place < entries_.size() && entries_[place].kind != Kind::none)
            ++place;
        if (place == entries_.size() || path.size() >= longestPath)
            return entries_.size();
        Entry& entry = entries_[place];
        *std::copy(path.begin(), path.end(), entry.path.begin()) = 0;
        entry.kind = kind;
        return place;
    }

    void remove(std::size_t place) {
        if (place < entries_.size())
            entries_[place].kind = Kind::none;
    }

    /// The one added last comes first: a file in a folder goes before the folder.
    template <typename Action>
    void forEach(Action action) const {
        for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry)
            if (const Kind kind = entry->kind; kind != Kind::none)
                action(entry->path.data(), kind);
    }

  private:
    struct Entry {
        std::atomic<Kind> kind = Kind::none;
        std::array<Character, longestPath> path = {};
    };
    std::array<Entry, 8> entries_;
};

} // namespace desk
