#include "tools/render/options.h"

#include "tools/common/command_line.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <thread>

namespace tools::render {

namespace {

constexpr const char* kDescription =
    "Plays audio files through a VST 2.4 effect and writes the output to new files.\n"
    "The default effect is the Quillon Multitap Delay.\n";

constexpr const char* kExamples = R"(Examples:
  Echoes from program 3, as a 24-bit file:
    quillon-render voice.wav echoes.wav --program 3

  Sixteen evenly spaced echoes, 125 ms apart, without sweep and without the dry sound:
    quillon-render voice.wav taps.wav --set "Echoes=display:16" --set "Base length=250ms" \
        --set "Stretch=0.5" --set "Mix=1" --set "How echoes move=display:Jump"

  An echo every dotted eighth at 112 bpm; evenly spaced echoes are half a base length apart:
    quillon-render riff.wav echoes.wav --program "Classic Ping-Pong" --bpm 112 --set "Base length=1/4."

  List the programs and parameters:
    quillon-render --list

  Hear it and look at it:
    quillon-render voice.wav echoes.flac --program 12 --plot echoes.png

  A whole album, with three programs, into one folder:
    quillon-render album/ bonus.wav "takes/*.flac" --to echoes --programs "3,Slow Dawn,Ping*"

  Hear a sound with all programs, on a page for the browser:
    quillon-render voice.wav --contact-sheet listen

Names:
  A parameter has two names: the one in the window, "Base length", and the short one in VST hosts, "Bs Lgh 1".
  Both work here, in upper or lower case; --list shows them side by side. Programs may be given by the first
  letters of their names.

Values:
  Feedback=0.8                    position of the knob, from 0 (left) to 1 (right)
  "Base length=250ms"             value as displayed, with a unit: ms, s, Hz, kHz, dB, %
  "Base length=1/8."              note length at --bpm: 1/4, 3/16, 1/8. (dotted), 1/8t (triplet); for
                                  "Sweep rate", the time of one sweep
  "Echoes=display:16"             value as displayed, without a unit or as text
  "How echoes move=display:Jump"  Jump, Glide or Fine
  With a unit, the Quillon Multitap Delay comes as near to the number as it can: "Feedback=-30%", "Mix=40%" (the
  share of the echoes), "High cut=8kHz". If several positions show what is written after display:, the current
  one is kept, else the middle one is used.

Automation files have one change per line: time, parameter and value, separated by spaces or commas:
    # time      parameter       value
    0.5         Feedback        0.9
    1500ms      "Base length"   250ms
    96000smp    Mix             1
    4s          Feedback        0.2 -> 0.9 over 2s
  Times count from the start of the file, in seconds, milliseconds (ms) or samples (smp); each change happens at
  exactly that sample. A # starts a comment, at the start of a line or after the value.
  The last line above is a ramp: it moves the knob evenly from 0.2 to 0.9 within 2 seconds, in steps of 64 samples.
  A ramp goes on through changes of program. Ramps of one parameter must not overlap.

Length of the output: with --tail auto, it ends when the effect has stayed below -80 dBFS for 4194304 samples,
the length of the delay memory, or 120 seconds after the input at the latest. The file then ends at the last
sample that reached -80 dBFS.

Channels and rates: a mono file is played to both inputs; for an effect with one input, the channels of a stereo
file are mixed. The output has as many channels as the effect. Sample rates from 1000 to 768000 Hz are accepted.
A truncated file is played as far as it goes, with a warning.

In pipes, - as IN is standard input, any kind of sound file, and - as OUT is standard output, a WAV file:
    quillon-render - - --program 3 < in.wav > out.wav
  Both pass through temporary files: playing starts when all of the input is there, and the output comes when all
  of it is rendered, with the right length in its header. The report then goes to standard error.

Loudness is measured by EBU R 128: integrated loudness in LUFS, loudness range in LU and true peak in dBTP, for
sounds of at least 0.4 s at sample rates from 8000 Hz. A mono file counts as one channel: its sound is 3 LU louder
when both channels of the output play it.

Many files: with --to, all other files, folders and patterns are inputs. A folder stands for the sound files in
it and in its sub-folders. The outputs are called "voice.wav" or, with --programs, "voice - 003 Marbles on
Tile.wav", and are the same as when rendered alone. The same command, given again, renders only what is missing or
has changed; what is finished is noted in quillon-render.jsonl in the folder. Files there that are not from this
tool, or that you have changed, are left as they are, unless you say --again.

The page of --contact-sheet plays every program, with its loudness and its picture, beside the dry sound. It opens
in a browser without a network.

Exit code: 0 if OUT is written, with or without warnings; 2 if it is not; 130 if you stop it. If the effect
crashes, the tool names the call that crashed and ends the way the crash would end it. If OUT is not written,
no other files are left behind. With many files: 0 if all are there, 2 if one failed, 130 if you stop it.)";

constexpr std::string_view kStandardStream = "-";

constexpr const char* kBulkGroup = "Many files";
constexpr const char* kInformationGroup = "Information";

struct Words {
    std::string input, output, library, program, automation, midi, chunk, bank, plot, tail, preRoll, block,
        format, bpm;
    std::vector<std::string> settings;
    std::vector<std::string> more, programs;
    std::string folder, sheet, type, jobs;
    bool list = false, json = false, quiet = false, version = false, again = false;

