#include "support/program_bank.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <stdexcept>

namespace conversation {
namespace {

std::uint32_t wordInMemory(const Bytes& bytes, std::size_t offset) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word |= static_cast<std::uint32_t>(bytes.at(offset + i)) << (8 * i);
    return word;
}

std::string codeAt(const Bytes& bytes, std::size_t offset) {
    return {reinterpret_cast<const char*>(bytes.data()) + offset, 4};
}

} // namespace

std::string ProgramRecord::nameText() const {
    return {name.begin(), std::find(name.begin(), name.end(), '\0')};
}

void ProgramRecord::setName(std::string_view text) {
    name.fill(0);
    std::copy_n(text.begin(), std::min(text.size(), name.size()), name.begin());
}

bool ProgramRecord::operator==(const ProgramRecord& other) const {
    return std::memcmp(this, &other, sizeof *this) == 0;
}

ProgramRecord defaultProgram() {
    constexpr std::uint32_t bits[kParameters] = {
        0x3ECCCCCD, // base length 0.4
        0x3E99999A, // taps 0.3
        0x3F000000, // sweep rate 0.5
        0x3DCCCCCD, // stretch 0.1
        0x00000000, // amplitude ramp 0
        0x3F000000, // curve 0.5
        0x3F000000, // feedback 0.5
        0x3DCCCCCD, // sweep depth 0.1
        0x3F000000, // set 0.5
        0x3F666666, // low-pass 0.9
        0x3E99999A, // high-pass 0.3
        0x3F000000, // input balance 0.5
        0x3F000000, // input gain 0.5
        0x3F800000, // stereo 1
        0x3F000000, // mix 0.5
        0x3F000000, // pan 0.5
        0x3F000000, // output gain 0.5
    };
    ProgramRecord program;
    for (std::size_t id = 0; id < kParameters; ++id)
        program.values[id] = std::bit_cast<float>(bits[id]);
    program.setName("Fiber Cascade");
    return program;
}

Programs defaultPrograms() {
    Programs programs;
    programs.fill(defaultProgram());
    return programs;
}

Programs distinctPrograms() {
    Programs programs;
    for (std::size_t number = 0; number < programs.size(); ++number) {
        for (std::size_t id = 0; id < kParameters; ++id)
            programs[number].values[id] = static_cast<float>((number * 37 + id * 11) % 128) / 128.0f;
        programs[number].setName("Program " + std::to_string(number));
    }
    return programs;
}

Bytes bytesOf(const ProgramRecord& program) {
    const auto raw = std::bit_cast<std::array<std::uint8_t, kProgramSize>>(program);
    return {raw.begin(), raw.end()};
}

Bytes bytesOf(const Programs& programs) {
    Bytes bytes;
    for (const ProgramRecord& program : programs) {
        const Bytes one = bytesOf(program);
        bytes.insert(bytes.end(), one.begin(), one.end());
    }
    return bytes;
}

ProgramRecord programOf(const Bytes& bytes) {
    if (bytes.size() != kProgramSize)
        throw std::runtime_error("a program of " + std::to_string(bytes.size()) + " bytes");
    ProgramRecord program;
    std::memcpy(&program, bytes.data(), sizeof program);
    return program;
}

Programs programsOf(const Bytes& bytes) {
    if (bytes.size() != kBankSize)
        throw std::runtime_error("a bank of " + std::to_string(bytes.size()) + " bytes");
    Programs programs;
    std::memcpy(programs.data(), bytes.data(), kBankSize);
    return programs;
}

BankImage& BankImage::bigEndian(std::size_t offset, std::uint32_t word) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes_.at(offset + i) = static_cast<std::uint8_t>(word >> (24 - 8 * i));
    return *this;
}

BankImage& BankImage::littleEndian(std::size_t offset, std::uint32_t word) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes_.at(offset + i) = static_cast<std::uint8_t>(word >> (8 * i));
    return *this;
}

BankImage& BankImage::bigEndian(std::size_t offset, float value) {
    return bigEndian(offset, std::bit_cast<std::uint32_t>(value));
}

BankImage& BankImage::code(std::size_t offset, std::string_view fourCharacters) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes_.at(offset + i) = static_cast<std::uint8_t>(fourCharacters.at(i));
    return *this;
}

