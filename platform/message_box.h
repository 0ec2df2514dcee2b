// How the plug-in tells the person something that they must not miss: a modal box with one button.
//
// With a display it is a real window that stays until it is acknowledged. Without one there is nobody to
// click, so the line "caption: text" goes to standard error and the call returns at once.
#pragma once

namespace platform {

/// Shows `text` under the title `caption` and returns when the person has acknowledged it. Blocks the calling
/// thread; never called on the audio thread. Both texts are UTF-8 and may not be null.
void showMessage(const char* text, const char* caption);

using MessageHandler = void (*)(void* context, const char* text, const char* caption);

/// Sends every following message to `handler` in place of the box, so that a test can read it; null brings
/// the box back. Process-wide; set it before other threads run.
void replaceMessageBox(MessageHandler handler, void* context);

} // namespace platform
