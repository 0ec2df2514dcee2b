// Whatever goes wrong: one line that names what is at fault, exit code 2, and no file that wasn't there
// before.

#include "support/tool_run.h"

#include <gtest/gtest.h>

namespace {

class RenderErrors : public testing::Test {
  protected:
    void SetUp() override {
        folder.writeSound("in.wav", noise(1000));
        folder.writeText("out.wav", "what was here before");
    }

    void expectError(std::vector<std::string> arguments, const std::string& words) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const auto before = folder.names();
        const ToolResult result = runTool(folder, arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        const auto lines = result.errorLines();
        ASSERT_EQ(lines.size(), 1u) << result.err;
        EXPECT_TRUE(lines[0].starts_with("quillon-render: ")) << lines[0];
        EXPECT_NE(lines[0].find(words), std::string::npos) << lines[0] << "\n  expected: " << words;
        EXPECT_EQ(folder.names(), before);
        EXPECT_EQ(readFile(folder.file("out.wav")).size(), 20u) << "the older file has changed";
    }
    /// The same with a probe effect.
    void expectProbeError(std::vector<std::string> arguments, const std::string& words,
                          const std::string& library = "probe") {
        arguments.insert(arguments.end(), {"--library", PROBES "/" + library + ".so", "--quiet"});
        expectError(arguments, words);
    }
    /// Words about a file of automation with this text.
    void expectAutomationError(const std::string& text, const std::string& words) {
        folder.writeText("moves.txt", text);
        expectProbeError({"in.wav", "new.wav", "--automate", "moves.txt"}, "moves.txt, " + words);
    }

