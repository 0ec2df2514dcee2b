// The built library's editor on a screen of the test's own, with a hand that moves a real pointer over it.
// Nothing of the library is known here but its file, its C record and what can be seen.
#pragma once

#include "host/plugin.h"
#include "support/plugin_folder.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// Xlib defines words that the headers above use, so it comes last.
#include "virtual_screen.h"

namespace test {

enum Button : unsigned { kLeft = 1, kMiddle = 2, kRight = 3, kWheelUp = 4, kWheelDown = 5 };

/// A host's window with the editor of one instance in it.
class ShownEditor {
  public:
    /// Makes an instance and its window, whose top left corner is at (`x`, `y`) of the screen. The editor is
    /// not open yet.
    ShownEditor(host::Library& library, VirtualScreen& screen, int x = 40, int y = 30);
    /// Closes the editor, the instance and the window, if that has not been done.
    ~ShownEditor();
    ShownEditor(const ShownEditor&) = delete;
    ShownEditor& operator=(const ShownEditor&) = delete;

    host::Plugin& plugin() { return *plugin_; }
    Window window() const { return window_; }
    int width() const { return width_; }
    int height() const { return height_; }

    /// effEditOpen; gives its answer.
    bool open();
    void close();
    void destroyWindow();
    void destroyInstance() { plugin_.reset(); }

    /// One effEditIdle.
    void serve();
    /// Serves as a host does until something holds; false if it never does.
    bool serveUntil(const std::function<bool()>& condition);

    // The hand. Places are those of the editor's window.
    void point(int x, int y);
    void press(unsigned button);
    void release(unsigned button);
    void click(int x, int y, unsigned button = kLeft);
    /// Presses the left button, moves to the place and a pixel about it until something holds, and lets go.
    /// False if it never holds.
    bool drag(int fromX, int fromY, int toX, int toY, const std::function<bool()>& condition);
    /// Holds or lets go a key such as XK_Control_L.
    void holdKey(KeySym key, bool down);
    void typeKey(KeySym key) { screen_.typeKey(key); }

    // What is to be seen.
    Pixel pixel(int x, int y) { return screen_.pixel(x_ + x, y_ + y); }
    bool showsPixel(int x, int y, Pixel colour);
    /// All pixels of a part of the window.
    std::vector<Pixel> part(int x, int y, int width, int height);
    /// Serves until that part of the window looks otherwise than `before`.
    bool changes(const std::vector<Pixel>& before, int x, int y, int width, int height);

    // What the instance says.
    float value(std::int32_t id) { return plugin_->getParameter(id); }
    bool becomes(std::int32_t id, float value);
    /// The opcodes that the host was sent for a parameter since the record was last cleared.
    std::vector<std::int32_t> toldOf(std::int32_t id) const;
    /// The ids, or what passed for one, of all gestures and changes that the host was told of since then.
    std::vector<std::int32_t> idsTold() const;

  private:
    VirtualScreen& screen_;
    int x_, y_, width_ = 0, height_ = 0;
    std::unique_ptr<host::Plugin> plugin_;
    Window window_ = None;
};

/// Under the leak sanitizer, looks for leaks now. At the end of the process the copy of the library would be
/// gone, and with it the names by which leaks of the toolkit are told from ours.
void lookForLeaks();

/// A test with a copy of the library, a bank that needs no message, and two skins: one with every kind of
/// control on grey ground, and a plain blue one. It has a screen, and settings of its own.
class EditorOnScreen : public conversation::QuietPlugin {
  protected:
    EditorOnScreen();
    ~EditorOnScreen() override;

    /// One for the process, as the toolkit stays with the first it has met.
    static VirtualScreen& screen();

    /// An instance whose editor is open and drawn.
    ShownEditor& show();

    std::unique_ptr<ShownEditor> shown_;
};

// What lies where in the first skin, and how it looks.
inline constexpr Pixel kGrey = 0x404040, kBlue = 0x0000FF, kAboutBlue = 0x0000C0;
inline constexpr int kSkinWidth = 320, kSkinHeight = 240;

} // namespace test
