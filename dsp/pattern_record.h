// Remembers from which parameters the tap tables were last computed, so that touching a parameter that has no
// part in the pattern costs no exponentials.
//
// Any thread may rewrite the tables at any time and nobody waits. Two that do so at once leave a mixture,
// which is no pattern of anybody's: the record then holds nothing, and the one that ends last is told to
// compute again. All accesses are sequentially consistent (base/recompute.h).
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace dsp {

class PatternRecord {
  public:
    /// The bits of all that the tables depend on.
    using Key = std::array<std::uint32_t, 6>;

    /// One rewrite of the tables, from before its first store to after its last.
    struct Rewrite {
        std::uint32_t number;
        bool alone; ///< all earlier ones had ended
    };

    /// How the tables stand at the end of a rewrite.
    enum class Outcome {
        whole,      ///< nobody else wrote meanwhile
        unfinished, ///< somebody still writes, and is told of the mixture at the end
        mixed       ///< somebody else wrote meanwhile and all have ended: compute again
    };

    /// Whether the tables stand as they were computed from `key`. Any thread.
    bool holds(const Key& key) const {
        const std::uint32_t number = begun.load();
        if (valid.load() != number)
            return false;
        for (std::size_t i = 0; i < key.size(); ++i)
            if (computedFrom[i].load() != key[i])
                return false;
        return begun.load() == number;
    }

    /// Any thread.
    Rewrite begin() {
        const std::uint32_t number = begun.fetch_add(1) + 1;
        return {number, ended.load() == number - 1};
    }

    /// The tables were computed from `key`. Any thread.
    Outcome endComputed(const Rewrite& rewrite, const Key& key) {
        if (rewrite.alone && begun.load() == rewrite.number) {
            for (std::size_t i = 0; i < key.size(); ++i)
                computedFrom[i].store(key[i]);
            valid.store(rewrite.number);
        }
        return endOther(rewrite);
    }

    /// The tables hold something else now. Any thread.
    Outcome endOther(const Rewrite& rewrite) {
        const std::uint32_t finished = ended.fetch_add(1) + 1;
        const std::uint32_t started = begun.load();
        if (rewrite.alone && started == rewrite.number)
            return Outcome::whole;
        return finished == started ? Outcome::mixed : Outcome::unfinished;
    }

    /// No edition of the tables.
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;

    /// A number for the tables as they stand, or kNone while somebody rewrites them. Who copies the tables
    /// after asking may keep the copy for as long as the number stays the same. Any thread.
    std::uint32_t edition() const {
        const std::uint32_t finished = ended.load();
        return begun.load() == finished ? finished : kNone;
    }

  private:
    std::atomic<std::uint32_t> begun = 0;     ///< rewrites so far
    std::atomic<std::uint32_t> ended = 0;     ///< of these
    std::atomic<std::uint32_t> valid = kNone; ///< the last rewrite that nobody disturbed
    std::array<std::atomic<std::uint32_t>, 6> computedFrom{};
};

} // namespace dsp
