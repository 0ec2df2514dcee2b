#include "window_host.h"

#include "doors/lv2_window/echo_filter.h"

#include <lv2/atom/atom.h>
#include <lv2/parameters/parameters.h>

#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <utility>

namespace lv2_test {

WindowHost::WindowHost(test::VirtualScreen& screen, std::string module, int x, int y)
    : HostedWindow(screen, x, y), module_(std::move(module)) {}

WindowHost::~WindowHost() {
    close();
}

bool WindowHost::open(const Offers& offers, const char* plugin) {
    library_.emplace(module_);
    const auto find = reinterpret_cast<LV2UI_DescriptorFunction>(library_->symbol("lv2ui_descriptor"));
    if (!find || !find(0) || find(1))
        throw std::runtime_error(module_ + " has not one window");
    descriptor_ = find(0);

    // Nothing of this but what the features point at is the window's for longer than the call.
    const float rate = offers.sampleRate.value_or(0.0f);
    const LV2_Options_Option options[] = {{LV2_OPTIONS_INSTANCE, 0,
                                           Log::number(&log, LV2_PARAMETERS__sampleRate), sizeof rate,
                                           Log::number(&log, LV2_ATOM__Float), &rate},
                                          {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr}};
    const LV2_Feature parent = {LV2_UI__parent, reinterpret_cast<void*>(container())};
    const LV2_Feature resizing = {LV2_UI__resize, &resize_}, touching = {LV2_UI__touch, &touch_};
    const LV2_Feature told = {LV2_OPTIONS__options, const_cast<LV2_Options_Option*>(options)};
    const bool isRateTold = offers.sampleRate.has_value();
    std::vector<const LV2_Feature*> features;
    const auto offer = [&](bool isOffered, const LV2_Feature& feature) {
        if (isOffered)
            features.push_back(&feature);
    };
    offer(offers.parent, parent);
    offer(offers.resize, resizing);
    offer(offers.touch, touching);
    offer(offers.log, log.logFeature);
    offer(isRateTold, told);
    offer(offers.log || isRateTold, log.mapFeature);
    features.push_back(nullptr);
    const std::string bundle = module_.substr(0, module_.find_last_of('/') + 1);
    handle_ =
        descriptor_->instantiate(descriptor_, plugin, bundle.c_str(), write, this, &widget_, features.data());
    if (!handle_)
        library_.reset();
    return isOpen();
}

void WindowHost::close() {
    if (LV2UI_Handle const ended = std::exchange(handle_, nullptr))
        descriptor_->cleanup(ended);
    library_.reset();
}

void WindowHost::serve() {
    for (const Write& echo : std::exchange(echoes_, {}))
        send(echo.port, echo.value);
    const auto* const interface =
        static_cast<const LV2UI_Idle_Interface*>(descriptor_->extension_data(LV2_UI__idleInterface));
    if (handle_) {
        EXPECT_EQ(interface->idle(handle_), 0);
    }
}

void WindowHost::settle() {
    constexpr int enough = 2 * lv2_window::EchoFilter::kIdlesToSettle;
    int rounds = 0;
    // Between two rounds the display has time to draw.
    serveUntil([&] { return ++rounds == enough; });
}

void WindowHost::sendBytes(std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* data) {
    descriptor_->port_event(handle_, port, size, format, data);
}

std::vector<Write> WindowHost::writesTo(std::int32_t id) const {
    std::vector<Write> found;
    for (const Write& written : writes)
        if (written.port == lv2_door::controlPort(id))
            found.push_back(written);
    return found;
}

void WindowHost::write(LV2UI_Controller controller, std::uint32_t port, std::uint32_t size,
                       std::uint32_t protocol, const void* data) {
    auto& host = *static_cast<WindowHost*>(controller);
    EXPECT_TRUE(host.isOpen()) << "written after the end";
    Write written = {port, 0.0f};
    EXPECT_EQ(size, sizeof written.value);
    EXPECT_EQ(protocol, 0u);
    std::memcpy(&written.value, data, sizeof written.value);
    host.writes.push_back(written);
    if (host.sendsBack)
        host.echoes_.push_back(written);
    if (host.whenWritten)
        host.whenWritten(written);
}

void WindowHost::touch(LV2UI_Feature_Handle handle, std::uint32_t port, bool isTouched) {
    auto& host = *static_cast<WindowHost*>(handle);
    host.touches.push_back({port, isTouched, host.writes.size()});
}

int WindowHost::resize(LV2UI_Feature_Handle handle, int width, int height) {
    static_cast<WindowHost*>(handle)->sizes.push_back({width, height});
    return 0;
}

} // namespace lv2_test
