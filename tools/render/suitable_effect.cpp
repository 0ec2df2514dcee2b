#include "tools/render/suitable_effect.h"

#include "tools/common/tool_error.h"

namespace tools::render {

void checkEffect(const host::Plugin& plugin, const std::filesystem::path& library) {
    const vst2::AEffect& effect = *plugin.effect();
    if (effect.flags & vst2::effFlagsIsSynth)
        throw ToolError(library.string() + " is an instrument; only effects can be played through");
    const auto isSuitable = [](std::int32_t channels) { return channels == 1 || channels == 2; };
    if (!isSuitable(effect.numInputs) || !isSuitable(effect.numOutputs))
        throw ToolError(library.string() + " has " + std::to_string(effect.numInputs) + " inputs and " +
                        std::to_string(effect.numOutputs) +
                        " outputs; only effects with one or two of each can be used");
    if (!(effect.flags & vst2::effFlagsCanReplacing))
        throw ToolError(library.string() + " supports only the old accumulating mode");
}

host::HostBehaviour hostBehaviour(double sampleRate, std::int32_t blockSize) {
    host::HostBehaviour behaviour;
    behaviour.sampleRate = static_cast<float>(sampleRate);
    behaviour.blockSize = blockSize;
    behaviour.product = "quillon-render";
    behaviour.record = false;
    return behaviour;
}

} // namespace tools::render
