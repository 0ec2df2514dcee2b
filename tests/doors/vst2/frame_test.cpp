// The frame between a host's C record and the effect's class, seen from inside: what the loaded library
// cannot show.
#include "desk/private_folder.h"
#include "doors/vst2/velmo_delay.h"
#include "parameters/parameter_table.h"
#include "platform/message_box.h"
#include "platform/module_folder.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace vst2;

struct Call {
    std::int32_t opcode;
    std::int32_t index;
    std::intptr_t value;
    float opt;
    std::string text;
    float parameterAtThatTime;
};
std::vector<Call> calls;
std::intptr_t answer;

std::intptr_t recordingHost(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                            void* ptr, float opt) {
    calls.push_back({opcode, index, value, opt,
                     opcode == audioMasterCanDo ? static_cast<const char*>(ptr) : std::string(),
                     effect->getParameter(effect, index)});
    return answer;
}

/// An effect made directly, in a folder of its own, with its messages kept.
class Frame : public testing::Test {
  protected:
    Frame() {
        platform::replaceMessageBox(
            [](void* context, const char* text, const char* caption, const platform::MessageLook&) {
                static_cast<Frame*>(context)->messages.push_back(std::string(caption) + ": " + text);
            },
            this);
        calls.clear();
        answer = 0;
    }
    ~Frame() override { platform::replaceMessageBox(nullptr, nullptr); }

    std::unique_ptr<vst2_door::velmo_delay> make(audioMasterCallback host) {
        return std::make_unique<vst2_door::velmo_delay>(host);
    }

    desk::PrivateFolder folder;
    std::vector<std::string> messages;
};

TEST_F(Frame, WithoutAHostKeepsOneInputAndTheIdOfNoEffect) {
    const auto effect = make(nullptr);
    EXPECT_EQ(effect->getAeffect()->numInputs, 1);
    EXPECT_EQ(effect->getAeffect()->numOutputs, 2);
    EXPECT_EQ(effect->getAeffect()->uniqueID, fourCharacterCode("NoEf"));
}

TEST_F(Frame, WithoutAHostAnswersNoToEverythingThatAsksTheHost) {
    const auto effect = make(nullptr);
    EXPECT_FALSE(effect->beginEdit(0));
    EXPECT_FALSE(effect->endEdit(0));
    EXPECT_FALSE(effect->updateDisplay());
    EXPECT_FALSE(effect->sizeWindow(100, 100));
    EXPECT_FALSE(effect->canHostDo("sizeWindow"));
    effect->masterIdle();
    effect->setParameterAutomated(parameters::kFeedback, 0.25f);
    EXPECT_EQ(effect->getParameter(parameters::kFeedback), 0.25f);
}

TEST_F(Frame, WithAHostTellsItsChannelsProgramsAndParameters) {
    const auto effect = make(recordingHost);
    EXPECT_EQ(effect->getAeffect()->numInputs, 2);
    EXPECT_EQ(effect->getAeffect()->numOutputs, 2);
    EXPECT_EQ(effect->getAeffect()->numPrograms, 128);
    EXPECT_EQ(effect->getAeffect()->numParams, 21);
    EXPECT_EQ(effect->getAeffect()->uniqueID, fourCharacterCode("qlvd"));
}

TEST_F(Frame, AsksTheHostFourTimesToReadItsDisplayAnewWhileItComesUp) {
    const auto effect = make(recordingHost);
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [](const Call& call) { return call.opcode == audioMasterUpdateDisplay; }),
              4);
}

