// A tool's standard streams; its output is kept to itself.
#pragma once

#include <cstdio>

namespace desk {

/// Makes the tool's standard output private and points descriptor 1 at standard error, so that whatever a
/// loaded library prints cannot get into what the tool's caller reads. Gives the private stream, which stays
/// open for the life of the process; a second call gives the same one. Call it before any library is loaded.
/// Throws std::runtime_error if there is no standard output to keep.
std::FILE* takeOwnOutput();

/// Standard input, for bytes of any kind.
std::FILE* ownInput();

/// Whether a stream ends at a terminal.
bool isTerminal(std::FILE* stream);

} // namespace desk
