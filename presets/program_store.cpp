#include "presets/program_store.h"

#include "parameters/number_text.h"
#include "parameters/shared_field.h"
#include "platform/message_box.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

namespace presets {
namespace {

// Values may change on any thread while a host saves or loads: each is read and written as one relaxed
// atomic. Names belong to the host's own thread.

void copyProgram(DelayProgram& from, DelayProgram& to) {
    for (std::size_t id = 0; id < parameters::kNumParameters; ++id)
        std::atomic_ref<float>(to.values[id])
            .store(std::atomic_ref<float>(from.values[id]).load(std::memory_order_relaxed),
                   std::memory_order_relaxed);
    constexpr std::size_t behindValues = offsetof(DelayProgram, name);
    std::memcpy(reinterpret_cast<char*>(&to) + behindValues, reinterpret_cast<char*>(&from) + behindValues,
                sizeof(DelayProgram) - behindValues);
}

void copyPrograms(DelayProgram* from, DelayProgram* to) {
    for (std::int32_t i = 0; i < kNumPrograms; ++i)
        copyProgram(from[i], to[i]);
}

} // namespace

void ProgramStore::allocate() {
    programs.reset(new (std::nothrow) DelayProgram[kNumPrograms]);
}

float ProgramStore::value(std::int32_t program, std::int32_t id) const {
    return parameters::loadInOrder(programs[static_cast<std::size_t>(program)].values[id]);
}

void ProgramStore::setValue(std::int32_t program, std::int32_t id, float value) {
    parameters::storeInOrder(programs[static_cast<std::size_t>(program)].values[id], value);
}

void ProgramStore::setName(std::int32_t program, const char* name) {
    DelayProgram& target = programs[static_cast<std::size_t>(program)];
    char text[kProgramNameLength + 1];
    parameters::copyText(text, name, kProgramNameLength);
    std::copy_n(text, kProgramNameLength, target.name);
    target.terminator = '\0';
}

void ProgramStore::getName(std::int32_t program, char* text) const {
    parameters::copyText(text, programs[static_cast<std::size_t>(program)].name, kProgramNameLength);
}

void ProgramStore::clearStaging() {
    std::memset(static_cast<void*>(chunkPrograms), 0, sizeof chunkPrograms);
}

std::int32_t ProgramStore::getChunk(void** data, std::int32_t program, bool isPreset) {
    copyPrograms(programs.get(), chunkPrograms);
    *data = isPreset ? &chunkPrograms[program] : chunkPrograms;
    return isPreset ? kPresetChunkSize : kBankChunkSize;
}

void ProgramStore::setChunk(const void* data, std::int32_t byteSize, std::int32_t program, bool isPreset) {
    copyPrograms(programs.get(), chunkPrograms);
    // A negative size counts as huge.
    const auto size = static_cast<std::uint64_t>(std::int64_t{byteSize});
    const bool fits = isPreset ? size <= kPresetChunkSize : size == kBankChunkSize;
    if (!fits)
        platform::showMessage(
            isPreset ? "Can't load preset, wrong file size!" : "Can't load bank, wrong file size!", "Error!");
    else if (size > 0)
        std::memmove(static_cast<void*>(isPreset ? &chunkPrograms[program] : chunkPrograms), data, size);
    copyPrograms(chunkPrograms, programs.get());
}

} // namespace presets
