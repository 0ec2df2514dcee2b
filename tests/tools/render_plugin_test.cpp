// quillon-render with the Quillon Multitap Delay itself.

#include "support/tool_run.h"

#include "desk/private_folder.h"
#include "host/plugin.h"
#include "tools/common/effect_library.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

class RenderPlugin : public testing::Test {
  protected:
    ToolResult run(std::vector<std::string> arguments) {
        const ToolResult result = runTool(folder, arguments);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return result;
    }
    json runJson(std::vector<std::string> arguments) {
        arguments.push_back("--json");
        return json::parse(run(arguments).out, nullptr, false);
    }
    json listJson(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "--list");
        return runJson(arguments);
    }
    Sound output(const std::string& name = "out.wav") { return readSound(folder.file(name)); }

    ScratchFolder folder;
};

struct Stereo {
    std::vector<float> left, right;
};

/// The sound by the shortest way: one instance, the calls a host makes, silence ahead, and the input.
Stereo straightThrough(const std::vector<float>& input, std::size_t preRoll, std::size_t tail,
                       std::int32_t program, std::initializer_list<std::pair<std::int32_t, float>> values) {
    const desk::PrivateFolder current;
    const host::Library& library = tools::loadForGood(QUILLON_LIBRARY);
    host::Plugin plugin(library);
    plugin.start(44100.0f, 512);
    plugin.setProgram(program);
    for (const auto& [id, value] : values)
        plugin.setParameter(id, value);
    std::vector<float> in(preRoll + input.size() + tail);
    std::copy(input.begin(), input.end(), in.begin() + static_cast<std::ptrdiff_t>(preRoll));
    Stereo out{std::vector<float>(in.size()), std::vector<float>(in.size())};
    plugin.processStereo(in.data(), in.data(), out.left.data(), out.right.data(),
                         static_cast<std::int64_t>(in.size()), 512);
    for (auto* side : {&out.left, &out.right})
        side->erase(side->begin(), side->begin() + static_cast<std::ptrdiff_t>(preRoll));
    return out;
}

void expectSame(const Sound& sound, const Stereo& expected) {
    ASSERT_EQ(sound.frames(), expected.left.size());
    for (std::size_t i = 0; i < sound.frames(); ++i) {
        ASSERT_EQ(sound.at(i, 0), expected.left[i]) << "left, frame " << i;
        ASSERT_EQ(sound.at(i, 1), expected.right[i]) << "right, frame " << i;
    }
}

constexpr std::int32_t tapCount = 1, feedback = 6, mix = 14;

TEST_F(RenderPlugin, GivesTheVerySamplesThatTheEffectGives) {
    const auto input = noise(20000);
    folder.writeSound("in.wav", input);
    run({"in.wav", "out.wav", "--program", "3", "--set", "Feedback=0.8", "--set", "Taps #=0.25", "--tail",
         "0.5", "--format", "float"});
    expectSame(output(), straightThrough(input, 150000, 22050, 3, {{feedback, 0.8f}, {tapCount, 0.25f}}));
}

