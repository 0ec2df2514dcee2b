// How the plug-in tells the person something that they must not miss: a modal box with one button.
//
// With a display it is a real window that stays until it is acknowledged. Without one there is nobody to
// click, so the line "caption: text" goes to standard error and the call returns at once.
#pragma once

namespace platform {

enum class MessageIcon { none, error };

/// How a box looks and whose it is, on systems whose boxes have an icon and an owner.
struct MessageLook {
    MessageIcon icon = MessageIcon::none;
    void* owner = nullptr; ///< the system's handle of the window that rests meanwhile; null for none

    bool operator==(const MessageLook&) const = default;
};

/// Shows `text` under the title `caption` and returns when the person has acknowledged it. Blocks the calling
/// thread; never called on the audio thread. Both texts are in the system's own encoding (UTF-8 on Linux) and
/// may not be null.
void showMessage(const char* text, const char* caption, const MessageLook& look = {});

using MessageHandler = void (*)(void* context, const char* text, const char* caption,
                                const MessageLook& look);

/// Sends every following message to `handler` in place of the box, so that a test can read it; null brings
/// the box back. Process-wide; set it before other threads run.
void replaceMessageBox(MessageHandler handler, void* context);

} // namespace platform
