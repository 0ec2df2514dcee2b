#include "platform/message_box.h"

#include "message_window.h"

#include <cstdio>
#include <string>

namespace platform {

namespace {

MessageHandler replacement = nullptr;
void* replacementContext = nullptr;

} // namespace

void showMessage(const char* text, const char* caption, const MessageLook& look) {
    if (replacement) {
        replacement(replacementContext, text, caption, look);
        return;
    }
    if (showMessageWindow(text, caption, look))
        return;
    // In one piece, so that lines of several threads or processes stay whole.
    const std::string line = std::string(caption) + ": " + text + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

void replaceMessageBox(MessageHandler handler, void* context) {
    replacement = handler;
    replacementContext = context;
}

} // namespace platform
