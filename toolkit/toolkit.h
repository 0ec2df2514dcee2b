// The window toolkit, VSTGUI, made ready for use, and what it leaves to us: bitmaps in every format that
// skins come in, and the time in which its windows live.
//
// What is good to know before writing a view on top of it:
//
// - An event ends up in a view's onMouseDown, onMouseMoved and onMouseUp, whose button state is here true to
//   the hand on every system (see toolkit/toolkit_window.h). Control and a left click never get there on a
//   control that goes back to its default value by it.
// - A mouse listener of a view is called by its container; do not call it again.
// - COptionMenu: on X11 the menu is a view in the window, modal, and answers through a callback after popup()
//   has returned, in the event that ended the menu; on Windows popup() blocks. Finish in the callback, and
//   hold what it needs with VSTGUI::shared(). Escape there ends in valueChanged() with a last result of -1. A
//   menu wants to lie inside the window, so one in a window that is too small is cut.
// - CFrame::idle() turns dirty views into places to be drawn; they are drawn by serveToolkitWindows(), at the
//   earliest 16 ms later, and on Windows by the host's message loop. A test of what is dirty looks before
//   idle().
// - Keyboard and wheel reach a frame from a host through CFrame::dispatchEvent() with a KeyboardEvent or
//   MouseWheelEvent made for it, whose `consumed` is the answer.
// - A font of size 0 draws nothing on Linux.
// - Including a header of the toolkit switches assert() off for the rest of the file.
#pragma once

#include "vstgui/lib/vstguifwd.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace toolkit {

/// While one of these lives, bitmaps, fonts, views and events may be made. An editor holds one for its whole
/// life. On the window thread. On Windows it makes COM ready for that thread too, and gives it back there.
class Toolkit {
  public:
    Toolkit();
    ~Toolkit();
    Toolkit(const Toolkit&) = delete;
    Toolkit& operator=(const Toolkit&) = delete;

  private:
    class System;
    std::unique_ptr<System> system_;
};

/// What a picture may have: bytes of its file, pixels of a side, pixels in all.
constexpr std::uint64_t kLargestPictureFile = std::uint64_t{64} << 20;
constexpr std::int64_t kLongestPictureSide = 32767;
constexpr std::int64_t kMostPicturePixels = std::int64_t{1} << 26;

/// What a group of pictures may still cost, together, at most.
struct PictureAllowance {
    std::uint64_t fileBytes = std::uint64_t{256} << 20;
    std::int64_t pixels = std::int64_t{1} << 27;
};

/// The file of the picture `name`, in UTF-8, below `folder`, a path of this system: in any letter case, with
/// either slash between its parts. What it gives is for readBitmap() alone. Nothing if there is no such file.
std::optional<std::string> findPicture(const std::string& folder, const std::string& name);

/// Reads a picture in PNG, BMP, JPEG, GIF or TIFF (of the last two the first picture counts) or ICO (the
/// largest), whatever the file is called. Null if the file cannot be opened or decoded, is cut off, or is
/// larger than the limits above or than what is left of `allowance`, from which it takes what it costs.
/// `path` is as findPicture() gives it; a Toolkit must live. On the window thread. Throws std::bad_alloc.
VSTGUI::PlatformBitmapPtr readBitmap(const std::string& path, PictureAllowance& allowance);

/// How many bytes a group of bitmaps may keep on the display, together. The bitmaps share it. On the window
/// thread.
class DisplayMemory {
  public:
    explicit DisplayMemory(std::size_t bytes) : free_(bytes) {}

    /// False, and nothing is taken, if that many are not left.
    bool take(std::size_t bytes) {
        if (bytes > free_)
            return false;
        free_ -= bytes;
        return true;
    }
    void giveBack(std::size_t bytes) { free_ += bytes; }
    std::size_t free() const { return free_; }

  private:
    std::size_t free_;
};

/// A bitmap that is drawn in windows again and again. On X11 the toolkit sends all pixels of a bitmap to the
/// display at each drawing, however small the part that is drawn; this one keeps a copy there from its first
/// drawing in a window on, as long as `memory` has room for it (4 bytes a pixel). The pixels remain what is
/// asked for and what is drawn everywhere else; who changes them after the first drawing will not see that in
/// a window. On Windows the toolkit keeps copies by itself. On the window thread.
VSTGUI::SharedPointer<VSTGUI::CBitmap> makeWindowBitmap(const VSTGUI::PlatformBitmapPtr& pixels,
                                                        std::shared_ptr<DisplayMemory> memory);

/// Serves all open windows of this process: input, timers, drawing. The host's idle call is the only time
/// they have, as there is no thread and no timer of our own. Called again from inside such a pass it draws,
/// and takes no input. On Windows it does nothing, as windows have their time from the host's message loop
/// there. On the window thread.
void serveToolkitWindows();

/// Draws what is due, takes no input. For a pump inside a long gesture. On the window thread.
void paintToolkitWindows();

/// While one of these lives, the open windows of this process take no input, and what the hand does on them
/// is lost, as it is behind a modal message. Other windows can have the pointer, which on X11 the toolkit
/// keeps from a press until it has done with the release. On Windows it does nothing, as a message keeps the
/// input from its owner there. On the window thread.
class InputPause {
  public:
    InputPause();
    /// A button that was let go meanwhile is released in the windows' eyes too.
    ~InputPause();
    InputPause(const InputPause&) = delete;
    InputPause& operator=(const InputPause&) = delete;

  private:
    class System;
    std::unique_ptr<System> system_;
};

} // namespace toolkit
