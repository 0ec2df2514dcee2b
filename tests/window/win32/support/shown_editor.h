// The built library's editor in a window of the test's own, with a hand that moves over it. Nothing of the
// library is known here but its file, its C record, its windows and what can be seen.
#pragma once

#include "desk/private_folder.h"
#include "host/plugin.h"
#include "support/plain_window.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>
#include <windows.h>

namespace test {

/// Red, green and blue in three bytes, from the highest.
using Pixel = std::uint32_t;

enum class Button { left, right };

/// A host's window with the editor of one instance in it.
class ShownEditor {
  public:
    /// Makes an instance and its window, whose inner top left corner is at (`x`, `y`) of the screen. The
    /// editor is not open yet.
    explicit ShownEditor(host::Library& library, int x = 40, int y = 30);
    /// Closes the editor, the instance and the window, if that has not been done.
    ~ShownEditor();
    ShownEditor(const ShownEditor&) = delete;
    ShownEditor& operator=(const ShownEditor&) = delete;

    host::Plugin& plugin() { return *plugin_; }
    HWND window() const { return window_.handle(); }
    /// The editor's own window, inside or lifted out of the host's; null if there is none.
    HWND own() const { return lifted_ ? lifted_ : inside(); }
    int width() const { return width_; }
    int height() const { return height_; }

    /// effEditOpen; gives its answer.
    bool open();
    void close();
    void destroyWindow() { window_.destroy(); }
    void destroyInstance() { plugin_.reset(); }

    /// Makes the editor's own window one of the screen, at the same place. What is drawn past a window's own
    /// memory comes to the screen under wine only from there.
    void liftOut();

    /// One effEditIdle, and all messages.
    void serve();
    /// Serves as a host does until something holds; false if it never does.
    bool serveUntil(const std::function<bool()>& condition);
    /// Clicks on the lamp, whose effect tells that all before it has been worked off.
    void serveAll();

    // The hand, by messages of its own to the editor's window, whose places these are.
    void post(UINT message, int x, int y, WPARAM held);
    void postClick(int x, int y, Button button = Button::left);
    /// Presses the left button, moves on in steps, and lets go.
    void postDrag(int fromX, int fromY, int toX, int toY);

    // The hand, at the mouse and the keys of the machine.
    void point(int x, int y);
    void press(Button button);
    void release(Button button);
    void click(int x, int y, Button button = Button::left);

    // What is to be seen of a window that has been lifted out.
    Pixel pixel(int x, int y);
    bool showsPixel(int x, int y, Pixel colour);
    std::vector<Pixel> part(int x, int y, int width, int height);
    /// Serves until that part of the window looks otherwise than `before`.
    bool changes(const std::vector<Pixel>& before, int x, int y, int width, int height);

    // What the instance says.
    float value(std::int32_t id) { return plugin_->getParameter(id); }
    bool becomes(std::int32_t id, float value);
    /// The opcodes that the host was sent for a parameter since the record was last cleared.
    std::vector<std::int32_t> toldOf(std::int32_t id) const;

  private:
    HWND inside() const;

    int x_, y_, width_ = 0, height_ = 0;
    std::unique_ptr<host::Plugin> plugin_;
    PlainWindow window_;
    HWND lifted_ = nullptr;
};

/// A hand for one menu. A menu keeps the thread that opens it, so this one waits for it on a thread of its
/// own, reads what it offers, and types keys into it.
class MenuHand {
  public:
    /// `owner` is the window that the menu will belong to.
    MenuHand(HWND owner, std::vector<WPARAM> keys);
    /// Waits for the menu to be over.
    ~MenuHand();
    MenuHand(const MenuHand&) = delete;
    MenuHand& operator=(const MenuHand&) = delete;

    /// Whether it has found a menu and is done with it.
    bool isDone() const { return isDone_; }
    /// What the menu offered. When isDone().
    const std::vector<std::string>& entries() const { return entries_; }

  private:
    void work();

    HWND owner_;
    std::vector<WPARAM> keys_;
    std::vector<std::string> entries_;
    std::atomic<bool> isDone_ = false;
    std::atomic<bool> isGivenUp_ = false;
    std::thread thread_;
};

/// A test with a copy of the library, a bank that needs no message, and two skins: one with every kind of
/// control on grey ground, and a plain blue one. No skin has been chosen.
class EditorOnScreen : public testing::Test {
  protected:
    EditorOnScreen();
    ~EditorOnScreen() override;

    host::Library& library();
    std::string beside(const std::string& name) const { return folder_.path() + "\\module\\" + name; }

    /// An instance whose editor is open.
    ShownEditor& show();
    /// The same, lifted out and drawn.
    ShownEditor& showLifted();

  private:
    desk::PrivateFolder folder_;
    std::unique_ptr<host::Library> library_;

  protected:
    std::unique_ptr<ShownEditor> shown_;
};

// What lies where in the first skin, and how it looks.
inline constexpr Pixel kGrey = 0x404040, kBlue = 0x0000FF, kAboutBlue = 0x0000C0;
inline constexpr int kSkinWidth = 320, kSkinHeight = 240;

/// The skin that the person has chosen; empty if none.
std::string chosenSkin();

} // namespace test
