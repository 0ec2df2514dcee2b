// What has changed without the host's doing since it was told last: values, and the gestures of the hand that
// has set them. Nobody waits for anybody.
#pragma once

#include "base/shared.h"
#include "doors/clap/parameter_list.h"

#include <array>
#include <bit>
#include <cstdint>

namespace clap_door {

/// What the host is to be told of a parameter.
struct UntoldChange {
    enum class Kind { gestureBegin, value, gestureEnd };

    Kind kind;
    std::uint32_t index; ///< the parameter's place in the list
    bool isByHand;       ///< and not by a program or a controller
};

class UntoldChanges {
  public:
    /// A value, by its parameter's place in the list. Any thread.
    void note(std::uint32_t index) { values_.setBitsInOrder(bitOf(index)); }
    void noteAll() { values_.setBitsInOrder(kAll); }
    /// Values noted so far are not told.
    void forgetValues() { values_.takeBitsInOrder(kAll); }

    /// A value that the hand sets, and its taking hold of a parameter and letting it go, in turns. The window
    /// thread.
    void noteMoved(std::uint32_t index) { moved_.setBitsInOrder(bitOf(index)); }
    void noteGesture(std::uint32_t index) {
        turns_[index].addInOrder(1);
        turned_.setBitsInOrder(bitOf(index));
    }

    /// Calls `tellHost` with each change, in the order of the list and for one parameter in the order of what
    /// happened: between the begin and the end of a gesture there is a value at least. False from it ends
    /// this, and what it has not taken waits for the next time. While another thread is in here nothing
    /// happens. Any thread.
    template <class TellHost>
    void tell(const TellHost& tellHost) {
        if (noted() == 0 || isTelling_.setBitsInOrder(1))
            return;
        for (std::uint32_t bits = noted(); bits != 0; bits &= bits - 1)
            if (!tellOf(static_cast<std::uint32_t>(std::countr_zero(bits)), tellHost))
                break;
        isTelling_.takeBitsInOrder(1);
    }

  private:
    static constexpr std::uint32_t kAll = (1u << kNumListed) - 1;
    static constexpr std::uint32_t bitOf(std::uint32_t index) { return 1u << index; }

    /// Bits of the parameters of which there may be something to tell.
    std::uint32_t noted() const { return values_.load() | moved_.load() | turned_.load(); }

    /// A parameter's value that has been noted, taken out of the bits.
    struct OwedValue {
        bool byEffect = false;
        bool byHand = false;
    };

    void take(std::uint32_t index, OwedValue& owed) {
        owed.byEffect |= values_.takeBitsInOrder(bitOf(index)) != 0;
        owed.byHand |= moved_.takeBitsInOrder(bitOf(index)) != 0;
    }
    /// True if there was nothing to tell, or it has been told.
    template <class TellHost>
    bool tellValue(std::uint32_t index, OwedValue& owed, const TellHost& tellHost) {
        if (!owed.byEffect && !owed.byHand)
            return true;
        if (!tellHost(UntoldChange{UntoldChange::Kind::value, index, owed.byHand}))
            return false;
        owed = {};
        return true;
    }

    template <class TellHost>
    bool tellOf(std::uint32_t index, const TellHost& tellHost) {
        turned_.takeBitsInOrder(bitOf(index));
        // Before the turns: no value is told ahead of the begin of its gesture.
        OwedValue owed;
        take(index, owed);
        if (tellTurns(index, owed, tellHost) && tellValue(index, owed, tellHost))
            return true;
        turned_.setBitsInOrder(bitOf(index));
        if (owed.byEffect)
            note(index);
        if (owed.byHand)
            noteMoved(index);
        return false;
    }

    template <class TellHost>
    bool tellTurns(std::uint32_t index, OwedValue& owed, const TellHost& tellHost) {
        using enum UntoldChange::Kind;
        const std::uint32_t now = turns_[index].loadInOrder();
        // Of several gestures since the last time the host is told the last one alone.
        if (const std::uint32_t pending = now - toldTurns_[index].load(); pending > 2)
            toldTurns_[index].store(now - (pending % 2 == 0 ? 2 : 1));
        for (std::uint32_t told = toldTurns_[index].load(); told != now; toldTurns_[index].store(++told)) {
            const bool isBegin = told % 2 == 0;
            if (!isBegin) {
                // The last value of the gesture may have been noted since.
                take(index, owed);
                if (!tellValue(index, owed, tellHost))
                    return false;
            }
            if (!tellHost(UntoldChange{isBegin ? gestureBegin : gestureEnd, index, true}))
                return false;
            // Hosts take a gesture without a value for one that sets 0.
            owed.byHand |= isBegin;
        }
        return true;
    }

    base::Shared<std::uint32_t> values_; ///< a bit for each parameter, by its place, as all bits here
    base::Shared<std::uint32_t> moved_;  ///< by hand
    base::Shared<std::uint32_t> turned_; ///< whose turns may be more than the host knows of
    /// Begins and ends of gestures so far, of each parameter: odd while the hand holds it.
    std::array<base::Shared<std::uint32_t>, kNumListed> turns_;
    std::array<base::Shared<std::uint32_t>, kNumListed> toldTurns_; ///< whoever is telling
    base::Shared<std::uint32_t> isTelling_;
};

} // namespace clap_door
