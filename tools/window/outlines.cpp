#include "tools/window/outlines.h"

#include "desk/canvas.h"
#include "tools/window/png_file.h"

#include <algorithm>
#include <string>

namespace tools::window {

namespace {

using desk::Area;
using desk::Canvas;
using desk::Colour;

constexpr Colour kControlColour = {0.78, 0.0, 0.42};
constexpr Colour kTextColour = {0.0, 0.36, 0.80};
constexpr Colour kOtherColour = {0.0, 0.45, 0.22};

constexpr double kLabelHeight = 11.0, kLabelMargin = 2.0;
constexpr desk::TextStyle kLabelStyle = {.size = 9.0, .colour = {1.0, 1.0, 1.0}, .isBold = true};

Colour colourOf(ObjectRole role) {
    switch (role) {
    case ObjectRole::control:
        return kControlColour;
    case ObjectRole::text:
        return kTextColour;
    case ObjectRole::other:
        break;
    }
    return kOtherColour;
}

/// The outermost pixels of the area, as far as they are inside the picture.
void drawFrame(Canvas& canvas, const Area& area, Colour colour) {
    canvas.fill({area.left, area.top, area.right, area.top + 1.0}, colour);
    canvas.fill({area.left, area.bottom - 1.0, area.right, area.bottom}, colour);
    canvas.fill({area.left, area.top, area.left + 1.0, area.bottom}, colour);
    canvas.fill({area.right - 1.0, area.top, area.right, area.bottom}, colour);
}

void drawLabel(Canvas& canvas, const ObjectOutline& outline, Colour colour) {
    const std::string words = outline.id ? outline.kind + " " + std::to_string(*outline.id) : outline.kind;
    const double width = canvas.textWidth(words, kLabelStyle) + 2.0 * kLabelMargin;
    canvas.fill({outline.left, outline.top, outline.left + width, outline.top + kLabelHeight}, colour);
    canvas.text(words, {outline.left + kLabelMargin, outline.top + kLabelHeight - kLabelMargin}, kLabelStyle);
}

} // namespace

void writeOutlined(const desk::Picture& picture, const std::vector<ObjectOutline>& outlines,
                   const std::filesystem::path& file) {
    Canvas canvas(picture);
    for (const ObjectOutline& outline : outlines)
        drawFrame(canvas, {outline.left, outline.top, outline.right, outline.bottom}, colourOf(outline.role));
    for (const ObjectOutline& outline : outlines)
        drawLabel(canvas, outline, colourOf(outline.role));
    writePng(canvas, file);
}

} // namespace tools::window
