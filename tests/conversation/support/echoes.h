// Whether an instance still has echoes in its memory, found by listening.
#pragma once

#include "host/plugin.h"

#include <functional>

namespace conversation {

/// Plain echoes: eight taps on whole samples, wet signal only, no repeats, no sweep. At 44100 Hz they come
/// every quarter of a second, the first one a quarter after the input.
void choosePlainEchoes(host::Plugin& plugin);

/// Plays a click into an instance with plain echoes, calls `operation`, and gives the loudest sample of the
/// second that follows. The dry signal is not in it.
float loudestEchoAcross(host::Plugin& plugin, const std::function<void()>& operation);

/// The second that follows from now on, with silence going in.
float loudestInTheNextSecond(host::Plugin& plugin);

/// Well above what remains of the click when the echoes are gone, well below the echoes themselves.
constexpr float kAudible = 1e-4f;

/// EXPECTs that an operation leaves the echoes in place.
void expectEchoesKept(host::Plugin& plugin, const std::function<void()>& operation);
/// EXPECTs that an operation wipes the echoes, where doing nothing would have left them.
void expectEchoesWiped(host::Plugin& plugin, const std::function<void()>& operation);

} // namespace conversation