TEST_F(RenderPlugin, GoesOnAlongARampWhenTheProgramChanges) {
    constexpr std::size_t kFrames = 2000, kRamp = 1600, kChange = 696, kStep = 64;
    const auto input = noise(kFrames);
    folder.writeSound("in.wav", input, 1, 48000);
    folder.writeText("moves.txt", "0 Mix 0.25 -> 0.75 over 1600smp\n");
    // 1000 ticks a quarter at the usual tempo: a tick is 24 samples. Program 5 comes after 29.
    const std::vector<std::uint8_t> change = {'M', 'T', 'h',  'd',  0,   0,   0,    6,    0, 0,
                                              0,   1,   0x03, 0xE8, 'M', 'T', 'r',  'k',  0, 0,
                                              0,   7,   29,   0xC0, 5,   0,   0xFF, 0x2F, 0};
    folder.writeBytes("change.mid", change);
    run({"in.wav", "out.wav", "--automate", "moves.txt", "--midi", "change.mid", "--program", "3", "--tail",
         "0", "--pre-roll", "0", "--format", "float"});

    const desk::PrivateFolder current;
    host::Plugin plugin(tools::loadForGood(QUILLON_LIBRARY));
    plugin.start(48000.0f, 512);
    plugin.setProgram(3);
    Stereo expected{std::vector<float>(kFrames), std::vector<float>(kFrames)};
    for (std::size_t frame = 0; frame < kFrames; frame += kStep) {
        if (frame <= kRamp)
            plugin.setParameter(mix, static_cast<float>(0.25 + 0.5 * static_cast<double>(frame) /
                                                                   static_cast<double>(kRamp)));
        // The effect takes MIDI at the start of the step in which it comes.
        if (frame <= kChange && kChange < frame + kStep)
            plugin.setProgram(5);
        plugin.processStereo(&input[frame], &input[frame], &expected.left[frame], &expected.right[frame],
                             static_cast<std::int64_t>(std::min(kStep, kFrames - frame)), 512);
    }
    expectSame(output(), expected);
}

TEST_F(RenderPlugin, StartsColdIfItIsAskedTo) {
    const auto input = noise(20000);
    folder.writeSound("in.wav", input);
    run({"in.wav", "out.wav", "--program", "0", "--set", "Set=1", "--tail", "0", "--format", "float",
         "--pre-roll", "0"});
    expectSame(output(), straightThrough(input, 0, 0, 0, {{8, 1.0f}}));
}

TEST_F(RenderPlugin, GivesTheSameInBlocksOfAnySize) {
    folder.writeSound("in.wav", noise(20000));
    for (const char* mode : {"Set=0", "Set=0.5", "Set=1"}) {
        std::vector<float> first;
        for (const char* size : {"37", "512", "8192"}) {
            run({"in.wav", "out.wav", "--program", "1", "--set", mode, "--set", "LFO Dp=0.5", "--tail",
                 "0.25", "--format", "float", "--block", size});
            if (first.empty())
                first = output().samples;
            EXPECT_EQ(output().samples, first) << mode << " in blocks of " << size;
        }
    }
}

TEST_F(RenderPlugin, IsFoundInTheStageBesideTheTool) {
    EXPECT_EQ(listJson({})["library"], QUILLON_LIBRARY);
    EXPECT_EQ(listJson({})["effect"], "velmo_delay");
}

TEST_F(RenderPlugin, IsFoundBesideTheTool) {
    namespace files = std::filesystem;
    const ScratchFolder installed;
    const std::string tool = installed.file(files::path(QUILLON_RENDER).filename().string());
    files::copy(QUILLON_RENDER, tool);
    files::copy(QUILLON_STAGE, installed.path(), files::copy_options::recursive);
    const ToolResult result = runTool(folder, {"--list", "--json"}, ErrorEnd::file, tool);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(json::parse(result.out)["library"],
              installed.file(files::path(QUILLON_LIBRARY).filename().string()));
}

/// A copy of the tool and of what is delivered, as an installation has them.
void expectFoundIn(const std::string& toolFolder, const std::string& effectFolder) {
    namespace files = std::filesystem;
    const ScratchFolder folder, installed;
    const files::path tool = installed.path() / toolFolder / files::path(QUILLON_RENDER).filename();
    const files::path effect = installed.path() / effectFolder / "QuillonMultitapDelay";
    files::create_directories(tool.parent_path());
    files::create_directories(effect);
    files::copy(QUILLON_RENDER, tool);
    files::copy(QUILLON_STAGE, effect, files::copy_options::recursive);
    const ToolResult result = runTool(folder, {"--list", "--json"}, ErrorEnd::file, tool.string());
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(files::path(json::parse(result.out)["library"].get<std::string>()),
              effect / files::path(QUILLON_LIBRARY).filename());
}

