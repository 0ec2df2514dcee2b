#include "editor/editor_or_notice.h"

#include "editor/my_editor.h"
#include "platform/message_box.h"
#include "skin/notice_editor.h"

#include <utility>

namespace editor {

namespace {

constexpr char kSkinError[] = "Skin Error";

WindowSize sizeOf(skin::AEffGUIEditor& editor) {
    interfaces::EditorRect* place = nullptr;
    return editor.getRect(&place) ? WindowSize{place->right, place->bottom} : WindowSize{};
}

} // namespace

/// While one of these lives, messages go to the log and not into boxes.
class EditorOrNotice::MessagesInLog {
  public:
    explicit MessagesInLog(const Warn& warn) { platform::replaceMessageBox(write, const_cast<Warn*>(&warn)); }
    ~MessagesInLog() { platform::replaceMessageBox(nullptr, nullptr); }
    MessagesInLog(const MessagesInLog&) = delete;
    MessagesInLog& operator=(const MessagesInLog&) = delete;

  private:
    static void write(void* warn, const char* text, const char* caption, const platform::MessageLook&) {
        (*static_cast<const Warn*>(warn))(caption, text);
    }
};

EditorOrNotice::EditorOrNotice(interfaces::EditorHost& owner, Warn warn)
    : owner_(owner), warn_(std::move(warn)) {}

EditorOrNotice::~EditorOrNotice() = default;

void EditorOrNotice::prepare(interfaces::TapGains tapGain) {
    const MessagesInLog messages(warn_);
    fault_.clear();
    if (editor_) {
        editor_->readSize();
    } else {
        editor_ = std::make_unique<myEditor>(&owner_, tapGain);
        editor_->setKnobMode(VSTGUI::kLinearMode);
    }
    const WindowSize size = sizeOf(*editor_);
    if ((size.width <= 0 || size.height <= 0) && fault_.empty())
        noteFault("The skin has no background picture that can be read");
    if (!fault_.empty())
        makeNotice();
}

void EditorOrNotice::makeNotice() {
    if (!notice_)
        notice_ = std::make_unique<skin::NoticeEditor>(&owner_);
}

bool EditorOrNotice::open(void* parent) {
    close();
    if (!editor_)
        return false;
    isOpening_ = true;
    if (fault_.empty())
        openEditor(parent);
    if (!shown_ && isOpening_)
        openNotice(parent);
    return std::exchange(isOpening_, false) && shown_;
}

void EditorOrNotice::openEditor(void* parent) {
    const MessagesInLog messages(warn_);
    if (editor_->open(parent) && editor_->ownWindow())
        shown_ = editor_.get();
    else
        editor_->close();
}

void EditorOrNotice::openNotice(void* parent) {
    makeNotice();
    notice_->setFault(fault_);
    if (notice_->open(parent) && notice_->ownWindow())
        shown_ = notice_.get();
}

void EditorOrNotice::close() {
    isOpening_ = false;
    shown_ = nullptr;
    if (editor_)
        editor_->close();
    if (notice_)
        notice_->close();
}

void EditorOrNotice::idle() {
    if (shown_)
        shown_->idle();
}

bool EditorOrNotice::showsNotice() const {
    return notice_ && shown_ == notice_.get();
}

WindowSize EditorOrNotice::size() const {
    if (!fault_.empty() && notice_)
        return sizeOf(*notice_);
    // A host may ask while prepare() tells it of a fault.
    if (!editor_)
        return {};
    // A host that asks in the middle of an opening, as it was asked for room, is told what it will see.
    if (const VSTGUI::CFrame* const frame = editor_->getFrame())
        return {static_cast<int>(frame->getWidth()), static_cast<int>(frame->getHeight())};
    return sizeOf(*editor_);
}

void* EditorOrNotice::ownWindow() const {
    return shown_ ? shown_->ownWindow() : nullptr;
}

void EditorOrNotice::announceSize() {
    if (shown_)
        shown_->announceSize();
}

bool EditorOrNotice::setVisible(bool isVisible) {
    return shown_ && shown_->setVisible(isVisible);
}

void EditorOrNotice::noteFault(const char* line) {
    fault_ = line;
    warn_(kSkinError, line);
}

} // namespace editor
