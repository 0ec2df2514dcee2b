#include "platform/arguments.h"

namespace platform {

CommandLine::CommandLine(int count, const char* const* words) : pointers_(words, words + count) {}

} // namespace platform