TEST_F(RenderPlugin, IsFoundWhereItIsInstalledForEverybody) {
    expectFoundIn("usr/bin", "usr/lib/vst");
}

TEST_F(RenderPlugin, IsFoundWhereItIsInstalledForOnePerson) {
    expectFoundIn("home/.local/bin", "home/.vst");
}

TEST_F(RenderPlugin, IsAskedForIfItIsNowhere) {
    const ScratchFolder alone;
    const std::string tool = alone.file(std::filesystem::path(QUILLON_RENDER).filename().string());
    std::filesystem::copy(QUILLON_RENDER, tool);
    const ToolResult result = runTool(folder, {"--list"}, ErrorEnd::file, tool);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("name the library with --library"), std::string::npos) << result.err;
}

TEST_F(RenderPlugin, ListsAllProgramsAndParameters) {
    const json list = listJson({});
    ASSERT_EQ(list["programs"].size(), 128u);
    EXPECT_EQ(list["programs"][127]["number"], 127);
    ASSERT_EQ(list["parameters"].size(), 21u);
    EXPECT_EQ(list["parameters"][9]["name"], "Pre LP ");
    EXPECT_EQ(list["parameters"][3]["name"], "Stretch ");
    EXPECT_EQ(list["parameters"][20]["name"], "not used");
    EXPECT_EQ(list["parameters"][20]["display"], "");
}

TEST_F(RenderPlugin, ListsTheWindowsNamesBesideThoseOfHosts) {
    const json list = listJson({});
    EXPECT_EQ(list["parameters"][9]["windowName"], "High cut");
    EXPECT_FALSE(list["parameters"][20].contains("windowName"));
    const std::string text = runTool(folder, {"--list"}).out;
    EXPECT_NE(text.find("  4   Amp Deca  Fade / Swell "), std::string::npos) << text;
}

TEST_F(RenderPlugin, TakesTheWindowsWordsForHowEchoesMove) {
    for (const auto& [word, value] : {std::pair("Jump", 0.0), {"glide", 0.5}, {"Fine", 1.0}}) {
        const json list = listJson({"--set", std::string("How echoes move=display:") + word});
        EXPECT_EQ(list["parameters"][8]["value"], value) << word;
    }
}

TEST_F(RenderPlugin, SetsEveryParameterByWhatItShows) {
    const std::vector<std::pair<std::string, std::string>> shown = {
        {"Bs Lgh 1=250ms", "250"},
        {"Taps #=display:16", "16"},
        {"LFO Rt=2.5Hz", "2.500"},
        {"Amp Decay=display:-0.25", "-0.250"},
        {"Curve=display:0.5", "0.500"},
        {"Feedback=display:-0.3", "-0.300"},
        {"LFO Dp=display:0.2", "0.200"},
        {"Set=display:LFO Off,Use Pitch Off", "LFO Off,Use Pitch Off"},
        {"Pre LP=2000Hz", "2000"},
        {"Pre HP=0.25kHz", "250"},
        {"Pre Pan=display:-0.7", "-0.700"},
        {"Stereo=display:0", "0.000"},
        {"Dry Wet=display:0.750 / 0.250", "0.750 / 0.250"},
        {"Out Pan=display:1", "1.000"},
        {"Pre Gain=display:-oo", "-oo"},
        {"Out Gain=display:-oo", "-oo"},
    };
    std::vector<std::string> arguments;
    for (const auto& [setting, display] : shown)
        arguments.insert(arguments.end(), {"--set", setting});
    const json parameters = listJson(arguments)["parameters"];
    for (const auto& [setting, display] : shown) {
        const std::string name = setting.substr(0, std::min<std::size_t>(setting.find('='), 8));
        const auto found = std::find_if(parameters.begin(), parameters.end(), [&](const json& parameter) {
            return parameter["name"].get<std::string>().starts_with(name);
        });
        ASSERT_NE(found, parameters.end()) << name;
        EXPECT_EQ((*found)["display"], display) << setting;
    }
}

