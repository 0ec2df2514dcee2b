// How the message box looks: the text on a light page, below it a bar with one amber button. Knows nothing of
// windows; lengths are pixels of an ordinary screen, and whoever has a denser one scales the drawing.
#pragma once

#include <cairo.h>
#include <string>
#include <vector>

namespace platform {

struct MessageSize {
    double width = 0;
    double height = 0;
};

struct MessageRectangle {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool contains(double px, double py) const {
        return px >= x && px < x + width && py >= y && py < y + height;
    }
};

/// The button as the person sees it.
enum class ButtonLook { resting, underPointer, pressed };

class MessageDrawing {
  public:
    /// Breaks `text` (valid UTF-8) into lines. What does not fit into `limit` is cut with an ellipsis.
    MessageDrawing(const std::string& text, MessageSize limit);

    /// What the box wants to be as a whole.
    MessageSize size() const { return size_; }
    /// Where the button lies in a box of any size.
    static MessageRectangle button(MessageSize box);
    /// Paints the whole box.
    void draw(cairo_t* cairo, MessageSize box, ButtonLook look) const;

  private:
    static void drawButton(cairo_t* cairo, MessageRectangle place, ButtonLook look);

    std::vector<std::string> lines_;
    MessageSize size_;
};

} // namespace platform