TEST_F(Frame, LeadsQuestionsOfTheHostToTheEffect) {
    const auto effect = make(recordingHost);
    AEffect* const record = effect->getAeffect();
    char text[65] = "";
    record->dispatcher(record, effGetParamDisplay, parameters::kStereo, 0, text, 0.0f);
    EXPECT_STREQ(text, "1.000");
    record->dispatcher(record, effSetSampleRate, 0, 0, nullptr, 48000.0f);
    EXPECT_EQ(effect->getSampleRate(), 48000.0f);
    record->dispatcher(record, effSetProgram, 0, 5, nullptr, 0.0f);
    char name[] = "The sixth";
    record->dispatcher(record, effSetProgramName, 0, 0, name, 0.0f);
    record->dispatcher(record, effGetProgramName, 0, 0, text, 0.0f);
    EXPECT_STREQ(text, "The sixth");
    VstPinProperties pin = {};
    EXPECT_EQ(record->dispatcher(record, effGetOutputProperties, 1, 0, &pin, 0.0f), 1);
    EXPECT_STREQ(pin.label, "Quillon Multitap Delay2");
    for (const std::string can : {"receiveVstEvents", "receiveVstMidiEvent"})
        EXPECT_EQ(effect->canDo(can.c_str()), 1) << can;
    EXPECT_EQ(effect->canDo("receiveVstMidiEvents"), -1);
}

TEST_F(Frame, TellsTheHostOfAUsersChangeAfterTheParameterHasChanged) {
    const auto effect = make(recordingHost);
    calls.clear();
    effect->setParameterAutomated(parameters::kFeedback, 0.75f);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].opcode, audioMasterAutomate);
    EXPECT_EQ(calls[0].index, parameters::kFeedback);
    EXPECT_EQ(calls[0].opt, 0.75f);
    EXPECT_EQ(calls[0].parameterAtThatTime, 0.75f);
}

TEST_F(Frame, PassesTheEditorsWishesOnToTheHost) {
    const auto effect = make(recordingHost);
    calls.clear();
    answer = 1;
    EXPECT_TRUE(effect->beginEdit(3));
    EXPECT_TRUE(effect->endEdit(3));
    EXPECT_TRUE(effect->sizeWindow(640, 480));
    EXPECT_TRUE(effect->canHostDo("sizeWindow"));
    effect->masterIdle();
    ASSERT_EQ(calls.size(), 5u);
    EXPECT_EQ(calls[0].opcode, audioMasterBeginEdit);
    EXPECT_EQ(calls[0].index, 3);
    EXPECT_EQ(calls[1].opcode, audioMasterEndEdit);
    EXPECT_EQ(calls[1].index, 3);
    EXPECT_EQ(calls[2].opcode, audioMasterSizeWindow);
    EXPECT_EQ(calls[2].index, 640);
    EXPECT_EQ(calls[2].value, 480);
    EXPECT_EQ(calls[3].opcode, audioMasterCanDo);
    EXPECT_EQ(calls[3].text, "sizeWindow");
    EXPECT_EQ(calls[4].opcode, audioMasterIdle);
}

TEST_F(Frame, ReportsAMissingBankOnceForEachInstance) {
    const auto first = make(recordingHost);
    const auto second = make(recordingHost);
    EXPECT_EQ(messages, (std::vector<std::string>{"Preset loader: Default bank error: file not found",
                                                  "Preset loader: Default bank error: file not found"}));
}

TEST_F(Frame, ConvertsSamplesToRatesAndTimes) {
    const auto effect = make(nullptr);
    char text[9];
    effect->Hz2string(441.0f, text, 8);
    EXPECT_STREQ(text, "100.0000");
    effect->Hz2string(0.0f, text, 8);
    EXPECT_STREQ(text, "0.000000");
    effect->ms2string(44100.0f, text, 8);
    EXPECT_STREQ(text, "1000.000");
}

/// An editor that notes what reaches it.
class NotingEditor : public interfaces::AEffEditor {
  public:
    NotingEditor(interfaces::EditorHost* owner, std::string& notes) : AEffEditor(owner), notes_(notes) {}
    ~NotingEditor() override { notes_ += "gone "; }
    bool getRect(interfaces::EditorRect** rect) override {
        *rect = &size_;
        return true;
    }
    bool open(void* ptr) override {
        AEffEditor::open(ptr);
        notes_ += "open ";
        return true;
    }
    void close() override { notes_ += "close "; }
    void idle() override { notes_ += "idle "; }
    bool onKeyDown(interfaces::KeyCode& key) override {
        notes_ += "down " + std::to_string(key.character) + "/" + std::to_string(key.virt) + "/" +
                  std::to_string(key.modifier) + " ";
        return true;
    }
    bool onKeyUp(interfaces::KeyCode&) override {
        notes_ += "up ";
        return true;
    }
    bool setKnobMode(std::int32_t mode) override {
        notes_ += "knobs " + std::to_string(mode) + " ";
        return true;
    }

