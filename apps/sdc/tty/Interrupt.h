#pragma once

namespace sdc {

/// From now on Ctrl-C (SIGINT) asks for a stop; a second one ends the program at once, which a shell reports as 130.
void watchForInterrupt();

/// Whether a stop was asked for.
bool isInterrupted();

} // namespace sdc
