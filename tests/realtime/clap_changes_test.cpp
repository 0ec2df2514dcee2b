// A hand and a CLAP host that asks what it has done, in every order that their instructions can take: the
// host hears of a gesture as of begin, values and end.
#include "interleaving.h"

#include "doors/clap/untold_changes.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <regex>
#include <string>

#include <gtest/gtest.h>

namespace realtime {
namespace {

using clap_door::UntoldChange;
using clap_door::UntoldChanges;

constexpr std::uint32_t kIndex = 6;

/// Both sides of one parameter.
struct Meeting {
    UntoldChanges changes;
    base::Shared<std::uint32_t> value; ///< as the hand has set it
    std::uint32_t toldValue = 0;
    std::string told; ///< "[", "v" and "]"

    void begin() { changes.noteGesture(kIndex); }
    void move() {
        value.store(value.load() + 1);
        changes.noteMoved(kIndex);
    }
    void end() { changes.noteGesture(kIndex); }
    void ask() {
        changes.tell([this](const UntoldChange& change) {
            const bool isValue = change.kind == UntoldChange::Kind::value;
            if (isValue)
                toldValue = value.load();
            told += isValue ? 'v' : change.kind == UntoldChange::Kind::gestureBegin ? '[' : ']';
            return true;
        });
    }
};

using Work = std::function<void(Meeting&)>;

/// `first` is interrupted by `second` at each of its instructions; at the end the host asks once more. What
/// it has been told then matches `pattern` and holds the last value.
void expectAlways(const Work& prepare, const Work& first, const Work& second, const std::string& pattern) {
    const auto meet = [&] {
        auto meeting = std::make_unique<Meeting>();
        prepare(*meeting);
        return meeting;
    };
    auto counted = meet();
    first(*counted); // the loader looks functions up at their first call
    counted = meet();
    const std::int64_t length = countInstructions([&] { first(*counted); });
    ASSERT_GT(length, 4);
    ASSERT_LT(length, 5000);
    for (std::int64_t steps = 1; steps < length; ++steps) {
        const auto meeting = meet();
        interleave([&] { first(*meeting); }, steps, [&] { second(*meeting); });
        meeting->ask();
        ASSERT_TRUE(std::regex_match(meeting->told, std::regex(pattern)))
            << meeting->told << " after " << steps << " instructions of " << length;
        ASSERT_EQ(meeting->toldValue, meeting->value.load()) << "after " << steps << " instructions";
    }
}

void nothing(Meeting&) {}
void ask(Meeting& meeting) {
    meeting.ask();
}
void hold(Meeting& meeting) {
    meeting.begin();
}
void holdAndAsk(Meeting& meeting) {
    meeting.begin();
    meeting.ask();
}
void moveAndLetGo(Meeting& meeting) {
    meeting.move();
    meeting.end();
}
void useBriefly(Meeting& meeting) {
    meeting.begin();
    meeting.move();
    meeting.end();
}

TEST(AGesture, HasItsLastValueBeforeItsEndWhereTheHandIsQuickerThanTheHost) {
    expectAlways(holdAndAsk, ask, moveAndLetGo, "\\[vv?\\]");
    expectAlways([](Meeting& m) { holdAndAsk(m), m.move(); }, ask, moveAndLetGo, "\\[vv+\\]");
    expectAlways(hold, ask, moveAndLetGo, "\\[v+\\]");
    expectAlways([](Meeting& m) { useBriefly(m); }, ask, useBriefly, "(\\[v+\\])+");
    expectAlways([](Meeting& m) { holdAndAsk(m), moveAndLetGo(m); }, ask, useBriefly, "(\\[v+\\])+");
}

TEST(AGesture, HasItsLastValueBeforeItsEndWhereTheHostIsQuickerThanTheHand) {
    expectAlways(nothing, useBriefly, ask, "\\[v+\\]");
    expectAlways(holdAndAsk, moveAndLetGo, ask, "\\[v+\\]");
    expectAlways(useBriefly, useBriefly, ask, "(\\[v+\\])+");
}

TEST(AGesture, IsToldInOrderToTwoThreadsOfAHost) {
    const auto useAndAsk = [](Meeting& meeting) {
        useBriefly(meeting);
        meeting.ask();
    };
    expectAlways(useBriefly, ask, useAndAsk, "(\\[v+\\])+");
    expectAlways(holdAndAsk, ask, [](Meeting& m) { moveAndLetGo(m), m.ask(); }, "\\[v+\\]");
}

} // namespace
} // namespace realtime
