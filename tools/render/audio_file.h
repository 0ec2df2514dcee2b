// Audio files of every kind that libsndfile knows, read and written piece by piece as interleaved floats.
#pragma once

#include "tools/render/options.h"

#include <cstdint>
#include <filesystem>
#include <sndfile.hh>
#include <span>
#include <string>

namespace tools::render {

/// A mono or stereo file to be played.
class AudioReader {
  public:
    /// Throws ToolError if the file cannot be played. Errors name it `shown`, if that is not empty.
    explicit AudioReader(const std::filesystem::path& path, const std::filesystem::path& shown = {});

    int channels() const { return channels_; }
    int sampleRate() const { return file_.samplerate(); }
    /// Length as the file's header has it.
    std::int64_t frames() const { return file_.frames(); }
    /// Fills `samples` (frames x channels) as far as the file goes and gives the number of frames. Throws
    /// ToolError if the file is damaged or holds something that is not a number.
    std::int64_t read(std::span<float> samples);

  private:
    std::filesystem::path shown_;
    mutable SndfileHandle file_;
    int channels_; ///< 1 or 2
    std::int64_t position_ = 0;
};

/// Kind and sample format of a file to be written.
struct OutputKind {
    int format = 0;              ///< as libsndfile has it
    bool keepsOverloads = false; ///< whether samples beyond full scale survive
    std::string name;            ///< for people, "WAV, 24 bit"
};

/// What the ending of `path` and the wish for a sample format come to. `longest` is the most frames that may
/// be written. Throws ToolError if there is no such kind of file.
OutputKind outputKind(const std::filesystem::path& path, SampleFormat format, int sampleRate, int channels,
                      std::int64_t longest);

/// A file being written.
class AudioWriter {
  public:
    /// Writes to `path`; errors name `target`, the place it will have in the end. Throws ToolError.
    AudioWriter(const std::filesystem::path& path, const std::filesystem::path& target,
                const OutputKind& kind, int sampleRate, int channels);

    /// Appends `samples`, frames x channels. Throws ToolError.
    void write(std::span<const float> samples);
    /// Completes the file. Throws ToolError.
    void finish();

  private:
    [[noreturn]] void fail();

    std::filesystem::path target_;
    SndfileHandle file_;
};

} // namespace tools::render
