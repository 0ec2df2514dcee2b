// Loudness and peaks of a sound by EBU R 128, measured piece by piece.
#pragma once

#include <memory>
#include <optional>
#include <span>

namespace tools {

/// Levels are decibels; minus infinity is silence. One thread at a time may use a meter, several threads may
/// use one each.
class LoudnessMeter {
  public:
    /// What is measured; the true peak takes most of the time.
    enum class Extent { loudness, loudnessAndTruePeak };

    /// 1 or 2 channels. R 128 sums over channels: a sound in one channel is 3.01 LU quieter than in both.
    /// Below kLowestRate, in Hz, only the sample peak is measured.
    LoudnessMeter(int channels, int sampleRate, Extent extent = Extent::loudnessAndTruePeak);
    ~LoudnessMeter();
    LoudnessMeter(LoudnessMeter&&) noexcept;
    LoudnessMeter& operator=(LoudnessMeter&&) noexcept;

    /// The next samples, frames x channels, finite.
    void add(std::span<const float> samples);

    /// Integrated (gated) loudness in LUFS. None for less than kShortest, or where all is below -70 LUFS.
    std::optional<double> integrated() const;
    /// Loudness range in LU, by EBU Tech 3342. None for less than 3 s, or where all is below -70 LUFS.
    std::optional<double> range() const;
    /// Highest level between the samples of any channel, in dBTP; never below the sample peak. None if it is
    /// not measured.
    std::optional<double> truePeak() const;
    /// Highest sample of any channel, in dBFS.
    double samplePeak() const;

    /// In Hz. The weighting filter needs frequencies up to about 3 kHz.
    static constexpr int kLowestRate = 8000;
    /// Length of a gating block, in seconds; nothing shorter has a loudness.
    static constexpr double kShortest = 0.4;

  private:
    struct Measurement;
    std::unique_ptr<Measurement> measurement_;
};

} // namespace tools
