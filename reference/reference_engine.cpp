#include "reference/reference_engine.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace reference {

namespace {

/// The smallest signal that counts: the single-precision 1e-11, widened.
constexpr double kFloor = 9.999999960041972e-12;
constexpr float kGate = 9.999999747378752e-06f;
constexpr float kFirstTime = 3.0f;
constexpr float kLastTime = 4194302.0f;
constexpr float kSamplesOfMemory = 4194304.0f;

/// Where a tap may look at all: the last step before the memory is touched.
std::int32_t insideMemory(std::int32_t index) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(index) &
                                     static_cast<std::uint32_t>(kMemoryMask));
}

/// `index + offset`, going round where the integer ends.
std::int32_t wrappingAdd(std::int32_t index, std::int32_t offset) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(index) + static_cast<std::uint32_t>(offset));
}

/// `index - offset`, likewise.
std::int32_t wrappingSubtract(std::int32_t index, std::int32_t offset) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(index) - static_cast<std::uint32_t>(offset));
}

} // namespace

std::int32_t truncate(double value) {
    if (value > -2147483649.0 && value < 2147483648.0)
        return static_cast<std::int32_t>(value);
    return INT32_MIN;
}

DelayProgram::DelayProgram() {
    constexpr float defaults[kStoredParameters] = {0.4f, 0.3f, 0.5f, 0.1f, 0.0f, 0.5f, 0.5f,
                                                   0.1f, 0.5f, 0.9f, 0.3f, 0.5f, 0.5f, 1.0f,
                                                   0.5f, 0.5f, 0.5f, 0.0f, 0.0f, 0.0f, 0.0f};
    for (int id = 0; id < kStoredParameters; ++id)
        values[id] = defaults[id];
    std::strncpy(name, "Fiber Cascade", sizeof name);
    terminator = 0;
    for (char& byte : reserved)
        byte = 0;
}

// --- The filters ---

float Biquad::process(float x) {
    float y = (x1 * b1 + x * b0) + x2 * b2 - y1 * a1 - y2 * a2;
    x2 = x1;
    x1 = x;
    y2 = y1;
    y1 = y;
    return y;
}

void designBiquad(Biquad& filter, BiquadType type, double frequency, double sampleRate, double q) {
    double w = frequency * 6.283185307179586 / sampleRate;
    double s = std::sin(w);
    double c = std::cos(w);
    double alpha = (0.5 / q) * s;
    double a0 = alpha + 1.0;
    double b0, b1;
    if (type == kLowPass) {
        b0 = (1.0 - c) * 0.5;
        b1 = 1.0 - c;
    } else {
        b0 = (c + 1.0) * 0.5;
        b1 = -(c + 1.0);
    }
    double b2 = b0;
    double a1 = c * -2.0;
    double a2 = 1.0 - alpha;
    double scale = 1.0 / a0;
    filter.b0 = static_cast<float>(b0 * scale);
    filter.b1 = static_cast<float>(b1 * scale);
    filter.b2 = static_cast<float>(b2 * scale);
    filter.a1 = static_cast<float>(a1 * scale);
    filter.a2 = static_cast<float>(a2 * scale);
}

Biquad startUpHighPass() {
    Biquad filter;
    filter.b0 = 0.9125569462776184f;
    filter.b1 = -1.8251138925552368f;
    filter.b2 = 0.9125569462776184f;
    filter.a1 = -1.8236311674118042f;
    filter.a2 = 0.8265966176986694f;
    return filter;
}

float OnePole::gatedProcess(float v) {
    if (v > kGate) {
        float out = v * b + a * z;
        z = out;
        return out;
    }
    return 0.0f;
}

void Smoother::setRate(float rate) {
    decay = static_cast<float>(1.0 - std::pow(0.001, 1000.0 / (static_cast<double>(rate) * timeMs)));
    radiansPerSample = 6.28319f / rate;
}

float Smoother::process(float w) {
    state = (w - state) * radiansPerSample * 32.0f + state;
    return w - state;
}

