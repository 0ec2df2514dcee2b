// How a control that waits gets its controller.
#include "midi/learn_machine.h"

#include "midi/cc_map.h"
#include "parameters/parameter_table.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using midi::kLearnTagBase;
using midi::kNoController;
using parameters::kFeedback;
using parameters::kNumParameters;
using parameters::kStereo;

class Learning : public testing::Test {
  protected:
    Learning() {
        for (std::int32_t id = 0; id < kNumParameters; ++id)
            midi::bindController(id, kNoController);
    }
    void expectNothingBound() {
        for (std::int32_t id = 0; id < kNumParameters; ++id)
            EXPECT_EQ(midi::controllerOf(id), kNoController) << "id " << id;
    }
    static std::int32_t overlayOf(std::int32_t id) { return kLearnTagBase + id; }

    midi::LearnMachine learn;
};

TEST_F(Learning, BindsNothingWhileIdle) {
    EXPECT_FALSE(learn.isArmed());
    learn.bind(7);
    expectNothingBound();
}

TEST_F(Learning, BindsTheNextControllerToTheArmedParameter) {
    learn.controlChanged(overlayOf(kFeedback), 1.0f);
    EXPECT_TRUE(learn.isArmed());
    learn.bind(7);
    EXPECT_EQ(midi::controllerOf(kFeedback), 7);
    EXPECT_FALSE(learn.isArmed());
}

TEST_F(Learning, BindsOneControllerOnly) {
    learn.controlChanged(overlayOf(kFeedback), 1.0f);
    learn.bind(7);
    learn.bind(8);
    EXPECT_EQ(midi::controllerOf(kFeedback), 7);
}

TEST_F(Learning, GoesToTheControlArmedLast) {
    learn.controlChanged(overlayOf(kFeedback), 1.0f);
    learn.controlChanged(overlayOf(kStereo), 1.0f);
    learn.bind(7);
    EXPECT_EQ(midi::controllerOf(kFeedback), kNoController);
    EXPECT_EQ(midi::controllerOf(kStereo), 7);
}

TEST_F(Learning, IsOverWhenTheWindowOpensAnew) {
    learn.controlChanged(overlayOf(kFeedback), 1.0f);
    learn.disarm();
    learn.bind(7);
    expectNothingBound();
}

TEST_F(Learning, IsArmedByAValueOfExactlyOneAlone) {
    for (const float value : {0.0f, -1.0f, 0.999999f, 1.000001f, std::numeric_limits<float>::quiet_NaN()}) {
        learn.controlChanged(overlayOf(kFeedback), value);
        EXPECT_FALSE(learn.isArmed()) << value;
    }
}

TEST_F(Learning, IsArmedByOverlaysOfParametersAlone) {
    for (const std::int32_t tag : {static_cast<std::int32_t>(kFeedback), 22, 999, kLearnTagBase - 1, -1,
                                   overlayOf(kNumParameters), std::numeric_limits<std::int32_t>::min()}) {
        learn.controlChanged(tag, 1.0f);
        EXPECT_FALSE(learn.isArmed()) << tag;
    }
    for (const std::int32_t id : {0, kNumParameters - 1}) {
        learn.controlChanged(overlayOf(id), 1.0f);
        EXPECT_TRUE(learn.isArmed()) << id;
        learn.disarm();
    }
}

TEST_F(Learning, StaysArmedWhenAnotherControlMoves) {
    learn.controlChanged(overlayOf(kFeedback), 1.0f);
    learn.controlChanged(overlayOf(kStereo), 0.5f);
    learn.bind(7);
    EXPECT_EQ(midi::controllerOf(kFeedback), 7);
}

TEST_F(Learning, TakesAControlChangeOnAnyChannelFromItsBytes) {
    for (const int status : {0xB0, 0xB5, 0xBF}) {
        learn.controlChanged(overlayOf(kFeedback), 1.0f);
        const std::uint8_t message[] = {static_cast<std::uint8_t>(status),
                                        static_cast<std::uint8_t>(status & 0x7F), 100};
        learn.learnFromMidi(message);
        EXPECT_EQ(midi::controllerOf(kFeedback), status & 0x7F);
    }
}

TEST_F(Learning, PassesOverOtherMessages) {
    learn.controlChanged(overlayOf(kFeedback), 1.0f);
    for (const int status : {0x80, 0x90, 0xC0, 0xE0, 0xF0}) {
        const std::uint8_t message[] = {static_cast<std::uint8_t>(status), 7, 100};
        learn.learnFromMidi(message);
        EXPECT_TRUE(learn.isArmed());
    }
    expectNothingBound();
}

TEST_F(Learning, KeepsTheSignOfAControllersByte) {
    learn.controlChanged(overlayOf(kFeedback), 1.0f);
    const std::uint8_t message[] = {0xB0, 0xFE, 100};
    learn.learnFromMidi(message);
    EXPECT_EQ(midi::controllerOf(kFeedback), -2);
}

} // namespace