    bool isBulk() const { return !folder.empty() || !sheet.empty(); }
};

void addSoundOptions(CLI::App& app, Words& words) {
    const std::string group = "Sound";
    app.add_option("--program", words.program, "Start from a program, by number (0 to 127) or by name")
        ->type_name("N|NAME")
        ->group(group);
    app.add_option("--set", words.settings,
                   "Set a parameter, by name or number, see Names and Values\nbelow; may be repeated")
        ->type_name("PARAMETER=VALUE")
        ->allow_extra_args(false)
        ->group(group);
    app.add_option("--bpm", words.bpm, "Tempo of note lengths like 1/8. in --set and --automate")
        ->type_name("BPM")
        ->group(group);
    app.add_option("--automate", words.automation, "Change parameters during playback, see below")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--midi", words.midi,
                   "Play a standard MIDI file to the effect: controllers, program\nchanges, notes")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--bank", words.bank, "Load all programs from a bank file (.fxb)")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--chunk", words.chunk,
                   "Load a state saved by a host: one program (112 bytes) or all\nof them (14336 bytes)")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--library", words.library, "Use this VST 2.4 library instead")
        ->type_name("FILE")
        ->group(group);
}

void addRenderOptions(CLI::App& app, Words& words) {
    const std::string group = "Rendering";
    app.add_option(
           "--tail", words.tail,
           "How long to continue after the end of the input: seconds, or\nauto (the default), until it is "
           "quiet")
        ->type_name("auto|SECONDS")
        ->group(group);
    app.add_option(
           "--format", words.format,
           "Sample format of OUT: 24 bit or floating point (default 24, where\nthe file type allows both)")
        ->type_name("24|float")
        ->group(group);
    app.add_option("--block", words.block, "Block size in samples, 1 to 65536 (default 512)")
        ->type_name("N")
        ->group(group);
    app.add_option("--pre-roll", words.preRoll,
                   "Run the effect on silence for this long first, so that its glides\n"
                   "have settled (default: 150000 samples; 0 for none)")
        ->type_name("SECONDS")
        ->group(group);
}

void addReportOptions(CLI::App& app, Words& words) {
    const std::string group = kInformationGroup;
    app.add_flag("--list", words.list, "List the effect's programs and parameters; render nothing")
        ->group(group);
    app.add_option("--plot", words.plot, "Draw the sound before and after, and the echoes")
        ->type_name("FILE.png")
        ->group(group);
    app.add_flag("--json", words.json, "Report in JSON on standard output, for scripts")->group(group);
    app.add_flag("--quiet", words.quiet,
                 "Print no progress, and no report without --json; only warnings\nand errors")
        ->group(group);
    app.set_help_flag("--help,-h", "Show this help")->group(group);
    app.add_flag("--version", words.version, "Show the tool's version")->group(group);
}