  private:
    std::string& notes_;
    interfaces::EditorRect size_ = {0, 0, 480, 640};
};

/// An effect with nothing of its own, whose editor a test chooses.
class PlainEffect final : public vst2_door::AudioEffectX {
  public:
    using AudioEffectX::AudioEffectX;
    void processReplacing(float**, float**, std::int32_t) override {}
};

TEST_F(Frame, LeadsTheEditorsOpcodesToTheEditorAndOwnsIt) {
    std::string notes;
    {
        const auto effect = std::make_unique<PlainEffect>(recordingHost, 1, 1);
        AEffect* const record = effect->getAeffect();
        EXPECT_EQ(record->flags, effFlagsCanReplacing);
        effect->setEditor(new NotingEditor(effect.get(), notes));
        EXPECT_EQ(record->flags, effFlagsCanReplacing | effFlagsHasEditor);

        ERect* size = nullptr;
        int parent = 0;
        EXPECT_EQ(record->dispatcher(record, effEditGetRect, 0, 0, &size, 0.0f), 1);
        EXPECT_EQ(size->right, 640);
        EXPECT_EQ(record->dispatcher(record, effEditOpen, 0, 0, &parent, 0.0f), 1);
        EXPECT_TRUE(effect->getEditor()->isOpen());
        EXPECT_EQ(record->dispatcher(record, effEditIdle, 0, 0, nullptr, 0.0f), 0);
        EXPECT_EQ(record->dispatcher(record, effEditKeyDown, 'a', 7, nullptr, 2.9f), 1);
        EXPECT_EQ(record->dispatcher(record, effEditKeyUp, 'a', 7, nullptr, 2.0f), 1);
        EXPECT_EQ(record->dispatcher(record, effSetEditKnobMode, 0, 2, nullptr, 0.0f), 1);
        EXPECT_EQ(record->dispatcher(record, effEditClose, 0, 0, nullptr, 0.0f), 0);
    }
    EXPECT_EQ(notes, "open idle down 97/7/2 up knobs 2 close gone ");
}

std::intptr_t closeByRecord(AEffect* record) {
    return record->dispatcher(record, effClose, 0, 0, nullptr, 0.0f);
}

/// An effect that its host closes while it is asked for its chunk.
class ClosedInACall final : public vst2_door::AudioEffectX {
  public:
    explicit ClosedInACall(std::string& notes) : AudioEffectX(recordingHost, 1, 1), notes_(notes) {
        setEditor(new NotingEditor(this, notes_));
    }
    ~ClosedInACall() override { notes_ += "effect gone "; }
    void processReplacing(float**, float**, std::int32_t) override {}
    std::int32_t getChunk(void**, bool) override {
        EXPECT_EQ(closeByRecord(getAeffect()), 1);
        notes_ += "chunk ";
        return 5;
    }

  private:
    std::string& notes_;
};

TEST_F(Frame, KeepsAnEffectThatIsClosedInTheMiddleOfACallUntilThatReturns) {
    std::string notes;
    AEffect* const record = (new ClosedInACall(notes))->getAeffect();
    EXPECT_EQ(record->dispatcher(record, effGetChunk, 0, 0, nullptr, 0.0f), 5);
    EXPECT_EQ(notes, "close chunk effect gone gone ") << "the window goes at once";
}

/// An effect that goes on talking to its host behind its end.
class TalkingBehindItsEnd final : public vst2_door::AudioEffectX {
  public:
    TalkingBehindItsEnd() : AudioEffectX(recordingHost, 1, 1) {}
    void processReplacing(float**, float**, std::int32_t) override {}
    std::int32_t getChunk(void**, bool) override {
        EXPECT_EQ(closeByRecord(getAeffect()), 1);
        calls.clear();
        answer = 1;
        setParameterAutomated(0, 0.5f);
        masterIdle();
        return beginEdit(0) || endEdit(0) || updateDisplay() || canHostDo("sizeWindow") || sizeWindow(1, 1);
    }
};

