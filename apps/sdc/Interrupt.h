#pragma once

namespace sdc {

/// From now on Ctrl-C (SIGINT) asks for a stop; a second one leaves the program at once, with exit status 130.
void watchForInterrupt();

/// Whether a stop was asked for.
bool isInterrupted();

} // namespace sdc
