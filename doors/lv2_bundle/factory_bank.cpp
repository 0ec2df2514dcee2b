#include "doors/lv2_bundle/factory_bank.h"

#include "base/four_character_code.h"
#include "presets/default_bank.h"

#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace lv2_bundle {

namespace {

/// Takes a bank of one chunk, the form that is delivered, and nothing else.
class Receiver final : public presets::BankReceiver {
  public:
    std::vector<presets::DelayProgram> programs;

  private:
    std::int32_t uniqueID() override { return base::fourCharacterCode("qlvd"); }
    std::int32_t getProgram() override { return 0; }
    void setProgram(std::int32_t) override {}
    void setParameter(std::int32_t, float) override {}
    std::int32_t setChunk(void* data, std::int32_t byteSize, bool) override {
        if (byteSize % static_cast<std::int32_t>(sizeof(presets::DelayProgram)) != 0)
            throw std::runtime_error("a chunk that ends within a program");
        programs.resize(static_cast<std::size_t>(byteSize) / sizeof(presets::DelayProgram));
        std::memcpy(static_cast<void*>(programs.data()), data, static_cast<std::size_t>(byteSize));
        return 1;
    }
    void reportProblem(const char* text, const char*) override { throw std::runtime_error(text); }
};

} // namespace

std::vector<presets::DelayProgram> readFactoryBank(const std::string& path) {
    Receiver receiver;
    presets::loadDefaultBank(path, receiver);
    if (receiver.programs.empty())
        throw std::runtime_error("a bank without programs");
    return receiver.programs;
}

} // namespace lv2_bundle
