// One instance of the module in the bundle, in the hands of a host that connects every port of it.
#pragma once

#include "desk/shared_library.h"
#include "doors/lv2/ports.h"

#include <lv2/core/lv2.h>

#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace lv2_test {

/// The one plug-in that a module has.
class Module {
  public:
    explicit Module(const std::string& path = QUILLON_LV2_BUNDLE "/QuillonMultitapDelay.so")
        : library_(path) {
        const auto find = reinterpret_cast<LV2_Descriptor_Function>(library_.symbol("lv2_descriptor"));
        if (!find)
            throw std::runtime_error(path + " exports no lv2_descriptor");
        descriptors_ = find;
    }

    const LV2_Descriptor* descriptor(std::uint32_t index = 0) const { return descriptors_(index); }

  private:
    desk::SharedLibrary library_;
    LV2_Descriptor_Function descriptors_ = nullptr;
};

class Instance {
  public:
    /// `rate` in Hz. The controls are connected to `controls`, the audio ports to nothing. Throws
    /// std::runtime_error if the module makes no instance.
    Instance(const LV2_Descriptor& descriptor, double rate, const LV2_Feature* const* features = kNoFeatures)
        : descriptor_(descriptor),
          handle_(descriptor.instantiate(&descriptor, rate, QUILLON_LV2_BUNDLE "/", features)) {
        if (!handle_)
            throw std::runtime_error("no instance");
        for (std::int32_t id = 0; id < parameters::kNumLiveParameters; ++id) {
            controls[static_cast<std::size_t>(id)] = parameters::parameter(id).defaultValue;
            connect(lv2_door::controlPort(id), &controls[static_cast<std::size_t>(id)]);
        }
    }
    ~Instance() { descriptor_.cleanup(handle_); }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    void connect(std::uint32_t port, void* place) { descriptor_.connect_port(handle_, port, place); }
    void activate() { descriptor_.activate(handle_); }
    void deactivate() { descriptor_.deactivate(handle_); }
    void run(std::uint32_t frames) { descriptor_.run(handle_, frames); }
    /// Connects the audio ports, then runs.
    void process(float* const* inputs, float* const* outputs, std::uint32_t frames) {
        connect(lv2_door::kInputLeft, inputs[0]);
        connect(lv2_door::kInputRight, inputs[1]);
        connect(lv2_door::kOutputLeft, outputs[0]);
        connect(lv2_door::kOutputRight, outputs[1]);
        run(frames);
    }

    /// What the control ports read, by parameter id.
    std::array<float, parameters::kNumLiveParameters> controls;

  private:
    static constexpr const LV2_Feature* kNoFeatures[] = {nullptr};

    const LV2_Descriptor& descriptor_;
    LV2_Handle handle_;
};

} // namespace lv2_test