TEST_F(RenderPlugin, ReportsPreGainAsItWasSetThoughTheLoopOverwritesIt) {
    folder.writeSound("in.wav", noise(100));
    const json report = runJson({"in.wav", "out.wav", "--tail", "0", "--set", "Pre Gain=0.25"});
    EXPECT_EQ(report["parameters"][12]["value"], 0.25);
}

/// 128 programs that differ in "Dry Wet" and in name, as the effect's own chunk.
std::vector<std::uint8_t> bankChunk() {
    const desk::PrivateFolder current;
    const host::Library& library = tools::loadForGood(QUILLON_LIBRARY);
    host::Plugin plugin(library);
    for (std::int32_t program = 0; program < 128; ++program) {
        plugin.setProgram(program);
        plugin.setProgramName("Number " + std::to_string(program));
        plugin.setParameter(14, static_cast<float>(program) / 128.0f);
    }
    return plugin.getChunk(false);
}

TEST_F(RenderPlugin, LoadsABankAndAPresetFromChunks) {
    const auto bank = bankChunk();
    ASSERT_EQ(bank.size(), 14336u);
    folder.writeBytes("bank", bank);
    const json fromBank = listJson({"--chunk", "bank", "--program", "number 64"});
    EXPECT_EQ(fromBank["program"]["number"], 64);
    EXPECT_EQ(fromBank["parameters"][14]["value"], 0.5);

    folder.writeBytes("preset", std::span(bank).subspan(112 * 32, 112));
    const json fromPreset = listJson({"--chunk", "preset", "--program", "7"});
    EXPECT_EQ(fromPreset["program"]["number"], 7);
    EXPECT_EQ(fromPreset["program"]["name"], "Number 32");
    EXPECT_EQ(fromPreset["parameters"][14]["value"], 0.25);
}

