#include "shown_box.h"

#include "child_process.h"

#include <gtest/gtest.h>

namespace test {

namespace {

std::string classOf(HWND window) {
    char name[64] = "";
    GetClassNameA(window, name, sizeof name);
    return name;
}

bool isIcon(HWND window) {
    return (GetWindowLongA(window, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
}

} // namespace

std::string textOf(HWND window) {
    char text[1024] = "";
    GetWindowTextA(window, text, sizeof text);
    return text;
}

ShownBox::ShownBox(std::function<void()> work, const std::string& caption)
    : worker_([this, work] {
          work();
          isOver_ = true;
      }) {
    const bool found = waitUntil([&] {
        box_ = FindWindowA("#32770", caption.c_str());
        return box_ && IsWindowVisible(box_) && !buttons().empty();
    });
    EXPECT_TRUE(found) << "no box titled " << caption;
}

ShownBox::~ShownBox() {
    if (!isOver_)
        press();
    worker_.join();
}

std::vector<HWND> ShownBox::children(const std::string& className) const {
    std::vector<HWND> found;
    for (HWND child = GetWindow(box_, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        if (classOf(child) == className && IsWindowVisible(child))
            found.push_back(child);
    return found;
}

std::vector<HWND> ShownBox::buttons() const {
    return children("Button");
}

std::vector<std::string> ShownBox::texts() const {
    std::vector<std::string> found;
    for (HWND child : children("Static"))
        if (!isIcon(child))
            found.push_back(textOf(child));
    return found;
}

HICON ShownBox::icon() const {
    for (HWND child : children("Static"))
        if (isIcon(child))
            return reinterpret_cast<HICON>(SendMessageA(child, STM_GETICON, 0, 0));
    return nullptr;
}

void ShownBox::press() const {
    PostMessageA(box_, WM_COMMAND, IDOK, 0);
}

bool ShownBox::acknowledge() const {
    press();
    return waitUntil([this] { return isOver(); });
}

} // namespace test
