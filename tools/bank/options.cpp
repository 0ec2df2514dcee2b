#include "tools/bank/options.h"

#include "tools/common/command_line.h"
#include "tools/common/near_names.h"
#include "tools/common/note_length.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace bank {

using tools::settled;
using tools::ToolError;

namespace {

constexpr const char* kDescription = R"(Programs and MIDI controllers of the Quillon Multitap Delay.

Examples:
  Set the rhythmic factory programs to the tempo of a song, as a bank file for your host:
    quillon-bank tempo 112 -o song.fxb

  The same with programs of your own:
    quillon-bank tempo 112 mine.fxb -o song.fxb

  Let MIDI controllers move controls; the text has lines like "cc 74 = High cut":
    quillon-bank map controllers.txt

  Show which controllers move what:
    quillon-bank map --print

  Edit all programs in a spreadsheet, and make a bank file of them:
    quillon-bank table mine.fxb -o mine.tsv
    quillon-bank compile mine.tsv -o mine.fxb

quillon-bank COMMAND --help tells more about one command.
)";

constexpr const char* kEnd =
    R"(Exit code: 0 if all is done; 2 if it is not, with one line about the reason and no file changed.)";

constexpr const char* kTempoText =
    R"(Sets programs to a tempo: the base length of each rhythmic program becomes such that an echo comes with every
note of its rhythm, for example with every dotted eighth. Other programs stay as they are.

  quillon-bank tempo 112 -o song.fxb              the factory programs
  quillon-bank tempo 112 mine.fxb -o song.fxb     programs of your own, saved by a host or made by compile
  quillon-bank tempo 112 mine.tsv -o song.fxb     programs of a table

In a bank file, rhythmic programs are known by the names of the factory programs; in a table, by its last column. A
number in the name that is the program's tempo follows. If a note is too long for the base length, half the note is
taken, the list says so, and a name like "One Bar at 128" becomes "1/2 at 112".

To use the bank, load it in a VST host, or with quillon-render --bank. To start with it in every new project, put it
beside the plug-in as default.fxb.)";

constexpr const char* kMapText =
    R"(Makes the file Pluginccmap.bin, in which the VST and the CLAP plug-in read which MIDI controller moves which control,
from a text with one line per control:

    # comment
    cc 74 = High cut
    cc 1 = Mix

Names are those of the window or of VST hosts, in upper or lower case. Controllers are numbered 0 to 127. One
controller may move several controls; a control has one controller.

  quillon-bank map controllers.txt                     writes the map beside every installed plug-in
  quillon-bank map controllers.txt -o Pluginccmap.bin  writes it to this file
  quillon-bank map --print                             prints what lies beside the plug-ins, as such a text
  quillon-bank map --print Pluginccmap.bin             prints this file

Close your host first. The plug-in reads the map whenever it is loaded, from the folder in which the host works if there
is one, else from its own folder. The VST plug-in writes it, unchanged, to the folder in which the host works when it is
closed.)";

struct Words {
    std::string input, second, output, pictures, library, speech;
    bool print = false, version = false;
};

/// The word of an option or a file that a command cannot do without.
std::string needed(const std::string& word, const std::string& question) {
    if (word.empty())
        throw ToolError(question);
    return word;
}

bool isNumber(const std::string& word) {
    return tools::numberFrom(word).has_value();
}

void requireEnding(const std::filesystem::path& file, const char* ending) {
    if (tools::lowered(file.extension().string()) != ending)
        throw ToolError(file.string() + " is to be a bank file, so its name should end in " + ending);
}

void refuseOverwriting(const std::filesystem::path& output, const std::filesystem::path& input) {
    std::error_code error;
    if (output == input || std::filesystem::equivalent(output, input, error))
        throw ToolError(output.string() + " is an input and would be overwritten; choose another name");
}

Job compileJob(const Words& words) {
    CompileJob job;
    job.table = settled(needed(words.input, "compile: which table? Give the .tsv file, and -o FILE.fxb"));
    job.output = settled(needed(words.output, "compile: where to? Give the .fxb file to write with -o"));
    requireEnding(job.output, ".fxb");
    refuseOverwriting(job.output, job.table);
    return job;
}

