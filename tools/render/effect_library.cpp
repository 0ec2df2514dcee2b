#include "tools/render/effect_library.h"

#include "platform/module_folder.h"
#include "tools/render/tool_error.h"

#include <map>
#include <memory>

namespace render {

namespace files = std::filesystem;

files::path libraryPath(const files::path& asked) {
    std::error_code error;
    if (!asked.empty()) {
        if (!files::exists(asked, error))
            throw ToolError(asked.string() + ": there is no such library");
        return asked;
    }
    const files::path own = platform::moduleFolder();
    for (const files::path& folder : {own, own / ".." / "stage"}) {
        const files::path candidate = (folder / QUILLON_LIBRARY_FILE).lexically_normal();
        if (files::exists(candidate, error))
            return candidate;
    }
    throw ToolError(std::string("there is no " QUILLON_LIBRARY_FILE " in ") + own.string() +
                    "; name the library with --library");
}

const host::Library& loadForGood(const files::path& path) {
    // Never destroyed, so that nothing is unloaded at the process's end either.
    static auto& loaded = *new std::map<files::path, std::unique_ptr<host::Library>>;
    auto& library = loaded[path];
    if (!library)
        library = std::make_unique<host::Library>(path.string());
    return *library;
}

void checkEffect(const host::Plugin& plugin, const files::path& library) {
    const vst2::AEffect& effect = *plugin.effect();
    if (effect.flags & vst2::effFlagsIsSynth)
        throw ToolError(library.string() + " is an instrument; only effects can be played through");
    const auto isSuitable = [](std::int32_t channels) { return channels == 1 || channels == 2; };
    if (!isSuitable(effect.numInputs) || !isSuitable(effect.numOutputs))
        throw ToolError(library.string() + " has " + std::to_string(effect.numInputs) + " inputs and " +
                        std::to_string(effect.numOutputs) +
                        " outputs; only effects with one or two of each can be used");
    if (!(effect.flags & vst2::effFlagsCanReplacing))
        throw ToolError(library.string() + " can only add to what is there, as effects did long ago");
}

host::HostBehaviour hostBehaviour(double sampleRate, std::int32_t blockSize) {
    host::HostBehaviour behaviour;
    behaviour.sampleRate = static_cast<float>(sampleRate);
    behaviour.blockSize = blockSize;
    behaviour.product = "quillon-render";
    behaviour.record = false;
    return behaviour;
}

} // namespace render