TEST_F(Frame, TellsTheHostNothingOnceThatHasClosedTheEffectInTheMiddleOfACall) {
    AEffect* const record = (new TalkingBehindItsEnd)->getAeffect();
    EXPECT_EQ(record->dispatcher(record, effGetChunk, 0, 0, nullptr, 0.0f), 0);
    EXPECT_EQ(calls.size(), 0u);
}

/// An effect in whose messages the host ends it.
class ClosedAtAMessage : public Frame {
  protected:
    ClosedAtAMessage() {
        platform::replaceMessageBox(
            [](void* context, const char* text, const char*, const platform::MessageLook&) {
                auto* const test = static_cast<ClosedAtAMessage*>(context);
                test->messages.push_back(text);
                if (AEffect* const record = std::exchange(test->toClose, nullptr))
                    closeByRecord(record);
            },
            this);
    }
    ~ClosedAtAMessage() override { platform::replaceModuleFolder(""); }

    AEffect* makeRecord() {
        AEffect* const record = (new vst2_door::velmo_delay(recordingHost))->getAeffect();
        messages.clear();
        toClose = record;
        return record;
    }

    AEffect* toClose = nullptr;
};

TEST_F(ClosedAtAMessage, OfAChunkOfTheWrongSize) {
    for (const std::int32_t isPreset : {0, 1}) {
        AEffect* const record = makeRecord();
        unsigned char chunk[200] = {};
        EXPECT_EQ(record->dispatcher(record, effSetChunk, isPreset, sizeof chunk, chunk, 0.0f), 1);
        EXPECT_EQ(messages.size(), 1u);
        EXPECT_TRUE(std::filesystem::remove("Pluginccmap.bin")) << "which the effect's end writes";
    }
}

TEST_F(ClosedAtAMessage, OfAFaultInTheSkin) {
    std::filesystem::create_directory("Quillon Skin");
    std::ofstream("Quillon Skin/skin.xml")
        << R"(<GUI><knob y="1"/><onoff x="1"/><vswitch x="oops"/><kick x="1"/></GUI>)";
    platform::replaceModuleFolder(folder.path() + "/");
    AEffect* const record = makeRecord();
    EXPECT_EQ(record->dispatcher(record, effEditOpen, 0, 0, nullptr, 0.0f), 0);
    EXPECT_EQ(messages, std::vector<std::string>{"Missing tag x for object knob"}) << "and no further one";
    EXPECT_TRUE(std::filesystem::exists("Pluginccmap.bin"));
}

/// An effect that notes the buffers of the two forms of processing that most hosts never call.
class NotingEffect final : public vst2_door::AudioEffectX {
  public:
    using AudioEffectX::AudioEffectX;
    void processReplacing(float**, float**, std::int32_t) override {}
    void process(float** inputs, float** outputs, std::int32_t frames) override {
        added = {inputs, outputs, frames};
    }
    void processDoubleReplacing(double** inputs, double** outputs, std::int32_t frames) override {
        replacedInDouble = {inputs, outputs, frames};
    }

    template <class Sample>
    struct Block {
        Sample** inputs = nullptr;
        Sample** outputs = nullptr;
        std::int32_t frames = 0;
    };
    Block<float> added;
    Block<double> replacedInDouble;
};

TEST_F(Frame, HandsTheOldAndTheDoubleFormOfABlockOnWithTheirBuffersInPlace) {
    NotingEffect effect(recordingHost, 1, 1);
    AEffect* const record = effect.getAeffect();
    float* singles[2] = {};
    record->process(record, singles, singles + 1, 64);
    EXPECT_EQ(effect.added.inputs, singles);
    EXPECT_EQ(effect.added.outputs, singles + 1);
    EXPECT_EQ(effect.added.frames, 64);
    double* doubles[2] = {};
    record->processDoubleReplacing(record, doubles, doubles + 1, 32);
    EXPECT_EQ(effect.replacedInDouble.inputs, doubles);
    EXPECT_EQ(effect.replacedInDouble.outputs, doubles + 1);
    EXPECT_EQ(effect.replacedInDouble.frames, 32);
}

} // namespace