Job tableJob(const Words& words) {
    TableJob job;
    job.bank = settled(needed(words.input, "table: which bank? Give the .fxb file, and -o FILE.tsv"));
    job.output = settled(needed(words.output, "table: where to? Give the .tsv file to write with -o"));
    refuseOverwriting(job.output, job.bank);
    return job;
}

Job tempoJob(const Words& words) {
    std::string tempo = needed(words.input, "tempo: which tempo? Give the beats per minute, and -o FILE.fxb");
    std::string source = words.second;
    if (!isNumber(tempo) && isNumber(source))
        std::swap(tempo, source);
    TempoJob job;
    try {
        job.bpm = tools::bpmFrom(tempo);
    } catch (const ToolError& error) {
        throw ToolError(std::string("tempo: ") + error.what());
    }
    job.bank = settled(source);
    job.output = settled(needed(words.output, "tempo: where to? Give the .fxb file to write with -o"));
    requireEnding(job.output, ".fxb");
    if (!job.bank.empty())
        refuseOverwriting(job.output, job.bank);
    return job;
}

Job mapJob(const Words& words) {
    if (words.print) {
        if (!words.output.empty())
            throw ToolError("map: --print writes no file; leave out -o");
        if (!words.input.empty() && !words.library.empty())
            throw ToolError("map: --print shows either a file or what lies beside --library; leave one out");
        return PrintMapJob{settled(words.input), settled(words.library)};
    }
    if (!words.output.empty() && !words.library.empty())
        throw ToolError("map: -o and --library both say where to write; leave one out");
    MapJob job;
    job.text = settled(needed(
        words.input, "map: which controllers? Give a text with lines like cc 74 = High cut, or --print"));
    job.library = settled(words.library);
    job.output = settled(words.output);
    if (!job.output.empty())
        refuseOverwriting(job.output, job.text);
    return job;
}

std::filesystem::path neededTable(const Words& words, const std::string& command) {
    return settled(needed(words.input, command + ": which table? Give the .tsv file"));
}

std::filesystem::path neededSpeech(const Words& words, const std::string& command) {
    return settled(
        needed(words.speech, command + ": which speech? Give a mono recording at 48 kHz with --speech"));
}

Job pageJob(const Words& words) {
    PageJob job;
    job.table = neededTable(words, "page");
    job.output = settled(needed(words.output, "page: where to? Give the page to write with -o"));
    job.pictures = settled(needed(words.pictures, "page: where to put the pictures? Give --pictures"));
    job.speech = neededSpeech(words, "page");
    job.library = settled(words.library);
    return job;
}

Job loudnessJob(const Words& words) {
    LoudnessJob job;
    job.table = neededTable(words, "loudness");
    job.speech = neededSpeech(words, "loudness");
    job.library = settled(words.library);
    return job;
}

using MakeJob = Job (*)(const Words&);

/// The commands, with the functions that check what was given to them.
class Commands {
  public:
    explicit Commands(Words& words) : app_(kDescription, "quillon-bank"), words_(words) {
        app_.allow_windows_style_options(false); // A file may be called /this, on every system.
        app_.set_help_flag("--help,-h", "Show this help");
        app_.add_flag("--version", words.version, "Show the tool's version");
        app_.get_formatter()->column_width(30);
        app_.get_formatter()->label("TEXT", "");
        app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
        app_.get_formatter()->label("Positionals", "Files");
        app_.footer(kEnd);
        addTempo();
        addMap();
        addTable();
        addCompile();
        addPage();
        addLoudness();
    }

    Job parsed(int argumentCount, const char* const* arguments) {
        checkCommand(argumentCount, arguments);
        if (const auto help = tools::parseOrHelp(app_, argumentCount, arguments))
            return HelpText{*help};
        if (words_.version)
            return HelpText{"quillon-bank " QUILLON_VERSION "\n"};
        const auto chosen = app_.get_subcommands();
        if (chosen.empty())
            throw ToolError("which command? " + names("or") + "; quillon-bank --help has examples");
        tools::checkNothingIsEmpty(*chosen.front());
        for (const auto& [command, make] : commands_)
            if (command == chosen.front())
                return make(words_);
        return HelpText{};
    }

