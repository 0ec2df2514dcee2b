// The readable form of a bank: a text table, one program a line, cells parted by tabs, so that it opens in a
// spreadsheet as it stands and a change of one sound is one changed line.
//
// Lines that start with '#' are remarks, empty lines are passed over, and the first other line holds the
// headings. The last cell, the rhythm, may be missing together with its tab, also in the headings.
#pragma once

#include "tools/bank/bank_program.h"

#include <string>
#include <string_view>

namespace bank {

/// Reads a table of exactly 128 programs and checks every cell and name. Throws BankError with
/// "fileName:row:column: what is wrong"; both count from 1, rows as an editor counts lines.
Bank parseTable(std::string_view text, const std::string& fileName);

/// The table of a bank, which parseTable reads back to the same values, bit for bit. Throws BankError if a
/// name cannot stand in a table.
std::string tableText(const Bank& bank);

/// What is wrong with a program's name by itself; empty if nothing is. Names are 1 to 24 printable ASCII
/// characters with no blank at either end, and carry nobody's trademark.
std::string nameFault(std::string_view name);

} // namespace bank
