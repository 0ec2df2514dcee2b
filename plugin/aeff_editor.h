// The editor as the plug-in's frame knows it: a window that a host opens, closes and lets breathe. Everything
// runs on the host's window thread.
#pragma once

#include "base/shared.h"
#include "vst2/vst2.h"

#include <cstdint>

namespace plugin {

class AudioEffect;

class AEffEditor {
  public:
    explicit AEffEditor(AudioEffect* owner) : effect(owner) {}
    virtual ~AEffEditor() = default;
    AEffEditor(const AEffEditor&) = delete;
    AEffEditor& operator=(const AEffEditor&) = delete;

    virtual AudioEffect* getEffect() { return effect; }
    /// Points `rect` at the window's size in pixels; false and null if it is not known.
    virtual bool getRect(vst2::ERect** rect) {
        *rect = nullptr;
        return false;
    }
    /// `ptr` is the host's parent window.
    virtual bool open(void* ptr) {
        systemWindow.store(ptr);
        return false;
    }
    virtual void close() { systemWindow.store(nullptr); }
    /// Any thread.
    virtual bool isOpen() { return systemWindow.load() != nullptr; }
    virtual void idle() {}
    /// True if the key was used.
    virtual bool onKeyDown(vst2::VstKeyCode&) { return false; }
    virtual bool onKeyUp(vst2::VstKeyCode&) { return false; }
    virtual bool onWheel(float) { return false; }
    virtual bool setKnobMode(std::int32_t) { return false; }

  protected:
    AudioEffect* effect;              ///< not owned
    base::Shared<void*> systemWindow; ///< the host's
};

} // namespace plugin