// --- The oscillator ---

float ModuleFMop::advance() {
    float step = (ratioFine * ratio) * (sampleTime * rate);
    float x = step + phase;
    previousPhase = phase;
    phase = x - static_cast<float>(truncate(x + 0.5f));
    float y = phaseMod * 0.15915507078170776f + phase;
    y = y - static_cast<float>(truncate(y + 0.5f));
    outPhase = y;
    absOutPhase = std::fabs(y);
    return (absOutPhase - 0.5f) * (absOutPhase - 0.7329630255699158f) * (absOutPhase + 0.23296299576759338f) *
           (y * 6859.490234375f);
}

// --- The memory ---

void ModuleDelay::clearDelayMemory() {
    for (float& sample : samples)
        sample = 0.0f;
    writeIndex = 0;
    for (float& out : tapOut)
        out = 0.0f;
    lfoOffset = 0.0f;
}

void ModuleDelay::write(float sample) {
    samples[writeIndex] = sample;
    writeIndex = writeIndex + 1;
    if (writeIndex > 4194303)
        writeIndex = 0;
}

void ModuleDelay::readTaps(const float* times, std::int32_t count) {
    std::int32_t mode = interpMode;
    if (mode != 0 && mode != 1 && mode != 2)
        mode = readOfForeignMode;
    for (std::int32_t tap = 0; tap < count; ++tap) {
        if (mode == 0)
            tapOut[tap] = readCubic(times[tap]);
        else if (mode == 1)
            tapOut[tap] = readLinear(times[tap]);
        else
            tapOut[tap] = readWhole(times[tap]);
    }
}

float ModuleDelay::position(float time) const {
    float p = static_cast<float>(writeIndex) - time;
    p = p + lfoOffset;
    if (p < 0.0f)
        p = p + kSamplesOfMemory;
    return p;
}

float ModuleDelay::readCubic(float time) const {
    float p = position(time);
    std::int32_t i = truncate(p);
    float f = p - static_cast<float>(i);
    float s0 = samples[insideMemory(wrappingAdd(i, -1))];
    float s1 = samples[insideMemory(i)];
    float s2 = samples[insideMemory(wrappingAdd(i, 1))];
    float h = samples[insideMemory(wrappingAdd(i, 2))] * 0.5f;
    return (((s2 + s2 + s0 - (s1 * 2.5f + h)) + (((s1 - s2) * 3.0f - s0) * 0.5f + h) * f) * f +
            (s2 - s0) * 0.5f) *
               f +
           s1;
}

float ModuleDelay::readLinear(float time) const {
    float p = position(time);
    std::int32_t i = truncate(p);
    if (i < 0)
        i = i + 4194304;
    float f = p - static_cast<float>(i);
    std::int32_t first = i <= 4194303 ? i : i - 4194303;
    std::int32_t second = wrappingAdd(i, 1) <= 4194303 ? wrappingAdd(i, 1) : i - 4194302;
    float older = samples[insideMemory(first)];
    float newer = samples[insideMemory(second)];
    return (newer - older) * f + older;
}

float ModuleDelay::readWhole(float time) const {
    std::int32_t i = wrappingSubtract(writeIndex, truncate(time));
    if (i < 0)
        i = i + 4194304;
    if (i > 4194303)
        i = i - 4194303;
    return samples[insideMemory(i)];
}

// --- The tap pattern ---

