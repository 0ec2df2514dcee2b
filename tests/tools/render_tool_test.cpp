// quillon-render from outside, with effects whose sound is known beforehand.

#include "support/tool_run.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <numbers>
#include <sndfile.hh>
#include <thread>

namespace {

using nlohmann::json;

std::string probe(const std::string& name) {
    return PROBES "/" + name + ".so";
}

std::vector<float> tone(double hertz, float amplitude, double seconds, int sampleRate) {
    std::vector<float> samples(static_cast<std::size_t>(seconds * sampleRate));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = amplitude * static_cast<float>(std::sin(2.0 * std::numbers::pi * hertz *
                                                             static_cast<double>(i) / sampleRate));
    return samples;
}

class RenderTool : public testing::Test {
  protected:
    /// Runs the tool on a probe effect and expects it to succeed.
    ToolResult run(std::vector<std::string> arguments, const std::string& library = "probe") {
        arguments.insert(arguments.end(), {"--library", probe(library)});
        const ToolResult result = runTool(folder, arguments);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return result;
    }
    json runJson(std::vector<std::string> arguments, const std::string& library = "probe") {
        arguments.push_back("--json");
        const ToolResult result = run(arguments, library);
        EXPECT_TRUE(json::accept(result.out)) << result.out;
        return json::parse(result.out, nullptr, false);
    }
    Sound output(const std::string& name = "out.wav") { return readSound(folder.file(name)); }

    ScratchFolder folder;
};

TEST_F(RenderTool, GivesAMonoFileToBothInputs) {
    const auto samples = noise(3000);
    folder.writeSound("in.wav", samples);
    run({"in.wav", "out.wav", "--tail", "0", "--format", "float"});
    const Sound out = output();
    ASSERT_EQ(out.channels, 2);
    ASSERT_EQ(out.frames(), samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        ASSERT_EQ(out.at(i, 0), samples[i]) << i;
        ASSERT_EQ(out.at(i, 1), samples[i]) << i;
    }
}

TEST_F(RenderTool, KeepsTheSidesOfAStereoFileApart) {
    const auto samples = noise(4000);
    folder.writeSound("in.wav", samples, 2);
    run({"in.wav", "out.wav", "--tail", "0", "--format", "float"});
    EXPECT_EQ(output().samples, samples);
}

TEST_F(RenderTool, RefusesMoreThanTwoChannels) {
    folder.writeSound("in.wav", noise(3000), 3);
    const ToolResult result = runTool(folder, {"in.wav", "out.wav", "--library", probe("probe")});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("in.wav has 3 channels; only mono and stereo files can be played"),
              std::string::npos);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"in.wav"});
}

TEST_F(RenderTool, MixesAStereoFileForAnEffectWithOneInput) {
    folder.writeSound("in.wav", {0.5f, 0.25f, -0.5f, 0.5f}, 2);
    const json report = runJson({"in.wav", "out.wav", "--tail", "0", "--format", "float"}, "probe_mono");
    EXPECT_EQ(report["channels"], 1);
    EXPECT_EQ(output().channels, 1);
    EXPECT_EQ(output().samples, (std::vector<float>{0.375f, 0.0f}));
}

TEST_F(RenderTool, TakesAnEffectFromOneToTwo) {
    folder.writeSound("in.wav", {0.5f, -0.25f});
    run({"in.wav", "out.wav", "--tail", "0", "--format", "float"}, "probe_one_to_two");
    EXPECT_EQ(output().samples, (std::vector<float>{0.5f, 0.5f, -0.25f, -0.25f}));
}

TEST_F(RenderTool, RunsTheEffectAtTheFilesRate) {
    for (int rate : {8000, 22050, 96000}) {
        folder.writeSound("in.wav", {1.0f, 0.0f}, 1, rate);
        run({"in.wav", "out.wav", "--tail", "0.2", "--format", "float", "--set", "Delay=display:0.1", "--set",
             "Echo=1"});
        const Sound out = output();
        EXPECT_EQ(out.sampleRate, rate);
        EXPECT_EQ(out.at(static_cast<std::size_t>(rate / 10), 0), 1.0f) << rate;
    }
}

