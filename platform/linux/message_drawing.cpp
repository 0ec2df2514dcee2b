#include "message_drawing.h"

#include "message_text.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace platform {

namespace {

struct Colour {
    double red, green, blue;
};

constexpr Colour colour(unsigned code) {
    return {(code >> 16 & 255) / 255.0, (code >> 8 & 255) / 255.0, (code & 255) / 255.0};
}

constexpr Colour kPage = colour(0xFBFAF7);
constexpr Colour kBar = colour(0xF1EFE9);
constexpr Colour kHairline = colour(0xDDD9CF);
constexpr Colour kSlate = colour(0x2B3540);
constexpr Colour kAmber = colour(0xE0A030);
constexpr Colour kLightAmber = colour(0xE9B14D);
constexpr Colour kDeepAmber = colour(0xC2851C);

constexpr double kPadding = 26;
constexpr double kBarHeight = 62;
constexpr double kButtonWidth = 104;
constexpr double kButtonHeight = 34;
constexpr double kCornerRadius = 5;
constexpr double kNarrowestText = 260;
constexpr double kWidestText = 540;
constexpr double kTypeSize = 15;
constexpr double kLineHeight = 22;

void setColour(cairo_t* cairo, Colour c) {
    cairo_set_source_rgb(cairo, c.red, c.green, c.blue);
}

void fillRectangle(cairo_t* cairo, MessageRectangle r, Colour c) {
    cairo_rectangle(cairo, r.x, r.y, r.width, r.height);
    setColour(cairo, c);
    cairo_fill(cairo);
}

void roundedRectangle(cairo_t* cairo, MessageRectangle r, double radius) {
    constexpr double quarter = std::numbers::pi / 2;
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, r.x + r.width - radius, r.y + radius, radius, -quarter, 0);
    cairo_arc(cairo, r.x + r.width - radius, r.y + r.height - radius, radius, 0, quarter);
    cairo_arc(cairo, r.x + radius, r.y + r.height - radius, radius, quarter, 2 * quarter);
    cairo_arc(cairo, r.x + radius, r.y + radius, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(cairo);
}

void chooseType(cairo_t* cairo) {
    cairo_select_font_face(cairo, "sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo, kTypeSize);
    // Glyphs as wide at every scale, so that a line is drawn as wide as it was measured.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_set_font_options(cairo, options);
    cairo_font_options_destroy(options);
}

double widthOf(cairo_t* cairo, const std::string& text) {
    cairo_text_extents_t extents = {};
    cairo_text_extents(cairo, text.c_str(), &extents);
    return extents.x_advance;
}

/// Draws one line whose middle is at height `y`.
void drawLine(cairo_t* cairo, const std::string& text, double x, double y) {
    cairo_font_extents_t extents = {};
    cairo_font_extents(cairo, &extents);
    cairo_move_to(cairo, x, y + (extents.ascent - extents.descent) / 2);
    cairo_show_text(cairo, text.c_str());
}

Colour faceOf(ButtonLook look) {
    switch (look) {
    case ButtonLook::pressed:
        return kDeepAmber;
    case ButtonLook::underPointer:
        return kLightAmber;
    case ButtonLook::resting:
        break;
    }
    return kAmber;
}

} // namespace

MessageDrawing::MessageDrawing(const std::string& text, MessageSize limit) {
    cairo_surface_t* paper = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cairo_t* cairo = cairo_create(paper);
    chooseType(cairo);
    const auto measure = [cairo](const std::string& line) { return widthOf(cairo, line); };
    lines_ = breakLines(text, std::min(kWidestText, limit.width - 2 * kPadding), measure);

    const double room = (limit.height - kBarHeight - 2 * kPadding) / kLineHeight;
    const auto mostLines = static_cast<std::size_t>(std::max(room, 1.0));
    if (lines_.size() > mostLines) {
        lines_.resize(mostLines);
        lines_.back() = "\u2026";
    }
    double width = kNarrowestText;
    for (const std::string& line : lines_)
        width = std::max(width, measure(line));
    cairo_destroy(cairo);
    cairo_surface_destroy(paper);

    size_.width = std::ceil(width) + 2 * kPadding;
    size_.height = static_cast<double>(lines_.size()) * kLineHeight + 2 * kPadding + kBarHeight;
}

MessageRectangle MessageDrawing::button(MessageSize box) {
    const double inset = (kBarHeight - kButtonHeight) / 2;
    return {box.width - inset - kButtonWidth, box.height - inset - kButtonHeight, kButtonWidth,
            kButtonHeight};
}

void MessageDrawing::draw(cairo_t* cairo, MessageSize box, ButtonLook look) const {
    const double barTop = box.height - kBarHeight;
    fillRectangle(cairo, {0, 0, box.width, barTop}, kPage);
    fillRectangle(cairo, {0, barTop, box.width, kBarHeight}, kBar);
    fillRectangle(cairo, {0, barTop, box.width, 1}, kHairline);

    chooseType(cairo);
    setColour(cairo, kSlate);
    double y = kPadding + kLineHeight / 2;
    for (const std::string& line : lines_) {
        drawLine(cairo, line, kPadding, y);
        y += kLineHeight;
    }
    drawButton(cairo, button(box), look);
}

void MessageDrawing::drawButton(cairo_t* cairo, MessageRectangle place, ButtonLook look) {
    roundedRectangle(cairo, place, kCornerRadius);
    setColour(cairo, faceOf(look));
    cairo_fill(cairo);
    // A ring inside the edge says that the keyboard goes here.
    roundedRectangle(cairo, {place.x + 2.5, place.y + 2.5, place.width - 5, place.height - 5},
                     kCornerRadius - 2);
    cairo_set_source_rgba(cairo, kSlate.red, kSlate.green, kSlate.blue, 0.35);
    cairo_set_line_width(cairo, 1);
    cairo_stroke(cairo);

    const std::string label = "OK";
    const double sunk = look == ButtonLook::pressed ? 1 : 0;
    setColour(cairo, kSlate);
    drawLine(cairo, label, place.x + (place.width - widthOf(cairo, label)) / 2,
             place.y + place.height / 2 + sunk);
}

} // namespace platform
