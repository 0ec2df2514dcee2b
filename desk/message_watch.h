// The message boxes that a library shows in this process, as its host sees them: what they say and, where
// there is nobody to acknowledge them, a hand that does.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace desk {

/// One message box that is on the display.
struct ShownMessage {
    std::string caption;
    std::string text;
};

/// Looks on a thread of its own, since a box keeps the thread that shows it.
class MessageWatch {
  public:
    /// Calls `onMessage` once for each box of this process, and acknowledges all boxes that stand there
    /// whenever `acknowledges` says so, which is asked again and again. Both are called on the watch's own
    /// thread, and never after the destructor. Without a display nothing is ever seen.
    MessageWatch(std::function<void(const ShownMessage&)> onMessage, std::function<bool()> acknowledges);
    ~MessageWatch();
    MessageWatch(const MessageWatch&) = delete;
    MessageWatch& operator=(const MessageWatch&) = delete;

  private:
    class Watcher;
    std::unique_ptr<Watcher> watcher_;
};

} // namespace desk
