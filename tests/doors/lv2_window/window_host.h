// An LV2 host with a window, as far as a plug-in's window sees one: it loads the module each time anew,
// offers the features that a test wants, and writes down what it is told.
#pragma once

#include "doors/lv2/ports.h"
#include "recorded_log.h"

#include "desk/shared_library.h"

#include <lv2/options/options.h>
#include <lv2/ui/ui.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// Xlib defines words that the headers above use, so it comes last.
#include "support/shown_editor.h"

#include "hosted_window.h"

namespace lv2_test {

struct Write {
    std::uint32_t port;
    float value;
    bool operator==(const Write&) const = default;
};

struct Touch {
    std::uint32_t port;
    bool isTouched;
    std::size_t writesBefore; ///< how many writes came before it
    bool operator==(const Touch&) const = default;
};

struct Size {
    int width, height;
    bool operator==(const Size&) const = default;
};

/// What a host offers. All of it unless a test takes some away.
struct Offers {
    bool parent = true, resize = true, touch = true, log = true;
    std::optional<float> sampleRate = 44100.0f; ///< Hz
};

/// One window of the module.
class WindowHost final : public test::HostedWindow {
  public:
    /// Makes a container at (`x`, `y`) of the screen; nothing is open in it yet.
    WindowHost(test::VirtualScreen& screen, std::string module, int x = 40, int y = 30);
    /// Ends the window, if that has not been done, and the container.
    ~WindowHost() override;

    /// Loads the module and has it make a window. False if it makes none.
    bool open(const Offers& offers = {}, const char* plugin = lv2_door::kPluginUri);
    /// cleanup() and unloading.
    void close();

    bool isOpen() const { return handle_ != nullptr; }
    Window widget() const { return static_cast<Window>(reinterpret_cast<std::uintptr_t>(widget_)); }
    const LV2UI_Descriptor& descriptor() const { return *descriptor_; }

    /// One idle round, in which the host sends back what it was sent if `sendsBack`.
    void serve() override;
    /// Lets a number of idle rounds pass, and what they draw.
    void settle();
    void send(std::uint32_t port, float value) { sendBytes(port, sizeof value, 0, &value); }
    void sendParameter(std::int32_t id, float value) { send(lv2_door::controlPort(id), value); }
    void sendBytes(std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* data);

    std::vector<Write> writesTo(std::int32_t id) const;

    std::vector<Write> writes;
    std::vector<Touch> touches;
    std::vector<Size> sizes; ///< that were asked for
    std::function<void(Write)> whenWritten;
    bool sendsBack = false; ///< each write at the next idle round
    Log log;

  private:
    static void write(LV2UI_Controller controller, std::uint32_t port, std::uint32_t size,
                      std::uint32_t protocol, const void* data);
    static void touch(LV2UI_Feature_Handle handle, std::uint32_t port, bool isTouched);
    static int resize(LV2UI_Feature_Handle handle, int width, int height);

    std::string module_;
    std::optional<desk::SharedLibrary> library_;
    const LV2UI_Descriptor* descriptor_ = nullptr;
    LV2UI_Handle handle_ = nullptr;
    LV2UI_Widget widget_ = nullptr;
    LV2UI_Resize resize_ = {this, resize};
    LV2UI_Touch touch_ = {this, touch};
    std::vector<Write> echoes_;
};

} // namespace lv2_test
