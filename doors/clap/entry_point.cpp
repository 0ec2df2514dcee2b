// What a CLAP host's loader looks for, and the functions that it finds through it. Only making an instance
// can fail, where memory is short.
#include "doors/clap/plugin_record.h"

#include "base/shared.h"

#include <clap/entry.h>
#include <clap/plugin-factory.h>

#include <cstdint>
#include <cstring>

namespace {

using clap_door::kDescriptor;

/// Hosts call init() once for each of their instances, and deinit() while others still play.
base::Shared<std::int32_t> numUsers;

bool init(const char*) noexcept {
    numUsers.addInOrder(1);
    return true;
}

void deinit() noexcept {
    if (numUsers.addInOrder(-1) < 0) // once too often
        numUsers.addInOrder(1);
}

std::uint32_t countPlugins(const clap_plugin_factory_t*) noexcept {
    return 1;
}

const clap_plugin_descriptor_t* describePlugin(const clap_plugin_factory_t*, std::uint32_t index) noexcept {
    return index == 0 ? &kDescriptor : nullptr;
}

const clap_plugin_t* createPlugin(const clap_plugin_factory_t*, const clap_host_t* host,
                                  const char* id) noexcept try {
    const bool isPossible =
        host && clap_version_is_compatible(host->clap_version) && id && std::strcmp(id, kDescriptor.id) == 0;
    return isPossible ? clap_door::makePlugin(*host) : nullptr;
} catch (...) {
    return nullptr;
}

constexpr clap_plugin_factory_t kFactory = {countPlugins, describePlugin, createPlugin};

const void* getFactory(const char* id) noexcept {
    const bool isKnown = id && std::strcmp(id, CLAP_PLUGIN_FACTORY_ID) == 0;
    return isKnown && numUsers.loadInOrder() > 0 ? &kFactory : nullptr;
}

} // namespace

extern "C" CLAP_EXPORT const clap_plugin_entry_t clap_entry = {CLAP_VERSION_INIT, init, deinit, getFactory};