void ReferenceEngine::computeTapPattern() {
    lfo.rate = (params[kLfoRate] * 14.0f) * params[kLfoRate];

    float s = 1.0f - params[kStretch];
    float q = s * 4.0f;
    float e = std::exp((((q - 2.0f) + q) - 2.0f) - ((s * s * 16.0f) - (q + q)));
    float g = s >= 0.5f ? e * 0.5f : 1.0f - e * 0.5f;

    float lengthParameter = params[kBaseLength];
    std::int32_t length = truncate((lengthParameter * lengthParameter * sampleRate) * 2.0f + 1.0f);

    delay.interpMode = truncate(2.0f - (params[kSet] + params[kSet]));

    numTaps = truncate(params[kTaps] * 127.0f + 1.0f);
    if (numTaps < 1)
        numTaps = 1;
    if (numTaps > kMaxTaps)
        numTaps = kMaxTaps;

    if (params[kAmpDecay] > 0.99999f)
        params[kAmpDecay] = 0.99999f;
    float d = params[kAmpDecay];

    float inv = 1.0f / static_cast<float>(numTaps);
    for (float& gain : tapGain)
        gain = 0.0f;

    std::int32_t pos = 0;
    for (std::int32_t i = 0; i < numTaps; ++i) {
        float x = static_cast<float>(i) * inv;
        double w = 1.0 / (std::exp(4.0 - static_cast<double>(x) * 8.0) + 1.0);
        float a;
        if (d >= 0.5f)
            a = ((1.0f - d) * (inv + inv) - inv) * static_cast<float>(numTaps - i);
        else
            a = ((inv + inv) * d - inv) * static_cast<float>(i);
        tapGain[i] = std::pow(a + 1.0f, params[kCurve] * 1.5f + 0.5f);

        double next = ((1.0 - (w + w)) * static_cast<double>(g) + w) * static_cast<double>(length) +
                      static_cast<double>(pos);
        if (next > 16777216.0)
            next = 16777216.0;
        pos = truncate(next);
        tapTimeTarget[i] = static_cast<float>(pos);
    }

    for (std::int32_t i = 0; i < kMaxTaps; ++i) {
        float t = tapTimeTarget[i];
        if (t >= kLastTime)
            t = kLastTime;
        if (t <= kFirstTime)
            t = kFirstTime;
        tapTimeTarget[i] = t;
        if (i >= numTaps || t >= kLastTime || tapGain[i] < 0.0f)
            tapGain[i] = 0.0f;
        if (tapGain[i] >= 1.0f)
            tapGain[i] = 1.0f;
    }
}

// --- The life of the engine ---

std::unique_ptr<ReferenceEngine> ReferenceEngine::create(std::span<const std::uint8_t> defaultBank) {
    return std::unique_ptr<ReferenceEngine>(new ReferenceEngine(defaultBank));
}

ReferenceEngine::ReferenceEngine(std::span<const std::uint8_t> defaultBank) {
    setProgram(0);
    startUp(defaultBank);
    setProgram(0);
}

void ReferenceEngine::startUp(std::span<const std::uint8_t> defaultBank) {
    for (float& value : params)
        value = 0.0f;
    numTaps = 1;
    for (float& gain : tapGain)
        gain = 0.0f;
    delay.clearDelayMemory();
    lfo.sampleRate = 44100.0f;
    lfo.sampleTime = 1.0f / 44100.0f;
    lfo.rate = 2.0f;
    sumLeft = 0.0f;
    sumRight = 0.0f;
    designBiquad(preLowPass, kLowPass, 8000.0, 44100.0, 0.3);
    preHighPass = startUpHighPass();
    dcBlockLeft.setRate(44100.0f);
    dcBlockRight.setRate(44100.0f);
    for (std::int32_t i = 0; i < kMaxTaps; ++i) {
        tapTimeNow[i] = 0.0f;
        tapTimeTarget[i] = 0.0f;
    }
    fadeBlockCount = 0;
    fadeArmed = false;
    sampleRate = 44100.0f;
    fbSample = 0.0f;
    if (!defaultBank.empty())
        setChunk(defaultBank.data(), static_cast<std::int32_t>(defaultBank.size()), false);
    setProgram(curProgram);
}