void addBulkOptions(CLI::App& app, Words& words) {
    app.add_option("--to", words.folder,
                   "Render all other files, folders and patterns (\"takes/*.wav\")\n"
                   "into this folder; sub-folders are kept")
        ->type_name("FOLDER")
        ->group(kBulkGroup);
    app.add_option("--programs", words.programs, "With each of these programs: \"0-31,47,Slow Dawn,Ping*\"")
        ->type_name("LIST")
        ->allow_extra_args(false)
        ->group(kBulkGroup);
    app.add_option("--contact-sheet", words.sheet,
                   "Render IN with every program (or those of --programs) into\n"
                   "this folder, with a page for listening: index.html")
        ->type_name("FOLDER")
        ->group(kBulkGroup);
    app.add_option("--type", words.type,
                   "wav, flac, aiff, ogg, caf or w64 (default: that of the input,\nor wav)")
        ->type_name("TYPE")
        ->group(kBulkGroup);
    app.add_option("--jobs", words.jobs,
                   "So many at the same time (default: as many as there are\nprocessors)")
        ->type_name("N")
        ->group(kBulkGroup);
    app.add_flag("--again", words.again, "Render also what is there already, and replace it")
        ->group(kBulkGroup);
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
    throw ToolError("--format: " + inQuotes(text) + " is not a format; use 24 or float");
}

std::int32_t blockSizeFrom(const std::string& text) {
    if (text.empty())
        return Options().blockSize;
    const auto frames = countFrom(text);
    if (!frames || *frames < 1 || *frames > 65536)
        throw ToolError("--block: " + inQuotes(text) + " is not a number from 1 to 65536");
    return *frames;
}

void checkBulk(const Words& words) {
    const std::string option = words.sheet.empty() ? "--to" : "--contact-sheet";
    if (!words.sheet.empty() && !words.folder.empty())
        throw ToolError("--to and --contact-sheet both name the folder to write to; give one of them");
    if (words.input.empty())
        throw ToolError("which files? Give what to play beside " + option);
    if (!words.sheet.empty() && !words.output.empty())
        throw ToolError("--contact-sheet plays one file; leave out " + inQuotes(words.output));
    if (!words.plot.empty())
        throw ToolError("--plot draws one file; leave it out with " + option);
    if (!words.program.empty() && (!words.programs.empty() || !words.sheet.empty()))
        throw ToolError(
            "--program chooses one program, and " +
            std::string(words.programs.empty() ? "--contact-sheet plays all" : "--programs several") +
            "; leave one of them out");
}

std::string endingFrom(const Words& words) {
    std::string type = lowered(words.type);
    if (type.empty())
        return "";
    if (type.starts_with('.'))
        type.erase(0, 1);
    for (const char* known : {"wav", "flac", "aiff", "aif", "ogg", "caf", "w64"})
        if (type == known)
            return "." + type;
    throw ToolError("--type: " + inQuotes(words.type) +
                    " is not a type of file; use wav, flac, aiff, ogg, caf or w64");
}

std::size_t jobsFrom(const std::string& text) {
    constexpr int most = 256;
    if (text.empty())
        return std::max(1U, std::thread::hardware_concurrency());
    const auto count = countFrom(text);
    if (!count || *count < 1 || *count > most)
        throw ToolError("--jobs: " + inQuotes(text) + " is not a number from 1 to " + std::to_string(most));
    return static_cast<std::size_t>(*count);
}

