// Who is told of a bank or a chunk that cannot be used.
#pragma once

namespace presets {

class ProblemReceiver {
  public:
    /// `caption` names the subject. Called at the moment that the problem is met; what was going on waits.
    virtual void reportProblem(const char* text, const char* caption) = 0;

  protected:
    ~ProblemReceiver() = default;
};

} // namespace presets
