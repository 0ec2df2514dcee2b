// The effect as its window knows it: values and texts of the parameters, and the way to the host. A door
// implements it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace interfaces {

/// Bytes of a parameter's name or label, with the NUL at its end.
constexpr std::size_t kParameterTextSize = 9;

class EditorHost {
  public:
    virtual ~EditorHost() = default;

    /// How many parameters there are; their ids go from 0.
    virtual std::int32_t getNumParameters() const = 0;

    /// Values are normalised. Any thread.
    virtual float getParameter(std::int32_t id) = 0;
    virtual void setParameter(std::int32_t id, float value) = 0;
    /// For a change made by the person: sets the parameter, then tells the host.
    virtual void setParameterAutomated(std::int32_t id, float value) = 0;

    /// Write at most kParameterTextSize bytes.
    virtual void getParameterName(std::int32_t id, char* text) = 0;
    virtual void getParameterLabel(std::int32_t id, char* text) = 0;
    /// Writes at most parameters::kDisplayTextSize bytes.
    virtual void getParameterDisplay(std::int32_t id, char* text) = 0;

    /// Hz.
    virtual float getSampleRate() const = 0;
    /// Whether MIDI controllers can be bound to parameters.
    virtual bool bindsControllers() const = 0;

    /// The person takes hold of a parameter, and lets it go; the host is told.
    virtual bool beginEdit(std::int32_t id) = 0;
    virtual bool endEdit(std::int32_t id) = 0;

    /// Says why the skin cannot be read, with which there is no window; `line` has no end of line.
    virtual void reportUnreadableSkin(const char* line) = 0;

    /// Lets the host do its own idle work.
    virtual void masterIdle() = 0;
    /// Whether the host says yes to a capability.
    virtual bool canHostDo(const char* what) = 0;
    /// Asks the host for another size of the window, in pixels.
    virtual bool sizeWindow(std::int32_t width, std::int32_t height) = 0;

    /// While what it gives lives, the effect does, also where the host has closed it: it then goes with the
    /// last of them. Throws std::bad_alloc.
    virtual std::shared_ptr<void> keepAlive() = 0;
};

} // namespace interfaces
