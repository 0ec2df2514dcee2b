#include "tools/render/audio_file.h"

#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>
#include <cmath>

namespace tools::render {

namespace {

struct Ending {
    const char* ending;
    const char* name;
    int major;
    bool hasFloat;
    bool isLossy;
};

constexpr Ending kEndings[] = {
    {".wav", "WAV", SF_FORMAT_WAV, true, false},        {".flac", "FLAC", SF_FORMAT_FLAC, false, false},
    {".aiff", "AIFF", SF_FORMAT_AIFF, true, false},     {".aif", "AIFF", SF_FORMAT_AIFF, true, false},
    {".ogg", "Ogg Vorbis", SF_FORMAT_OGG, false, true}, {".w64", "Wave64", SF_FORMAT_W64, true, false},
    {".caf", "CAF", SF_FORMAT_CAF, true, false},
};

const Ending& endingOf(const std::filesystem::path& path) {
    const std::string wanted = lowered(path.extension().string());
    for (const Ending& ending : kEndings)
        if (wanted == ending.ending)
            return ending;
    throw ToolError(path.string() +
                    ": what kind of file? The name should end in .wav, .flac, .aiff, .ogg, .caf or .w64");
}

/// The most that a plain WAV or AIFF file can hold, with some room for its header.
constexpr std::int64_t kLongestPlainFile = (std::int64_t{1} << 32) - 65536;

/// Below the one, in Hz, not even a voice on a telephone is left; beyond the other no converter goes. A
/// header with another rate is damaged.
constexpr int kLowestRate = 1000;
constexpr int kHighestRate = 768000;

/// Opens a file for reading. Throws ToolError for a folder; other errors are in the handle.
SndfileHandle openForReading(const std::filesystem::path& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw ToolError(path.string() + " is a folder, not a file");
    if (!std::filesystem::exists(path, error) && !error)
        throw ToolError(path.string() + " cannot be read: there is no such file");
    return SndfileHandle(path.c_str());
}

} // namespace

AudioReader::AudioReader(const std::filesystem::path& path, const std::filesystem::path& shown)
    : shown_(shown.empty() ? path : shown), file_(openForReading(path)), channels_(file_.channels()) {
    if (!file_ || file_.error() != SF_ERR_NO_ERROR)
        throw ToolError(shown_.string() + " cannot be read: " + printable(trimmed(file_.strError())));
    if (channels_ < 1 || channels_ > 2)
        throw ToolError(shown_.string() + " has " + std::to_string(channels_) +
                        " channels; only mono and stereo files can be played");
    if (file_.samplerate() < kLowestRate || file_.samplerate() > kHighestRate)
        throw ToolError(shown_.string() + " has a sample rate of " + std::to_string(file_.samplerate()) +
                        " Hz; only " + std::to_string(kLowestRate) + " to " + std::to_string(kHighestRate) +
                        " Hz can be played");
    if (file_.frames() < 1)
        throw ToolError(shown_.string() + " holds no sound");
}

std::int64_t AudioReader::read(std::span<float> samples) {
    const auto wanted = static_cast<sf_count_t>(samples.size()) / channels_;
    const sf_count_t frames = file_.readf(samples.data(), wanted);
    if (frames < wanted && file_.error() != SF_ERR_NO_ERROR)
        throw ToolError(shown_.string() +
                        " cannot be read completely: " + printable(trimmed(file_.strError())));
    const auto last = samples.begin() + frames * channels_;
    const auto bad =
        std::find_if_not(samples.begin(), last, [](float sample) { return std::isfinite(sample); });
    if (bad != last) {
        const std::int64_t frame = position_ + (bad - samples.begin()) / channels_;
        throw ToolError(shown_.string() + " holds a sample that is not a number, at " +
                        fixedText(static_cast<double>(frame) / sampleRate(), 3) + " s");
    }
    position_ += frames;
    return frames;
}

OutputKind outputKind(const std::filesystem::path& path, SampleFormat format, int sampleRate, int channels,
                      std::int64_t longest) {
    const Ending& ending = endingOf(path);
    OutputKind kind;
    kind.name = ending.name;
    kind.format = ending.major;
    if (ending.isLossy) {
        if (format != SampleFormat::automatic)
            throw ToolError(path.string() + ": an Ogg file has no sample format; leave out --format");
        kind.format |= SF_FORMAT_VORBIS;
    } else if (format == SampleFormat::float32) {
        if (!ending.hasFloat)
            throw ToolError(path.string() + ": a " + ending.name +
                            " file cannot hold floating point; use .wav");
        kind.format |= SF_FORMAT_FLOAT;
        kind.keepsOverloads = true;
        kind.name += ", 32-bit float";
    } else {
        kind.format |= SF_FORMAT_PCM_24;
        kind.name += ", 24 bit";
    }
    const std::int64_t bytes = longest * channels * (format == SampleFormat::float32 ? 4 : 3);
    if (ending.major == SF_FORMAT_WAV && bytes > kLongestPlainFile)
        kind.format = SF_FORMAT_RF64 | (kind.format & SF_FORMAT_SUBMASK);
    else if (ending.major == SF_FORMAT_AIFF && bytes > kLongestPlainFile)
        throw ToolError(path.string() + " could become too long for an AIFF file; use .wav");
    if (!SndfileHandle::formatCheck(kind.format, channels, sampleRate))
        throw ToolError(path.string() + ": a " + ending.name + " file cannot have " +
                        std::to_string(channels) + " channels at " + std::to_string(sampleRate) + " Hz");
    return kind;
}

AudioWriter::AudioWriter(const std::filesystem::path& path, const std::filesystem::path& target,
                         const OutputKind& kind, int sampleRate, int channels)
    : target_(target), file_(path.c_str(), SFM_WRITE, kind.format, channels, sampleRate) {
    if (!file_ || file_.error() != SF_ERR_NO_ERROR)
        fail();
    // Without this, a sample beyond full scale comes out at the other end of the scale.
    file_.command(SFC_SET_CLIPPING, nullptr, SF_TRUE);
    // The peak chunk holds the time of day; the same sound should give the same bytes.
    file_.command(SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
}

void AudioWriter::write(std::span<const float> samples) {
    // Some encoders take their work space from the stack, in proportion to the piece.
    constexpr std::size_t piece = 8192;
    while (!samples.empty()) {
        const auto part = samples.first(std::min(piece, samples.size()));
        if (file_.write(part.data(), static_cast<sf_count_t>(part.size())) !=
            static_cast<sf_count_t>(part.size()))
            fail();
        samples = samples.subspan(part.size());
    }
}

void AudioWriter::finish() {
    file_.writeSync();
    if (file_.error() != SF_ERR_NO_ERROR)
        fail();
    file_ = SndfileHandle();
}

void AudioWriter::fail() {
    throw ToolError(target_.string() + " cannot be written: " + printable(trimmed(file_.strError())));
}

} // namespace tools::render
