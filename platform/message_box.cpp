#include "platform/message_box.h"

#include "message_window.h"

#include <cstdio>
#include <new>
#include <string>

namespace platform {

namespace {

MessageHandler replacement = nullptr;
void* replacementContext = nullptr;

} // namespace

void showMessage(const char* text, const char* caption, const MessageLook& look) try {
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
} catch (const std::bad_alloc&) {
    // What a message is about goes on without it.
}

void replaceMessageBox(MessageHandler handler, void* context) {
    replacement = handler;
    replacementContext = context;
}

} // namespace platform
