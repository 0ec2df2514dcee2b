// Sets the rhythmic programs of a bank to the tempo of a song: their base length becomes such that an echo
// comes with every note of their rhythm. All other programs stay as they are.
#pragma once

#include "tools/bank/bank_program.h"

#include <cstddef>
#include <string>
#include <vector>

namespace bank {

/// What has become of one rhythmic program.
struct RetunedProgram {
    std::size_t number = 0;
    std::string nameBefore;
    tools::NoteValue rhythm;   ///< as the table has it
    tools::NoteValue note;     ///< the one it has now; of half the length, or a quarter, if that was too long
    double spacing = 0.0;      ///< ms from one echo to the next
    double baseLength = 0.0;   ///< ms
    double wantedLength = 0.0; ///< base length for the rhythm itself, ms
    bool fits = true;          ///< false: no length of the note fits, the program is as it was
};

struct RetunedBank {
    Bank bank;
    std::vector<RetunedProgram> programs; ///< those with a rhythm, by number
};

/// The share of the base length that passes before the first echo; in even patterns, between all.
double firstGapShare(const BankProgram& program);

/// The tempo, in quarter notes per minute, at which an echo comes with every note of the program's rhythm,
/// which it must have.
double ownTempo(const BankProgram& program);

/// The programs at `bpm`. A name that contains the program's own tempo gets the new one; if the note had to
/// be another, it becomes that note and the tempo, "1/2 at 100".
RetunedBank retuned(const Bank& bank, double bpm);

/// The factory bank as its table had it when the tool was built.
const Bank& builtInFactoryBank();

/// Gives the programs of a bank that has no table the rhythms of the factory programs that they come from:
/// those of the same name, whatever tempo is in it, wherever they stand. Programs whose echoes are no longer
/// even get none.
void adoptRhythms(Bank& bank, const Bank& factory);

/// What a person wants to know of it: a line for each program, and how many there are.
std::string retuningText(const RetunedBank& retuned, double bpm);

} // namespace bank
