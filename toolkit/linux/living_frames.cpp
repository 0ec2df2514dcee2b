#include "living_frames.h"

#include "vstgui/lib/platform/linux/x11platform.h"

namespace toolkit {

std::vector<LivingFrame>& livingFrames() {
    static auto& frames = *new std::vector<LivingFrame>;
    return frames;
}

std::uint32_t windowOf(const VSTGUI::CFrame& frame) {
    const auto* onScreen = dynamic_cast<VSTGUI::X11::IX11Frame*>(frame.getPlatformFrame());
    return onScreen ? onScreen->getX11WindowID() : 0;
}

} // namespace toolkit
