// What a host keeps in a project: whole states come back bit by bit, anything else changes nothing.
#include "clap_module.h"
#include "sound.h"

#include "desk/private_folder.h"
#include "doors/clap/saved_state.h"

#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace clap_test;
using namespace clap_door;
using namespace parameters;

constexpr std::size_t kSize = 4 + 4 + 4 + 17 * 4 + 128 * 112;
constexpr std::size_t kVersionAt = 4, kProgramAt = 8, kLiveAt = 12, kBankAt = kLiveAt + 17 * 4;

/// The module of the build; stays loaded.
const Module& module() {
    static const Module loaded;
    return loaded;
}

template <class Value>
void put(Bytes& bytes, std::size_t at, Value value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

template <class Value>
Value valueAt(const Bytes& bytes, std::size_t at) {
    Value value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

class State : public testing::Test {
  protected:
    /// Another program, and values that no program has.
    void changeEverything() {
        instance.set(kProgramId, 12.0);
        for (clap_id id = 0; id < 17; ++id)
            instance.set(id, 0.0625 * (id % 15));
        instance.set(kSet, 2.0);
    }

    /// Values in the next block.
    static std::size_t numTold(Instance& of) {
        Row samples(64);
        float* const channels[] = {samples.data(), samples.data()};
        ToldEvents told;
        of.process(channels, channels, 64, nullptr, &told);
        return told.values.size();
    }

    desk::PrivateFolder folder;
    Host host;
    Instance instance{module().entry(), host};
};

TEST_F(State, HoldsAVersionTheProgramTheLiveValuesAndTheBank) {
    changeEverything();
    const Bytes saved = instance.save().value();
    ASSERT_EQ(saved.size(), kSize);
    EXPECT_EQ(std::string(saved.begin(), saved.begin() + 4), "Qlvd");
    EXPECT_EQ(valueAt<std::uint32_t>(saved, kVersionAt), 1u);
    EXPECT_EQ(valueAt<std::int32_t>(saved, kProgramAt), 12);
    for (std::size_t id = 0; id < 17; ++id) {
        const float expected = id == kSet ? 1.0f : 0.0625f * static_cast<float>(id % 15);
        EXPECT_EQ(valueAt<float>(saved, kLiveAt + 4 * id), expected) << id;
        EXPECT_EQ(valueAt<float>(saved, kBankAt + 12 * 112 + 4 * id), expected) << id;
    }
    EXPECT_STREQ(reinterpret_cast<const char*>(saved.data()) + kBankAt + 84, "Skipping Stone");
}

TEST_F(State, ComesBackInAnotherInstance) {
    changeEverything();
    const Bytes saved = instance.save().value();
    Host other;
    Instance second(module().entry(), other);
    EXPECT_TRUE(second.load(saved));
    EXPECT_EQ(second.save(), saved);
    for (clap_id id = 0; id < 17; ++id)
        EXPECT_EQ(second.value(id), instance.value(id)) << id;
    EXPECT_EQ(second.value(kProgramId), 12.0);
}

TEST_F(State, KeepsEveryBit) {
    Bytes state = instance.save().value();
    std::mt19937 random(1);
    for (std::size_t at = kLiveAt; at < kSize; ++at)
        state[at] = static_cast<std::uint8_t>(random());
    for (std::size_t program = 0; program < 128; ++program)
        state[kBankAt + program * 112 + 108] = 0;
    put<std::int32_t>(state, kProgramAt, 3);
    // The live values are the current program's.
    std::memcpy(&state[kBankAt + 3 * 112], &state[kLiveAt], 17 * 4);
    EXPECT_TRUE(instance.load(state));
    EXPECT_EQ(instance.save(), state);
}

TEST_F(State, KeepsTheFloatOfSetWhereTheHostRepeatsItsStep) {
    Bytes state = instance.save().value();
    put(state, kLiveAt + 4 * kSet, 0.3f);
    EXPECT_TRUE(instance.load(state));
    EXPECT_EQ(instance.value(kSet), 1.0);
    instance.set(kSet, 1.0);
    EXPECT_EQ(valueAt<float>(instance.save().value(), kLiveAt + 4 * kSet), 0.3f);
    instance.set(kSet, 2.0);
    EXPECT_EQ(valueAt<float>(instance.save().value(), kLiveAt + 4 * kSet), 1.0f);
    instance.set(kSet, 1.0);
    EXPECT_EQ(valueAt<float>(instance.save().value(), kLiveAt + 4 * kSet), 0.5f);
}

TEST_F(State, ShowsValuesWithinTheirRangesWhateverItHolds) {
    Bytes state = instance.save().value();
    put(state, kLiveAt + 4 * kTaps, 7.0f);
    put(state, kLiveAt + 4 * kCurve, -7.0f);
    put(state, kLiveAt + 4 * kSet, 70.0f);
    put(state, kLiveAt + 4 * kFeedback, std::numeric_limits<float>::quiet_NaN());
    EXPECT_TRUE(instance.load(state));
    EXPECT_EQ(instance.value(kTaps), 1.0);
    EXPECT_EQ(instance.value(kCurve), 0.0);
    EXPECT_EQ(instance.value(kSet), 2.0);
    EXPECT_EQ(instance.value(kFeedback), 0.0);
}

TEST_F(State, HasTheHostReadAllValuesAndNamesAgain) {
    changeEverything();
    const Bytes saved = instance.save().value();
    Host other;
    Instance second(module().entry(), other);
    second.activate();
    EXPECT_EQ(other.rescanned, 0u);
    EXPECT_TRUE(second.load(saved));
    EXPECT_EQ(other.rescanned, CLAP_PARAM_RESCAN_VALUES | CLAP_PARAM_RESCAN_TEXT);
    EXPECT_EQ(numTold(second), 0u) << "it has read them";
}

TEST_F(State, IsToldInTheNextBlockToAHostThatDoesNotReadAgain) {
    changeEverything();
    Host other(Host::kEverything & ~Host::kParameters);
    Instance second(module().entry(), other);
    second.activate();
    EXPECT_TRUE(second.load(instance.save().value()));
    EXPECT_EQ(numTold(second), kNumListed);
}

TEST_F(State, GoesThroughStreamsThatTakeAndGiveAByteAtATime) {
    changeEverything();
    const Bytes saved = instance.save(1).value();
    EXPECT_EQ(saved, instance.save());
    Host other;
    Instance second(module().entry(), other);
    EXPECT_TRUE(second.load(saved, 1));
    EXPECT_EQ(second.save(), saved);
}

TEST_F(State, IsNotSavedWhereTheHostDoesNotTakeAllOfIt) {
    for (std::size_t room = 0; room < kSize; ++room)
        ASSERT_FALSE(instance.save(5000, room)) << room;
    EXPECT_TRUE(instance.save(5000, kSize));
}

/// The sound of a click's echoes, with a refused state between.
class RefusedState : public State {
  protected:
    RefusedState() {
        changeEverything();
        other = instance.save().value();
        instance.set(kProgramId, 0.0);
        before = instance.save().value();
    }
    void expectRefusal(const Bytes& state, std::int64_t end = 0) {
        ASSERT_FALSE(instance.load(state, 7000, end));
        ASSERT_EQ(host.rescanned, 0u);
    }

    Bytes other, before;
};

TEST_F(RefusedState, ChangesNothingWhereItIsCutShort) {
    for (std::size_t size = 0; size < kSize; ++size) {
        const Bytes cut(other.begin(), other.begin() + static_cast<std::ptrdiff_t>(size));
        expectRefusal(cut);
        expectRefusal(cut, -1);
    }
    EXPECT_EQ(instance.save(), before);
}

TEST_F(RefusedState, ChangesNothingWhereItIsForeignOrNewer) {
    for (const std::size_t at : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u}) {
        Bytes foreign = other;
        foreign[at] = static_cast<std::uint8_t>(foreign[at] + 1);
        expectRefusal(foreign);
    }
    Bytes old = other;
    put<std::uint32_t>(old, kVersionAt, 0);
    expectRefusal(old);
    expectRefusal(Bytes(kSize, 0xA5));
    EXPECT_EQ(instance.save(), before);
}

TEST_F(RefusedState, ChangesNothingWhereThereIsNoSuchProgram) {
    for (const std::int32_t program :
         {-1, 128, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        Bytes state = other;
        put(state, kProgramAt, program);
        expectRefusal(state);
    }
    EXPECT_EQ(instance.save(), before);
}

TEST_F(RefusedState, LeavesTheEchoes) {
    instance.set(kDryWet, 1.0);
    instance.set(kBaseLength, 0.3);
    instance.activate();
    EXPECT_GT(loudestAfterClick(instance, [&] { expectRefusal(Bytes(100)); }), 0.01f);
    EXPECT_LT(loudestAfterClick(instance, [&] { EXPECT_TRUE(instance.load(other)); }), 0.001f);
}

TEST_F(RefusedState, IsWhatThereIsWithoutAStream) {
    const auto& state = instance.extension<clap_plugin_state_t>(CLAP_EXT_STATE);
    EXPECT_FALSE(state.load(instance.plugin(), nullptr));
    EXPECT_FALSE(state.save(instance.plugin(), nullptr));
    // A stream that claims to have given more than there was room for.
    const clap_istream_t boastful = {nullptr, [](const clap_istream_t*, void*, std::uint64_t size) {
                                         return static_cast<std::int64_t>(size) + 1;
                                     }};
    EXPECT_FALSE(state.load(instance.plugin(), &boastful));
    EXPECT_EQ(instance.save(), before);
}

TEST_F(State, SoundsTheSameLoadedBeforeAndAfterActivation) {
    changeEverything();
    const Bytes saved = instance.save().value();
    instance.activate(48000.0);
    const Stereo set = played(instance);
    Host hosts[2];
    Instance before(module().entry(), hosts[0]), after(module().entry(), hosts[1]);
    EXPECT_TRUE(before.load(saved));
    before.activate(48000.0);
    after.activate(48000.0);
    EXPECT_TRUE(after.load(saved));
    EXPECT_EQ(played(before), set);
    EXPECT_EQ(played(after), set);
}

} // namespace
