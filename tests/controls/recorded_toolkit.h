// The window toolkit with nothing behind it: no display, no font, no mouse. What a view draws ends up in
// lists, and a menu that it opens answers what the test wants, when the test wants it. A frame opened here
// gets its events from the test.
#pragma once

#include "../toolkit/printed.h"

#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/controls/ccontrol.h"
#include "vstgui/lib/controls/icontrollistener.h"
#include "vstgui/lib/events.h"

#include <functional>
#include <string>
#include <vector>

namespace test {

struct Line {
    VSTGUI::CPoint from;
    VSTGUI::CPoint to;
    VSTGUI::CColor colour;
};

struct Box {
    VSTGUI::CRect area;
    bool filled = false;
    VSTGUI::CColor colour;
};

struct Text {
    std::string text;
    VSTGUI::CPoint centre; ///< of the rectangle that it was drawn in the middle of
    VSTGUI::CColor colour;
    std::string font; ///< such as "Arial 10"
    std::int32_t style = 0;
    bool antialiased = false;
};

/// What was drawn, kind by kind in the order of drawing, and all kinds in one order as "line", "box", "text".
struct Drawing {
    std::vector<Line> lines;
    std::vector<Box> boxes;
    std::vector<Text> texts;
    std::vector<std::string> order;
    VSTGUI::CColor frameColour; ///< as it was left
    VSTGUI::CColor fillColour;  ///< as it was left
    int textsMeasured = 0;      ///< how often the width of a text was asked for

    std::vector<std::string> words() const;
};

/// Puts itself in the place of the system's toolkit, for the rest of the process.
void useRecordedToolkit();

/// Calls draw() on the view.
Drawing drawingOf(VSTGUI::CView& view);

/// A menu that a view has opened.
struct OpenedMenu {
    std::vector<std::string> entries;
    std::vector<std::string> ticked; ///< those of them with a tick
    VSTGUI::CPoint place;
    std::function<void(std::int32_t)> choose; ///< the place of an entry; -1 for Escape
    std::function<void()> dismiss;
};

/// A frame that is open in no window. Opening menus: `onMenu` is called while the menu opens, and may answer
/// at once, as on systems where a menu blocks, or keep the menu and answer later.
class RecordedFrame {
  public:
    explicit RecordedFrame(const VSTGUI::CRect& size = VSTGUI::CRect(0, 0, 400, 300));
    ~RecordedFrame();
    RecordedFrame(const RecordedFrame&) = delete;
    RecordedFrame& operator=(const RecordedFrame&) = delete;

    VSTGUI::CFrame* operator->() const { return frame_; }
    VSTGUI::CFrame* get() const { return frame_; }
    void close();

    /// The frame takes the view over.
    template <class View>
    View* add(View* view) {
        frame_->addView(view);
        return view;
    }

    /// Events as a hand makes them. True if somebody took it. The state of the buttons is that of the
    /// application's windows: a press names all held buttons, a release those held up to then.
    bool press(VSTGUI::CPoint where, VSTGUI::MouseEventButtonState held,
               VSTGUI::Modifiers modifiers = VSTGUI::Modifiers(), std::uint32_t clicks = 1);
    bool move(VSTGUI::CPoint where, VSTGUI::MouseEventButtonState held,
              VSTGUI::Modifiers modifiers = VSTGUI::Modifiers());
    bool release(VSTGUI::CPoint where, VSTGUI::MouseEventButtonState heldBefore);
    bool click(VSTGUI::CPoint where, VSTGUI::MouseButton button,
               VSTGUI::Modifiers modifiers = VSTGUI::Modifiers());
    bool wheel(VSTGUI::CPoint where, double distance);
    bool key(VSTGUI::VirtualKey key);

    std::function<void(OpenedMenu&)> onMenu;

  private:
    VSTGUI::CFrame* frame_;
};

/// Left and right, and so on.
VSTGUI::MouseEventButtonState both(VSTGUI::MouseButton one, VSTGUI::MouseButton other);

/// Writes down what controls report.
class Listener final : public VSTGUI::IControlListener {
  public:
    void valueChanged(VSTGUI::CControl* control) override {
        reports.push_back({control, control->getTag(), control->getValue()});
        if (action)
            action(control);
    }

    struct Report {
        VSTGUI::CControl* control;
        std::int32_t tag;
        float value;
    };
    std::vector<Report> reports;
    std::function<void(VSTGUI::CControl*)> action;
};

} // namespace test
