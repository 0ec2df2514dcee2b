// Programs and banks as bytes, built by hand: what a project file or a `default.fxb` holds. Nothing here
// comes from the library, so that a change of its formats cannot pass unnoticed.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace conversation {

using Bytes = std::vector<std::uint8_t>;

constexpr int kPrograms = 128;
constexpr int kParameters = 21;
constexpr int kLiveParameters = 17;
constexpr std::size_t kProgramSize = 112;
constexpr std::size_t kBankSize = 14336;

/// The ids of the parameters, in the words of the table that the host sees.
enum Parameter : std::int32_t {
    kBaseLength = 0,
    kTaps = 1,
    kLfoRate = 2,
    kStretch = 3,
    kAmpDecay = 4,
    kCurve = 5,
    kFeedback = 6,
    kLfoDepth = 7,
    kSet = 8,
    kPreLowPass = 9,
    kPreHighPass = 10,
    kPrePan = 11,
    kPreGain = 12,
    kStereo = 13,
    kDryWet = 14,
    kOutPan = 15,
    kOutGain = 16,
};

/// One program as it lies in a chunk.
struct ProgramRecord {
    std::array<float, kParameters> values = {};
    std::array<char, 24> name = {};
    char terminator = 0;
    std::array<char, 3> reserved = {};

    std::string nameText() const;
    void setName(std::string_view text);
    bool operator==(const ProgramRecord& other) const; ///< bit for bit
};
static_assert(sizeof(ProgramRecord) == kProgramSize);

using Programs = std::array<ProgramRecord, kPrograms>;

/// The program that every one of the 128 is where no bank was found.
ProgramRecord defaultProgram();
Programs defaultPrograms();
/// 128 programs of which no two agree in any live value, with names "Program 0" to "Program 127". All values
/// lie in 0..1, and no two neighbouring programs sound alike.
Programs distinctPrograms();

Bytes bytesOf(const ProgramRecord& program);
Bytes bytesOf(const Programs& programs);
/// The other way; the size must be right.
ProgramRecord programOf(const Bytes& bytes);
Programs programsOf(const Bytes& bytes);

/// A file in the making, word by word.
class BankImage {
  public:
    /// `size` bytes of zero.
    explicit BankImage(std::size_t size) : bytes_(size) {}
    explicit BankImage(Bytes bytes) : bytes_(std::move(bytes)) {}
    /// Writes four bytes, most significant first.
    BankImage& bigEndian(std::size_t offset, std::uint32_t word);
    /// Writes four bytes, least significant first.
    BankImage& littleEndian(std::size_t offset, std::uint32_t word);
    BankImage& bigEndian(std::size_t offset, float value);
    BankImage& code(std::size_t offset, std::string_view fourCharacters);
    BankImage& append(const Bytes& more);
    const Bytes& bytes() const { return bytes_; }

  private:
    Bytes bytes_;
};

constexpr std::size_t kBankHeaderSize = 156;

/// The 156 bytes that open a bank file of either kind: `kind` is "FBCh" or "FxBk".
BankImage bankHeader(std::string_view kind, std::uint32_t numPrograms);
/// A bank of one chunk of any size, behind a right header and the chunk's size.
Bytes chunkBank(const Bytes& chunk);
Bytes chunkBank(const Programs& programs);

/// What a new instance makes of a bank file.
struct BankOutcome {
    std::string message; ///< the line on standard error, or empty
    Programs programs;   ///< what the instance then holds
};

/// The same worked out by a plain retelling of the loader's rules.
BankOutcome outcomeOf(const Bytes& image);

/// How the loader turns a word of the file around: right only while the file word's last byte is below 0x80.
std::uint32_t turnedAround(std::uint32_t wordInMemory);

} // namespace conversation
