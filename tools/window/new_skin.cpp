#include "tools/window/new_skin.h"

#include "desk/canvas.h"
#include "platform/files.h"
#include "platform/path_text.h"
#include "tools/common/tool_error.h"
#include "tools/window/png_file.h"

#include <cmath>
#include <numbers>
#include <string>
#include <system_error>

namespace tools::window {

namespace files = std::filesystem;

namespace {

using desk::Align;
using desk::Area;
using desk::Canvas;
using desk::Colour;
using desk::TextStyle;

constexpr Colour kPaper = {0.94, 0.94, 0.92}, kWhite = {1.0, 1.0, 1.0}, kInk = {0.10, 0.12, 0.15};
constexpr Colour kLine = {0.72, 0.72, 0.70}, kAccent = {0.80, 0.22, 0.13}, kMiddle = {0.53, 0.53, 0.53};
constexpr const char* kInkText = "1A1F26";
constexpr const char* kWhiteText = "FFFFFF";

// In pixels. skin.xml and background.png use the same positions.
constexpr int kWidth = 680, kHeight = 484;
constexpr int kTitleHeight = 34, kFootTop = 460;
constexpr int kViewLeft = 12, kViewTop = 44, kViewWidth = 704, kViewSeen = 656, kViewHeight = 213;
constexpr int kGridLeft = 16, kColumn = 72, kRowHeight = 90;
constexpr int kRows[] = {268, 366};
constexpr int kKnob = 44, kKnobLeft = 14, kKnobTop = 22, kValueTop = 68, kValueHeight = 16;
constexpr int kFrames = 65;
constexpr int kSwitchWidth = 132, kSwitchHeight = 24, kSwitchLeft = 6, kSwitchTop = 32;
constexpr int kMenuLeft = 580, kMenuTop = 6, kMenuWidth = 88, kMenuHeight = 22;
constexpr int kAboutWidth = 400, kAboutHeight = 260;

/// A parameter: its constant in skin.xml, the label above its control, and its place in the grid.
struct Cell {
    const char* name;
    const char* label;
    int row;
    int column;
    bool changesSound = true;
};

constexpr Cell kCells[] = {
    {"BaseLength", "Base length", 0, 0},
    {"Taps", "Echoes", 0, 1},
    {"Stretch", "Stretch", 0, 2},
    {"AmpDecay", "Fade / Swell", 0, 3},
    {"Curve", "Fade curve", 0, 4},
    {"SweepRate", "Sweep rate", 0, 5},
    {"SweepDepth", "Sweep depth", 0, 6},
    {"LowPass", "High cut", 1, 0},
    {"HighPass", "Low cut", 1, 1},
    {"InputPan", "Input pan", 1, 2},
    {"InputGain", "Input gain", 1, 3, false},
    {"Feedback", "Feedback", 1, 4},
    {"Stereo", "Stereo", 1, 5},
    {"DryWet", "Mix", 1, 6},
    {"OutputPan", "Echo pan", 1, 7},
    {"OutputGain", "Output gain", 1, 8, false},
};
constexpr Cell kSwitchCell = {"Movement", "How echoes move", 0, 7}; // two columns wide
constexpr const char* kWays[] = {"Jump", "Glide", "Fine"};

// The text

std::string number(int value) {
    return std::to_string(value);
}

std::string tag(const std::string& name, const std::string& value) {
    return " " + name + "=\"" + value + "\"";
}

std::string placeTags(int x, int y, int width, int height) {
    return tag("x", number(x)) + tag("y", number(y)) + tag("w", number(width)) + tag("h", number(height));
}

std::string atCell(const Cell& cell, const std::string& left, const std::string& top) {
    return tag("x", "Left + " + number(cell.column) + "*Step + " + left) +
           tag("y", (cell.row == 0 ? "RowOne + " : "RowTwo + ") + top);
}

std::string constants() {
    return "<CONSTANTS>\n"
           "  BaseLength = 0, Taps, SweepRate, Stretch, AmpDecay, Curve, Feedback, SweepDepth, Movement\n"
           "  LowPass, HighPass, InputPan, InputGain, Stereo, DryWet, OutputPan, OutputGain\n\n"
           "  Left = " +
           number(kGridLeft) + ", Step = " + number(kColumn) + "\n  RowOne = " + number(kRows[0]) +
           ", RowTwo = " + number(kRows[1]) + "\n  Knob = " + number(kKnob) +
           ", KnobLeft = " + number(kKnobLeft) + ", KnobTop = " + number(kKnobTop) +
           "\n  ValueTop = " + number(kValueTop) + ", ValueHeight = " + number(kValueHeight) +
           "\n  SwitchLeft = " + number(kSwitchLeft) + ", SwitchTop = " + number(kSwitchTop) +
           "\n</CONSTANTS>\n";
}

/// An area 1.54 times as wide as the picture centres the credits; its height, half of the window's plus half
/// of the picture's, puts them at the bottom of the picture.
std::string aboutObject() {
    return "<about" + placeTags(0, 0, kAboutWidth * 154 / 100, (kHeight + kAboutHeight) / 2) +
           tag("bitmap_pop", "about.png") + "/>\n";
}

std::string knob(const Cell& cell) {
    return "<knob" + tag("id", cell.name) + atCell(cell, "KnobLeft", "KnobTop") + tag("w", "Knob") +
           tag("h", "Knob") + tag("stackbmp", "y") + tag("bitmap_handle", "knob.png") + "/>\n";
}

std::string value(const Cell& cell) {
    return "<autodisp" + tag("id", cell.name) + tag("link", cell.name) + atCell(cell, "0", "ValueTop") +
           tag("w", "Step") + tag("h", "ValueHeight") + tag("fontcolor", kInkText) + "/>\n";
}

std::string skinText() {
    std::string text = "<GUI>\n\n" + constants() + "\n<background" + tag("filename", "background.png") +
                       "/>\n" + aboutObject() + "<skinselector" +
                       placeTags(kMenuLeft, kMenuTop, kMenuWidth, kMenuHeight) + tag("transparent", "y") +
                       tag("fontcolor", kWhiteText) + "/>\n\n<ViewTaps" +
                       placeTags(kViewLeft, kViewTop, kViewWidth, kViewHeight) + "/>\n\n";
    for (const Cell& cell : kCells)
        text += knob(cell) + (cell.changesSound ? value(cell) : "");
    return text + "<hswitch" + tag("id", kSwitchCell.name) + atCell(kSwitchCell, "SwitchLeft", "SwitchTop") +
           tag("entries", "3") + tag("bitmap_handle", "movement.png") + "/>\n\n<anydisp" +
           placeTags(kGridLeft, kFootTop + 3, 400, 18) + tag("halign", "0") + tag("fontcolor", kWhiteText) +
           "/>\n\n</GUI>\n";
}

// The pictures

void frame(Canvas& canvas, const Area& area, Colour line, Colour inside) {
    canvas.fill(area, line);
    canvas.fill({area.left + 1.0, area.top + 1.0, area.right - 1.0, area.bottom - 1.0}, inside);
}

/// The background of the echoes: light behind the texts, dark below them for the bars. The yellow line of the
/// help gets a dark plaque, with 16 pixels in a medium tone to the left, where a blue line overlaps it.
void drawPlate(Canvas& canvas) {
    constexpr int kThird = kViewHeight / 3;
    const double left = kViewLeft, top = kViewTop, right = left + kViewSeen, bottom = top + kViewHeight;
    frame(canvas, {left - 1.0, top - 1.0, right + 1.0, bottom + 1.0}, kInk, kWhite);
    canvas.fill({left, top + kThird + 53.0, right, bottom}, kInk);
    const double middle = left + kViewWidth / 2.0;
    canvas.fill({middle - 163.0, top + 49.0, middle - 147.0, top + 61.0}, kMiddle);
    canvas.fill({middle - 147.0, top + 49.0, middle + 162.0, top + 61.0}, kInk);
}

/// A knob that changes nothing would show a value in dB; it says so instead.
void drawLabel(Canvas& canvas, const Cell& cell, int columns) {
    const double middle = kGridLeft + (cell.column + columns / 2.0) * kColumn, top = kRows[cell.row];
    const TextStyle style = {.size = 11.0, .colour = kInk, .align = Align::centre};
    canvas.text(cell.label, {middle, top + 16.0}, style);
    if (!cell.changesSound)
        canvas.text("no effect", {middle, top + kValueTop + 12.0}, style);
}

Canvas background() {
    Canvas canvas(kWidth, kHeight, kPaper);
    canvas.fill({0.0, 0.0, kWidth, kTitleHeight}, kInk);
    canvas.text("Quillon Multitap Delay", {16.0, 23.0}, {.size = 16.0, .colour = kWhite, .isBold = true});
    frame(canvas, {kMenuLeft, kMenuTop, kMenuLeft + kMenuWidth, kMenuTop + kMenuHeight}, kWhite, kInk);
    canvas.text("Skins", {kMenuLeft + kMenuWidth / 2.0, kMenuTop + 15.0},
                {.size = 12.0, .colour = kWhite, .align = Align::centre});
    drawPlate(canvas);
    for (const int row : kRows)
        frame(canvas, {12.0, row - 2.0, kWidth - 12.0, row - 2.0 + kRowHeight}, kLine, kWhite);
    for (const Cell& cell : kCells)
        drawLabel(canvas, cell, 1);
    drawLabel(canvas, kSwitchCell, 2);
    canvas.fill({0.0, kFootTop, kWidth, kHeight}, kInk);
    return canvas;
}

/// The frames of the knob, one below the other. Their number is odd, so that one points straight up.
Canvas knobStrip() {
    Canvas canvas(kKnob, kKnob * kFrames, kWhite);
    for (int position = 0; position < kFrames; ++position) {
        const double turn = static_cast<double>(position) / (kFrames - 1);
        const double angle = (0.75 + 1.5 * turn) * std::numbers::pi;
        const desk::Point centre = {kKnob / 2.0, kKnob / 2.0 + kKnob * position};
        const desk::Point way = {std::cos(angle), std::sin(angle)};
        canvas.dot(centre, 19.0, kInk);
        canvas.line({centre.x + 6.0 * way.x, centre.y + 6.0 * way.y},
                    {centre.x + 17.0 * way.x, centre.y + 17.0 * way.y}, kWhite, 3.0);
    }
    return canvas;
}

/// The three states of the switch, one below the other.
Canvas switchStates() {
    constexpr int kStates = 3, kField = kSwitchWidth / kStates;
    Canvas canvas(kSwitchWidth, kSwitchHeight * kStates, kInk);
    for (int state = 0; state < kStates; ++state)
        for (int way = 0; way < kStates; ++way) {
            const double left = way * kField, top = state * kSwitchHeight;
            const bool isChosen = way == state;
            canvas.fill({left + 1.0, top + 1.0, left + kField - 1.0, top + kSwitchHeight - 1.0},
                        isChosen ? kAccent : kWhite);
            canvas.text(kWays[way], {left + kField / 2.0, top + 16.0},
                        {.size = 11.0, .colour = isChosen ? kWhite : kInk, .align = Align::centre});
        }
    return canvas;
}

/// Its lower part is free for the credits, which the effect writes in white.
Canvas about() {
    Canvas canvas(kAboutWidth, kAboutHeight, kInk);
    canvas.text("My skin", {kAboutWidth / 2.0, 60.0},
                {.size = 28.0, .colour = kWhite, .isBold = true, .align = Align::centre});
    return canvas;
}

void write(Canvas canvas, const files::path& file) {
    writePng(canvas, file);
}

void fillFolder(const files::path& folder) {
    write(background(), folder / "background.png");
    write(knobStrip(), folder / "knob.png");
    write(switchStates(), folder / "movement.png");
    write(about(), folder / "about.png");
    // Written last, because a folder with this file counts as a skin.
    const std::string text = skinText();
    const auto file = platform::textOfPath(folder / "skin.xml");
    if (!file)
        throw ToolError(folder.string() + " has letters that plug-ins cannot use");
    if (!platform::writeWholeFile(*file, text.data(), text.size()))
        throw ToolError(*file + " cannot be written");
}

} // namespace

void makeSkin(const files::path& folder) {
    std::error_code error;
    if (files::exists(files::symlink_status(folder, error)))
        throw ToolError(folder.string() + " already exists; choose another name");
    if (!files::create_directory(folder, error))
        throw ToolError(folder.string() + " cannot be created: " + error.message());
    try {
        fillFolder(folder);
    } catch (...) {
        files::remove_all(folder, error);
        throw;
    }
}

} // namespace tools::window
