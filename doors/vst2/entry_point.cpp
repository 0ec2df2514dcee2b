// The functions a host's loader looks for. They are the only symbols that the library exports.
#include "doors/vst2/velmo_delay.h"
#include "vst2/vst2.h"

#include <memory>
#include <new>

namespace {

/// The only place where the effect is created; null if there is no memory for it.
vst2_door::velmo_delay* createEffect(vst2::audioMasterCallback host) noexcept try {
    return new vst2_door::velmo_delay(host);
} catch (...) {
    return nullptr;
}

vst2::AEffect* enter(vst2::audioMasterCallback host) {
    if (host(nullptr, vst2::audioMasterVersion, 0, 0, nullptr, 0.0f) == 0)
        return nullptr;
    vst2_door::velmo_delay* const effect = createEffect(host);
    return effect ? effect->getAeffect() : nullptr;
}

} // namespace

#define QUILLON_EXPORT extern "C" __attribute__((visibility("default")))

QUILLON_EXPORT vst2::AEffect* VSTPluginMain(vst2::audioMasterCallback host) {
    return enter(host);
}

// Older hosts look for these two names. A C++ function may not be called main, but it may carry that symbol.
QUILLON_EXPORT vst2::AEffect* mainEntry(vst2::audioMasterCallback host) __asm__("main");
QUILLON_EXPORT vst2::AEffect* mainEntry(vst2::audioMasterCallback host) {
    return enter(host);
}
QUILLON_EXPORT vst2::AEffect* MAIN(vst2::audioMasterCallback host) {
    return enter(host);
}