TEST_F(RenderPlugin, RefusesChunksOfTheWrongSizeBeforeTheEffectSeesThem) {
    folder.writeBytes("chunk", std::vector<std::uint8_t>(113));
    const ToolResult result = runTool(folder, {"--list", "--chunk", "chunk"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("chunk is 113 bytes long; one program is 112 and a whole bank 14336"),
              std::string::npos);
}

TEST_F(RenderPlugin, LoadsABankFile) {
    std::vector<std::uint8_t> file(160);
    const auto put = [&](std::size_t at, std::string_view bytes) {
        std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(at));
    };
    put(0, "CcnK");
    put(8, "FBCh");
    put(16, "qlvd");
    put(156, std::string_view("\x00\x00\x38\x00", 4));
    const auto chunk = bankChunk();
    file.insert(file.end(), chunk.begin(), chunk.end());
    folder.writeBytes("bank.fxb", file);
    EXPECT_EQ(listJson({"--bank", "bank.fxb", "--program", "100"})["program"]["name"], "Number 100");
    std::copy_n("vmdl", 4, file.begin() + 16);
    folder.writeBytes("old.fxb", file);
    EXPECT_EQ(listJson({"--bank", "old.fxb", "--program", "100"})["program"]["name"], "Number 100");
    file.resize(160 + 112);
    file[158] = 0;
    file[159] = 112;
    folder.writeBytes("short.fxb", file);
    const ToolResult result = runTool(folder, {"--list", "--bank", "short.fxb"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("holds a bank of 112 bytes; it should be 14336"), std::string::npos)
        << result.err;
}

TEST_F(RenderPlugin, AutomatesByNameAndDisplay) {
    folder.writeSound("in.wav", std::vector<float>(20000, 0.25f));
    folder.writeText("moves.txt",
                     "10000smp \"Dry Wet\" \"display:0.000 / 1.000\"\n15000smp \"Taps #\" display:3\n");
    run({"in.wav", "out.wav", "--set", "Dry Wet=0", "--tail", "0", "--format", "float", "--automate",
         "moves.txt"});
    const Sound out = output();
    // All dry is the input itself; from the change on, the glide takes it away.
    for (std::size_t i : {0u, 5000u, 9999u})
        EXPECT_EQ(out.at(i, 0), 0.25f) << i;
    EXPECT_LT(out.at(10000, 0), 0.25f);
}

TEST_F(RenderPlugin, FollowsAMidiProgramChange) {
    folder.writeSound("in.wav", std::vector<float>(44100, 0.25f));
    auto bank = bankChunk();
    folder.writeBytes("bank", bank);
    // Program 0 of this bank is all dry, 127 nearly all wet; the change comes after half a second.
    folder.writeBytes("change.mid", std::vector<std::uint8_t>{'M', 'T', 'h', 'd',  0,   0,   0,    6,    0, 0,
                                                              0,   1,   0,   100,  'M', 'T', 'r',  'k',  0, 0,
                                                              0,   7,   100, 0xC0, 127, 0,   0xFF, 0x2F, 0});
    run({"in.wav", "out.wav", "--chunk", "bank", "--tail", "0", "--format", "float", "--midi", "change.mid"});
    const Sound out = output();
    EXPECT_EQ(out.at(22050 - 512, 0), 0.25f);
    EXPECT_LT(out.at(22050 + 512, 0), 0.25f);
}

TEST_F(RenderPlugin, PlaysOnUntilItsLastTapHasFaded) {
    folder.writeSound("in.wav", std::vector<float>(100, 0.5f));
    // Two taps, each a second after the one before, the second at half the level.
    const json report =
        runJson({"in.wav", "out.wav", "--set", "Bs Lgh 1=1", "--set", "Taps #=display:2", "--set",
                 "Stretch=0.5", "--set", "Amp Decay=0.25", "--set", "Set=0", "--set", "Feedback=0.5"});
    EXPECT_GT(report["frames"], 2 * 44100);
    EXPECT_LT(report["frames"], 3 * 44100);
}

std::uint32_t bigEndian(const std::vector<std::uint8_t>& bytes, std::size_t at) {
    return static_cast<std::uint32_t>(bytes[at] << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 |
                                      bytes[at + 3]);
}

void expectPicture(const std::vector<std::uint8_t>& png) {
    ASSERT_GT(png.size(), 10000u);
    const std::vector<std::uint8_t> mark = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    EXPECT_TRUE(std::equal(mark.begin(), mark.end(), png.begin()));
    EXPECT_EQ(bigEndian(png, 16), 1400u);
    EXPECT_EQ(bigEndian(png, 20), 900u);
}

TEST_F(RenderPlugin, DrawsAPictureOfTheSoundAndTheTaps) {
    folder.writeSound("in.wav", noise(20000));
    const json report = runJson({"in.wav", "out.wav", "--tail", "1", "--plot", "out.png"});
    EXPECT_EQ(report["plot"], folder.file("out.png"));
    expectPicture(readFile(folder.file("out.png")));
    run({"in.wav", "other.wav", "--tail", "1", "--plot", "other.png", "--program", "5"});
    EXPECT_NE(readFile(folder.file("out.png")), readFile(folder.file("other.png")));
}

TEST_F(RenderPlugin, DrawsAPictureForAnyOtherEffectToo) {
    folder.writeSound("in.wav", noise(20000));
    for (const char* library : {"probe", "probe_mono"}) {
        run({"in.wav", "out.wav", "--tail", "0", "--plot", "out.png", "--library",
             PROBES "/" + std::string(library) + ".so"});
        expectPicture(readFile(folder.file("out.png")));
    }
}

TEST_F(RenderPlugin, SoundsTheSameWithAndWithoutAPicture) {
    folder.writeSound("in.wav", noise(20000));
    run({"in.wav", "plain.wav", "--tail", "1"});
    run({"in.wav", "drawn.wav", "--tail", "1", "--plot", "drawn.png"});
    EXPECT_EQ(readFile(folder.file("plain.wav")), readFile(folder.file("drawn.wav")));
}

} // namespace
