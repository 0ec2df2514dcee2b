// One instance of the effect as a host holds it: by its record alone, with a host that listens.
//
// Its 16 MiB make an instance slow to come by, so a fuzzer keeps one for many inputs and has it start afresh
// by what a host would do: load the first state again, and switch off and on. Left over from the inputs
// before are the states of filters, glides and the sweep. What only a long row of inputs brings to light thus
// shows up as well, though not with the last of them alone. Where kept inputs are replayed, each has an
// instance of its own.
#pragma once

#include "doors/vst2/velmo_delay.h"
#include "lent_buffer.h"
#include "promise.h"
#include "unattended.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

class EffectInstance {
  public:
    EffectInstance() {
        Unattended::instance().forgetMessages();
        record_ = (new vst2_door::velmo_delay(&listen))->getAeffect();
        flags_ = record_->flags;
        void* state = nullptr;
        const std::intptr_t size = dispatch(vst2::effGetChunk, 0, 0, &state);
        firstState_.assign(static_cast<char*>(state), static_cast<char*>(state) + size);
    }
    /// The one to try the next input on, as a host has just made it ready.
    static EffectInstance& forNextInput() {
        static int inputs = 0;
        if (inputs++ % QUILLON_INPUTS_PER_INSTANCE == 0)
            renew();
        current()->startAfresh();
        return *current();
    }
    /// Closes the one that is tried now, for a new one.
    static EffectInstance& renew() {
        current() = nullptr;
        current() = std::make_unique<EffectInstance>();
        current()->startAfresh();
        return *current();
    }

    ~EffectInstance() { promise(dispatch(vst2::effClose) == 1, "a close is answered with one"); }
    EffectInstance(const EffectInstance&) = delete;
    EffectInstance& operator=(const EffectInstance&) = delete;

    /// Without a window; programs, selection, rate and engine as they were at first; no message is
    /// remembered.
    void startAfresh() {
        dispatch(vst2::effEditClose);
        dispatch(vst2::effMainsChanged, 0, 0);
        dispatch(vst2::effSetSampleRate, 0, 0, nullptr, 44100.0f);
        dispatch(vst2::effSetChunk, 0, static_cast<std::intptr_t>(firstState_.size()), firstState_.data());
        dispatch(vst2::effSetProgram, 0, 0);
        dispatch(vst2::effMainsChanged, 0, 1);
        Unattended::instance().forgetMessages();
    }

    vst2::AEffect* record() { return record_; }
    std::intptr_t dispatch(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                           void* ptr = nullptr, float opt = 0.0f) {
        return record_->dispatcher(record_, opcode, index, value, ptr, opt);
    }
    std::int32_t program() { return static_cast<std::int32_t>(dispatch(vst2::effGetProgram)); }

    /// Plays `frames` samples of a click, in the buffers of the outputs themselves or beside them.
    void process(std::int32_t frames, bool inPlace) {
        const auto size = static_cast<std::size_t>(std::max(frames, 0)) * sizeof(float);
        LentBuffer left(size), right(size), click(size);
        for (LentBuffer* buffer : {&left, &right, &click})
            std::memset(buffer->data(), 0, size);
        if (frames > 0)
            *left.samples() = *right.samples() = *click.samples() = 0.5f;
        float* outputs[] = {left.samples(), right.samples()};
        float* crossed[] = {right.samples(), left.samples()};
        float* apart[] = {click.samples(), click.samples()};
        record_->processReplacing(record_, inPlace ? crossed : apart, outputs, frames);
        left.promiseUntouchedBehind(size, "no sample beyond the left block");
        right.promiseUntouchedBehind(size, "no sample beyond the right block");
    }

    /// The name of the current program as a host gets it.
    std::string programName() {
        LentBuffer buffer(25);
        dispatch(vst2::effGetProgramName, 0, 0, buffer.data());
        buffer.promiseUntouchedBehind(25, "a program's name fits into 25 bytes");
        promise(std::memchr(buffer.data(), '\0', 25) != nullptr, "a program's name has an end");
        return buffer.text();
    }

    /// What stays the same whatever a host does.
    void promiseToBeItself() {
        promise(record_->magic == vst2::kVstMagic && record_->flags == flags_, "the record's mark and flags");
        promise(record_->numPrograms == 128 && record_->numParams == 21, "128 programs, 21 parameters");
        promise(record_->numInputs == 2 && record_->numOutputs == 2, "two channels in and out");
        promise(record_->uniqueID == vst2::fourCharacterCode("qlvd"), "the effect's id");
        promise(program() >= 0 && program() < 128, "the current program is one of 128");
    }

  private:
    static std::unique_ptr<EffectInstance>& current() {
        static std::unique_ptr<EffectInstance> instance;
        return instance;
    }
    static std::intptr_t listen(vst2::AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*,
                                float) {
        promise(opcode == vst2::audioMasterAutomate || opcode == vst2::audioMasterVersion ||
                    opcode == vst2::audioMasterIdle || opcode == vst2::audioMasterSizeWindow ||
                    opcode == vst2::audioMasterCanDo || opcode == vst2::audioMasterUpdateDisplay ||
                    opcode == vst2::audioMasterBeginEdit || opcode == vst2::audioMasterEndEdit,
                "the host is told nothing but what it is told of");
        return opcode == vst2::audioMasterVersion ? vst2::kVstVersion : 0;
    }

    vst2::AEffect* record_ = nullptr;
    std::int32_t flags_ = 0;
    std::vector<char> firstState_;
};