void ReferenceEngine::restart() {
    lfo.sampleRate = sampleRate;
    lfo.sampleTime = 1.0f / sampleRate;
    float lowPass = params[kPreLowPass];
    float highPass = params[kPreHighPass];
    designBiquad(preLowPass, kLowPass, lowPass * 18000.0f * lowPass + 500.0f, sampleRate, 0.3);
    designBiquad(preHighPass, kHighPass, highPass * 2400.0f * highPass + 210.0f, sampleRate, 0.3);
    dcBlockLeft.setRate(sampleRate);
    dcBlockRight.setRate(sampleRate);
    computeTapPattern();
    for (std::int32_t i = 0; i < kMaxTaps; ++i) {
        tapTimeNow[i] = 0.0f;
        tapTimeTarget[i] = 0.0f;
    }
    fadeBlockCount = 0;
    delay.clearDelayMemory();
}

void ReferenceEngine::resume() {
    restart();
    setParameter(-1, 0.0f);
}

void ReferenceEngine::setSampleRate(float rate) {
    sampleRate = rate;
    restart();
}

void ReferenceEngine::designForParameterChange(Parameter id) {
    float p = params[id];
    if (id == kPreLowPass)
        designBiquad(preLowPass, kLowPass, p * 20090.0f * p + 500.0f, sampleRate, 1.0);
    else
        designBiquad(preHighPass, kHighPass, p * 2400.0f * p + 102.0f, sampleRate, 1.0);
}

void ReferenceEngine::setParameter(std::int32_t id, float value) {
    if (id >= 0 && id < kLiveParameters) {
        programs[static_cast<std::size_t>(curProgram)].values[id] = value;
        params[id] = value;
    }
    computeTapPattern();
    if (id == kBaseLength || id == kTaps || id == kStretch) {
        if (!fadeArmed)
            fadeBlockCount = 0;
        fadeArmed = true;
    }
    if (id == kPreLowPass)
        designForParameterChange(kPreLowPass);
    if (id == kPreHighPass)
        designForParameterChange(kPreHighPass);
}

float ReferenceEngine::getParameter(std::int32_t id) const {
    if (id >= 0 && id < kLiveParameters)
        return params[id];
    return 0.0f;
}

void ReferenceEngine::setProgram(std::int32_t program) {
    delay.clearDelayMemory();
    if (program >= kPrograms || program < 0)
        return;
    curProgram = program;
    for (std::int32_t id = 0; id < kLiveParameters; ++id)
        params[id] = programs[static_cast<std::size_t>(curProgram)].values[id];
    computeTapPattern();
    designForParameterChange(kPreLowPass);
    designForParameterChange(kPreHighPass);
}

std::span<const std::uint8_t> ReferenceEngine::getChunk(bool isPreset) {
    chunkPrograms = programs;
    if (isPreset) {
        const DelayProgram* current = &chunkPrograms[static_cast<std::size_t>(curProgram)];
        return {reinterpret_cast<const std::uint8_t*>(current), kPresetChunkSize};
    }
    return {reinterpret_cast<const std::uint8_t*>(chunkPrograms.data()), kBankChunkSize};
}

std::int32_t ReferenceEngine::setChunk(const void* data, std::int32_t byteSize, bool isPreset) {
    chunkPrograms = programs;
    if (isPreset) {
        if (byteSize > 0 && byteSize <= 112)
            std::memcpy(static_cast<void*>(&chunkPrograms[static_cast<std::size_t>(curProgram)]), data,
                        static_cast<std::size_t>(byteSize));
    } else {
        if (byteSize == 14336)
            std::memcpy(static_cast<void*>(chunkPrograms.data()), data, kBankChunkSize);
    }
    programs = chunkPrograms;
    setProgram(curProgram);
    return 1;
}

// --- The loop ---

float feedbackFactor(float parameter) {
    return static_cast<float>(static_cast<double>(parameter * 0.9f) - 0.45);
}

float ReferenceEngine::feedBack(float filtered) {
    float f = feedbackFactor(params[kFeedback]) * fbSample;
    double fd = static_cast<double>(f);
    fbLowpass = fbLowpass * 0.997 + fd * 0.003;
    auto lowerBits = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(fbLowpass));
    if ((lowerBits & 0x7F800000u) == 0)
        fbLowpass = 0.0;
    double m = (fd - fbLowpass) + static_cast<double>(filtered) + kFloor;
    return static_cast<float>(m);
}