BankImage& BankImage::append(const Bytes& more) {
    bytes_.insert(bytes_.end(), more.begin(), more.end());
    return *this;
}

BankImage bankHeader(std::string_view kind, std::uint32_t numPrograms) {
    BankImage image(kBankHeaderSize);
    image.code(0, "CcnK").code(8, kind).code(16, "qlvd");
    image.bigEndian(12, std::uint32_t{1}).bigEndian(20, std::uint32_t{1}).bigEndian(24, numPrograms);
    return image;
}

Bytes chunkBank(const Bytes& chunk) {
    BankImage image = bankHeader("FBCh", 128);
    image.append(Bytes(4)).bigEndian(kBankHeaderSize, static_cast<std::uint32_t>(chunk.size()));
    image.bigEndian(4, static_cast<std::uint32_t>(image.bytes().size() + chunk.size() - 8));
    return image.append(chunk).bytes();
}

Bytes chunkBank(const Programs& programs) {
    return chunkBank(bytesOf(programs));
}

std::uint32_t turnedAround(std::uint32_t word) {
    // An arithmetic shift fills up with ones when the word's top bit, the last byte's in the file, is set.
    const bool negative = (word & 0x80000000u) != 0;
    const std::uint32_t lowByte = word >> 24;
    if (negative)
        return 0xFFFFFF00u | lowByte;
    return lowByte | ((word >> 8) & 0x0000FF00u) | ((word << 8) & 0x00FF0000u) | (word << 24);
}

namespace {

/// Values record by record, each record as long as its own count says in memory order.
void applyPlainRecords(const Bytes& image, std::int32_t numPrograms, BankOutcome& outcome) {
    const auto size = static_cast<std::int64_t>(image.size());
    auto record = static_cast<std::int64_t>(kBankHeaderSize);
    std::size_t selected = 0;
    for (std::int32_t i = 0; i < numPrograms && record + 28 <= size; ++i) {
        if (i < kPrograms)
            selected = static_cast<std::size_t>(i);
        const auto count =
            static_cast<std::int32_t>(wordInMemory(image, static_cast<std::size_t>(record + 24)));
        for (std::int32_t id = 0; id < std::min(count, kLiveParameters); ++id) {
            const std::int64_t offset = record + 56 + 4 * id;
            if (offset + 4 <= size)
                outcome.programs[selected].values[static_cast<std::size_t>(id)] =
                    std::bit_cast<float>(turnedAround(wordInMemory(image, static_cast<std::size_t>(offset))));
        }
        const std::int64_t stride = 60 + 4 * std::int64_t{count};
        if (stride <= 0) // a record that leads nowhere, or back, is the last
            break;
        record += stride;
    }
}

} // namespace

BankOutcome outcomeOf(const Bytes& image) {
    BankOutcome outcome{"", defaultPrograms()};
    const auto refused = [&outcome](const char* message) {
        outcome.message = message;
        return outcome;
    };
    constexpr char noBank[] = "Preset loader: Default bank error: not an fxb file\n";
    if (image.size() < kBankHeaderSize || codeAt(image, 0) != "CcnK")
        return refused(noBank);
    const std::string kind = codeAt(image, 8);
    if (kind != "FxBk" && kind != "FBCh")
        return refused(noBank);
    if (codeAt(image, 16) != "qlvd" && codeAt(image, 16) != "vmdl")
        return refused("Preset loader: Default bank error: wrong unique ID\n");
    if (kind == "FxBk") {
        applyPlainRecords(image, static_cast<std::int32_t>(turnedAround(wordInMemory(image, 24))), outcome);
        return outcome;
    }
    if (image.size() < kBankHeaderSize + 4)
        return refused(noBank);
    const auto chunkSize = static_cast<std::int32_t>(turnedAround(wordInMemory(image, kBankHeaderSize)));
    if (chunkSize > static_cast<std::int64_t>(image.size()) - 160)
        return refused(noBank);
    if (chunkSize != static_cast<std::int32_t>(kBankSize))
        return refused("Error!: Can't load bank, wrong file size!\n");
    outcome.programs = programsOf({image.begin() + 160, image.begin() + 160 + chunkSize});
    return outcome;
}

} // namespace conversation
