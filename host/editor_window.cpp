#include "host/editor_window.h"

#include "platform/clock.h"

#include <utility>

namespace host {

using namespace vst2;

namespace {

/// Until the editor tells its own.
constexpr int kFirstWidth = 480, kFirstHeight = 160;

/// What an editor draws appears one turn later, 16 ms at the earliest; so many of these without a change mean
/// that it is done.
constexpr int kRestMilliseconds = 20;
constexpr int kTurnsAtRest = 10;

desk::HostWindow makeWindow(const std::string& title) try {
    return desk::HostWindow(title, kFirstWidth, kFirstHeight);
} catch (const std::runtime_error& error) {
    throw HostError(error.what());
}

} // namespace

std::optional<EditorSize> editorSize(Plugin& plugin) {
    if (!(plugin.effect()->flags & effFlagsHasEditor))
        return std::nullopt;
    // Not every plug-in answers with 1.
    ERect* rect = nullptr;
    plugin.dispatch(effEditGetRect, 0, 0, static_cast<void*>(&rect));
    if (!rect || rect->right <= rect->left || rect->bottom <= rect->top)
        return std::nullopt;
    return EditorSize{rect->right - rect->left, rect->bottom - rect->top};
}

EditorWindow::EditorWindow(const std::string& title) : window_(makeWindow(title)) {}

EditorWindow::~EditorWindow() {
    close();
}

void EditorWindow::open(Plugin& plugin) {
    close();
    if (!(plugin.effect()->flags & effFlagsHasEditor)) {
        window_.show();
        throw HostError("the plug-in has no editor");
    }
    plugin_ = &plugin;
    answerSizeRequests();
    fitTo(plugin);
    // On the screen before the editor is in it: what an editor draws into a window that is not shown is lost.
    window_.show();
    if (plugin.dispatch(effEditOpen, 0, 0, window_.handle()) == 0) {
        close();
        throw HostError("the plug-in's editor does not open");
    }
    // Some know their size only now.
    fitTo(plugin);
}

void EditorWindow::close() {
    if (!plugin_)
        return;
    plugin_->dispatch(effEditClose);
    plugin_->behaviour().answer = std::exchange(answerBefore_, {});
    plugin_ = nullptr;
}

void EditorWindow::answerSizeRequests() {
    answerBefore_ = plugin_->behaviour().answer;
    plugin_->behaviour().answer = [this](const HostCall& call, void* ptr) -> std::optional<std::intptr_t> {
        if (answerBefore_)
            if (const auto answer = answerBefore_(call, ptr))
                return answer;
        if (call.opcode != audioMasterSizeWindow)
            return std::nullopt;
        window_.resize(call.index, static_cast<int>(call.value));
        return 1;
    };
}

void EditorWindow::fitTo(Plugin& plugin) {
    if (const auto size = editorSize(plugin))
        if (size->width != window_.width() || size->height != window_.height())
            window_.resize(size->width, size->height);
}

void EditorWindow::serve(int milliseconds) {
    if (plugin_)
        plugin_->dispatch(effEditIdle);
    window_.serve(milliseconds);
}

std::optional<desk::Picture> EditorWindow::settledPicture(int patienceMilliseconds) {
    const std::uint32_t begin = platform::milliseconds();
    std::optional<desk::Picture> last;
    int unchanged = 0;
    while (unchanged < kTurnsAtRest && !isClosed()) {
        if (platform::milliseconds() - begin > static_cast<std::uint32_t>(patienceMilliseconds))
            break;
        serve(kRestMilliseconds);
        auto now = picture();
        unchanged = now && now == last ? unchanged + 1 : 0;
        last = std::move(now);
    }
    return last;
}

} // namespace host
