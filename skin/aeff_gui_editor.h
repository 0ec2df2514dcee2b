// The editor's frame: joins what a host knows of an editor (open, close, idle, keys) with what the toolkit
// knows of one (its root view, the gestures of its controls). What is in the window is left to those who
// derive.
//
// Everything runs on the host's window thread, unless it says otherwise.
#pragma once

#include "interfaces/aeff_editor.h"
#include "interfaces/editor_host.h"
#include "toolkit/toolkit.h"
#include "toolkit/toolkit_window.h"

#include "base/shared.h"
#include "vstgui/lib/cframe.h"

#include <cstdint>

namespace skin {

class AEffGUIEditor : public interfaces::AEffEditor, public VSTGUI::VSTGUIEditorInterface {
  public:
    /// `owner`, the effect, is not owned, and outlives the editor. It takes the editor over with setEditor().
    explicit AEffGUIEditor(interfaces::EditorHost* owner);
    /// Closes the window if the host has not.
    ~AEffGUIEditor() override;

    bool getRect(interfaces::EditorRect** size) override;
    /// Opens an empty frame of the editor's size in the host's window `ptr`.
    bool open(void* ptr) override;
    /// Serves the events and timers of all windows of the process and draws what is dirty. Without these
    /// calls the window stands still.
    void idle() override;
    bool onKeyDown(interfaces::KeyCode& key) override;
    bool onKeyUp(interfaces::KeyCode& key) override;
    /// `distance` in turns of the wheel, upward positive; acts where the pointer is.
    bool onWheel(float distance) override;
    /// How the mouse turns a knob: 0 in a circle, 1 in a circle from where it is, 2 up and down. One mode for
    /// all knobs in the process.
    bool setKnobMode(std::int32_t value) override;
    /// A parameter has changed. Any thread.
    virtual void setParameter(std::int32_t, float) {}
    virtual void draw() {}

    /// The system's handle of the window that the editor has opened in the host's; null while none is on the
    /// screen.
    void* ownWindow() const;
    /// Takes that window from the screen and brings it back. False if there is none.
    bool setVisible(bool isVisible) { return window_.setVisible(isVisible); }
    /// Tells a host that looks for it how large that window is.
    void announceSize();

    /// Idles during long gestures and lets the host idle too, at most about every 100 ms.
    void doIdleStuff() override;
    std::int32_t getKnobMode() const override;
    void beginEdit(std::int32_t index) override;
    void endEdit(std::int32_t index) override;
    /// Asks the host to make room for the frame's new size or, where it can't be asked, makes it.
    bool beforeSizeChange(const VSTGUI::CRect& newSize, const VSTGUI::CRect& oldSize) override;

  protected:
    interfaces::EditorHost& theEffect() const { return *effect; }
    /// Makes the frame of the window, `width` x `height` pixels, and opens it in the host's window. Without a
    /// `parent` it stays unseen. False if the display does not know `parent`; there is no frame then.
    bool openFrame(int width, int height, VSTGUI::CBitmap* background, void* parent);
    /// Takes the window away, and all views with it.
    void closeFrame();
    /// Whether there is a frame. Any thread.
    bool hasFrame() const;
    /// Whether the caller is on the thread that opens the window and calls idle(). Any thread.
    bool onWindowThread() const;
    /// Whether the left button is held in a gesture that began in the window.
    bool leftButtonDown() const { return window_.leftButtonDown(); }

    interfaces::EditorRect rect = {}; ///< what the host is told, in pixels
    std::uint32_t lastTicks;          ///< when doIdleStuff() is next due, in milliseconds
    bool inIdleStuff = false;         ///< while the host's idle runs inside a gesture

  private:
    void noteWindowThread();
    bool dispatchKey(const interfaces::KeyCode& key, bool isDown);
    void setFrame(VSTGUI::CFrame* newFrame);

    toolkit::Toolkit toolkit_;
    toolkit::ToolkitWindow window_;
    base::Shared<std::uint64_t> windowThread_;
    base::Shared<bool> hasFrame_ = false;

    static base::Shared<std::int32_t> knobMode; ///< of all editors
};

} // namespace skin
