// The way from the effect to a window that is made while the effect is at work already.
#pragma once

#include "base/shared.h"
#include "interfaces/effect_window.h"

#include <cstdint>

namespace clap_door {

/// Passes on what the effect tells its window. Any thread.
class WindowLink final : public interfaces::EffectWindow {
  public:
    /// From now on there is this one. It stays until the effect tells nothing more.
    void connect(interfaces::EffectWindow& window) { window_.storeInOrder(&window); }

    bool isOpen() override {
        interfaces::EffectWindow* const window = window_.loadInOrder();
        return window && window->isOpen();
    }
    void setParameter(std::int32_t id, float value) override {
        if (interfaces::EffectWindow* const window = window_.loadInOrder())
            window->setParameter(id, value);
    }
    void queueParameterUpdate(std::int32_t id) override {
        if (interfaces::EffectWindow* const window = window_.loadInOrder())
            window->queueParameterUpdate(id);
    }
    void updateTapView(float tapsValue, float stretchValue, float lengthValue, float sampleRate,
                       interfaces::TapGains tapGain) override {
        if (interfaces::EffectWindow* const window = window_.loadInOrder())
            window->updateTapView(tapsValue, stretchValue, lengthValue, sampleRate, tapGain);
    }
    void learnController(std::int32_t controller) override {
        if (interfaces::EffectWindow* const window = window_.loadInOrder())
            window->learnController(controller);
    }

  private:
    base::Shared<interfaces::EffectWindow*> window_ = nullptr; ///< not owned
};

} // namespace clap_door
