// Records which parameters the tap tables were last computed from, so that a change of any other parameter
// does not recompute them.
//
// Any thread may rewrite the tables at any time without waiting. Two at once leave a mixture of two patterns:
// the record then holds no key, and the thread that ends last is told to compute again. All accesses are
// sequentially consistent (base/recompute.h).
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace dsp {

class PatternRecord {
  public:
    /// The bits of all inputs of the tables.
    using Key = std::array<std::uint32_t, 6>;

    /// One rewrite of the tables, begun before its first store and ended after its last.
    struct Rewrite {
        std::uint32_t number;
        bool alone; ///< no other was unfinished at its begin
    };

    /// State of the tables at the end of a rewrite.
    enum class Outcome {
        whole,      ///< no other thread wrote meanwhile
        unfinished, ///< another thread still writes, and will get `mixed`
        mixed       ///< another thread wrote meanwhile and all have ended: compute again
    };

    /// Whether the tables are those computed from `key`. Any thread.
    bool holds(const Key& key) const {
        const std::uint32_t number = begun_.load();
        if (valid_.load() != number)
            return false;
        for (std::size_t i = 0; i < key.size(); ++i)
            if (computedFrom_[i].load() != key[i])
                return false;
        return begun_.load() == number;
    }

    /// Any thread.
    Rewrite begin() {
        const std::uint32_t number = begun_.fetch_add(1) + 1;
        return {number, ended_.load() == number - 1};
    }

    /// The tables were computed from `key`. Any thread.
    Outcome endComputed(const Rewrite& rewrite, const Key& key) {
        if (rewrite.alone && begun_.load() == rewrite.number) {
            for (std::size_t i = 0; i < key.size(); ++i)
                computedFrom_[i].store(key[i]);
            valid_.store(rewrite.number);
        }
        return endOther(rewrite);
    }

    /// The tables were not computed from a key. Any thread.
    Outcome endOther(const Rewrite& rewrite) {
        const std::uint32_t finished = ended_.fetch_add(1) + 1;
        const std::uint32_t started = begun_.load();
        if (rewrite.alone && started == rewrite.number)
            return Outcome::whole;
        return finished == started ? Outcome::mixed : Outcome::unfinished;
    }

    /// No generation.
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;

    /// The generation of the tables, or kNone while they are being rewritten. A copy made after this call is
    /// valid for as long as the generation stays the same. Any thread.
    std::uint32_t generation() const {
        const std::uint32_t finished = ended_.load();
        return begun_.load() == finished ? finished : kNone;
    }

  private:
    std::atomic<std::uint32_t> begun_ = 0;     ///< rewrites begun
    std::atomic<std::uint32_t> ended_ = 0;     ///< rewrites ended
    std::atomic<std::uint32_t> valid_ = kNone; ///< number of the rewrite that `computedFrom_` belongs to
    std::array<std::atomic<std::uint32_t>, 6> computedFrom_{};
};

} // namespace dsp