  private:
    CLI::App& add(const char* name, const std::string& text, MakeJob make) {
        CLI::App* command = app_.add_subcommand(name, text);
        command->set_help_flag("--help,-h", "Show this help");
        command->fallthrough(); // --version may stand anywhere
        commands_.emplace_back(command, make);
        return *command;
    }
    void addOutput(CLI::App& command, const std::string& text) {
        command.add_option("-o,--output", words_.output, text)->type_name("FILE");
    }
    void addLibrary(CLI::App& command, const std::string& text) {
        command.add_option("--library", words_.library, text)->type_name("FILE");
    }
    void addSpeech(CLI::App& command) {
        command.add_option("--speech", words_.speech, "A mono recording at 48 kHz (required)")
            ->type_name("FILE");
    }

    void addTempo() {
        CLI::App& command = add("tempo", "Set the rhythmic programs to a tempo", tempoJob);
        command.footer(kTempoText);
        command.add_option("BPM", words_.input, "Beats per minute, 20 to 400");
        command.add_option("BANK", words_.second, "Programs of your own: an .fxb file or a table");
        addOutput(command, "The .fxb file to write");
    }
    void addMap() {
        CLI::App& command = add("map", "Write or show which MIDI controller moves which control", mapJob);
        command.footer(kMapText);
        command.add_option("FILE", words_.input, "The text to read; with --print, the map to show");
        command.add_flag("--print", words_.print, "Print a map as text");
        addOutput(command, "The map to write, instead of one beside the plug-in");
        addLibrary(command, "The plug-in's file, if it is not found");
    }
    void addTable() {
        CLI::App& command =
            add("table", "Make a table, which a spreadsheet can open, from an .fxb file", tableJob);
        command.add_option("BANK", words_.input, "The .fxb file to read");
        addOutput(command, "The table to write");
    }
    void addCompile() {
        CLI::App& command = add("compile", "Make an .fxb file from a table", compileJob);
        command.add_option("TABLE", words_.input, "The table to read");
        addOutput(command, "The .fxb file to write");
    }
    void addPage() {
        CLI::App& command = add("page", "Measure all programs and write a page about them", pageJob);
        command.add_option("TABLE", words_.input,
                           "The table from which the bank beside the plug-in was made");
        addOutput(command, "The page to write");
        command.add_option("--pictures", words_.pictures, "The folder for the pictures")->type_name("FOLDER");
        addSpeech(command);
        addLibrary(command, "The plug-in's file, if it is not found");
    }
    void addLoudness() {
        CLI::App& command =
            add("loudness", "Measure how loud all programs of a table are, and print a table", loudnessJob);
        command.add_option("TABLE", words_.input, "The table of the programs; it need not be compiled");
        addSpeech(command);
        addLibrary(command, "The plug-in's file, if it is not found");
    }

    /// All of them, the last behind `lastWord`.
    std::string names(const std::string& lastWord) const {
        std::string text;
        for (const auto& [command, make] : commands_) {
            const bool isLast = command == commands_.back().first;
            text += (text.empty() ? "" : isLast ? " " + lastWord + " " : ", ") + command->get_name();
        }
        return text;
    }

    /// A first word that is no command is told as such.
    void checkCommand(int argumentCount, const char* const* arguments) const {
        if (argumentCount < 2)
            return;
        const std::string word = arguments[1];
        std::vector<std::string> known;
        known.reserve(commands_.size());
        for (const auto& [command, make] : commands_)
            known.push_back(command->get_name());
        if (!word.starts_with('-') && std::ranges::find(known, word) == known.end())
            throw ToolError("there is no command " + tools::inQuotes(word) +
                            tools::suggestion(known, word, "there are " + names("and")));
    }

    CLI::App app_;
    Words& words_;
    std::vector<std::pair<CLI::App*, MakeJob>> commands_;
};

} // namespace

Job jobFrom(int argumentCount, const char* const* arguments) {
    Words words;
    return Commands(words).parsed(argumentCount, arguments);
}

} // namespace bank
