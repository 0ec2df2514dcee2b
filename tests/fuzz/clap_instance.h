// One instance of the effect as a CLAP host holds it, kept for many inputs by a fuzzer, as an instance takes
// long to make; where kept inputs are replayed, each has one of its own.
#pragma once

#include "clap_host.h"

#include "lent_buffer.h"
#include "promise.h"
#include "unattended.h"

#include <cstdint>
#include <memory>
#include <vector>

class ClapInstance {
  public:
    ClapInstance() : folder_(Unattended::instance()) {
        clap_entry.init("");
        instance_ = std::make_unique<clap_test::Instance>(clap_entry, host_);
        firstState_ = instance_->save().value();
    }
    ~ClapInstance() {
        instance_ = nullptr;
        clap_entry.deinit();
    }
    ClapInstance(const ClapInstance&) = delete;
    ClapInstance& operator=(const ClapInstance&) = delete;

    /// Active at 44100 Hz, with the state of a new one.
    static ClapInstance& forNextInput() {
        static std::unique_ptr<ClapInstance> current;
        static int inputs = 0;
        if (inputs++ % QUILLON_INPUTS_PER_INSTANCE == 0) {
            current = nullptr;
            current = std::make_unique<ClapInstance>();
        }
        promise(current->instance_->load(current->firstState_), "a state of its own is loaded");
        promise(current->instance_->activate(44100.0), "a usual rate is taken");
        return *current;
    }

    clap_test::Instance& operator*() { return *instance_; }
    clap_test::Instance* operator->() { return instance_.get(); }

    /// Plays a click with these events and looks at what the host is told.
    void process(std::uint32_t frames, clap_test::Events& events) {
        const std::size_t size = frames * sizeof(float);
        LentBuffer left(size), right(size);
        std::memset(left.data(), 0, size);
        std::memset(right.data(), 0, size);
        if (frames > 0)
            *left.samples() = *right.samples() = 0.5f;
        float* const channels[] = {left.samples(), right.samples()};
        clap_test::ToldEvents told;
        promise(instance_->process(channels, channels, frames, &events, &told) == CLAP_PROCESS_CONTINUE,
                "it goes on");
        left.promiseUntouchedBehind(size, "no sample beyond the left block");
        right.promiseUntouchedBehind(size, "no sample beyond the right block");
        promiseOrdered(told, frames);
    }
    void flush(clap_test::Events& events) {
        clap_test::ToldEvents told;
        instance_->flush(events, &told);
        promiseOrdered(told, 0);
    }

    /// What stays the same whatever a host does.
    void promiseToBeItself() {
        const auto& parameters = instance_->parameters();
        for (std::uint32_t index = 0; index < clap_door::kNumListed; ++index) {
            clap_param_info_t info;
            promise(parameters.get_info(instance_->plugin(), index, &info), "every parameter is known");
            const double value = instance_->value(info.id);
            promise(value >= info.min_value && value <= info.max_value, "values lie within their ranges");
            LentBuffer text(40);
            promise(parameters.value_to_text(instance_->plugin(), info.id, value, text.text(), 40),
                    "every value has a text");
            text.promiseUntouchedBehind(40, "a text fits");
        }
    }

  private:
    static void promiseOrdered(const clap_test::ToldEvents& told, std::uint32_t frames) {
        std::uint32_t before = 0;
        for (const clap_event_param_value_t& event : told.values) {
            promise(event.header.time >= before, "the host is told in order");
            promise(event.header.time < frames || event.header.time == 0,
                    "the host is told within the block");
            promise(clap_door::indexOf(event.param_id).has_value(), "the host is told of parameters");
            before = event.header.time;
        }
    }

    const Unattended& folder_;
    clap_test::Host host_;
    std::unique_ptr<clap_test::Instance> instance_;
    clap_test::Bytes firstState_;
};
