#include "tools/render/job.h"

#include "desk/own_output.h"
#include "desk/private_folder.h"
#include "tools/common/effect_library.h"
#include "tools/common/effect_names.h"
#include "tools/common/output_file.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"
#include "tools/render/automation.h"
#include "tools/render/cut_file.h"
#include "tools/render/midi_file.h"
#include "tools/render/passed_sound.h"
#include "tools/render/plot.h"
#include "tools/render/report.h"
#include "tools/render/settings_line.h"
#include "tools/render/starting_point.h"
#include "tools/render/suitable_effect.h"

#include <cmath>
#include <memory>
#include <optional>

namespace tools::render {

namespace {

namespace files = std::filesystem;

/// As long as it takes every glide of the Quillon Multitap Delay to arrive, at any sample rate.
constexpr std::int64_t kDefaultPreRoll = 150000;

void print(std::FILE* output, const std::string& text) {
    if (std::fputs(text.c_str(), output) < 0 || std::fflush(output) != 0)
        throw ToolError("standard output cannot be written");
}

bool isSameFile(const files::path& a, const files::path& b) {
    std::error_code error;
    return a == b || files::equivalent(a, b, error);
}

/// None of the files to be written may be one of those to be read, nor the other one.
void checkPlaces(const Options& options) {
    const files::path* toRead[] = {&options.input, &options.automation, &options.midi,
                                   &options.chunk, &options.bank,       &options.library};
    for (const files::path* target : {&options.output, &options.plot})
        for (const files::path* source : toRead)
            if (!target->empty() && !source->empty() && isSameFile(*target, *source))
                throw ToolError(target->string() +
                                " is an input and would be overwritten; choose another name");
    if (options.plot.empty())
        return;
    if (isSameFile(options.output, options.plot))
        throw ToolError(options.plot.string() + " cannot be both the sound and the picture");
    if (lowered(options.plot.extension().string()) != ".png")
        throw ToolError(options.plot.string() + ": the picture is a PNG, so its name should end in .png");
}

/// What happens at which sample of the file, before the effect has been asked about names and values.
struct Script {
    std::vector<AutomationLine> automation;
    std::vector<TimedMidi> midi;
};

Script readScript(const Options& options) {
    Script script;
    if (!options.automation.empty())
        script.automation = readAutomation(options.automation, options.bpm);
    if (!options.midi.empty())
        script.midi = readMidiFile(options.midi);
    return script;
}

std::string cutText(const files::path& file, const CutSound& cut) {
    return file.string() + " is cut off: " + std::to_string(cut.present) + " of " +
           std::to_string(cut.promised) + " bytes of sound are there, and only they are played";
}

std::vector<MidiEvent> atFrames(const std::vector<TimedMidi>& messages, double sampleRate) {
    std::vector<MidiEvent> events;
    for (const TimedMidi& message : messages) {
        constexpr double furthest = 9e15;
        MidiEvent event;
        event.frame = std::llround(std::min(message.seconds * sampleRate, furthest));
        std::copy(message.bytes.begin(), message.bytes.end(), std::begin(event.bytes));
        events.push_back(event);
    }
    return events;
}

class RenderJob {
  public:
    RenderJob(const Options& options, std::FILE* output)
        : options_(options), output_(output), script_(readScript(options)), passed_(options, output),
          reader_(passed_.input(), options.input), library_(libraryPath(options.library)),
          outputFile_(passed_.output()) {
        if (!options.plot.empty())
            plotFile_.emplace(options.plot);
    }

    void run() {
        const desk::PrivateFolder folder;
        const host::Library& library = loadForGood(library_);
        if (const auto cut = cutSound(passed_.input()))
            warn(cutText(options_.input, *cut));
        prepare(library);
        play(library);
        for (const std::string& warning : warningsFrom(report_))
            warn(warning);
        if (plotFile_)
            drawPlot(library);
        finish();
    }

  private:
    double sampleRate() const { return reader_.sampleRate(); }

    void warn(const std::string& text) {
        report_.warnings.push_back(text);
        std::fprintf(stderr, "quillon-render: warning: %s\n", printable(text).c_str());
    }

    std::unique_ptr<host::Plugin> startedInstance(const host::Library& library) const {
        auto plugin =
            std::make_unique<host::Plugin>(library, hostBehaviour(sampleRate(), options_.blockSize));
        checkEffect(*plugin, library_);
        plugin->start(static_cast<float>(sampleRate()), options_.blockSize);
        return plugin;
    }

    /// Asks one instance what the names and values mean; another one will play.
    void prepare(const host::Library& library) {
        const auto asked = startedInstance(library);
        start_ = findStartingPoint(*asked, options_);
        report_.state = stateOf(*asked);
        events_.parameters = findEvents(*asked, script_.automation, options_.automation, sampleRate());
        events_.midi = atFrames(script_.midi, sampleRate());
        if (!events_.midi.empty() && asked->canDo("receiveVstMidiEvent") < 0)
            warn("this effect says that it takes no MIDI");
    }

