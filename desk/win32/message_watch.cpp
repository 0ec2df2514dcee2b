#include "desk/message_watch.h"

#include "platform/win32/wide_text.h"

#include <atomic>
#include <cwchar>
#include <iterator>
#include <map>
#include <optional>
#include <thread>
#include <vector>
#include <windows.h>

namespace desk {

namespace {

/// Often enough for a hand, seldom enough for a machine.
constexpr DWORD kQuestionMilliseconds = 40;
/// For a window's thread to answer. It may be busy ending, and wait for the watch itself to end.
constexpr UINT kAnswerMilliseconds = 200;

/// What a window says; nothing if it does not answer.
std::optional<std::string> textOf(HWND window) {
    std::wstring text(16384, L'\0');
    DWORD_PTR length = 0;
    if (!SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                             SMTO_ABORTIFHUNG, kAnswerMilliseconds, &length))
        return std::nullopt;
    text.resize(length);
    return platform::utf8(text);
}

/// Windows of this process in the class of dialogs that are to be seen.
std::vector<HWND> visibleDialogs() {
    std::vector<HWND> found;
    const auto look = [](HWND window, LPARAM into) -> BOOL {
        wchar_t name[16] = {};
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId() && IsWindowVisible(window) &&
            GetClassNameW(window, name, static_cast<int>(std::size(name))) &&
            std::wcscmp(name, L"#32770") == 0)
            reinterpret_cast<std::vector<HWND>*>(into)->push_back(window);
        return TRUE;
    };
    EnumWindows(look, reinterpret_cast<LPARAM>(&found));
    return found;
}

/// The line of text in a message box; null in every other dialog.
HWND textPart(HWND dialog) {
    constexpr int textId = 0xFFFF;
    return GetDlgItem(dialog, textId);
}

} // namespace

class MessageWatch::Watcher {
  public:
    Watcher(std::function<void(const ShownMessage&)> onMessage, std::function<bool()> acknowledges)
        : onMessage_(std::move(onMessage)), acknowledges_(std::move(acknowledges)),
          thread_([this] { watch(); }) {}
    ~Watcher() {
        isEnding_ = true;
        thread_.join();
    }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

  private:
    void watch() {
        while (!isEnding_) {
            lookForBoxes();
            if (acknowledges_())
                acknowledgeAll();
            Sleep(kQuestionMilliseconds);
        }
    }

    void lookForBoxes() {
        std::map<HWND, bool> standing;
        for (const HWND dialog : visibleDialogs()) {
            const auto known = boxes_.find(dialog);
            if (known != boxes_.end())
                standing.insert(*known);
            else if (tell(dialog))
                standing.emplace(dialog, false);
        }
        boxes_ = std::move(standing);
    }

    /// False if this is no message box, or one that is just going.
    bool tell(HWND dialog) {
        const HWND part = textPart(dialog);
        const auto text = part ? textOf(part) : std::nullopt;
        const auto caption = text ? textOf(dialog) : std::nullopt;
        if (caption)
            onMessage_({*caption, *text});
        return caption.has_value();
    }

    void acknowledgeAll() {
        for (auto& [dialog, isAcknowledged] : boxes_) {
            const HWND button = FindWindowExW(dialog, nullptr, L"Button", nullptr);
            if (!isAcknowledged && button)
                isAcknowledged =
                    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(button), BN_CLICKED),
                                 reinterpret_cast<LPARAM>(button));
        }
    }

    std::function<void(const ShownMessage&)> onMessage_;
    std::function<bool()> acknowledges_;
    /// The boxes that stand there, and whether they have been acknowledged.
    std::map<HWND, bool> boxes_;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

MessageWatch::MessageWatch(std::function<void(const ShownMessage&)> onMessage,
                           std::function<bool()> acknowledges)
    : watcher_(std::make_unique<Watcher>(std::move(onMessage), std::move(acknowledges))) {}

MessageWatch::~MessageWatch() = default;

} // namespace desk
