// The editor in a host that looks at all windows, with nobody there to close a box: what is wrong with the
// skin is written to a log and, if nothing can be built from it, shown in the window's place.
//
// Everything runs on the host's window thread.
#pragma once

#include "interfaces/effect_window.h"

#include <functional>
#include <memory>
#include <string>

namespace interfaces {
class EditorHost;
}
namespace skin {
class AEffGUIEditor;
class NoticeEditor;
} // namespace skin

namespace editor {

class myEditor;

/// In pixels.
struct WindowSize {
    int width = 0;
    int height = 0;
    bool operator==(const WindowSize&) const = default;
};

class EditorOrNotice {
  public:
    /// Writes a line to a log.
    using Warn = std::function<void(const char* subject, const char* text)>;

    /// `owner` outlives this, and passes what it gets in reportUnreadableSkin() on to noteFault().
    EditorOrNotice(interfaces::EditorHost& owner, Warn warn);
    ~EditorOrNotice();
    EditorOrNotice(const EditorOrNotice&) = delete;
    EditorOrNotice& operator=(const EditorOrNotice&) = delete;

    /// Makes the editor, which stays until the end, or has it look for the chosen skin again. From now on the
    /// size is known. `tapGain` as for myEditor. While the window is closed. Throws std::bad_alloc.
    void prepare(interfaces::TapGains tapGain);
    /// The editor, also where the notice is shown in its place. After prepare().
    myEditor& editor() { return *editor_; }

    /// Opens the window, or the notice, in the host's window. False if that is none, or if it was closed in
    /// the meantime. After prepare(). Throws std::bad_alloc.
    bool open(void* parent);
    void close();
    void idle();

    /// That of the open window or of the one that would be opened. After prepare().
    WindowSize size() const;
    bool showsNotice() const;
    /// The system's handle of the open window; null if there is none.
    void* ownWindow() const;
    /// See skin::AEffGUIEditor.
    void announceSize();
    bool setVisible(bool isVisible);

    /// Why the skin cannot be read.
    void noteFault(const char* line);

  private:
    class MessagesInLog;

    void makeNotice();
    void openEditor(void* parent);
    void openNotice(void* parent);

    interfaces::EditorHost& owner_;
    Warn warn_;
    std::string fault_; ///< why there is no window of the skin; empty if there may be one
    std::unique_ptr<myEditor> editor_;
    std::unique_ptr<skin::NoticeEditor> notice_;
    skin::AEffGUIEditor* shown_ = nullptr; ///< one of the two; null while none is open
    bool isOpening_ = false;               ///< and has not been closed meanwhile
};

} // namespace editor
