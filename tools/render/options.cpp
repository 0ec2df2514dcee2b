#include "tools/render/options.h"

#include "tools/common/command_line.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <CLI/CLI.hpp>

namespace tools::render {

namespace {

constexpr const char* kDescription =
    "Plays an audio file through a VST 2.4 effect and writes what comes out to a new file.\n"
    "Unless told otherwise, the effect is the Quillon Multitap Delay.\n";

constexpr const char* kExamples = R"(Examples:
  Echoes from program 3, as a 24-bit file:
    quillon-render voice.wav echoes.wav --program 3

  Sixteen taps a quarter of a second apart at the most, nothing but echoes, no sweep:
    quillon-render voice.wav taps.wav --set "Taps #=display:16" --set "Bs Lgh 1=250ms" \
        --set "Dry Wet=1" --set "Set=display:LFO Off,Use Pitch Off"

  See what is there to set:
    quillon-render --list

  Hear it and look at it:
    quillon-render voice.wav echoes.flac --program 12 --plot echoes.png

Values:
  Feedback=0.8            the knob's place, from 0 (left) to 1 (right)
  "Bs Lgh 1=250ms"        what the effect shows there; units: ms, s, Hz, kHz, dB, %
  "Taps #=display:16"     what the effect shows there, without a unit or in words
  Capital letters and blanks at the ends of a name do not matter, and names may be given in full where the
  effect shows only their first eight letters. Where several places show the same, the one in use is kept, else
  the middle one is taken.

Automation files have one change a line, time, parameter, value, with blanks or commas between:
    # time      parameter    value
    0.5         Feedback     0.9
    1500ms      "Bs Lgh 1"   250ms
    96000smp    Dry Wet      1
  Times are seconds, milliseconds (ms) or samples (smp) from the file's beginning; the change is exact to the
  sample. A line that begins with # is a comment, and so is what follows a # behind the value.

How long it plays: with --tail auto, until the output has stayed below -80 dBFS for 4194304 samples, which is as
far back as the Quillon Multitap Delay remembers, but never longer than 120 seconds behind the input; the file
then ends with the last sample that reached -80 dBFS.

Files of one channel are played to both inputs of the effect; for an effect with one input, the two channels of a
file are mixed to one. The output has as many channels as the effect. Rates from 1000 to 768000 Hz are played. Of
a file that is cut off, what is there is played, with a warning.

How it ends: with 0 if OUT is written, also where there was a warning; with 2 if it is not; with 130 if you stop
it. If the effect crashes, the tool says in which call, and ends as the crash would end it. Unless OUT is written,
nothing is left behind.)";

struct Words {
    std::string input, output, library, program, automation, midi, chunk, bank, plot, tail, preRoll, block,
        format;
    std::vector<std::string> settings;
    bool list = false, json = false, quiet = false, version = false;
};

void addSoundOptions(CLI::App& app, Words& words) {
    const std::string group = "Sound";
    app.add_option("--program", words.program, "Start from a program, by number (0 to 127) or by name")
        ->type_name("N|NAME")
        ->group(group);
    app.add_option(
           "--set", words.settings,
           "Set one parameter, by name or number, see Values below;\nmay be given as often as you like")
        ->type_name("PARAMETER=VALUE")
        ->allow_extra_args(false)
        ->group(group);
    app.add_option("--automate", words.automation, "Change parameters while it plays, see below")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--midi", words.midi,
                   "Play a standard MIDI file to the effect: controllers, program\nchanges, notes")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--bank", words.bank, "Load all programs from a bank file (.fxb)")
        ->type_name("FILE")
        ->group(group);
    app.add_option(
           "--chunk", words.chunk,
           "Load the effect's state as a host keeps it: one program\n(112 bytes) or all (14336 bytes)")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--library", words.library, "Use this effect instead, any VST 2.4 library")
        ->type_name("FILE")
        ->group(group);
}

void addRenderOptions(CLI::App& app, Words& words) {
    const std::string group = "Rendering";
    app.add_option("--tail", words.tail,
                   "How long to go on behind the end of the input: seconds, or\nauto, until it is quiet (the "
                   "default)")
        ->type_name("auto|SECONDS")
        ->group(group);
    app.add_option("--format", words.format,
                   "Sample format of OUT: 24 bit or floating point; the default is 24\nfor files that have "
                   "the choice")
        ->type_name("24|float")
        ->group(group);
    app.add_option("--block", words.block, "Samples handed to the effect at a time, 1 to 65536 (default 512)")
        ->type_name("N")
        ->group(group);
    app.add_option("--pre-roll", words.preRoll,
                   "Let the effect run on silence for so many seconds first, so that\n"
                   "its glides have arrived (default: 150000 samples; 0 starts it cold)")
        ->type_name("SECONDS")
        ->group(group);
}

