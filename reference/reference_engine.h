// The whole effect, as plainly as it can be said: one sample after the other, one tap after the other, plain
// loops over plain arrays. It is slow, it knows no shortcut, and it is what the engine that ships is measured
// against, bit for bit. Whoever wants to know what the effect does reads this file; whoever wants to know how
// it does it fast reads dsp/.
//
// The reference shares no line with the product, so that a slip in one is not repeated in the other.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace reference {

/// The parameters by id. All values are normalised, nominally 0..1, and taken as they come.
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
    kFirstUnused = 17,
};

constexpr std::int32_t kLiveParameters = 17;
constexpr std::int32_t kStoredParameters = 21;
constexpr std::int32_t kPrograms = 128;
constexpr std::int32_t kMaxTaps = 128;
constexpr std::int32_t kMemorySize = 4194304;
constexpr std::int32_t kMemoryMask = 4194303;

/// One stored program, byte for byte as it stands in a host's project.
struct DelayProgram {
    float values[kStoredParameters];
    char name[24];
    char terminator;
    char reserved[3];

    DelayProgram();
};
static_assert(sizeof(DelayProgram) == 112);

constexpr std::size_t kPresetChunkSize = sizeof(DelayProgram);
constexpr std::size_t kBankChunkSize = kPrograms * sizeof(DelayProgram);

/// A second-order filter in direct form I.
struct Biquad {
    float b0 = 0, b1 = 0, b2 = 0, a1 = 0, a2 = 0;
    float y1 = 0, y2 = 0, x1 = 0, x2 = 0;

    float process(float x);
};

enum BiquadType : std::int32_t { kLowPass = 0, kHighPass = 1 };

/// Frequency and sample rate in Hz. The filter's past is not touched.
void designBiquad(Biquad& filter, BiquadType type, double frequency, double sampleRate, double q);

/// The high-pass an instance is born with: 400 Hz at 44100 Hz, kept as ready numbers.
Biquad startUpHighPass();

/// Glides to its target in about 8334 samples, and gives plain silence for targets at or under 1e-5.
struct OnePole {
    float a = 0.9998800158500671f;
    float b = 0.00011998414993286133f;
    float z = 0.0f;

    float gatedProcess(float v);
};

/// The sine that sweeps all taps together. Phases are in cycles, -0.5..0.5.
struct ModuleFMop {
    float phase = 0.0f;
    float rate = 0.0f; ///< Hz
    float phaseMod = 0.0f;
    float previousPhase = 0.0f;
    float absOutPhase = 0.0f;
    float outPhase = 0.0f;
    float sampleRate = 44100.0f;
    float sampleTime = 1.0f / 44100.0f;
    float ratio = 1.0f;
    float ratioFine = 1.0f;

    /// Moves on by one sample and gives the sine, -100..100.
    float advance();
};

/// Takes what lies below 32 Hz out of the wet signal.
struct Smoother {
    float sampleRate = 44100.0f;
    float state = 0.0f;
    float decay = 1.0f;
    float timeMs = 0.0f;
    float radiansPerSample = 0.0f;

    void setRate(float rate);
    float process(float w);
};

/// The one memory that all taps read, and what they read at the current sample.
struct ModuleDelay {
    std::int32_t writeIndex = 0;
    float samples[kMemorySize] = {};
    float tapOut[kMaxTaps] = {};
    float lfoOffset = 0.0f; ///< samples, zero or negative
    std::int32_t interpMode = 1;
    /// How a tap is read while `interpMode` is none of 0, 1 and 2. A host can bring that about with a "Set"
    /// outside 0..1; the sound is then anybody's guess, as long as it stays one of the three.
    std::int32_t readOfForeignMode = 1;

    void clearDelayMemory();
    void write(float sample);
    void readTaps(const float* times, std::int32_t count);

  private:
    float position(float time) const;
    float readCubic(float time) const;
    float readLinear(float time) const;
    float readWhole(float time) const;
};

/// Conversion to integer toward zero. What has no such integer (not a number, infinite, too large) gives the
/// lowest one, as the processor's own conversion does.
std::int32_t truncate(double value);

/// What a "Feedback" of 0..1 multiplies the returning signal with, -0.45..0.45.
float feedbackFactor(float parameter);

class ReferenceEngine {
  public:
    /// A new instance on program 0. `defaultBank` stands for the factory bank beside the library: the 14336
    /// bytes of its chunk, or nothing where there is no such file.
    static std::unique_ptr<ReferenceEngine> create(std::span<const std::uint8_t> defaultBank = {});

    void setParameter(std::int32_t id, float value);
    float getParameter(std::int32_t id) const;
    void setProgram(std::int32_t program);
    std::int32_t getProgram() const { return curProgram; }
    /// The bytes stay as they are until the next getChunk or setChunk.
    std::span<const std::uint8_t> getChunk(bool isPreset);
    std::int32_t setChunk(const void* data, std::int32_t byteSize, bool isPreset);
    void suspend() {}
    void resume();
    /// Hz.
    void setSampleRate(float rate);
    void setBlockSize(std::int32_t frames) { blockSize = frames; }
    /// Two channels in, two channels out, any number of frames; buffers may be shared between in and out.
    void processReplacing(float** inputs, float** outputs, std::int32_t sampleFrames);

    void computeTapPattern();

    // All state lies open: the tests look at it.
    float params[kLiveParameters] = {};
    float tapGain[kMaxTaps] = {};
    std::int32_t numTaps = 1;
    std::array<DelayProgram, kPrograms> programs;
    std::array<DelayProgram, kPrograms> chunkPrograms;
    std::int32_t curProgram = 0;
    float sampleRate = 44100.0f;
    std::int32_t blockSize = 1024;

    ModuleDelay delay;
    double fbLowpass = 0.0;
    float fbSample = 0.0f;
    float sumLeft = 0.0f;
    float sumRight = 0.0f;
    ModuleFMop lfo;
    Biquad preLowPass;
    Biquad preHighPass;
    Smoother dcBlockLeft;
    Smoother dcBlockRight;
    std::array<OnePole, 16> paramSmoother;
    float tapTimeTarget[kMaxTaps] = {};
    float tapTimeNow[kMaxTaps] = {};
    std::int32_t fadeBlockCount = 0;
    bool fadeArmed = false;
    std::array<OnePole, kMaxTaps> tapSmoother;

  private:
    explicit ReferenceEngine(std::span<const std::uint8_t> defaultBank);

    void startUp(std::span<const std::uint8_t> defaultBank);
    void designForParameterChange(Parameter id);
    void restart();
    float feedBack(float filtered);
    void captureFeedback();
};

} // namespace reference