    void play(const host::Library& library) {
        const auto plugin = startedInstance(library);
        bringTo(*plugin, start_);
        const int channels = plugin->effect()->numOutputs;
        const OutputKind kind =
            outputKind(options_.output, options_.format, reader_.sampleRate(), channels, longestOutput());
        AudioWriter writer(outputFile_.temporary(), options_.output, kind, reader_.sampleRate(), channels);
        BlockPlayer player(*plugin, events_, options_.blockSize);
        player.preRoll(preRollFrames());
        FileRender render(*plugin, reader_, writer, player, options_.tail, options_.blockSize,
                          plotFile_ ? &outlines_ : nullptr);
        Progress progress(progressStyle(), options_.input.filename().string(), reader_.frames(),
                          reader_.sampleRate());
        report_.result = render.run(progress);
        writer.finish();
        fillReport(kind, channels);
    }

    std::int64_t preRollFrames() const {
        return options_.preRollSeconds ? std::llround(*options_.preRollSeconds * sampleRate())
                                       : kDefaultPreRoll;
    }

    std::int64_t longestOutput() const {
        const double tail = options_.tail.automatic ? kLongestTail : options_.tail.seconds;
        return reader_.frames() + std::llround(tail * sampleRate());
    }

    Progress::Style progressStyle() const {
        if (options_.quiet)
            return Progress::Style::none;
        return desk::isTerminal(stderr) ? Progress::Style::bar : Progress::Style::lines;
    }

    void fillReport(const OutputKind& kind, int channels) {
        report_.input = options_.input;
        report_.output = options_.output;
        report_.library = library_;
        report_.plot = options_.plot;
        report_.kind = kind.name;
        report_.keepsOverloads = kind.keepsOverloads;
        report_.sampleRate = reader_.sampleRate();
        report_.inputChannels = reader_.channels();
        report_.outputChannels = channels;
        report_.blockSize = options_.blockSize;
        report_.preRollFrames = preRollFrames();
        report_.isTailAutomatic = options_.tail.automatic;
    }

    void drawPlot(const host::Library& library) {
        Picture picture;
        const EffectState& state = report_.state;
        picture.title = printable(trimmed(state.programName.empty() ? state.effectName : state.programName));
        picture.settings = settingsLine(state);
        picture.footnote = printable(options_.input.filename().string()) + " \u2192 " +
                           printable(options_.output.filename().string()) + ", program " +
                           std::to_string(state.program) + ", " + std::to_string(reader_.sampleRate()) +
                           " Hz, peak " + levelText(report_.result.peak);
        picture.outlines = &outlines_;
        picture.sampleRate = reader_.sampleRate();
        picture.isStereo = report_.outputChannels == 2;
        addTaps(picture, library);
        drawPicture(picture, plotFile_->temporary(), options_.plot);
    }

    void addTaps(Picture& picture, const host::Library& library) const {
        const auto plugin = startedInstance(library);
        picture.hasTaps = hasTapPattern(*plugin);
        if (!picture.hasTaps)
            return;
        bringTo(*plugin, start_);
        const auto count = leadingNumber(plugin->parameterDisplay(findParameter(*plugin, "Taps #")));
        picture.tapsAsked = count ? static_cast<int>(count->value) : 0;
        picture.taps = measureTapPattern(*plugin, sampleRate());
    }

    /// The files take their names last, when nothing can go wrong any more but that itself.
    void finish() {
        if (options_.writesStandardOutput) {
            passed_.deliver(outputFile_.temporary());
            if (plotFile_)
                plotFile_->commit();
        } else if (plotFile_)
            commitBoth(*plotFile_, outputFile_);
        else
            outputFile_.commit();
        try {
            printReport();
        } catch (const ToolError& error) {
            throw ToolError(std::string(error.what()) + "; " + options_.output.string() +
                            (plotFile_ ? " and " + options_.plot.string() + " are" : " is") + " written");
        }
    }

    void printReport() const {
        if (options_.json)
            print(output_, reportJson(report_));
        else if (!options_.quiet)
            print(options_.writesStandardOutput ? stderr : output_, reportText(report_));
    }

    const Options& options_;
    std::FILE* output_;
    Script script_;
    PassedSound passed_;
    AudioReader reader_;
    files::path library_;
    OutputFile outputFile_;
    std::optional<OutputFile> plotFile_;
    StartingPoint start_;
    Events events_;
    Outlines outlines_;
    RenderReport report_;
};

} // namespace

void listEffect(const Options& options, std::FILE* output) {
    constexpr double sampleRate = 44100.0;
    const files::path path = libraryPath(options.library);
    const desk::PrivateFolder folder;
    const host::Library& library = loadForGood(path);
    host::Plugin plugin(library, hostBehaviour(sampleRate, options.blockSize));
    plugin.start(static_cast<float>(sampleRate), options.blockSize);
    const StartingPoint start = findStartingPoint(plugin, options);
    const EffectState state = stateOf(plugin);
    const auto programs = programNames(plugin);
    print(output, options.json ? listJson(state, programs, path) : listText(state, programs));
}

void renderToFile(const Options& options, std::FILE* output) {
    std::error_code error;
    if (files::is_directory(options.input, error))
        throw ToolError(options.input.string() +
                        " is a folder; to render all that is in it, name the folder to write to with --to");
    if (files::is_directory(options.output, error))
        throw ToolError(options.output.string() +
                        " is a folder; give the name of a file in it, or write --to in front of it");
    checkPlaces(options);
    RenderJob(options, output).run();
}

} // namespace tools::render
