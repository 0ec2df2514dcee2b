// The editor as a door knows it: a window that a host opens, closes and calls idle on. Everything runs on the
// host's window thread.
#pragma once

#include "base/shared.h"
#include "interfaces/editor_host.h"

#include <cstdint>

namespace interfaces {

/// The place of a window, in pixels.
struct EditorRect {
    std::int16_t top;
    std::int16_t left;
    std::int16_t bottom;
    std::int16_t right;
};

/// A key that was pressed or released.
struct KeyCode {
    std::int32_t character; ///< ASCII, or 0
    std::uint8_t virt;      ///< which of the keys without a character, or 0
    std::uint8_t modifier;  ///< bits: shift, alternate, command, control
};

class AEffEditor {
  public:
    explicit AEffEditor(EditorHost* owner) : effect(owner) {}
    virtual ~AEffEditor() = default;
    AEffEditor(const AEffEditor&) = delete;
    AEffEditor& operator=(const AEffEditor&) = delete;

    virtual EditorHost* getEffect() { return effect; }
    /// Points `rect` at the window's place; false and null if it is not known.
    virtual bool getRect(EditorRect** rect) {
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
    virtual bool onKeyDown(KeyCode&) { return false; }
    virtual bool onKeyUp(KeyCode&) { return false; }
    virtual bool onWheel(float) { return false; }
    virtual bool setKnobMode(std::int32_t) { return false; }

  protected:
    EditorHost* effect;               ///< not owned
    base::Shared<void*> systemWindow; ///< the host's
};

} // namespace interfaces
