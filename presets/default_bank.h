// The factory bank: a file in the published bank format that lies beside the library and is read by each new
// instance. The format is public; which words are read, and how, is this reader's own.
#pragma once

#include "presets/problem_receiver.h"

#include <cstdint>
#include <string>

namespace presets {

/// The plug-in, as far as a bank can change it.
class BankReceiver : public ProblemReceiver {
  public:
    virtual std::int32_t uniqueID() = 0;
    virtual std::int32_t getProgram() = 0;
    virtual void setProgram(std::int32_t program) = 0;
    virtual void setParameter(std::int32_t id, float value) = 0;
    virtual std::int32_t setChunk(void* data, std::int32_t byteSize, bool isPreset) = 0;

  protected:
    ~BankReceiver() = default;
};

/// A big-endian word of a bank file as this reader byte-swaps it. Correct if the file word's last byte is
/// below 0x80; else only that byte survives and the bits above it are all ones.
std::int32_t swappedWord(std::int32_t word);

/// Reads the bank file into `receiver`. A file that cannot be used changes nothing and is reported to it.
/// Runs where the plug-in is constructed, never on the audio thread.
void loadDefaultBank(const std::string& path, BankReceiver& receiver);

} // namespace presets