TEST_F(RenderTool, ReadsEveryKindOfFileThatItWrites) {
    folder.writeSound("in.wav", noise(20000), 2, 48000);
    for (const char* name : {"a.flac", "a.aiff", "a.aif", "a.ogg", "a.caf", "a.w64", "A.WAV"}) {
        run({"in.wav", name, "--tail", "0"});
        const json report = runJson({name, "out.wav", "--tail", "0"});
        EXPECT_EQ(report["inputFrames"], 10000) << name;
        EXPECT_EQ(report["sampleRate"], 48000) << name;
    }
}

TEST_F(RenderTool, WritesTwentyFourBitOrFloat) {
    folder.writeSound("in.wav", noise(100));
    const auto format = [&](const std::vector<std::string>& more, const std::string& name) {
        std::vector<std::string> arguments = {"in.wav", name, "--tail", "0"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        run(arguments);
        return output(name).format & (SF_FORMAT_TYPEMASK | SF_FORMAT_SUBMASK);
    };
    EXPECT_EQ(format({}, "a.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_24);
    EXPECT_EQ(format({"--format", "24"}, "a.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_24);
    EXPECT_EQ(format({"--format", "float"}, "a.wav"), SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_EQ(format({}, "a.flac"), SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    EXPECT_EQ(format({"--format", "float"}, "a.aiff"), SF_FORMAT_AIFF | SF_FORMAT_FLOAT);
    EXPECT_EQ(format({}, "a.ogg"), SF_FORMAT_OGG | SF_FORMAT_VORBIS);
}

TEST_F(RenderTool, GivesTheSameBytesEachTime) {
    folder.writeSound("in.wav", noise(5000));
    for (const char* format : {"24", "float"}) {
        run({"in.wav", "one.wav", "--tail", "0", "--format", format});
        run({"in.wav", "two.wav", "--tail", "0", "--format", format});
        EXPECT_EQ(readFile(folder.file("one.wav")), readFile(folder.file("two.wav")));
    }
}

TEST_F(RenderTool, HandsOverBlocksOfTheSizeAskedFor) {
    folder.writeSound("in.wav", noise(2000));
    for (const char* size : {"1", "100", "1024"}) {
        run({"in.wav", "out.wav", "--tail", "0", "--format", "float", "--block", size}, "probe_blocks");
        const Sound out = output();
        EXPECT_EQ(out.frames(), 2000u);
        EXPECT_EQ(out.at(0, 0) * 65536.0f, std::stof(size));
        EXPECT_EQ(out.at(1999, 0) * 65536.0f, std::stof(size));
    }
    run({"in.wav", "out.wav", "--tail", "0", "--format", "float"}, "probe_blocks");
    EXPECT_EQ(output().at(0, 0) * 65536.0f, 512.0f);
}

TEST_F(RenderTool, SelectsAProgramByNumberAndByName) {
    folder.writeSound("in.wav", {0.5f});
    EXPECT_EQ(runJson({"in.wav", "out.wav", "--tail", "0", "--program", "2"})["program"]["name"],
              "Second Helping");
    EXPECT_FLOAT_EQ(output().at(0, 0), 0.4f);
    EXPECT_EQ(runJson({"in.wav", "out.wav", "--tail", "0", "--program", "second"})["program"]["number"], 1);
    EXPECT_NEAR(output().at(0, 0), 0.45f, 1e-6f);
}

TEST_F(RenderTool, SetsParametersByNameNumberAndDisplay) {
    folder.writeSound("in.wav", {1.0f});
    const auto level = [&](const std::string& setting) {
        run({"in.wav", "out.wav", "--tail", "0", "--format", "float", "--set", setting});
        return output().at(0, 0);
    };
    EXPECT_EQ(level("Gain=0.25"), 0.25f);
    EXPECT_EQ(level("gain =0.25"), 0.25f);
    EXPECT_EQ(level("0=0.25"), 0.25f);
    EXPECT_NEAR(level("Gain=25%"), 0.25f, 1e-3f);
    EXPECT_NEAR(level("Gain=display:25.0"), 0.25f, 1e-3f);
}

TEST_F(RenderTool, LetsTheLastOfSeveralSettingsWin) {
    folder.writeSound("in.wav", {1.0f});
    run({"in.wav", "out.wav", "--tail", "0", "--format", "float", "--set", "Gain=0.25", "--set",
         "Gain=0.75"});
    EXPECT_EQ(output().at(0, 0), 0.75f);
}

TEST_F(RenderTool, PutsSettingsOnTopOfTheProgram) {
    folder.writeSound("in.wav", {1.0f});
    const json report = runJson({"in.wav", "out.wav", "--tail", "0", "--set", "Echo=0.5", "--program", "4"});
    EXPECT_NEAR(report["parameters"][0]["value"].get<double>(), 0.6, 1e-6);
    EXPECT_EQ(report["parameters"][2]["value"], 0.5);
}

TEST_F(RenderTool, ChangesParametersOnTheVerySampleThatTheAutomationNames) {
    folder.writeSound("in.wav", std::vector<float>(3000, 1.0f), 1, 1000);
    folder.writeText("moves.txt", "# a comment\n1.5 Gain 0.5\n700smp,0,25%\n2000ms \"gain\" display:75\n");
    run({"in.wav", "out.wav", "--tail", "0", "--format", "float", "--automate", "moves.txt"});
    const Sound out = output();
    EXPECT_EQ(out.at(699, 0), 1.0f);
    EXPECT_NEAR(out.at(700, 0), 0.25f, 1e-3f);
    EXPECT_NEAR(out.at(1499, 0), 0.25f, 1e-3f);
    EXPECT_EQ(out.at(1500, 0), 0.5f);
    EXPECT_EQ(out.at(1999, 0), 0.5f);
    EXPECT_NEAR(out.at(2000, 0), 0.75f, 1e-3f);
}

TEST_F(RenderTool, AutomatesTheSameInBlocksOfAnySize) {
    folder.writeSound("in.wav", noise(3000));
    folder.writeText("moves.csv",
                     "time,parameter,value\n100smp,Gain,0.1\n101smp,Gain,0.2\n2047smp,Gain,0.3\n");
    std::vector<float> first;
    for (const char* size : {"1", "64", "512", "4096"}) {
        run({"in.wav", "out.wav", "--tail", "0", "--format", "float", "--automate", "moves.csv", "--block",
             size});
        if (first.empty())
            first = output().samples;
        EXPECT_EQ(output().samples, first) << size;
    }
}

TEST_F(RenderTool, MovesAParameterAlongARamp) {
    folder.writeSound("in.wav", std::vector<float>(1500, 1.0f), 1, 1000);
    folder.writeText("moves.txt", "0 Gain 1\n100smp Gain 0.5 -> 0.25 over 1s\n1100smp Gain 0.75\n");
    for (const char* size : {"1", "50", "512"}) {
        run({"in.wav", "out.wav", "--tail", "0", "--format", "float", "--automate", "moves.txt", "--block",
             size});
        const Sound out = output();
        EXPECT_EQ(out.at(99, 0), 1.0f);
        // From 100 on, a step each 64 samples: linear in the value at the first sample of each.
        for (std::size_t frame = 100; frame < 1100; ++frame) {
            const double steps = static_cast<double>((frame - 100) / 64);
            ASSERT_EQ(out.at(frame, 0), static_cast<float>(0.5 - 0.25 * (steps * 64.0 / 1000.0))) << frame;
        }
        EXPECT_EQ(out.at(1100, 0), 0.75f);
    }
    folder.writeText("moves.txt", "0.1 Gain 0.5 -> 0.25 over 100smp\n");
    run({"in.wav", "out.wav", "--tail", "0", "--format", "float", "--automate", "moves.txt"});
    EXPECT_EQ(output().at(200, 0), 0.25f);
    EXPECT_EQ(output().at(1499, 0), 0.25f);
}

TEST_F(RenderTool, CountsARampThatTheOutputCutsOffAsOneEvent) {
    folder.writeSound("in.wav", std::vector<float>(1000, 1.0f), 1, 1000);
    folder.writeText("moves.txt", "0.5 Gain 0 -> 1 over 10s\n");
    const json report = runJson({"in.wav", "out.wav", "--tail", "0", "--automate", "moves.txt"});
    ASSERT_EQ(report["warnings"].size(), 1u);
    EXPECT_EQ(report["warnings"][0].get<std::string>().substr(0, 14), "1 event comes ");
}

std::vector<std::uint8_t> smallMidiFile() {
    // 1000 ticks a quarter at the usual tempo: a tick is half a millisecond.
    return {'M', 'T', 'h',  'd',  0,    0,  0,  6,  0,    0,    0,  1,    0x03, 0xE8,
            'M', 'T', 'r',  'k',  0,    0,  0,  19, 0,    0x90, 60, 127,  100,  0xB0,
            7,   127, 0x81, 0x48, 0x90, 61, 64, 2,  0xC0, 127,  0,  0xFF, 0x2F};
}

TEST_F(RenderTool, DeliversMidiAtItsPlace) {
    folder.writeSound("in.wav", std::vector<float>(2000, 0.0f), 1, 8000);
    auto file = smallMidiFile();
    file.push_back(0);
    file[21] = static_cast<std::uint8_t>(file.size() - 22);
    folder.writeBytes("notes.mid", file);
    for (const char* size : {"64", "512"}) {
        run({"in.wav", "out.wav", "--tail", "0", "--format", "float", "--midi", "notes.mid", "--block",
             size});
        const Sound out = output();
        for (std::size_t i = 0; i < out.frames(); ++i) {
            // Ticks 0, 100, 300 and 302 at 4 samples a tick.
            const float left = i == 0 ? 1.0f : i == 1200 ? 64.0f / 127.0f : i == 1208 ? -1.0f : 0.0f;
            EXPECT_EQ(out.at(i, 0), left) << i;
            EXPECT_EQ(out.at(i, 1), i == 400 ? 1.0f : 0.0f) << i;
        }
    }
}

TEST_F(RenderTool, LoadsAChunkBySize) {
    folder.writeSound("in.wav", {1.0f});
    const auto bytesOf = [](const std::vector<float>& values) {
        const auto* first = reinterpret_cast<const std::uint8_t*>(values.data());
        return std::vector<std::uint8_t>(first, first + values.size() * sizeof(float));
    };
    std::vector<float> preset(8, 0.0f);
    preset[0] = 0.125f;
    folder.writeBytes("preset", bytesOf(preset));
    run({"in.wav", "out.wav", "--tail", "0", "--chunk", "preset", "--program", "3"});
    EXPECT_EQ(output().at(0, 0), 0.125f);

    std::vector<float> bank(40, 0.0f);
    bank[3 * 8] = 0.375f;
    folder.writeBytes("bank", bytesOf(bank));
    run({"in.wav", "out.wav", "--tail", "0", "--chunk", "bank", "--program", "3"});
    EXPECT_EQ(output().at(0, 0), 0.375f);
}

TEST_F(RenderTool, PlaysAFixedTailToTheSample) {
    folder.writeSound("in.wav", noise(1000), 1, 1000);
    const json report = runJson({"in.wav", "out.wav", "--tail", "1.5"});
    EXPECT_EQ(report["frames"], 2500);
    EXPECT_EQ(report["tail"]["frames"], 1500);
    EXPECT_EQ(report["tail"]["rule"], "fixed");
    EXPECT_EQ(output().frames(), 2500u);
}

TEST_F(RenderTool, GoesOnUntilTheLastEchoHasFaded) {
    folder.writeSound("in.wav", {1.0f, 1.0f, 0.0f}, 1, 1000);
    const json report = runJson(
        {"in.wav", "out.wav", "--set", "Delay=display:60", "--set", "Echo=-20dB", "--format", "float"});
    EXPECT_EQ(report["tail"]["rule"], "auto");
    EXPECT_EQ(report["tail"]["cutShort"], false);
    ASSERT_EQ(output().frames(), 60002u);
    EXPECT_NEAR(output().at(60001, 0), 0.1f, 1e-3f);
}

TEST_F(RenderTool, TakesAnEchoBelowTheLimitForNone) {
    folder.writeSound("in.wav", {1.0f, 0.0f, 0.0f}, 1, 1000);
    EXPECT_EQ(runJson({"in.wav", "out.wav", "--set", "Delay=display:1", "--set", "Echo=-81dB"})["frames"], 3);
    EXPECT_EQ(runJson({"in.wav", "out.wav", "--set", "Delay=display:1", "--set", "Echo=-79dB"})["frames"],
              1001);
}

TEST_F(RenderTool, StopsAfterTwoMinutesAndWarns) {
    folder.writeSound("in.wav", noise(500), 1, 1000);
    const json report = runJson({"in.wav", "out.wav"}, "probe_blocks");
    EXPECT_EQ(report["tail"]["seconds"], 120.0);
    EXPECT_EQ(report["tail"]["cutShort"], true);
    ASSERT_EQ(report["warnings"].size(), 1u);
    EXPECT_NE(report["warnings"][0].get<std::string>().find("still sound 120 s after the input"),
              std::string::npos);
}

TEST_F(RenderTool, WarnsOfClippingByHowMuchAndHowOften) {
    folder.writeSound("in.wav", {2.0f, -1.5f, 0.5f, 1.0f});
    const ToolResult result = run({"in.wav", "out.wav", "--tail", "0", "--quiet"}, "probe_mono");
    EXPECT_EQ(result.err,
              "quillon-render: warning: " + folder.file("out.wav") +
                  " is clipped: 2 samples lie above full scale, by up to 6.02 dB; use a quieter input, or "
                  "--format float, which keeps them\n");
    const Sound out = output();
    EXPECT_NEAR(out.at(0, 0), 1.0f, 1e-6f);
    EXPECT_NEAR(out.at(1, 0), -1.0f, 1e-6f);
    EXPECT_NEAR(out.at(2, 0), 0.5f, 1e-6f);
    const json report = runJson({"in.wav", "out.wav", "--tail", "0"}, "probe_mono");
    EXPECT_EQ(report["clippedSamples"], 2);
    EXPECT_NEAR(report["clippedByDb"].get<double>(), 6.0206, 1e-3);
    EXPECT_EQ(report["peak"], 2.0);
    EXPECT_NEAR(report["peakDbfs"].get<double>(), 6.0206, 1e-3);
}

TEST_F(RenderTool, KeepsWhatIsAboveFullScaleInAFloatFile) {
    folder.writeSound("in.wav", {2.0f, -1.5f, 0.5f});
    const json report = runJson({"in.wav", "out.wav", "--tail", "0", "--format", "float"}, "probe_mono");
    EXPECT_EQ(report["clippedSamples"], 0);
    EXPECT_EQ(report["samplesOverFullScale"], 2);
    EXPECT_TRUE(report["warnings"].empty());
    EXPECT_EQ(output().samples, (std::vector<float>{2.0f, -1.5f, 0.5f}));
}

TEST_F(RenderTool, ReportsSilenceWithoutANumberForItsLevel) {
    folder.writeSound("in.wav", {0.0f, 0.0f});
    EXPECT_TRUE(runJson({"in.wav", "out.wav", "--tail", "0"})["peakDbfs"].is_null());
    EXPECT_NE(run({"in.wav", "out.wav", "--tail", "0"}).out.find("silent"), std::string::npos);
}

TEST_F(RenderTool, ReportsTheLoudnessOfInputAndOutput) {
    // 997 Hz at 48 kHz, 20 dB below full scale: as many LUFS on both channels, 3 less on one.
    folder.writeSound("in.wav", tone(997.0, 0.1f, 4.0, 48000), 1, 48000);
    const json report = runJson({"in.wav", "out.wav", "--tail", "0"});
    EXPECT_NEAR(report["inputLoudness"]["integratedLufs"].get<double>(), -23.01, 0.1);
    EXPECT_NEAR(report["loudness"]["integratedLufs"].get<double>(), -20.0, 0.1);
    EXPECT_NEAR(report["loudness"]["rangeLu"].get<double>(), 0.0, 0.1);
    EXPECT_NEAR(report["loudness"]["truePeakDbtp"].get<double>(), -20.0, 0.1);
    const std::string text = run({"in.wav", "out.wav", "--tail", "0"}).out;
    EXPECT_NE(text.find("\nloudness -20.0 LUFS (input -23.0 LUFS), range 0.0 LU, true peak -20.0 dBTP\n"),
              std::string::npos)
        << text;
}

TEST_F(RenderTool, SaysWhyALoudnessIsNotMeasured) {
    const auto loudnessLine = [&](const std::vector<float>& samples, int sampleRate) {
        folder.writeSound("in.wav", samples, 1, sampleRate);
        const std::string text = run({"in.wav", "out.wav", "--tail", "0.5"}).out;
        const std::size_t start = text.find("loudness");
        return text.substr(start, text.find('\n', start) - start);
    };
    // The blocks of 0.4 s hold 0.3, 0.2 and 0.1 s of a tone of -20 LUFS: half of its energy in the mean.
    EXPECT_EQ(loudnessLine(tone(997.0, 0.1f, 0.3, 48000), 48000).substr(0, 51),
              "loudness -23.0 LUFS (input not measured below 0.4 s");
    EXPECT_EQ(loudnessLine(std::vector<float>(48000, 0.0f), 48000),
              "loudness none above -70 LUFS (input none above -70 LUFS)");
    EXPECT_EQ(loudnessLine(std::vector<float>(20000, 0.1f), 4000), "loudness not measured below 8000 Hz");
    const json report = runJson({"in.wav", "out.wav", "--tail", "0"});
    EXPECT_TRUE(report["loudness"]["integratedLufs"].is_null());
    EXPECT_TRUE(report["loudness"]["rangeLu"].is_null());
    EXPECT_TRUE(report["loudness"]["truePeakDbtp"].is_null());
    EXPECT_TRUE(report["inputLoudness"]["integratedLufs"].is_null());
}

TEST_F(RenderTool, KeepsWhatTheLibraryPrintsOutOfItsOwnOutput) {
    folder.writeSound("in.wav", noise(2000));
    const ToolResult result = run({"in.wav", "out.wav", "--tail", "0", "--json"}, "probe_prints");
    EXPECT_TRUE(json::accept(result.out)) << result.out;
    EXPECT_NE(result.err.find("the library says: hello"), std::string::npos);
    EXPECT_NE(result.err.find("the library says: goodbye"), std::string::npos);
    EXPECT_TRUE(json::accept(run({"--list", "--json"}, "probe_prints").out));
}

TEST_F(RenderTool, LeavesNothingInTheCurrentFolder) {
    folder.writeSound("in.wav", noise(2000));
    run({"in.wav", "out.wav", "--tail", "0", "--plot", "out.png"});
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"in.wav", "out.png", "out.wav"}));
}

TEST_F(RenderTool, ReportsOneObjectWithAllThereIsToKnow) {
    folder.writeSound("in.wav", std::vector<float>(1000, 0.5f), 1, 1000);
    const json report =
        runJson({"in.wav", "out.flac", "--tail", "0.25", "--set", "Wave=0.5", "--pre-roll", "2"});
    EXPECT_EQ(report["input"], folder.file("in.wav"));
    EXPECT_EQ(report["output"], folder.file("out.flac"));
    EXPECT_EQ(report["library"], probe("probe"));
    EXPECT_TRUE(report["plot"].is_null());
    EXPECT_EQ(report["format"], "FLAC, 24 bit");
    EXPECT_EQ(report["sampleRate"], 1000);
    EXPECT_EQ(report["inputChannels"], 1);
    EXPECT_EQ(report["channels"], 2);
    EXPECT_EQ(report["blockSize"], 512);
    EXPECT_EQ(report["preRollFrames"], 2000);
    EXPECT_EQ(report["inputFrames"], 1000);
    EXPECT_EQ(report["frames"], 1250);
    EXPECT_EQ(report["tail"]["seconds"], 0.25);
    EXPECT_EQ(report["peak"], 0.5);
    EXPECT_EQ(report["program"]["number"], 0);
    EXPECT_EQ(report["program"]["name"], "First");
    ASSERT_EQ(report["parameters"].size(), 8u);
    EXPECT_EQ(report["parameters"][3]["id"], 3);
    EXPECT_EQ(report["parameters"][3]["name"], "Wave");
    EXPECT_EQ(report["parameters"][3]["value"], 0.5);
    EXPECT_EQ(report["parameters"][3]["display"], "Square");
    EXPECT_EQ(report["parameters"][0]["label"], "%");
    EXPECT_EQ(report["parameters"][0]["name"], "Gain ");
}

TEST_F(RenderTool, NamesFilesRightInItsReportWhateverTheyAreCalled) {
    const std::string name = "a \"quoted\"\n\u266B\xFF.wav";
    folder.writeSound(name, noise(100));
    const ToolResult result =
        runTool(folder, {name, "out.wav", "--tail", "0", "--json", "--library", probe("probe")});
    ASSERT_TRUE(json::accept(result.out)) << result.out;
    EXPECT_TRUE(
        json::parse(result.out)["input"].get<std::string>().ends_with("a \"quoted\"\n\u266B\u00FF.wav"));
}

TEST_F(RenderTool, ListsProgramsAndParameters) {
    const ToolResult result = run({"--list", "--program", "1", "--set", "Delay=2.5s"});
    EXPECT_NE(result.out.find("  2  Second Helping\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("Parameters of program 1, Second\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("  0   Gain      0.9    90.0 %\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("2.50 s\n"), std::string::npos) << result.out;
    EXPECT_TRUE(result.err.empty()) << result.err;
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(RenderTool, ListsInJson) {
    const json list = runJson({"--list"});
    EXPECT_EQ(list["effect"], "probe \"effect\"");
    EXPECT_EQ(list["programs"].size(), 5u);
    EXPECT_EQ(list["programs"][4]["number"], 4);
    EXPECT_EQ(list["programs"][4]["name"], "twice ");
    EXPECT_EQ(list["program"]["name"], "First") << "asking for names must not change the program";
    EXPECT_EQ(list["parameters"].size(), 8u);
}

TEST_F(RenderTool, ShowsABarOnATerminalAndPlainLinesElsewhere) {
    folder.writeSound("in.wav", noise(200000));
    const std::vector<std::string> arguments = {"in.wav", "out.wav",   "--tail",
                                                "0",      "--library", probe("probe")};
    const std::string bar = runTool(folder, arguments, ErrorEnd::terminal).err;
    EXPECT_NE(bar.find("\u2588"), std::string::npos);
    EXPECT_NE(bar.find(" 50 %"), std::string::npos);
    EXPECT_NE(bar.find('\r'), std::string::npos);
    const ToolResult plain = runTool(folder, arguments);
    EXPECT_EQ(plain.err, "in.wav: 25 %\nin.wav: 50 %\nin.wav: 75 %\nin.wav: 100 %\n");
}

TEST_F(RenderTool, SaysNothingIfItIsToBeQuiet) {
    folder.writeSound("in.wav", noise(2000));
    const ToolResult result = run({"in.wav", "out.wav", "--tail", "0", "--quiet"});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
}

TEST_F(RenderTool, PrintsTheReportInJsonAloneIfItIsToBeQuietOtherwise) {
    folder.writeSound("in.wav", noise(200000));
    const ToolResult result = run({"in.wav", "out.wav", "--tail", "0", "--quiet", "--json"});
    EXPECT_TRUE(json::accept(result.out)) << result.out;
    EXPECT_EQ(result.err, "");
    folder.writeSound("in.wav", {2.0f, 2.0f});
    const ToolResult clipped = run({"in.wav", "out.wav", "--tail", "0", "--quiet", "--json"});
    EXPECT_EQ(json::parse(clipped.out)["clippedSamples"], 4);
    EXPECT_NE(clipped.err.find("warning: "), std::string::npos);
    EXPECT_EQ(std::count(clipped.err.begin(), clipped.err.end(), '\n'), 1);
}

TEST_F(RenderTool, WritesOverAnOlderFile) {
    folder.writeSound("in.wav", {0.5f});
    folder.writeText("out.wav", "something else");
    run({"in.wav", "out.wav", "--tail", "0", "--format", "float"});
    EXPECT_EQ(output().at(0, 0), 0.5f);
}

TEST_F(RenderTool, WritesThroughALinkAndLeavesTheLink) {
    folder.writeSound("in.wav", {0.5f});
    std::filesystem::create_directory(folder.path() / "elsewhere");
    std::filesystem::create_symlink("elsewhere/real.wav", folder.path() / "out.wav");
    run({"in.wav", "out.wav", "--tail", "0", "--format", "float"});
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "out.wav"));
    EXPECT_EQ(readSound(folder.file("elsewhere/real.wav")).at(0, 0), 0.5f);
}

TEST_F(RenderTool, TakesItsUnfinishedFilesAwayWhenItIsStopped) {
    folder.writeSound("in.wav", noise(1000));
    for (int signal : {SIGINT, SIGTERM}) {
        // A day of silence ahead keeps it busy.
        RunningTool tool(folder, {"in.wav", "out.wav", "--pre-roll", "86400", "--library", probe("probe")});
        while (folder.names().size() < 2)
            std::this_thread::yield();
        tool.send(signal);
        const ToolResult result = tool.wait();
        EXPECT_EQ(result.exitCode, 130);
        EXPECT_EQ(result.err, "quillon-render: stopped; nothing was written\n");
        EXPECT_EQ(folder.names(), std::vector<std::string>{"in.wav"});
    }
}

/// A WAV file of 16 bits whose header tells of `promised` bytes of sound where there are `present`.
std::string wavOf(std::uint32_t promised, std::size_t present, std::uint32_t rate = 44100) {
    const auto word = [](std::uint32_t number, int size) {
        std::string bytes;
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(number >> (8 * i));
        return bytes;
    };
    // Who does not know the end has written down only the 8 bytes of the head when the sound begins.
    const std::uint32_t length = promised == 0 ? 8 : promised + 36;
    return "RIFF" + word(length, 4) + "WAVEfmt " + word(16, 4) + word(1, 2) + word(1, 2) + word(rate, 4) +
           word(2 * rate, 4) + word(2, 2) + word(16, 2) + "data" + word(promised, 4) +
           std::string(present, '\x10');
}

TEST_F(RenderTool, PlaysWhatIsLeftOfAFileThatIsCutOffAndSaysSo) {
    folder.writeText("in.wav", wavOf(19200, 4912));
    const ToolResult result = run({"in.wav", "out.wav", "--tail", "0", "--quiet"});
    EXPECT_EQ(result.err, "quillon-render: warning: " + folder.file("in.wav") +
                              " is cut off: 4912 of 19200 bytes of sound are there, and only they are "
                              "played\n");
    EXPECT_EQ(output().frames(), 2456u);
    const json report = runJson({"in.wav", "out.wav", "--tail", "0"});
    EXPECT_EQ(report["inputFrames"], 2456);
    ASSERT_EQ(report["warnings"].size(), 1u);
    EXPECT_NE(report["warnings"][0].get<std::string>().find("is cut off"), std::string::npos);
}

TEST_F(RenderTool, TakesALengthThatMeansUpToTheEndWithoutAWord) {
    for (const std::uint32_t length : {4912u, 0u, 0x7ffff000u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
        SCOPED_TRACE(length);
        folder.writeText("in.wav", wavOf(length, 4912));
        EXPECT_EQ(run({"in.wav", "out.wav", "--tail", "0", "--quiet"}).err, "");
        EXPECT_EQ(output().frames(), 2456u);
    }
}

TEST_F(RenderTool, SaysOfOtherKindsOfFilesThatTheyAreCutOff) {
    for (const int kind : {SF_FORMAT_AIFF, SF_FORMAT_RF64, SF_FORMAT_WAVEX}) {
        SCOPED_TRACE(kind);
        SndfileHandle(folder.file("in.wav"), SFM_WRITE, kind | SF_FORMAT_PCM_24, 2, 48000)
            .write(noise(20000).data(), 20000);
        EXPECT_EQ(run({"in.wav", "out.wav", "--tail", "0", "--quiet"}).err, "");
        std::filesystem::resize_file(folder.file("in.wav"),
                                     std::filesystem::file_size(folder.file("in.wav")) - 6000);
        const std::string error = run({"in.wav", "out.wav", "--tail", "0", "--quiet"}).err;
        EXPECT_NE(error.find(" is cut off: 54"), std::string::npos) << error;
        EXPECT_EQ(output().frames(), 9000u);
    }
}

TEST_F(RenderTool, PlaysFilesOfTheLowestAndTheHighestRate) {
    for (const int rate : {1000, 768000}) {
        folder.writeSound("in.wav", noise(100), 1, rate);
        run({"in.wav", "out.wav", "--tail", "0"});
        EXPECT_EQ(output().sampleRate, rate);
    }
}

TEST_F(RenderTool, WarnsOfEventsThatLieBehindTheEnd) {
    folder.writeSound("in.wav", noise(1000));
    folder.writeText("moves.txt", "10 Gain 0.5\n");
    const json report = runJson({"in.wav", "out.wav", "--tail", "1", "--automate", "moves.txt"});
    ASSERT_EQ(report["warnings"].size(), 1u);
    EXPECT_NE(report["warnings"][0].get<std::string>().find("1 event comes after the end of the output"),
              std::string::npos);
}

} // namespace
