// What can be played and timed: the effect, the reference it is held to, or something made for the same job.
#pragma once

#include <cstdint>

namespace bench {

/// Two channels in, two channels out. Times include nothing but process().
class Subject {
  public:
    virtual ~Subject() = default;
    virtual void setSampleRate(float rate) = 0; ///< Hz; ends in a resume
    virtual void setParameter(std::int32_t id, float value) = 0;
    virtual void process(float** inputs, float** outputs, std::int32_t frames) = 0;
    /// Whether its cost could depend on how much of the memory has been written.
    virtual bool wantsFullMemory() const { return true; }
};

/// A subject with the calls that clear its memory.
class ClearableSubject : public Subject {
  public:
    virtual void setProgram(std::int32_t program) = 0;
    virtual void resume() = 0;
};

} // namespace bench
