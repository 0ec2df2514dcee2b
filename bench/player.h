// Prepares an effect for a case of the timing and plays it. The built library and the literal reference are
// driven by the same few calls, so that both do the same work on the same signal.
#pragma once

#include "bench/contest.h"
#include "bench/preparation.h"
#include "bench/sound_case.h"
#include "bench/subject.h"
#include "host/plugin.h"

#include <cstdint>
#include <memory>
#include <string>

namespace bench {

/// An instance of the effect from the library of this path, which stays loaded.
std::unique_ptr<ClearableSubject> builtEffect(const std::string& library);
/// The literal loop of the tests, compiled with the same options.
std::unique_ptr<ClearableSubject> literalReference();

/// The library of this path, loaded once. Throws host::HostError if it is none.
const host::Library& loadedLibrary(const std::string& path);
/// A host that keeps no record of what it is told.
host::HostBehaviour quietHost();

class Player {
  public:
    /// Fills the subject's whole memory with noise, then sets the pattern and waits until it rests.
    Player(std::unique_ptr<Subject> subject, const SoundCase& situation);
    /// Plays a batch of blocks and gives the seconds that they took. What a gliding pattern needs is done
    /// before the clock starts.
    double playBatch();
    /// This player in a contest, a sample being the unit. Stays in use.
    Contestant contestant();

  private:
    std::unique_ptr<Subject> subject_;
    SoundCase situation_;
    std::int32_t batchBlocks_;
    bool moved_ = false;
    Buffers buffers_;
};

} // namespace bench
