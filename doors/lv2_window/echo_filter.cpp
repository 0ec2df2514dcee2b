#include "doors/lv2_window/echo_filter.h"

#include <algorithm>
#include <utility>

namespace lv2_window {

void EchoFilter::beginEdit(float value) {
    ++gestures_;
    // An echo may be older than the gesture.
    remember(value);
}

void EchoFilter::written(float value) {
    remember(value);
    waiting_.reset();
    idlesLeft_ = kIdlesToSettle;
}

std::optional<float> EchoFilter::endEdit() {
    if (gestures_ > 0)
        --gestures_;
    if (isHeld())
        return std::nullopt;
    idlesLeft_ = kIdlesToSettle;
    if (!waiting_ || isRecent(*waiting_))
        return std::nullopt;
    return std::exchange(waiting_, std::nullopt);
}

std::optional<float> EchoFilter::received(float value) {
    if (isHeld() || (idlesLeft_ > 0 && isRecent(value))) {
        waiting_ = value;
        return std::nullopt;
    }
    waiting_.reset();
    return value;
}

std::optional<float> EchoFilter::idle() {
    if (isHeld() || idlesLeft_ == 0)
        return std::nullopt;
    --idlesLeft_;
    if (idlesLeft_ > 0)
        return std::nullopt;
    numRecent_ = 0;
    return std::exchange(waiting_, std::nullopt);
}

bool EchoFilter::isRecent(float value) const {
    const auto end = recent_.begin() + static_cast<std::ptrdiff_t>(std::min(numRecent_, kMostRecent));
    return std::find(recent_.begin(), end, value) != end;
}

void EchoFilter::remember(float value) {
    recent_[numRecent_++ % kMostRecent] = value;
}

} // namespace lv2_window