    ScratchFolder folder;
};

TEST_F(RenderErrors, OfTheCommandLine) {
    expectError({}, "which file?");
    expectError({"in.wav"}, "where to?");
    expectError({"in.wav", "out.wav", "--shout"}, "--shout");
    expectError({"in.wav", "out.wav", "--block", "none"}, "--block: \"none\"");
    expectError({"in.wav", "out.wav", "--set", "one\ntwo"}, "\"one two\"");
}

TEST_F(RenderErrors, OfAnInputThatCannotBeRead) {
    folder.writeText("words.wav", "these are only words, and not even many of them");
    expectProbeError({"missing.wav", "out.wav"}, "missing.wav cannot be read: there is no such file");
    expectProbeError({"words.wav", "out.wav"}, "words.wav cannot be read");
    expectProbeError({".", "out.wav"}, "is a folder");
}

TEST_F(RenderErrors, OfAnInputWithoutSound) {
    folder.writeSound("empty.wav", {});
    expectProbeError({"empty.wav", "out.wav"}, "empty.wav holds no sound");
}

TEST_F(RenderErrors, OfAnInputWithTooManyChannels) {
    folder.writeSound("surround.wav", noise(6000), 6);
    expectProbeError({"surround.wav", "out.wav"}, "surround.wav has 6 channels");
}

TEST_F(RenderErrors, OfAnInputWhoseRateCannotBe) {
    for (const int rate : {1, 999, 768001, 2000000000}) {
        folder.writeSound("fast.wav", noise(100), 1, rate);
        expectProbeError({"fast.wav", "out.wav"}, "fast.wav has a sample rate of " + std::to_string(rate) +
                                                      " Hz; only 1000 to 768000 Hz can be played");
    }
}

TEST_F(RenderErrors, OfAnInputThatHoldsNoNumbers) {
    auto samples = noise(1000);
    samples[441] = std::numeric_limits<float>::quiet_NaN();
    folder.writeSound("bad.wav", samples);
    expectProbeError({"bad.wav", "out.wav"}, "bad.wav holds a sample that is not a number, at 0.010 s");
}

TEST_F(RenderErrors, OfAnOutputThatCannotBeWritten) {
    std::filesystem::create_directory(folder.path() / "folder.wav");
    expectProbeError({"in.wav", "nowhere/out.wav"}, "there is no folder");
    expectProbeError({"in.wav", "folder.wav"}, "folder.wav is a folder");
    expectProbeError({"in.wav", "/dev/null"}, "/dev/null is not a plain file");
}

TEST_F(RenderErrors, OfAnOutputOfNoKnownKind) {
    expectProbeError({"in.wav", "out.mp9"}, "out.mp9: what kind of file?");
    expectProbeError({"in.wav", "out"}, "what kind of file?");
    expectProbeError({"in.wav", "out.flac", "--format", "float"}, "cannot hold floating point");
    expectProbeError({"in.wav", "out.ogg", "--format", "24"}, "has no sample format");
}

TEST_F(RenderErrors, OfAnOutputThatIsAnInput) {
    folder.writeText("moves.txt", "1 Gain 0.5\n");
    expectProbeError({"in.wav", "in.wav"}, "in.wav is an input and would be overwritten");
    expectProbeError({"in.wav", "./nowhere/../in.wav"}, "in.wav is an input and would be overwritten");
    std::filesystem::create_symlink("in.wav", folder.path() / "link.wav");
    expectProbeError({"in.wav", "link.wav"}, "link.wav is an input and would be overwritten");
    std::filesystem::create_hard_link(folder.path() / "in.wav", folder.path() / "twin.wav");
    expectProbeError({"in.wav", "twin.wav"}, "twin.wav is an input and would be overwritten");
    expectProbeError({"in.wav", "moves.txt", "--automate", "moves.txt"}, "moves.txt is an input");
}

TEST_F(RenderErrors, OfAPictureThatCannotBeDrawn) {
    expectProbeError({"in.wav", "new.wav", "--plot", "nowhere/plot.png"}, "there is no folder");
    expectProbeError({"in.wav", "new.wav", "--plot", "plot.jpg"}, "its name should end in .png");
    expectProbeError({"in.wav", "new.png", "--plot", "new.png"}, "cannot be both the sound and the picture");
}

TEST_F(RenderErrors, OfALibraryThatIsNone) {
    expectError({"in.wav", "new.wav", "--library", "missing.so"}, "missing.so: there is no such library");
    expectError({"in.wav", "new.wav", "--library", "in.wav"}, "in.wav");
    expectProbeError({"in.wav", "new.wav"}, "no entry point", "not_a_plugin");
    expectProbeError({"in.wav", "new.wav"}, "gave no instance", "probe_null");
    expectProbeError({"in.wav", "new.wav"}, "not a plug-in's record", "probe_wrong_mark");
}

TEST_F(RenderErrors, OfAnEffectThatCannotBePlayedThrough) {
    expectProbeError({"in.wav", "new.wav"}, "is an instrument", "probe_synth");
    expectProbeError({"in.wav", "new.wav"}, "has 4 inputs and 4 outputs", "probe_four");
}

TEST_F(RenderErrors, OfAnEffectThatRunsAway) {
    folder.writeSound("long.wav", noise(100000));
    // 150000 frames ahead of the file, 50000 of the file: 1.134 s.
    expectProbeError({"long.wav", "new.wav", "--plot", "new.png"}, "not a number from 1.134 s on",
                     "probe_breaks");
}

TEST_F(RenderErrors, OfAProgramThatIsNotThere) {
    expectProbeError({"in.wav", "new.wav", "--program", "5"},
                     "--program \"5\": there is no program 5; they are numbered 0 to 4");
    expectProbeError({"in.wav", "new.wav", "--program", "Third"},
                     "--program \"Third\": there is no program \"Third\"");
    expectProbeError({"in.wav", "new.wav", "--program", "twice"},
                     "could be several programs; give the number: 3 and 4");
}

TEST_F(RenderErrors, OfASettingThatCannotBe) {
    expectProbeError({"in.wav", "new.wav", "--set", "Volume=1"},
                     "--set \"Volume=1\": there is no parameter \"Volume\"");
    expectProbeError({"in.wav", "new.wav", "--set", "Twin=1"},
                     "the name of several parameters; give the number: 4 and 5");
    expectProbeError({"in.wav", "new.wav", "--set", "Steps=display:11"}, "\"Steps\" never shows \"11\"");
    expectProbeError({"in.wav", "new.wav", "--set", "Delay=5dB"}, "the effect shows it in \"s\"");
    expectProbeError({"in.wav", "new.wav", "--set", "Gain=7"}, "a value without a unit must be from 0 to 1");
}

TEST_F(RenderErrors, OfAnAutomationFileNameFileAndLine) {
    expectAutomationError("1 Gain 0.5\n\n2 Gain much\n", "line 3: \"much\" is not a value");
    expectAutomationError("1 Gain 0.5\n2 Volume 0.5\n", "line 2: there is no parameter");
    expectAutomationError("1 Steps display:99\n", "line 1: \"Steps\" never shows");
    expectAutomationError("1 Gain 0 -> 1 over 2s\n\n2.5 Gain 0.5\n",
                          "line 3: \"Gain\" is still moved by the ramp of line 1");
    expectAutomationError("3 Gain 1 -> 0 over 1s\n1 Gain 0 -> 1 over 3s\n",
                          "line 1: \"Gain\" is still moved by the ramp of line 2");
    expectAutomationError("1 Gain 0 -> 1 over 3601s\n", "line 1: a ramp may last 3600 s");
    expectAutomationError("1 Steps 0 -> display:99 over 1s\n", "line 1: \"Steps\" never shows");
    expectProbeError({"in.wav", "new.wav", "--automate", "missing.txt"}, "missing.txt cannot be read");
    expectProbeError({"in.wav", "new.wav", "--automate", "."}, "is a folder");
}

TEST_F(RenderErrors, OfAMidiFileNameTheFile) {
    folder.writeText("notes.mid", "MThd");
    expectProbeError({"in.wav", "new.wav", "--midi", "notes.mid"}, "notes.mid is not a standard MIDI file");
    expectProbeError({"in.wav", "new.wav", "--midi", "missing.mid"}, "missing.mid cannot be read");
}

TEST_F(RenderErrors, OfAChunkOfNoKnownSize) {
    folder.writeText("chunk", "short");
    expectProbeError({"in.wav", "new.wav", "--chunk", "chunk"},
                     "chunk is 5 bytes long; one program is 32 and a whole bank 160");
    expectProbeError({"in.wav", "new.wav", "--chunk", "missing"}, "missing cannot be read");
}

TEST_F(RenderErrors, OfABankThatIsNone) {
    folder.writeText("bank.fxb", "no bank");
    expectProbeError({"in.wav", "new.wav", "--bank", "bank.fxb"}, "bank.fxb is not a bank file");
    const auto bank = [](const std::string& kind, const std::string& effect) {
        const std::string nothing(4, '\0');
        return "CcnK" + nothing + kind + nothing + effect + std::string(140, '\0');
    };
    folder.writeText("bank.fxb", bank("FxBk", "Prob"));
    expectProbeError({"in.wav", "new.wav", "--bank", "bank.fxb"}, "bank.fxb is a bank of plain parameters");
    folder.writeText("bank.fxb", bank("FBCh", "Else"));
    expectProbeError({"in.wav", "new.wav", "--bank", "bank.fxb"},
                     "a bank of another effect, \"Else\", and not of \"Prob\"");
    folder.writeText("bank.fxb", bank("FBCh", "Prob"));
    expectProbeError({"in.wav", "new.wav", "--bank", "bank.fxb"},
                     "holds a bank of 0 bytes; it should be 160");
}

} // namespace