void addReportOptions(CLI::App& app, Words& words) {
    const std::string group = "Looking at it";
    app.add_flag("--list", words.list, "Show the effect's programs and parameters, and render nothing")
        ->group(group);
    app.add_option("--plot", words.plot, "Draw a picture of the sound before and after, and of the taps")
        ->type_name("FILE.png")
        ->group(group);
    app.add_flag("--json", words.json, "Report in JSON on standard output, for scripts")->group(group);
    app.add_flag("--quiet", words.quiet, "No progress and no report; warnings and errors only")->group(group);
    app.set_help_flag("--help,-h", "Show this help")->group(group);
    app.add_flag("--version", words.version, "Show the tool's version")->group(group);
}

double secondsFrom(const std::string& text, const char* option) {
    const auto seconds = numberFrom(text);
    constexpr double day = 24.0 * 60.0 * 60.0;
    if (!seconds || *seconds < 0.0 || *seconds > day)
        throw ToolError(std::string(option) + ": " + inQuotes(text) + " is not a number of seconds");
    return *seconds;
}

TailRule tailFrom(const std::string& text) {
    if (text.empty() || sameName(text, "auto"))
        return {};
    return {false, secondsFrom(text, "--tail")};
}

SampleFormat formatFrom(const std::string& text) {
    if (text.empty())
        return SampleFormat::automatic;
    if (text == "24")
        return SampleFormat::pcm24;
    if (sameName(text, "float"))
        return SampleFormat::float32;
    throw ToolError("--format: " + inQuotes(text) + " is not a format; there are 24 and float");
}

std::int32_t blockSizeFrom(const std::string& text) {
    if (text.empty())
        return Options().blockSize;
    const auto frames = countFrom(text);
    if (!frames || *frames < 1 || *frames > 65536)
        throw ToolError("--block: " + inQuotes(text) + " is not a number from 1 to 65536");
    return *frames;
}

void checkCombination(const Words& words, const CLI::App& app) {
    checkNothingIsEmpty(app);
    if (words.list) {
        if (!words.input.empty())
            throw ToolError("--list renders nothing and takes no files; leave out " + inQuotes(words.input));
        if (!words.plot.empty() || !words.automation.empty() || !words.midi.empty())
            throw ToolError("--list renders nothing and goes with neither --plot nor --automate nor --midi");
        return;
    }
    if (words.input.empty())
        throw ToolError("which file? Give the audio file to play and the file to write, or --help");
    if (words.output.empty())
        throw ToolError("where to? Give the file to write behind " + inQuotes(words.input));
    if (words.json && words.quiet)
        throw ToolError("--json and --quiet do not go together");
}

Options optionsFrom(const Words& words) {
    Options options;
    options.input = settled(words.input);
    options.output = settled(words.output);
    options.library = settled(words.library);
    options.automation = settled(words.automation);
    options.midi = settled(words.midi);
    options.chunk = settled(words.chunk);
    options.bank = settled(words.bank);
    options.plot = settled(words.plot);
    options.program = words.program;
    options.settings = settingsFrom(words.settings);
    options.tail = tailFrom(words.tail);
    if (!words.preRoll.empty())
        options.preRollSeconds = secondsFrom(words.preRoll, "--pre-roll");
    options.blockSize = blockSizeFrom(words.block);
    options.format = formatFrom(words.format);
    options.list = words.list;
    options.json = words.json;
    options.quiet = words.quiet;
    return options;
}

} // namespace

std::variant<Options, HelpText> parseOptions(int argumentCount, const char* const* arguments) {
    CLI::App app(kDescription, "quillon-render");
    app.allow_windows_style_options(false); // A file may be called /this, on every system.
    Words words;
    app.add_option("IN", words.input, "The audio file to play: WAV, FLAC, AIFF, OGG, ..., mono or stereo");
    app.add_option("OUT", words.output,
                   "The file to write; its ending says the kind: .wav, .flac, .aiff, .ogg");
    addSoundOptions(app, words);
    addRenderOptions(app, words);
    addReportOptions(app, words);
    app.get_formatter()->column_width(34);
    app.get_formatter()->label("TEXT", "");
    app.get_formatter()->label("Positionals", "Files");
    app.footer(kExamples);
    if (const auto help = parseOrHelp(app, argumentCount, arguments))
        return HelpText{*help};
    if (words.version)
        return HelpText{"quillon-render " QUILLON_VERSION "\n"};
    checkCombination(words, app);
    return optionsFrom(words);
}

} // namespace tools::render
