// The 128 programs, and the chunks by which a host saves and restores them.
//
// There is no edit buffer: a change of a parameter changes the stored program at once. The host sees the
// store as one opaque chunk, which is the store's own memory; a staging copy stands between the two, so that
// what a host was handed stays as it was while the programs go on changing.
#pragma once

#include "base/shared.h"
#include "presets/delay_program.h"
#include "presets/problem_receiver.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace presets {

constexpr std::int32_t kNumPrograms = 128;
constexpr std::int32_t kPresetChunkSize = sizeof(DelayProgram);
constexpr std::int32_t kBankChunkSize = kNumPrograms * kPresetChunkSize;

/// A program of the store. Its values may change on any thread while a host saves or loads; the rest belongs
/// to the host's own thread.
struct StoredProgram {
    /// The default program.
    StoredProgram() { store({}); }

    DelayProgram load() const;
    void store(const DelayProgram& program);

    std::array<base::Shared<float>, parameters::kNumParameters> values; ///< normalised, by id
    char name[kProgramNameLength];
    char terminator;
    char reserved[3];
};

class ProgramStore {
  public:
    /// Makes 128 default programs. If memory is short the store stays empty: size() is 0 then.
    void allocate();
    /// 128, or 0 before allocate().
    std::int32_t size() const { return programs ? kNumPrograms : 0; }

    /// A stored value, normalised. Any thread.
    float value(std::int32_t program, std::int32_t id) const;
    /// Any thread.
    void setValue(std::int32_t program, std::int32_t id, float value);

    /// Keeps the first 24 bytes.
    void setName(std::int32_t program, const char* name);
    /// Writes 25 bytes: the name, padded with NULs.
    void getName(std::int32_t program, char* text) const;

    /// Wipes the staging copy.
    void clearStaging();

    /// Points `data` at a copy of one program, or of all; gives its size in bytes. The bytes stay valid and
    /// unchanged until the next getChunk or setChunk.
    std::int32_t getChunk(void** data, std::int32_t program, bool isPreset);

    /// Takes over a chunk. A preset may be short, then it overwrites the front of `program`; a bank must fit
    /// exactly. A chunk of a wrong size changes nothing and is reported to `receiver`. The content is taken
    /// as it stands.
    void setChunk(const void* data, std::int32_t byteSize, std::int32_t program, bool isPreset,
                  ProblemReceiver& receiver);

  private:
    void stagePrograms();

    std::unique_ptr<StoredProgram[]> programs;
    DelayProgram chunkPrograms[kNumPrograms];
};

} // namespace presets