void ReferenceEngine::captureFeedback() {
    float t0 = delay.tapOut[0];
    float tLast = delay.tapOut[numTaps - 1];
    if (std::fabs(t0) > static_cast<float>(kFloor))
        fbSample = t0 + tLast - static_cast<float>(kFloor);
    if ((std::bit_cast<std::uint32_t>(fbSample) & 0x7F800000u) == 0)
        fbSample = 0.0f;
}

void ReferenceEngine::processReplacing(float** inputs, float** outputs, std::int32_t sampleFrames) {
    std::int32_t n = sampleFrames;
    float tenth = static_cast<float>(n) * 0.104f;
    std::int32_t fadeLength = truncate(tenth);
    float fadeStep = 1.0f / tenth;
    float fade;
    if (delay.interpMode != 2 || fadeBlockCount >= 4) {
        fadeArmed = false;
        fade = 1.0f;
    } else {
        fadeBlockCount = fadeBlockCount + 1;
        fade = fadeArmed ? 0.0f : 1.0f;
    }

    for (std::int32_t i = 0; i < n; ++i) {
        if (delay.interpMode != 2) {
            for (std::int32_t tap = numTaps - 1; tap >= 0; --tap) {
                float t = tapTimeTarget[tap];
                if (numTaps < 102)
                    t = tapSmoother[static_cast<std::size_t>(tap)].gatedProcess(t);
                tapTimeNow[tap] = t;
            }
        }

        float stereo = paramSmoother[0].gatedProcess(params[kStereo]);
        float mix = paramSmoother[1].gatedProcess(params[kDryWet]);
        float pan = paramSmoother[2].gatedProcess(params[kOutPan]);
        float depth = paramSmoother[4].gatedProcess(params[kLfoDepth]);
        params[kPreGain] = 1.0f;

        float inL = inputs[0][i];
        float inR = inputs[1][i];
        float x = ((1.0f - params[kPrePan]) * inL + params[kPrePan] * inR) * params[kPreGain];
        x = preLowPass.process(x);
        float y = preHighPass.process(x);
        delay.write(feedBack(y));

        sumLeft = 0.0f;
        sumRight = 0.0f;
        delay.readTaps(delay.interpMode == 2 ? tapTimeTarget : tapTimeNow, numTaps);

        float gainSum = 0.0f;
        for (std::int32_t p = 0; p < (numTaps + 1) / 2; ++p) {
            sumLeft += delay.tapOut[2 * p] * tapGain[2 * p];
            sumRight += delay.tapOut[2 * p + 1] * tapGain[2 * p + 1];
            gainSum += tapGain[2 * p] + tapGain[2 * p + 1];
        }

        if (fadeArmed) {
            if (i <= fadeLength)
                fade += fadeStep;
            else if (i >= n - fadeLength)
                fade -= fadeStep;
            if (fade < 0.0f)
                fade = 0.0f;
            if (fade > 1.0f)
                fade = 1.0f;
        } else if (fade < 1.0f) {
            fade += fadeStep;
        }

        float norm = (2.0f - gainSum / static_cast<float>(numTaps)) * fade;
        float wetL = sumLeft * norm;
        float wetR = norm * sumRight;
        float dcL = dcBlockLeft.process(wetL);
        float dcR = dcBlockRight.process(wetR);

        float sine = lfo.advance();
        delay.lfoOffset = -std::fabs((sine + 100.0f) * depth);

        captureFeedback();

        float a = (1.0f - stereo) * dcL + dcR * stereo;
        float b = (1.0f - stereo) * dcR + dcL * stereo;
        outputs[0][i] = a * ((1.0f - pan) + (1.0f - pan)) * mix + (1.0f - mix) * inL;
        outputs[1][i] = (b * pan + b * pan) * mix + (1.0f - mix) * inR;
    }
}

} // namespace reference
