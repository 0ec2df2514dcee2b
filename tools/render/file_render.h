// Plays one file through one instance, from the first sample of the input to the last of the tail, and writes
// what comes out.
#pragma once

#include "host/plugin.h"
#include "tools/common/loudness_meter.h"
#include "tools/render/audio_file.h"
#include "tools/render/block_player.h"
#include "tools/render/level_meter.h"
#include "tools/render/progress.h"
#include "tools/render/tail_watch.h"
#include "tools/render/waveform.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tools::render {

/// As LoudnessMeter has it.
struct Loudness {
    std::optional<double> integrated; ///< LUFS
    std::optional<double> range;      ///< LU
    std::optional<double> truePeak;   ///< dBTP; of the output only
};

/// What there is to know about a finished rendering.
struct RenderResult {
    std::int64_t inputFrames = 0;
    std::int64_t frames = 0; ///< of the output, the tail included
    float peak = 0.0f;       ///< of the output, 1.0 being full scale
    std::int64_t samplesOver = 0;
    Loudness inputLoudness;
    Loudness loudness; ///< of the output
    bool tailCutShort = false;
    std::size_t eventsMissed = 0; ///< they lie behind the output's end
};

/// Outlines of what went in and what came out, for the picture.
struct Outlines {
    Waveform dry;
    Waveform wet;
};

class FileRender {
  public:
    /// All must outlive the object; the instance runs at the file's rate, and everything is ready to play.
    /// `outlines` may be null.
    FileRender(host::Plugin& plugin, AudioReader& reader, AudioWriter& writer, BlockPlayer& player,
               const TailRule& tail, std::int32_t blockSize, Outlines* outlines);

    /// Renders the whole file. Throws ToolError or Interrupted.
    RenderResult run(Progress& progress);

  private:
    void readInput();
    void playBlock();
    void checkOutput() const;
    void writeCertain();

    AudioReader& reader_;
    AudioWriter& writer_;
    BlockPlayer& player_;
    TailWatch watch_;
    std::int32_t blockSize_;
    Outlines* outlines_;
    LevelMeter meter_;
    LoudnessMeter inputLoudness_;
    LoudnessMeter loudness_;
    std::int64_t inputFrames_ = 0;
    bool inputHasEnded_ = false;

    std::vector<float> fileBlock_;        ///< frames x channels of the file
    std::vector<std::vector<float>> in_;  ///< inputs of the effect x frames
    std::vector<std::vector<float>> out_; ///< outputs of the effect x frames
    std::vector<float> outBlock_;         ///< frames x outputs
    std::vector<float> waiting_; ///< frames x outputs, quiet so far: part of the output only if more comes
    std::int64_t written_ = 0;
};

} // namespace tools::render
