#include "presets/program_store.h"

#include "base/number_text.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>

namespace presets {

DelayProgram StoredProgram::load() const {
    DelayProgram program;
    for (std::size_t id = 0; id < values.size(); ++id)
        program.values[id] = values[id].load();
    std::copy(std::begin(name), std::end(name), program.name);
    program.terminator = terminator;
    std::copy(std::begin(reserved), std::end(reserved), program.reserved);
    return program;
}

void StoredProgram::store(const DelayProgram& program) {
    for (std::size_t id = 0; id < values.size(); ++id)
        values[id].store(program.values[id]);
    std::copy(std::begin(program.name), std::end(program.name), name);
    terminator = program.terminator;
    std::copy(std::begin(program.reserved), std::end(program.reserved), reserved);
}

void ProgramStore::allocate() {
    programs.reset(new (std::nothrow) StoredProgram[kNumPrograms]);
}

float ProgramStore::value(std::int32_t program, std::int32_t id) const {
    return programs[static_cast<std::size_t>(program)].values[static_cast<std::size_t>(id)].loadInOrder();
}

void ProgramStore::setValue(std::int32_t program, std::int32_t id, float value) {
    programs[static_cast<std::size_t>(program)].values[static_cast<std::size_t>(id)].storeInOrder(value);
}

void ProgramStore::setName(std::int32_t program, const char* name) {
    StoredProgram& target = programs[static_cast<std::size_t>(program)];
    char text[kProgramNameLength + 1];
    base::copyText(text, name, kProgramNameLength);
    std::copy_n(text, kProgramNameLength, target.name);
    target.terminator = '\0';
}

void ProgramStore::getName(std::int32_t program, char* text) const {
    base::copyText(text, programs[static_cast<std::size_t>(program)].name, kProgramNameLength);
}

void ProgramStore::clearStaging() {
    std::memset(static_cast<void*>(chunkPrograms), 0, sizeof chunkPrograms);
}

void ProgramStore::stagePrograms() {
    for (std::size_t i = 0; i < kNumPrograms; ++i)
        chunkPrograms[i] = programs[i].load();
}

std::int32_t ProgramStore::getChunk(void** data, std::int32_t program, bool isPreset) {
    stagePrograms();
    *data = isPreset ? &chunkPrograms[program] : chunkPrograms;
    return isPreset ? kPresetChunkSize : kBankChunkSize;
}

void ProgramStore::setChunk(const void* data, std::int32_t byteSize, std::int32_t program, bool isPreset,
                            ProblemReceiver& receiver) {
    stagePrograms();
    // A negative size counts as huge.
    const auto size = static_cast<std::uint64_t>(std::int64_t{byteSize});
    const bool fits = isPreset ? size <= kPresetChunkSize : size == kBankChunkSize;
    if (!fits)
        receiver.reportProblem(
            isPreset ? "Can't load preset, wrong file size!" : "Can't load bank, wrong file size!", "Error!");
    else if (size > 0)
        std::memmove(static_cast<void*>(isPreset ? &chunkPrograms[program] : chunkPrograms), data, size);
    for (std::size_t i = 0; i < kNumPrograms; ++i)
        programs[i].store(chunkPrograms[i]);
}

} // namespace presets
