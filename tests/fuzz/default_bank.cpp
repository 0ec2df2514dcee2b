// Any bytes as the factory bank: the reader either refuses them with one message or gives the programs that
// its rules say, and asks nothing of the effect that an effect could not do.
#include "presets/default_bank.h"

#include "base/four_character_code.h"
#include "parameters/parameter_table.h"
#include "platform/files.h"
#include "presets/program_store.h"
#include "promise.h"
#include "support/program_bank.h"
#include "unattended.h"

#include <cstring>

namespace {

/// An effect's programs, which watches what is asked of them.
class Receiver final : public presets::BankReceiver {
  public:
    Receiver() { programs_.allocate(); }

    std::int32_t uniqueID() override { return base::fourCharacterCode("qlvd"); }
    std::int32_t getProgram() override { return selected_; }
    void setProgram(std::int32_t program) override {
        promise(program >= 0, "no negative program is selected");
        if (program < presets::kNumPrograms)
            selected_ = program;
    }
    void setParameter(std::int32_t id, float value) override {
        promise(id >= 0 && id < parameters::kNumParameters, "only parameters are set");
        if (parameters::isLive(id))
            programs_.setValue(selected_, id, value);
    }
    std::int32_t setChunk(void* data, std::int32_t byteSize, bool isPreset) override {
        promise(!isPreset, "a bank is no preset");
        // Reads every byte that is announced, so that one outside of the image is noticed.
        for (std::int32_t i = 0; i < byteSize; ++i)
            sum_ = sum_ + static_cast<const std::uint8_t*>(data)[i];
        programs_.setChunk(data, byteSize, selected_, isPreset, *this);
        return 1;
    }
    void reportProblem(const char* text, const char* caption) override {
        problems_ += std::string(caption) + ": " + text + "\n";
    }

    /// A line for each.
    const std::string& problems() const { return problems_; }

    conversation::Bytes allPrograms() {
        void* data = nullptr;
        const std::int32_t size = programs_.getChunk(&data, selected_, false);
        promise(size == presets::kBankChunkSize, "a bank's size");
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        return {bytes, bytes + size};
    }

  private:
    presets::ProgramStore programs_;
    std::string problems_;
    std::int32_t selected_ = 0;
    volatile unsigned sum_ = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = Unattended::instance().folder() + "default.fxb";
    promise(platform::writeWholeFile(path, data, size), "a place for the bank");

    Receiver receiver;
    presets::loadDefaultBank(path, receiver);

    const conversation::BankOutcome expected = conversation::outcomeOf({data, data + size});
    promise(receiver.problems() == expected.message, "the message that belongs to the file");
    promise(receiver.getProgram() == 0, "the selection is where it was");
    promise(receiver.allPrograms() == conversation::bytesOf(expected.programs), "the programs of the file");
    return 0;
}