/// The options of the line that are about the sound of each file go on to the process that renders it.
void passOn(const CLI::App& app, BulkOptions& bulk) {
    for (const CLI::Option* option : app.get_options()) {
        const std::string& group = option->get_group();
        if (option->get_positional() || option->count() == 0 || group == kBulkGroup ||
            group == kInformationGroup)
            continue;
        const std::string name = option->get_name();
        std::vector<std::string> words;
        for (const std::string& value : option->results()) {
            words.push_back(name);
            if (option->get_type_size() > 0)
                words.push_back(value);
            if (option->get_type_name() == "FILE")
                bulk.files.push_back(settled(value));
        }
        bulk.words.insert(bulk.words.end(), words.begin(), words.end());
        if (name != "--automate" && name != "--midi")
            bulk.listWords.insert(bulk.listWords.end(), words.begin(), words.end());
    }
}

BulkOptions bulkFrom(const Words& words, const CLI::App& app) {
    BulkOptions bulk;
    bulk.inputs = {words.input};
    if (!words.output.empty())
        bulk.inputs.push_back(words.output);
    bulk.inputs.insert(bulk.inputs.end(), words.more.begin(), words.more.end());
    bulk.isContactSheet = !words.sheet.empty();
    bulk.folder = settled(bulk.isContactSheet ? words.sheet : words.folder);
    // "out/" and "out" are the same folder.
    if (bulk.folder.filename().empty())
        bulk.folder = bulk.folder.parent_path();
    bulk.programs = words.programs;
    bulk.ending = endingFrom(words);
    bulk.jobs = jobsFrom(words.jobs);
    bulk.again = words.again;
    passOn(app, bulk);
    return bulk;
}

void checkCombination(const Words& words, const CLI::App& app) {
    checkNothingIsEmpty(app);
    if (words.list) {
        if (!words.input.empty())
            throw ToolError("--list renders nothing and takes no files; leave out " + inQuotes(words.input));
        if (words.isBulk())
            throw ToolError("--list renders nothing; leave out --to and --contact-sheet");
        if (!words.plot.empty() || !words.automation.empty() || !words.midi.empty())
            throw ToolError("--list renders nothing; do not combine it with --plot, --automate or --midi");
        return;
    }
    if (words.isBulk())
        return checkBulk(words);
    if (!words.more.empty())
        throw ToolError(
            inQuotes(words.more.front()) +
            " is one file too many; to render several, give the folder to write to with --to FOLDER");
    if (!words.programs.empty() || !words.type.empty() || !words.jobs.empty() || words.again)
        throw ToolError(
            "--programs, --type, --jobs and --again are for many files; give the folder to write to "
            "with --to FOLDER");
    if (words.input.empty())
        throw ToolError("which file? Give the audio file to play and the file to write, or --help");
    if (words.output.empty())
        throw ToolError("where to? Give the file to write after " + inQuotes(words.input));
    if (words.output == kStandardStream && words.json)
        throw ToolError("--json: standard output carries the sound; name a file in place of the second -");
}

Options optionsFrom(const Words& words, const CLI::App& app) {
    Options options;
    if (words.isBulk()) {
        options.bulk = bulkFrom(words, app);
    } else {
        options.readsStandardInput = words.input == kStandardStream;
        options.writesStandardOutput = words.output == kStandardStream;
        options.input = options.readsStandardInput ? "standard input" : settled(words.input);
        options.output = options.writesStandardOutput ? "standard output.wav" : settled(words.output);
    }
    options.library = settled(words.library);
    options.automation = settled(words.automation);
    options.midi = settled(words.midi);
    options.chunk = settled(words.chunk);
    options.bank = settled(words.bank);
    options.plot = settled(words.plot);
    options.program = words.program;
    options.bpm = tempoFrom(words.bpm);
    options.settings = settingsFrom(words.settings, options.bpm);
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
    app.add_option(
        "IN", words.input,
        "The audio file to play: WAV, FLAC, AIFF, OGG, ..., mono or stereo; -\nfor standard input");
    app.add_option("OUT", words.output,
                   "The file to write: .wav, .flac, .aiff or .ogg; - for standard output");
    app.add_option("MORE", words.more)->group("");
    addSoundOptions(app, words);
    addRenderOptions(app, words);
    addBulkOptions(app, words);
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
    return optionsFrom(words, app);
}

} // namespace tools::render
