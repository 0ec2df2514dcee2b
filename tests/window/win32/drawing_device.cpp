// The toolkit draws pictures in memory with the device of a window's, so these tests have a window that has
// been drawn before they begin.

#include "toolkit/toolkit.h"
#include "toolkit/toolkit_window.h"

#include "vstgui/lib/cframe.h"

#include <gtest/gtest.h>
#include <optional>
#include <windows.h>

namespace {

class DrawnWindow : public testing::Environment {
  public:
    void SetUp() override {
        toolkit_.emplace();
        parent_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr, nullptr,
                                  nullptr, nullptr);
        ASSERT_TRUE(window_.open(new VSTGUI::CFrame(VSTGUI::CRect(0, 0, 50, 50), nullptr), parent_));
        ASSERT_TRUE(UpdateWindow(GetWindow(parent_, GW_CHILD)));
    }
    void TearDown() override {
        window_.close();
        DestroyWindow(parent_);
        toolkit_.reset();
    }

  private:
    std::optional<toolkit::Toolkit> toolkit_;
    toolkit::ToolkitWindow window_;
    HWND parent_ = nullptr;
};

testing::Environment* const drawnWindow = testing::AddGlobalTestEnvironment(new DrawnWindow);

} // namespace
