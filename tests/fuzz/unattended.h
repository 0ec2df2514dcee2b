// What a fuzz target needs that runs a part of the effect a hundred thousand times: a current directory and a
// home of its own, no screen, and a list of the messages in place of boxes to click away.
#pragma once

#include "desk/display.h"
#include "desk/private_folder.h"
#include "platform/message_box.h"

#include <cstdlib>
#include <string>
#include <vector>

class Unattended {
  public:
    /// The one of this process, made at the first call.
    static Unattended& instance() {
        static Unattended unattended;
        return unattended;
    }

    /// Ends in a separator.
    std::string folder() const { return folder_.path() + "/"; }
    /// "caption: text" of each message since the last forgetMessages().
    const std::vector<std::string>& messages() const { return messages_; }
    void forgetMessages() { messages_.clear(); }

  private:
    Unattended() {
        desk::leaveDisplay();
        setenv("HOME", folder_.path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", folder_.path().c_str(), 1);
        platform::replaceMessageBox(
            [](void* context, const char* text, const char* caption, const platform::MessageLook&) {
                static_cast<Unattended*>(context)->messages_.push_back(std::string(caption) + ": " + text);
            },
            this);
    }
    ~Unattended() { platform::replaceMessageBox(nullptr, nullptr); }

    desk::PrivateFolder folder_;
    std::vector<std::string> messages_;
};
