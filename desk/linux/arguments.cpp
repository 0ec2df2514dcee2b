#include "desk/arguments.h"

namespace desk {

CommandLine::CommandLine(int count, const char* const* words) : pointers_(words, words + count) {}

} // namespace desk
