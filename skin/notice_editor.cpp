#include "skin/notice_editor.h"

#include "vstgui/lib/controls/ctextlabel.h"

#include <algorithm>
#include <string_view>

namespace skin {

using VSTGUI::CColor;
using VSTGUI::CRect;

namespace {

constexpr std::int16_t kWidth = 560, kHeight = 150;
constexpr int kMargin = 20;
constexpr std::size_t kLongestLine = 72; ///< in bytes
constexpr CColor kPage(0xF4, 0xF2, 0xEC), kInk(0x20, 0x20, 0x20);

/// Breaks a text into lines that fit, behind blanks and the parts of a path.
std::string inLines(std::string_view text) {
    std::string lines;
    while (text.size() > kLongestLine) {
        const std::size_t last = text.substr(0, kLongestLine).find_last_of(" /\\");
        const std::size_t length = last == std::string_view::npos ? kLongestLine : last + 1;
        lines.append(text.substr(0, length)).append("\n");
        text.remove_prefix(length);
    }
    return lines.append(text);
}

} // namespace

NoticeEditor::NoticeEditor(interfaces::EditorHost* owner) : AEffGUIEditor(owner) {
    rect = {0, 0, kHeight, kWidth};
}

NoticeEditor::~NoticeEditor() {
    closeFrame();
}

void NoticeEditor::setFault(const std::string& fault) {
    text_ = "The skin cannot be shown.\n\n" + inLines(fault);
}

bool NoticeEditor::open(void* ptr) {
    closeFrame();
    systemWindow.store(ptr);
    if (!openFrame(kWidth, kHeight, nullptr, ptr))
        return false;
    frame->setBackgroundColor(kPage);
    const CRect place(kMargin, kMargin, kWidth - kMargin, kHeight - kMargin);
    const auto label = VSTGUI::makeOwned<VSTGUI::CMultiLineTextLabel>(place);
    label->setText(text_.c_str());
    label->setFont(VSTGUI::kNormalFont);
    label->setFontColor(kInk);
    label->setTransparency(true);
    label->setHoriAlign(VSTGUI::kLeftText);
    label->setStyle(VSTGUI::CParamDisplay::kNoFrame);
    label->remember();
    frame->addView(label);
    return true;
}

void NoticeEditor::close() {
    closeFrame();
}

} // namespace skin
