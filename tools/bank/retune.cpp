#include "tools/bank/retune.h"

#include "base/number_text.h"
#include "parameters/pattern_laws.h"
#include "tools/common/law_values.h"
#include "tools/common/text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <string_view>

namespace bank {

using parameters::ParameterId;
using tools::NoteValue;

namespace {

std::string tempoText(double bpm) {
    constexpr double hundred = 100.0;
    return tools::shortText(std::round(bpm * hundred) / hundred);
}

/// The words of a name, and how to join them again.
std::vector<std::string> wordsOf(std::string_view name) {
    std::vector<std::string> words;
    while (!name.empty()) {
        const std::size_t end = std::min(name.find(' '), name.size());
        words.emplace_back(name.substr(0, end));
        name.remove_prefix(std::min(end + 1, name.size()));
    }
    return words;
}

std::string joined(const std::vector<std::string>& words) {
    std::string name;
    for (const std::string& word : words)
        name += (name.empty() ? "" : " ") + word;
    return name;
}

/// The word of the name that is the program's own tempo; the number of words if none is.
std::size_t tempoWord(const std::vector<std::string>& words, const BankProgram& program) {
    constexpr double tolerance = 0.5;
    const auto word = std::ranges::find_if(words, [&](const std::string& text) {
        const auto number = tools::numberFrom(text);
        return number && std::abs(*number - ownTempo(program)) < tolerance;
    });
    return static_cast<std::size_t>(word - words.begin());
}

/// Whether a name is only a note and a tempo, "1/2 at 100".
bool isNoteAtTempo(const std::vector<std::string>& words) {
    return words.size() >= 3 && tools::noteFrom(words[0]) && words[1] == "at" && tools::numberFrom(words[2]);
}

std::string nameAt(const BankProgram& before, const NoteValue& note, double bpm) {
    std::vector<std::string> words = wordsOf(before.name);
    const std::size_t place = tempoWord(words, before);
    std::string noteAtTempo = tools::noteText(note) + " at " + tempoText(bpm);
    if (isNoteAtTempo(words))
        return noteAtTempo;
    if (place == words.size())
        return before.name;
    if (note != *before.rhythm)
        return noteAtTempo;
    words[place] = tempoText(bpm);
    if (joined(words).size() > kMaxNameLength)
        words[place] = std::to_string(std::lround(bpm));
    return joined(words);
}

/// Whether a program has the name already, other than the one of this number.
bool isTaken(const Bank& bank, std::size_t number, const std::string& name) {
    for (std::size_t other = 0; other < bank.size(); ++other)
        if (other != number && tools::sameName(bank[other].name, name))
            return true;
    return false;
}

/// The mark of the second program of the same name, and so on.
std::string mark(int count) {
    return " (" + std::to_string(count) + ")";
}

void makeNameUnique(Bank& bank, std::size_t number) {
    const std::string name = bank[number].name;
    for (int count = 2; isTaken(bank, number, bank[number].name); ++count)
        bank[number].name = name.substr(0, kMaxNameLength - mark(count).size()) + mark(count);
}

bool fits(double baseLength) {
    return baseLength >= tools::kShortestBaseLength && baseLength <= parameters::kLongestGap.highest();
}

RetunedProgram retune(std::size_t number, BankProgram& program, double bpm) {
    const BankProgram before = program;
    const double share = firstGapShare(program);
    RetunedProgram result;
    result.number = number;
    result.nameBefore = program.name;
    result.rhythm = result.note = *program.rhythm;
    result.wantedLength = tools::milliseconds(result.rhythm, bpm) / share;
    std::optional<NoteValue> note = result.rhythm;
    while (note && !fits(tools::milliseconds(*note, bpm) / share))
        note = tools::halved(*note);
    result.fits = note.has_value();
    if (!note)
        return result;
    result.note = *note;
    result.spacing = tools::milliseconds(*note, bpm);
    result.baseLength = result.spacing / share;
    program.values[ParameterId::kBaseLength] = tools::baseLengthLasting(result.baseLength);
    program.name = nameAt(before, *note, bpm);
    program.rhythm = *note;
    return result;
}

/// Whether a program of this name may come from the factory program: the tempo in it may be another, or it
/// may be "1/2 at 100", and a mark may follow.
bool comesFrom(const std::string& name, const BankProgram& factory) {
    std::vector<std::string> ours = wordsOf(factory.name);
    std::vector<std::string> theirs = wordsOf(name);
    const std::size_t place = tempoWord(ours, factory);
    if (place == ours.size())
        return tools::sameName(name, factory.name);
    if (isNoteAtTempo(theirs))
        return true;
    if (theirs.size() > ours.size() && theirs.back().starts_with('('))
        theirs.pop_back();
    if (theirs.size() != ours.size() || !tools::numberFrom(theirs[place]))
        return false;
    ours[place] = theirs[place];
    return tools::sameName(joined(theirs), joined(ours));
}

std::string lengthText(double milliseconds) {
    return base::fixedText(milliseconds, 1) + " ms";
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string rightOf(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string lineOf(const RetunedProgram& program, const std::string& name) {
    std::string line = rightOf(std::to_string(program.number), 3) + "  " + padded(name, kMaxNameLength + 2);
    if (!program.fits)
        return line + "left as it was: no length of " + tools::noteText(program.rhythm) + " fits\n";
    line += padded(tools::noteText(program.note), 6) + rightOf(lengthText(program.spacing), 10) +
            rightOf(lengthText(program.baseLength), 13);
    if (program.note != program.rhythm)
        line += "  " + tools::noteText(program.rhythm) + " needs " + lengthText(program.wantedLength) +
                "; the longest is " + lengthText(parameters::kLongestGap.highest());
    return line + '\n';
}

} // namespace

double firstGapShare(const BankProgram& program) {
    // As computeTaps() has it for its first tap.
    const double bend = static_cast<double>(parameters::stretchBend(program.value(ParameterId::kStretch)));
    const double w = 1.0 / (std::exp(4.0) + 1.0);
    return (1.0 - (w + w)) * bend + w;
}

double ownTempo(const BankProgram& program) {
    const double length =
        parameters::kLongestGap.numberFor(static_cast<double>(program.value(ParameterId::kBaseLength)));
    return tools::milliseconds(*program.rhythm, 1.0) / (length * firstGapShare(program));
}

RetunedBank retuned(const Bank& bank, double bpm) {
    RetunedBank result{bank, {}};
    for (std::size_t number = 0; number < bank.size(); ++number)
        if (bank[number].rhythm)
            result.programs.push_back(retune(number, result.bank[number], bpm));
    // From the last, so that the first one keeps the name.
    for (auto program = result.programs.rbegin(); program != result.programs.rend(); ++program)
        if (result.bank[program->number].name != program->nameBefore)
            makeNameUnique(result.bank, program->number);
    return result;
}

void adoptRhythms(Bank& bank, const Bank& factory) {
    for (std::size_t number = 0; number < bank.size(); ++number) {
        BankProgram& program = bank[number];
        if (!isEven(program))
            continue;
        const auto isSource = [&](const BankProgram& candidate) {
            return candidate.rhythm && comesFrom(program.name, candidate);
        };
        // Names like "1/2 at 100" fit several: the one in the same place comes first.
        if (isSource(factory[number])) {
            program.rhythm = factory[number].rhythm;
            continue;
        }
        const auto source = std::ranges::find_if(factory, isSource);
        if (source != factory.end())
            program.rhythm = source->rhythm;
    }
}

std::string retuningText(const RetunedBank& retuned, double bpm) {
    std::string text = "No.  " + padded("Program", kMaxNameLength + 2) + padded("Note", 6) +
                       rightOf("Echo every", 10) + rightOf("Base length", 13) + '\n';
    std::size_t count = 0;
    for (const RetunedProgram& program : retuned.programs) {
        text += lineOf(program, retuned.bank[program.number].name);
        count += program.fits ? 1 : 0;
    }
    const std::string rest = std::to_string(retuned.bank.size() - count);
    return text +
           (count == 0   ? "No program follows "
            : count == 1 ? "1 program follows "
                         : std::to_string(count) + " programs follow ") +
           tempoText(bpm) + " bpm; the other " + rest + " are as they were.\n";
}

} // namespace bank
